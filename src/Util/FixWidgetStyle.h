#pragma once

/// \file
/// Names and hints for the standard parts of a window.

#include <Util/Export.h>

#include <QtCore/QtGlobal>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Util
{

/// Prepares a freshly built window for the application's style sheet.
class ZQTUTIL_EXPORT FixWidgetStyle
{
public:
    FixWidgetStyle() = delete;

    /// Names and tags the standard parts of \a root, and makes its pop-ups rounded. To be called once, before the
    /// window is shown: Qt hides a window whose flags change. Null is ignored. GUI thread.
    ///
    /// - Menus and the pop-ups of combo boxes get the property "roundedEdges". They, and every widget below \a root (it
    ///   included) on which the application has set it, become translucent, frameless and without a shadow.
    /// - The help button of the title bar goes.
    /// - The action of each menu below \a root is named "action_" and the name of the menu, unless it has a name.
    /// - In button boxes, the standard buttons that have no name yet get "okButton", "cancelButton", "closeButton",
    ///   "yesButton", "noButton" and "restoreButton"; the first has the style hint "activeButton", the last
    ///   "highlightedButton". The boxes are kept laid out as the platform does.
    static void Apply(QWidget* root);
};

} // namespace Util
} // namespace Zelkor

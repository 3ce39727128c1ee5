#pragma once

/// \file
/// Object names and style hints for the standard parts of a window.

#include <Util/Export.h>

#include <QtCore/QtGlobal>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Util
{

/// Prepares a newly created window for the application's style sheet.
class ZQTUTIL_EXPORT FixWidgetStyle
{
public:
    FixWidgetStyle() = delete;

    /// Sets object names and dynamic properties on the standard parts of \a root. Does nothing if \a root is null.
    ///
    /// Call it once, before the window is shown: Qt hides a window when its flags change. GUI thread.
    ///
    /// - Sets the property "roundedEdges" to true on all menus and on the pop-up windows of all combo boxes, including
    ///   \a root itself.
    /// - Makes every widget whose property "roundedEdges" is true translucent and frameless, without a drop shadow. The
    ///   application can set the property on other widgets before the call.
    /// - Removes the context help button from the title bar of \a root.
    /// - Sets the object name of the action of each menu below \a root to "action_" and the object name of the menu.
    /// Keeps
    ///   a name that is already set.
    /// - Sets object names and the property "styleHint" on the standard buttons of each QDialogButtonBox below \a root,
    ///   see the table. Keeps a name that is already set.
    /// - Keeps the layout of each QDialogButtonBox current, see Widget::Util::installLayoutController().
    ///
    /// | Button            | Object name     | "styleHint"         |
    /// |-------------------|-----------------|---------------------|
    /// | `Ok`              | "okButton"      | "activeButton"      |
    /// | `Cancel`          | "cancelButton"  |                     |
    /// | `Close`           | "closeButton"   |                     |
    /// | `Yes`             | "yesButton"     |                     |
    /// | `No`              | "noButton"      |                     |
    /// | `RestoreDefaults` | "restoreButton" | "highlightedButton" |
    static void Apply(QWidget* root);
};

} // namespace Util
} // namespace Zelkor

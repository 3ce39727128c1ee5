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
    /// Call this function once, before the window is shown. The function changes window flags, and Qt hides a visible
    /// window when its flags change. Call this function on the GUI thread.
    ///
    /// - Sets the property "roundedEdges" to true on all menus and on the pop-up windows of all combo boxes below
    ///   \a root. If \a root is a menu, also sets the property on \a root. If \a root is a combo box, also sets the
    ///   property on the pop-up window of \a root.
    /// - If the property "roundedEdges" of a widget is true, makes the widget translucent and frameless, and removes
    ///   its drop shadow. To include other widgets, set this property on them before the call.
    /// - Removes the context help button from the title bar of \a root.
    /// - Sets the object name of the action of each menu below \a root to "action_" followed by the object name of
    ///   the menu. Does not change an object name that is already set.
    /// - Sets object names and the property "styleHint" on the standard buttons of each QDialogButtonBox below \a root,
    ///   see the table. Does not change an object name that is already set.
    /// - Calls Widget::Util::installLayoutController() for each QDialogButtonBox below \a root.
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

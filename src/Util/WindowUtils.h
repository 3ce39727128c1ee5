#pragma once

/// \file
/// Placement of windows and dialogs.

#include <Util/Export.h>

#include <QtCore/QPoint>
#include <QtCore/QRect>

QT_BEGIN_NAMESPACE
class QDialog;
class QWidget;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Util
{

/// Returns the geometry of the screen that contains the centre of \a widget. If \a widget is a window, its centre is
/// the centre of the rectangle that includes the window frame.
///
/// Returns the geometry of the primary screen if no screen contains the centre, or if \a widget is null. Returns a null
/// `QRect` if there is no screen. Call this function on the GUI thread.
ZQTUTIL_EXPORT QRect GetCurrentScreenRect(QWidget const* widget);

/// Returns the position at which \a widget is centred on the screen of its parent widget. The result is the position of
/// the top left corner of \a widget. If \a widget has no parent, the primary screen is used. See
/// GetCurrentScreenRect(). Call this function on the GUI thread.
ZQTUTIL_EXPORT QPoint GetWidgetPosOnCurrentScreenCenter(QWidget const& widget);

/// Shows a dialog in the centre of a window and runs it with `QDialog::exec()`, which runs a nested event loop. Call
/// this function on the GUI thread.
///
/// \param dialog  the dialog to show; the caller keeps ownership
/// \param parent  any widget of the window in which the dialog is centred. If \a parent is null, the parent of
///                \a dialog is used. If \a dialog has no parent either, the dialog is centred on its screen.
/// \returns the result of `QDialog::exec()`; 0 if \a dialog is null or is destroyed before this function returns
ZQTUTIL_EXPORT int ExecDialogInCenterWindow(QDialog* dialog, QWidget* parent);

} // namespace Util
} // namespace Zelkor

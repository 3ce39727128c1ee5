#pragma once

/// \file
/// Where windows go.

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

/// The geometry of the screen that holds the centre of \a widget, with its frame; of the primary screen when none does,
/// and when \a widget is null. Empty when there is no screen at all. GUI thread.
ZQTUTIL_EXPORT QRect GetCurrentScreenRect(QWidget const* widget);

/// Where the top left corner of \a widget goes so that it stands in the middle of the screen of its parent; of the
/// primary screen when it has none. GUI thread.
ZQTUTIL_EXPORT QPoint GetWidgetPosOnCurrentScreenCenter(QWidget const& widget);

/// Shows \a dialog in the middle of the window of \a parent, runs it as `QDialog::exec()` does, and returns what that
/// returns. Without a \a parent the dialog's own counts, and without that the middle of its screen. 0 when \a dialog is
/// null, or is destroyed meanwhile. GUI thread; turns the event loop.
ZQTUTIL_EXPORT int ExecDialogInCenterWindow(QDialog* dialog, QWidget* parent);

} // namespace Util
} // namespace Zelkor

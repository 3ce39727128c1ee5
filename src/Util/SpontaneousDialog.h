#pragma once

/// \file
/// Selection of a parent for dialogs that are created without one.

#include <Util/Export.h>

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

namespace Zelkor
{
namespace Util
{

/// Finds a parent for dialogs that are created without one, and stores the main window of the application.
class ZQTUTIL_EXPORT SpontaneousDialog
{
public:
    SpontaneousDialog() = delete;

    /// Returns the active modal widget, or the active window if no modal widget is active.
    ///
    /// If that widget has the attribute `Qt::WA_DeleteOnClose`, or if there is none, returns GetMainWindow(). A dialog
    /// would otherwise be deleted together with such a parent. Without a main window, the result is the active window,
    /// even if it has the attribute. The result can be null. GUI thread.
    static QWidget* findParent();

    /// Returns the main window, or the active window if no main window is set or it was destroyed. The result can be
    /// null. GUI thread.
    static QWidget* GetMainWindow();

    /// Sets the main window to \a window; null clears it. The caller keeps ownership and can destroy the window at any
    /// time. GUI thread.
    static void SetMainWindow(QWidget* window);

private:
    static QPointer<QWidget> mainWindow_;
};

} // namespace Util
} // namespace Zelkor

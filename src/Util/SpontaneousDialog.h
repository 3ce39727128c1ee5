#pragma once

/// \file
/// Selection of a parent widget for a dialog that is created without an explicit parent.

#include <Util/Export.h>

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

namespace Zelkor
{
namespace Util
{

/// Finds a parent widget for a dialog that is created without an explicit parent. For this purpose, the class stores
/// the main window of the application.
class ZQTUTIL_EXPORT SpontaneousDialog
{
public:
    SpontaneousDialog() = delete;

    /// Returns a parent widget for a dialog. The result can be null. Call this function on the GUI thread.
    ///
    /// The candidate is the active modal widget, or the active window if no modal widget is active. The function
    /// returns the candidate, except in two cases. In these cases, it returns the result of GetMainWindow():
    /// - There is no candidate.
    /// - The candidate has the attribute `Qt::WA_DeleteOnClose`. A parent with this attribute would delete the
    ///   dialog when the parent is closed.
    ///
    /// If no main window is set, GetMainWindow() returns the active window, even if the active window has the attribute
    /// `Qt::WA_DeleteOnClose`.
    static QWidget* findParent();

    /// Returns the main window. Returns the active window if no main window is set, or if the main window has been
    /// destroyed. The result can be null. Call this function on the GUI thread.
    static QWidget* GetMainWindow();

    /// Sets the main window to \a window. If \a window is null, no main window is set. The caller keeps ownership and
    /// can destroy the window at any time. Call this function on the GUI thread.
    static void SetMainWindow(QWidget* window);

private:
    static QPointer<QWidget> mainWindow_;
};

} // namespace Util
} // namespace Zelkor

#pragma once

/// \file
/// The parent of dialogs that nobody gave one.

#include <Util/Export.h>

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

namespace Zelkor
{
namespace Util
{

/// Finds a parent for dialogs that come up without one.
class ZQTUTIL_EXPORT SpontaneousDialog
{
public:
    SpontaneousDialog() = delete;

    /// The widget that such a dialog is to have as its parent: the active modal one, else the active window. One that
    /// deletes itself when it is closed is passed over for the main window, so that the dialog does not go with it;
    /// without a main window for the active window, even if that deletes itself. May be null. GUI thread.
    static QWidget* findParent();

    /// The main window, as long as it exists; otherwise the active window, which may be null. GUI thread.
    static QWidget* GetMainWindow();

    /// Makes \a window, which is borrowed and may end at any time, the main window; null: there is none. GUI thread.
    static void SetMainWindow(QWidget* window);

private:
    static QPointer<QWidget> mainWindow_;
};

} // namespace Util
} // namespace Zelkor

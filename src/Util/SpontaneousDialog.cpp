#include <Util/SpontaneousDialog.h>

#include <QtWidgets/QApplication>

namespace Zelkor::Util
{

QPointer<QWidget> SpontaneousDialog::mainWindow_;

QWidget* SpontaneousDialog::findParent()
{
    QWidget* const modal = QApplication::activeModalWidget();
    QWidget* const candidate = modal ? modal : QApplication::activeWindow();
    // A parent with the attribute WA_DeleteOnClose would delete the new dialog when the parent is closed.
    if (candidate && !candidate->testAttribute(Qt::WA_DeleteOnClose)) {
        return candidate;
    }
    return GetMainWindow();
}

QWidget* SpontaneousDialog::GetMainWindow()
{
    return mainWindow_ ? mainWindow_.data() : QApplication::activeWindow();
}

void SpontaneousDialog::SetMainWindow(QWidget* window)
{
    mainWindow_ = window;
}

} // namespace Zelkor::Util

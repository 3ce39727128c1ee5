#include <Util/SpontaneousDialog.h>

#include <QtWidgets/QApplication>

namespace Zelkor::Util
{

QPointer<QWidget> SpontaneousDialog::mainWindow;

QWidget* SpontaneousDialog::findParent()
{
    QWidget* const modal = QApplication::activeModalWidget();
    QWidget* const candidate = modal ? modal : QApplication::activeWindow();
    if (candidate && !candidate->testAttribute(Qt::WA_DeleteOnClose)) {
        return candidate;
    }
    return GetMainWindow();
}

QWidget* SpontaneousDialog::GetMainWindow()
{
    return mainWindow ? mainWindow.data() : QApplication::activeWindow();
}

void SpontaneousDialog::SetMainWindow(QWidget* window)
{
    mainWindow = window;
}

} // namespace Zelkor::Util

#include "CommandLine.h"
#include "HouseStyle.h"
#include "Logging.h"
#include "MainWindow.h"
#include "Screenshots.h"
#include "Style.h"
#include "Terminal.h"
#include "TerminalReport.h"

#include <Util/StdStreams.h>

#include <QtQuick/QQuickWindow>
#include <QtWidgets/QApplication>

using namespace Zelkor::Gallery;

namespace
{

int RunOnTerminal(int& argc, char** argv, CommandLine& commandLine)
{
    QCoreApplication const application(argc, argv);
    commandLine.ExitIfHandled();
    return PrintReport(commandLine.Report().value());
}

int ShowWindow(CommandLine const& commandLine)
{
    // Do not quit when the window is closed, because a page may still be busy. The program quits when MainWindow emits
    // ReadyToQuit().
    QApplication::setQuitOnLastWindowClosed(false);
    MainWindow window;
    QObject::connect(&window, &MainWindow::ReadyToQuit, qApp, &QCoreApplication::quit, Qt::QueuedConnection);
    if (auto const folder = commandLine.Folder()) {
        window.SetFolder(*folder);
    }
    window.show();
    return QApplication::exec();
}

int RunWithWindows(int& argc, char** argv, CommandLine const& commandLine)
{
    auto const screenshots = commandLine.Screenshots();
    if (screenshots) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    // Use software rendering for the QML view of the List model page. It is fast enough, and works without OpenGL.
    QQuickWindow::setSceneGraphBackend(QSGRendererInterface::Software);
    QApplication const application(argc, argv);
    QApplication::setStyle(new Style);
    UsePalette(QApplication::palette());
    return screenshots ? TakeScreenshots(*screenshots, commandLine.Folder().value_or("/usr/share"))
                       : ShowWindow(commandLine);
}

} // namespace

int main(int argc, char* argv[])
{
    QtStdStreamsInitializer const streams;
    UseUtf8OnTerminal();
    StartLogging(argv[0]);
    QCoreApplication::setApplicationName(QStringLiteral("zqtutil-gallery"));
    QCoreApplication::setApplicationVersion(QStringLiteral(GALLERY_VERSION));

    CommandLine commandLine(argc, argv);
    return commandLine.WantsWindow() ? RunWithWindows(argc, argv, commandLine) : RunOnTerminal(argc, argv, commandLine);
}

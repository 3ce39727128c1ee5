#include "Screenshots.h"

#include "HouseStyle.h"
#include "MainWindow.h"
#include "Pages.h"
#include "Palettes.h"
#include "Terminal.h"

#include <QtCore/QDir>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>
#include <QtGui/QPixmap>
#include <QtWidgets/QApplication>

#include <chrono>
#include <cstdlib>

namespace Zelkor::Gallery
{
namespace
{

// The usual size on desktops; without a desktop, Qt's own is larger.
constexpr int FontSize = 10;

constexpr std::chrono::milliseconds RedrawTime(50);

struct Look
{
    char const* name;
    QPalette (*palette)();
};
constexpr Look Looks[] = {{"light", &LightPalette}, {"dark", &DarkPalette}};

struct Text
{
    Q_DECLARE_TR_FUNCTIONS(GalleryScreenshots)
};

void Fill(Page* page)
{
    QEventLoop loop;
    QObject::connect(page, &Page::SampleShown, &loop, &QEventLoop::quit);
    page->ShowSample();
    loop.exec();
}

/// While it lives, drops what the platform without a display says of every window of a fixed size.
class PlatformComplaint
{
public:
    PlatformComplaint() { g_next = qInstallMessageHandler(&Handle); }
    ~PlatformComplaint() { qInstallMessageHandler(g_next); }

    PlatformComplaint(PlatformComplaint const&) = delete;
    PlatformComplaint& operator=(PlatformComplaint const&) = delete;

private:
    static void Handle(QtMsgType type, QMessageLogContext const& context, QString const& message)
    {
        if (message != QLatin1String("This plugin does not support propagateSizeHints()")) {
            g_next(type, context, message);
        }
    }

    static QtMessageHandler g_next;
};

QtMessageHandler PlatformComplaint::g_next = nullptr;

/// Saves \a widget as "\a id-\a look.png".
bool Save(QWidget& widget, QDir const& folder, char const* id, Look const& look)
{
    QString const name = QStringLiteral("%1-%2.png").arg(QLatin1String(id), QLatin1String(look.name));
    QString const file = folder.filePath(name);
    if (!widget.grab().save(file)) {
        PrintError(Text::tr("The picture “%1” cannot be written.").arg(file));
        return false;
    }
    Print(file);
    return true;
}

/// Lets the window take on new colours: QML draws itself from a timer, and only when it is shown.
void Redraw()
{
    QEventLoop loop;
    QTimer::singleShot(RedrawTime, &loop, &QEventLoop::quit);
    loop.exec();
}

bool SaveDialogs(Page& page, QDir const& folder, Look const& look)
{
    bool isSaved = true;
    for (SampleDialog const& sample : page.SampleDialogs()) {
        sample.dialog->show();
        QCoreApplication::processEvents();
        isSaved = Save(*sample.dialog, folder, sample.id, look) && isSaved;
    }
    return isSaved;
}

} // namespace

int TakeScreenshots(QString const& target, ioPath const& folder)
{
    QDir const folderOfPictures(target);
    if (!folderOfPictures.mkpath(QStringLiteral("."))) {
        PrintError(Text::tr("The folder “%1” cannot be made.").arg(target));
        return EXIT_FAILURE;
    }
    QFont font = QApplication::font();
    font.setPointSize(FontSize);
    QApplication::setFont(font);
    PlatformComplaint const noComplaint;
    MainWindow window;
    window.SetFolder(folder);
    window.show();

    for (int index = 0; index < static_cast<int>(Pages().size()); ++index) {
        window.Turn(index);
        Fill(window.PageAt(index));
    }
    bool isSaved = true;
    for (Look const& look : Looks) {
        UsePalette(look.palette());
        int index = 0;
        for (PageInfo const& page : Pages()) {
            window.Turn(index);
            Redraw();
            isSaved = Save(window, folderOfPictures, page.id, look) && isSaved;
            isSaved = SaveDialogs(*window.PageAt(index++), folderOfPictures, look) && isSaved;
        }
    }
    return isSaved ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace Zelkor::Gallery

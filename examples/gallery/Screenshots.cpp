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

// A common font size on desktops, in points. The default font size of the offscreen platform is larger.
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

void FillPage(Page* page)
{
    QEventLoop loop;
    QObject::connect(page, &Page::SampleShown, &loop, &QEventLoop::quit);
    page->ShowSample();
    loop.exec();
}

/// Suppresses a harmless warning during the lifetime of the object. The offscreen platform logs this warning for every
/// window with a fixed size.
class SizeHintWarningFilter
{
public:
    SizeHintWarningFilter() { next_ = qInstallMessageHandler(&Handle); }
    ~SizeHintWarningFilter() { qInstallMessageHandler(next_); }

    SizeHintWarningFilter(SizeHintWarningFilter const&) = delete;
    SizeHintWarningFilter& operator=(SizeHintWarningFilter const&) = delete;

private:
    static void Handle(QtMsgType type, QMessageLogContext const& context, QString const& message)
    {
        if (message != QLatin1String("This plugin does not support propagateSizeHints()")) {
            next_(type, context, message);
        }
    }

    static QtMessageHandler next_;
};

QtMessageHandler SizeHintWarningFilter::next_ = nullptr;

/// Saves a picture of \a widget in \a folder and prints the path of the file. The file name consists of \a id and the
/// name of \a look, which is "light" or "dark". If the file cannot be written, prints an error and returns false.
bool SavePicture(QWidget& widget, QDir const& folder, char const* id, Look const& look)
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

/// Runs the event loop for #RedrawTime, so that the visible page is painted in the new colours. Processing the pending
/// events once is not enough, because a timer triggers the painting of a QML view.
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
        isSaved = SavePicture(*sample.dialog, folder, sample.id, look) && isSaved;
    }
    return isSaved;
}

} // namespace

int TakeScreenshots(QString const& target, ioPath const& folder)
{
    QDir const pictures(target);
    if (!pictures.mkpath(QStringLiteral("."))) {
        PrintError(Text::tr("The folder “%1” cannot be created.").arg(target));
        return EXIT_FAILURE;
    }
    QFont font = QApplication::font();
    font.setPointSize(FontSize);
    QApplication::setFont(font);
    SizeHintWarningFilter const filter;
    MainWindow window;
    window.SetFolder(folder);
    window.show();

    for (int index = 0; index < static_cast<int>(Pages().size()); ++index) {
        window.ShowPage(index);
        FillPage(window.PageAt(index));
    }
    bool isSaved = true;
    for (Look const& look : Looks) {
        UsePalette(look.palette());
        int index = 0;
        for (PageInfo const& page : Pages()) {
            window.ShowPage(index);
            Redraw();
            isSaved = SavePicture(window, pictures, page.id, look) && isSaved;
            isSaved = SaveDialogs(*window.PageAt(index++), pictures, look) && isSaved;
        }
    }
    return isSaved ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace Zelkor::Gallery

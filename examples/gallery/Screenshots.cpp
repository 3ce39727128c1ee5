#include "Screenshots.h"

#include "MainWindow.h"
#include "Pages.h"
#include "Palettes.h"
#include "Terminal.h"

#include <QtCore/QDir>
#include <QtCore/QEventLoop>
#include <QtGui/QPixmap>
#include <QtWidgets/QApplication>

#include <cstdlib>

namespace Zelkor::Gallery
{
namespace
{

// The usual size on desktops; without a desktop, Qt's own is larger.
constexpr int FontSize = 10;

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

bool Save(QPixmap const& picture, QString const& file)
{
    if (!picture.save(file)) {
        PrintError(Text::tr("The picture “%1” cannot be written.").arg(file));
        return false;
    }
    Print(file);
    return true;
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
    MainWindow window;
    window.SetFolder(folder);

    bool isSaved = true;
    int index = 0;
    for (PageInfo const& page : Pages()) {
        window.Turn(index);
        Fill(window.PageAt(index++));
        for (Look const& look : Looks) {
            QApplication::setPalette(look.palette());
            QString const name = QStringLiteral("%1-%2.png").arg(QLatin1String(page.id), QLatin1String(look.name));
            isSaved = Save(window.grab(), folderOfPictures.filePath(name)) && isSaved;
        }
    }
    return isSaved ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace Zelkor::Gallery

#include "Pages.h"

#include "FolderSizesPage.h"
#include "LogPage.h"
#include "PathsPage.h"
#include "TemporaryFolderPage.h"
#include "VersionsAndValidatorsPage.h"

#include <QtCore/QCoreApplication>

namespace Zelkor::Gallery
{
namespace
{

template <class PageType>
Page* Create()
{
    return new PageType;
}

} // namespace

std::vector<PageInfo> const& Pages()
{
    static std::vector<PageInfo> const pages = {
        {"folder-sizes", QT_TRANSLATE_NOOP("GalleryPages", "Folder sizes"), &Create<FolderSizesPage>},
        {"paths", QT_TRANSLATE_NOOP("GalleryPages", "Paths"), &Create<PathsPage>},
        {"temporary-folder", QT_TRANSLATE_NOOP("GalleryPages", "Temporary folder"), &Create<TemporaryFolderPage>},
        {"log", QT_TRANSLATE_NOOP("GalleryPages", "Log"), &Create<LogPage>},
        {"versions-and-validators", QT_TRANSLATE_NOOP("GalleryPages", "Versions and validators"),
         &Create<VersionsAndValidatorsPage>},
    };
    return pages;
}

QString PageTitle(PageInfo const& page)
{
    return QCoreApplication::translate("GalleryPages", page.title);
}

} // namespace Zelkor::Gallery

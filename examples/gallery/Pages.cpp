#include "Pages.h"

#include "AlertsPage.h"
#include "ConnectionsPage.h"
#include "ExclusiveUsePage.h"
#include "FolderSizesPage.h"
#include "FontsPage.h"
#include "HoverAndTimePage.h"
#include "InputDialogPage.h"
#include "ListModelPage.h"
#include "LogPage.h"
#include "PathsPage.h"
#include "PlacementPage.h"
#include "StylePage.h"
#include "TemporaryFolderPage.h"
#include "UndoPage.h"
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
        {"connections", QT_TRANSLATE_NOOP("GalleryPages", "Connections"), &Create<ConnectionsPage>},
        {"exclusive-use", QT_TRANSLATE_NOOP("GalleryPages", "Exclusive use"), &Create<ExclusiveUsePage>},
        {"list-model", QT_TRANSLATE_NOOP("GalleryPages", "List model"), &Create<ListModelPage>},
        {"undo", QT_TRANSLATE_NOOP("GalleryPages", "Undo"), &Create<UndoPage>},
        {"alerts", QT_TRANSLATE_NOOP("GalleryPages", "Alerts"), &Create<AlertsPage>},
        {"input-dialog", QT_TRANSLATE_NOOP("GalleryPages", "Input dialog"), &Create<InputDialogPage>},
        {"style", QT_TRANSLATE_NOOP("GalleryPages", "Style"), &Create<StylePage>},
        {"hover-and-time", QT_TRANSLATE_NOOP("GalleryPages", "Hover and time"), &Create<HoverAndTimePage>},
        {"fonts", QT_TRANSLATE_NOOP("GalleryPages", "Fonts"), &Create<FontsPage>},
        {"placement", QT_TRANSLATE_NOOP("GalleryPages", "Placement"), &Create<PlacementPage>},
    };
    return pages;
}

QString PageTitle(PageInfo const& page)
{
    return QCoreApplication::translate("GalleryPages", page.title);
}

} // namespace Zelkor::Gallery

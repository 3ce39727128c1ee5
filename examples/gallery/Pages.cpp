#include "Pages.h"

#include "FolderSizesPage.h"

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
    };
    return pages;
}

QString PageTitle(PageInfo const& page)
{
    return QCoreApplication::translate("GalleryPages", page.title);
}

} // namespace Zelkor::Gallery

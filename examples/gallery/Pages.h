#pragma once

/// \file
/// The pages of the gallery.

#include "Page.h"

#include <vector>

namespace Zelkor
{
namespace Gallery
{

/// A page of the table: a new page is one line there.
struct PageInfo
{
    /// The name of the page in file names.
    char const* id;
    /// Its title, to be translated in the context "GalleryPages".
    char const* title;
    /// Makes the page, without a parent.
    Page* (*create)();
};

/// All pages, in the order of the navigation list.
std::vector<PageInfo> const& Pages();

/// The title of \a page in the user's language.
QString PageTitle(PageInfo const& page);

} // namespace Gallery
} // namespace Zelkor

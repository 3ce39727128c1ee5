#pragma once

/// \file
/// The list of the gallery's pages.

#include "Page.h"

#include <vector>

namespace Zelkor
{
namespace Gallery
{

/// Describes a page. To add a page, add a line to the table in Pages.cpp.
struct PageInfo
{
    /// The identifier of the page, which is used in the file names of screenshots.
    char const* id;
    /// The untranslated title of the page. Its translation context is "GalleryPages".
    char const* title;
    /// Creates the page without a parent.
    Page* (*create)();
};

/// Returns all pages in the order of the navigation list.
std::vector<PageInfo> const& Pages();

/// Returns the translated title of \a page.
QString PageTitle(PageInfo const& page);

} // namespace Gallery
} // namespace Zelkor

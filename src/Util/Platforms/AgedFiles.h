#pragma once

// Removes old files from folders. Private to the library.

#include <string>

namespace Zelkor
{
namespace Util
{

/// Removes old entries from the folder \a path. An entry is old if it was last modified at \a threshold or earlier.
///
/// An old subfolder is processed in the same way, and is then removed if it is empty. A newer subfolder is skipped with
/// all its contents. Links are never followed. An old link is removed like a file. Entries that cannot be removed are
/// skipped.
///
/// \param path       the path of the folder; the function does nothing if the path is a link
/// \param threshold  a time in milliseconds since 1970-01-01 00:00 UTC; entries that were modified after this time are
///                   kept
void RemoveAgedFiles(std::string const& path, long long threshold);

} // namespace Util
} // namespace Zelkor

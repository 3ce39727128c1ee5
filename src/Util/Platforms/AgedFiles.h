#pragma once

// Removes old files from folders. Private to the library.

#include <string>

namespace Zelkor
{
namespace Util
{

/// Removes the entries of the folder \a path that were last modified at \a threshold or earlier.
///
/// A subfolder that was last modified at \a threshold or earlier is processed in the same way, and removed if it is
/// then empty. Newer subfolders are skipped with all their contents. Links are never followed; an old link is removed
/// like a file. Entries that cannot be removed are skipped.
///
/// \param path       the path of the folder; the function does nothing if the path is a link
/// \param threshold  a time in milliseconds since 1970-01-01 00:00 UTC; entries that were modified after this time are
///                   kept
void RemoveAgedFiles(std::string const& path, long long threshold);

} // namespace Util
} // namespace Zelkor

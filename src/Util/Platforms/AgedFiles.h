#pragma once

// Removes old files from folders. Private to the library.

#include <string>

namespace Zelkor
{
namespace Util
{

/// Removes the entries of the folder \a path that were last modified at \a threshold or earlier.
///
/// Subfolders as old as \a threshold are processed in the same way, and removed if they are then empty. Newer ones are
/// not entered. Links are removed, not followed. Entries that cannot be removed are skipped.
///
/// \param path       the folder; the function does nothing if it is a link
/// \param threshold  the latest modification time to remove, in milliseconds since 1970 (UTC)
void RemoveAgedFiles(std::string const& path, long long threshold);

} // namespace Util
} // namespace Zelkor

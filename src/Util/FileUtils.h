#pragma once

/// \file
/// Chores with files and folders.

#include <Base/IoPath.h>
#include <Util/Export.h>

namespace Zelkor
{
namespace Util
{

/// Removes the file, the link (not its target) or the empty folder at \a path.
///
/// \return whether something was removed; false also when the system refused. Nothing is thrown or logged. Any thread.
ZQTUTIL_EXPORT bool RemoveFile(ioPath path);

/// The size of the file at \a path, or of all files below that folder, in bytes, as the files state it (holes count,
/// the folders' own blocks do not; a file with several names counts under each).
///
/// A link counts with the size of the file it leads to; what a link to a folder leads to is not entered. Whatever has
/// no size to tell contributes nothing and is logged once, at ERROR severity, as "Erorr get size for: " and its path:
/// what is missing or vanishes meanwhile, a dangling link, a link to a folder, a folder that is closed to us (with all
/// that is in it), a pipe, a socket or a device.
///
/// Each entry is looked at once. Neither the depth of the tree nor its paths' length nor the number of files that the
/// process may open limits it. Any thread; nothing is thrown. On a network volume it may take minutes: see
/// AsyncService.
ZQTUTIL_EXPORT unsigned long long GetPathSize(ioPath const& path);

} // namespace Util
} // namespace Zelkor

#pragma once

/// \file
/// Video discs.

#include <Base/IoPath.h>
#include <Util/Export.h>

#include <string>
#include <vector>

namespace Zelkor
{
namespace Util
{

/// The root folders of the mounted volumes that hold a video DVD, which is told by a folder "VIDEO_TS" there. In the
/// order of the system; none when no disc is mounted. Any thread.
ZQTUTIL_EXPORT std::vector<ioPath> MountedDVD();

/// A label for the DVD folder or volume \a path, in UTF-8: its own name, or, for a folder "VIDEO_TS" in whatever case
/// that has nothing but a disc's folders beside it, the name of the folder around it. Any thread.
ZQTUTIL_EXPORT std::string DVDLabel(ioPath const& path);

} // namespace Util
} // namespace Zelkor

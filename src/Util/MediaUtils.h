#pragma once

/// \file
/// Video DVDs: the mounted ones, and their labels. Any thread.

#include <Base/IoPath.h>
#include <Util/Export.h>

#include <string>
#include <vector>

namespace Zelkor
{
namespace Util
{

/// Returns the root folders of the mounted video DVDs. Defined on macOS.
///
/// A volume is a video DVD if its root folder contains a folder "VIDEO_TS". The result has the order in which the
/// system lists the volumes, and is empty if no DVD is mounted.
ZQTUTIL_EXPORT std::vector<ioPath> MountedDVD();

/// Returns a label in UTF-8 for the DVD folder or volume \a path.
///
/// The label is the name of the folder \a path. It is the name of the parent folder instead if both conditions are
/// true:
/// - the name of the folder \a path is "VIDEO_TS" in upper or lower case;
/// - the parent folder contains only "VIDEO_TS", "AUDIO_TS" and "Thumbs.db", in exactly this spelling, and names that
///   begin with a dot.
ZQTUTIL_EXPORT std::string DVDLabel(ioPath const& path);

} // namespace Util
} // namespace Zelkor

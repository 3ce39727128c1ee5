#pragma once

/// \file
/// Functions that find mounted video DVDs and determine their labels. All functions in this file may be called on any
/// thread.

#include <Base/IoPath.h>
#include <Util/Export.h>

#include <string>
#include <vector>

namespace Zelkor
{
namespace Util
{

/// Returns the root folders of the mounted video DVDs. This function is defined only on macOS.
///
/// A volume is a video DVD if its root folder contains a folder "VIDEO_TS". The result is in the order in which the
/// system lists the volumes. The result is empty if no video DVD is mounted.
ZQTUTIL_EXPORT std::vector<ioPath> MountedDVD();

/// Returns a label in UTF-8 for the DVD folder or volume \a path.
///
/// The label is normally the name of the folder \a path. If both of these conditions are true, the label is the name of
/// the parent folder instead:
/// - the name of the folder \a path is "VIDEO_TS", compared case-insensitively;
/// - the name of each file and folder in the parent folder begins with a dot, or is "VIDEO_TS", "AUDIO_TS" or
///   "Thumbs.db", compared case-sensitively.
///
/// If \a path contains a NUL byte, only the text before it is used.
ZQTUTIL_EXPORT std::string DVDLabel(ioPath const& path);

} // namespace Util
} // namespace Zelkor

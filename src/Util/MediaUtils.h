#pragma once

/// \file
/// Finds mounted video DVDs and determines their labels. These functions may be called on any thread.

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
/// - the name of the folder \a path is "VIDEO_TS" in upper or lower case;
/// - the name of each entry of the parent folder is "VIDEO_TS", "AUDIO_TS" or "Thumbs.db", in exactly this spelling, or
///   begins with a dot.
ZQTUTIL_EXPORT std::string DVDLabel(ioPath const& path);

} // namespace Util
} // namespace Zelkor

#include <Util/MediaUtils.h>

#include <Util/Platforms/VideoDisc.h>
#include <Util/StringUtils.h>

namespace Zelkor::Util
{

std::string DVDLabel(ioPath const& path)
{
    return QStringToUtf8(VideoDiscLabel(Utf8ToQString(path.utf8string())));
}

} // namespace Zelkor::Util

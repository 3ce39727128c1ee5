#include <Util/MediaUtils.h>

#include <Util/Platforms/VideoDisc.h>

namespace Zelkor::Util
{

std::vector<ioPath> MountedDVD()
{
    return VideoDiscsIn(QStringLiteral("/Volumes"));
}

} // namespace Zelkor::Util

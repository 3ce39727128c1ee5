#include <Util/MediaUtils.h>

#include <Util/Platforms/posix/VideoDisc.h>

namespace Zelkor::Util
{

std::vector<ioPath> MountedDVD()
{
    return VideoDiscsIn(QStringLiteral("/Volumes"));
}

} // namespace Zelkor::Util

#include <Util/Platforms/posix/FolderStream.h>

#include <Util/Platforms/posix/Descriptor.h>

#include <fcntl.h>

namespace Zelkor::Util
{

FolderStream OpenFolderStream(int parent, char const* name)
{
    Descriptor folder(openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
    FolderStream stream(folder.IsOpen() ? fdopendir(folder.Number()) : nullptr);
    if (stream) {
        folder.Release(); // closedir() closes the descriptor
    }
    return stream;
}

} // namespace Zelkor::Util

#include <Util/FileUtils.h>

#include <Util/TreeSize.h>

#include <glog/logging.h>

namespace Zelkor::Util
{

bool RemoveFile(ioPath path)
{
    try {
        return path.remove();
    } catch (...) {
        return false;
    }
}

unsigned long long GetPathSize(ioPath const& path)
{
    return TreeSize(path.utf8string(),
                    [](std::string const& sizeless) { LOG(ERROR) << "Erorr get size for: " << sizeless; });
}

} // namespace Zelkor::Util

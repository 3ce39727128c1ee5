// Removes entries while FolderWalk traverses a folder tree. FolderWalk accesses entries relative to the file
// descriptors of open folders, not by their full paths. If another user replaces a folder with a link during the
// traversal, the link is not followed. Therefore, removing files is safe in folders where other users can write.
//
// All file names of a folder are stored in one buffer, which is reused for each folder. This avoids a memory allocation
// for each file name.

#include <Util/Platforms/posix/FolderRemoval.h>

#include <Util/Platforms/AgedFiles.h>
#include <Util/Platforms/posix/FolderWalk.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Zelkor::Util
{
namespace
{

/// Returns the modification time in milliseconds since 1970. Very large times are clamped, because the conversion from
/// seconds to milliseconds would overflow.
long long ModificationTime(struct stat const& status)
{
#ifdef __APPLE__
    timespec const& time = status.st_mtimespec;
#else
    timespec const& time = status.st_mtim;
#endif
    constexpr long long maxSeconds = std::numeric_limits<long long>::max() / 1000 - 1;
    long long const seconds = std::clamp<long long>(time.tv_sec, -maxSeconds, maxSeconds);
    return seconds * 1000 + time.tv_nsec / 1000000;
}

class RemovingWalk final : public FolderWalk
{
public:
    RemovingWalk(int parent, std::string const& path, long long threshold)
        : FolderWalk(parent, path, AfterSubfolder::Call)
        , threshold_(threshold)
    {}

    using FolderWalk::Walk;

private:
    // This function reads all names before it removes the first file. On some file systems, readdir() skips entries if
    // files are removed while the folder is being read.
    bool Read(DIR* stream) override
    {
        int const descriptor = dirfd(stream);
        files_.clear();
        while (dirent const* const entry = readdir(stream)) {
            char const* const name = entry->d_name;
            struct stat status;
            if (IsDotEntry(name) || fstatat(descriptor, name, &status, AT_SYMLINK_NOFOLLOW) != 0 ||
                ModificationTime(status) > threshold_) {
                continue;
            }
            if (S_ISDIR(status.st_mode)) {
                QueueSubfolder(name);
            } else {
                files_.insert(files_.end(), name, name + std::strlen(name) + 1);
            }
        }
        for (char const* name = files_.data(); name != files_.data() + files_.size(); name += std::strlen(name) + 1) {
            unlinkat(descriptor, name, 0);
        }
        return true;
    }

    void Unreadable() override {}
    void Lost() override {}
    void Leaving() override {}

    void SubfolderLeft(int parent, char const* name) override { unlinkat(parent, name, AT_REMOVEDIR); }

    long long threshold_;
    std::vector<char> files_;
};

} // namespace

void RemoveAgedFiles(std::string const& path, long long threshold)
{
    if (!path.empty() && path.find('\0') == std::string::npos) {
        RemovingWalk(AT_FDCWD, path, threshold).Walk();
    }
}

void RemoveContents(int parent, std::string const& name)
{
    RemovingWalk(parent, name, std::numeric_limits<long long>::max()).Walk();
}

} // namespace Zelkor::Util

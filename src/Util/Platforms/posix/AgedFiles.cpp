// Removes old files during a FolderWalk. The walk works with open folders, so that removing is safe in folders where
// other users can write: a link that replaces a folder during the walk is not followed. The names of the files of all
// folders share one buffer, so that a file costs no separate allocation.

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

/// Returns the modification time in milliseconds since 1970. Some file systems return seconds that overflow when they
/// are converted to milliseconds; the result is then the limit of the range.
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
    RemovingWalk(std::string const& path, long long threshold)
        : FolderWalk(path, AfterSubfolder::Call)
        , threshold_(threshold)
    {}

    using FolderWalk::Walk;

private:
    // Reads all names before it removes files: some file systems skip entries if others are removed during readdir().
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
        RemovingWalk(path, threshold).Walk();
    }
}

} // namespace Zelkor::Util

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

/// When something was modified, in milliseconds since 1970: some file systems keep times that only seconds can tell,
/// the farthest moment stands for these.
long long ModifiedAt(struct stat const& status)
{
#ifdef __APPLE__
    timespec const& time = status.st_mtimespec;
#else
    timespec const& time = status.st_mtim;
#endif
    constexpr long long farthest = std::numeric_limits<long long>::max() / 1000 - 1;
    long long const seconds = std::clamp<long long>(time.tv_sec, -farthest, farthest);
    return seconds * 1000 + time.tv_nsec / 1000000;
}

class RemovingWalk final : public FolderWalk
{
public:
    RemovingWalk(std::string const& path, long long newest)
        : FolderWalk(path, AfterSubfolder::Call)
        , newest_(newest)
    {}

    using FolderWalk::Walk;

private:
    // The names of the files come first: some file systems pass entries over when others are removed meanwhile.
    bool Read(DIR* stream) override
    {
        int const descriptor = dirfd(stream);
        files_.clear();
        while (dirent const* const entry = readdir(stream)) {
            char const* const name = entry->d_name;
            struct stat status;
            if (IsDotEntry(name) || fstatat(descriptor, name, &status, AT_SYMLINK_NOFOLLOW) != 0 ||
                ModifiedAt(status) > newest_) {
                continue;
            }
            if (S_ISDIR(status.st_mode)) {
                PutBy(name);
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

    long long newest_;
    std::vector<char> files_;
};

} // namespace

void RemoveAgedFiles(std::string const& path, long long newest)
{
    if (!path.empty() && path.find('\0') == std::string::npos) {
        RemovingWalk(path, newest).Walk();
    }
}

} // namespace Zelkor::Util

#include <Util/Platforms/TreeSize.h>

#include <Util/Platforms/posix/FolderWalk.h>

#include <cerrno>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

namespace Zelkor::Util
{
namespace
{

/// Adds the size of the file \a name, or of the file that it links to. One look, through links, answers whether it is
/// there, what it is and how large it is.
bool AddFile(int parent, char const* name, unsigned long long& size)
{
    struct stat status;
    if (fstatat(parent, name, &status, 0) != 0 || !S_ISREG(status.st_mode)) {
        return false;
    }
    size += static_cast<unsigned long long>(status.st_size);
    return true;
}

class SizeWalk final : public FolderWalk
{
public:
    SizeWalk(std::string const& path, SizelessHandler const& onSizeless)
        : FolderWalk(path, AfterSubfolder::Nothing)
        , onSizeless_(onSizeless)
    {}

    unsigned long long Total()
    {
        // The system reads a path up to its first NUL, and would look at another file.
        bool const isWhole = Path().find('\0') == std::string::npos;
        if (isWhole && IsFolder(AT_FDCWD, Path().c_str())) {
            Walk();
        } else if (!isWhole || !AddFile(AT_FDCWD, Path().c_str(), total_)) {
            onSizeless_(Path());
        }
        return total_;
    }

private:
    bool Read(DIR* stream) override
    {
        unsigned long long size = 0;
        int const descriptor = dirfd(stream);
        for (;;) {
            errno = 0;
            dirent const* const entry = readdir(stream);
            if (!entry) {
                break;
            }
            char const* const name = entry->d_name;
            if (IsDotEntry(name)) {
                continue;
            }
            if (entry->d_type == DT_DIR || (entry->d_type == DT_UNKNOWN && IsFolder(descriptor, name))) {
                PutBy(name);
            } else if (!AddFile(descriptor, name, size)) {
                onSizeless_(PathOf(name));
            }
        }
        if (errno != 0) {
            return false;
        }
        sizes_.push_back(size);
        return true;
    }

    void Unreadable() override { onSizeless_(Path()); }

    void Lost() override
    {
        onSizeless_(Path());
        sizes_.back() = 0;
    }

    void Leaving() override
    {
        unsigned long long const size = sizes_.back();
        sizes_.pop_back();
        (sizes_.empty() ? total_ : sizes_.back()) += size;
    }

    SizelessHandler const& onSizeless_;
    std::vector<unsigned long long> sizes_; // of each folder from the start to the current one, as far as known
    unsigned long long total_ = 0;
};

} // namespace

unsigned long long TreeSize(std::string const& path, SizelessHandler const& onSizeless)
{
    return SizeWalk(path, onSizeless).Total();
}

} // namespace Zelkor::Util

// Adds up file sizes while FolderWalk traverses a folder tree. Speed matters, because trees can contain millions of
// files:
//
// - A file needs only one call of fstatat(), which follows links and returns the type and the size of the file.
// - readdir() returns the types of the entries, so folders are recognised without another system call. On file
//   systems that do not provide the type, each entry needs an additional call of fstatat().
// - Files need no memory allocation of their own.
//
// The sum of a folder is added to the sum of the parent folder only when the traversal leaves the folder. If a folder
// becomes inaccessible before the traversal leaves it, the sum of this folder is set to 0, so that its contents are not
// counted.

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

/// Adds the size of the file \a name in the open folder \a parent to \a size. Follows links. Returns false if the file
/// is missing or not a regular file.
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
        : FolderWalk(AT_FDCWD, path, AfterSubfolder::Nothing)
        , onSizeless_(onSizeless)
    {}

    unsigned long long Total()
    {
        // A path that contains a NUL byte is rejected. System calls would truncate it and access a different file.
        bool const isUsable = Path().find('\0') == std::string::npos;
        if (isUsable && IsFolder(AT_FDCWD, Path().c_str())) {
            Walk();
        } else if (!isUsable || !AddFile(AT_FDCWD, Path().c_str(), total_)) {
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
                QueueSubfolder(name);
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
    // One sum in bytes for each folder from the start folder to the current folder.
    std::vector<unsigned long long> sizes_;
    unsigned long long total_ = 0;
};

} // namespace

unsigned long long TreeSize(std::string const& path, SizelessHandler const& onSizeless)
{
    return SizeWalk(path, onSizeless).Total();
}

} // namespace Zelkor::Util

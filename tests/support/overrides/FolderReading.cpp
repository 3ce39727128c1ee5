// Replaces readdir() and fstat(), because a test cannot make the original functions fail, or make readdir() report the
// type DT_UNKNOWN.

#include <support/overrides/FolderReading.h>

#include <support/overrides/NextFunction.h>
#include <support/sandbox/Folders.h>

#include <QtCore/QtGlobal>

#include <atomic>
#include <cerrno>

#include <dirent.h>
#include <sys/stat.h>

namespace Zelkor::Testing
{
namespace
{

struct Faults
{
    std::atomic<bool> hidesTypes{false};
    std::atomic<ino_t> unreadableFolder{0}; // the inode of the folder; 0 means: no folder
    std::atomic<bool> hidesIds{false};
    std::atomic<int> count{0}; // the result of Count() of the current object
};

Faults& CurrentFaults()
{
    static Faults faults;
    return faults;
}

bool IsUnreadable(DIR* stream)
{
    ino_t const unreadable = CurrentFaults().unreadableFolder;
    struct stat status;
    return unreadable != 0 && fstat(dirfd(stream), &status) == 0 && status.st_ino == unreadable;
}

} // namespace

EntriesWithoutTypes::EntriesWithoutTypes()
{
    CurrentFaults().count = 0;
    CurrentFaults().hidesTypes = true;
}

EntriesWithoutTypes::~EntriesWithoutTypes()
{
    CurrentFaults().hidesTypes = false;
}

int EntriesWithoutTypes::Count() const
{
    return CurrentFaults().count;
}

UnreadableFolder::UnreadableFolder(std::string const& path)
{
    struct stat status;
    Check(stat(path.c_str(), &status));
    CurrentFaults().count = 0;
    CurrentFaults().unreadableFolder = status.st_ino;
}

UnreadableFolder::~UnreadableFolder()
{
    CurrentFaults().unreadableFolder = 0;
}

int UnreadableFolder::Count() const
{
    return CurrentFaults().count;
}

UnidentifiableFolders::UnidentifiableFolders()
{
    CurrentFaults().count = 0;
    CurrentFaults().hidesIds = true;
}

UnidentifiableFolders::~UnidentifiableFolders()
{
    CurrentFaults().hidesIds = false;
}

int UnidentifiableFolders::Count() const
{
    return CurrentFaults().count;
}

} // namespace Zelkor::Testing

// The C library's declaration uses reserved identifiers as parameter names. This definition uses other names.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" Q_DECL_EXPORT dirent* readdir(DIR* stream)
{
    using namespace Zelkor::Testing;
    static auto const next = NextFunction<dirent* (*)(DIR*)>("readdir");
    dirent* const entry = next(stream);
    if (entry && CurrentFaults().hidesTypes) {
        ++CurrentFaults().count;
        entry->d_type = DT_UNKNOWN;
    }
    if (!entry && IsUnreadable(stream)) {
        ++CurrentFaults().count;
        errno = EIO;
    }
    return entry;
}

// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" Q_DECL_EXPORT int fstat(int descriptor, struct stat* status) noexcept
{
    using namespace Zelkor::Testing;
    static auto const next = NextFunction<int (*)(int, struct stat*)>("fstat");
    if (CurrentFaults().hidesIds) {
        ++CurrentFaults().count;
        errno = EIO;
        return -1;
    }
    return next(descriptor, status);
}

// Replaces the functions of the C library that access files and folders. A test can then let any call fail, and check
// that the library reports the failure and changes nothing else.
//
// The dynamic linker finds the functions of the program before the functions of the C library. Therefore, Qt and Boost
// also call the functions that are defined below. Calls inside the C library itself are not replaced.
//
// On 64-bit Linux, a function with the suffix "64" is identical to the function without it. Both functions are
// replaced, because some libraries call one of them and some libraries call the other.

#include <support/overrides/FailingCalls.h>

#include <support/overrides/NextFunction.h>
#include <support/overrides/OpenMode.h>

#include <QtCore/QtGlobal>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include <dirent.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace Zelkor::Testing
{
namespace
{

struct Plan
{
    std::atomic<bool> isActive{false};
    std::atomic<int> first{0};
    std::atomic<bool> includesLaterCalls{false};
    std::atomic<int> error{0};
    std::atomic<int> callCount{0};
    std::atomic<int> failedCount{0};
    std::atomic<char const*> firstFailed{""};
};

Plan& CurrentPlan()
{
    static Plan plan;
    return plan;
}

/// Counts a call of \a function. Returns true and sets errno if this call must fail.
bool Fails(char const* function)
{
    Plan& plan = CurrentPlan();
    if (!plan.isActive) {
        return false;
    }
    int const call = ++plan.callCount;
    if (call < plan.first || (call > plan.first && !plan.includesLaterCalls)) {
        return false;
    }
    if (++plan.failedCount == 1) {
        plan.firstFailed = function;
    }
    errno = plan.error;
    return true;
}

} // namespace

FailingCalls::FailingCalls(int first, Extent extent, int error)
{
    Plan& plan = CurrentPlan();
    plan.first = first;
    plan.includesLaterCalls = extent == Extent::AllLaterCalls;
    plan.error = error;
    plan.callCount = 0;
    plan.failedCount = 0;
    plan.firstFailed = "";
    plan.isActive = true;
}

FailingCalls::~FailingCalls()
{
    CurrentPlan().isActive = false;
}

int FailingCalls::FailedCount() const
{
    return CurrentPlan().failedCount;
}

QByteArray FailingCalls::FirstFailed() const
{
    return CurrentPlan().firstFailed.load();
}

} // namespace Zelkor::Testing

using Zelkor::Testing::Fails;
using Zelkor::Testing::NextFunction;
using Zelkor::Testing::OpenMode;

// The parameter names differ from those in the C library's declarations, which are reserved identifiers.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)

extern "C" {

Q_DECL_EXPORT int open(char const* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    mode_t const mode = OpenMode(flags, arguments);
    va_end(arguments);
    return Fails("open") ? -1 : NextFunction<int (*)(char const*, int, ...)>("open")(path, flags, mode);
}

Q_DECL_EXPORT int openat(int folder, char const* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    mode_t const mode = OpenMode(flags, arguments);
    va_end(arguments);
    return Fails("openat") ? -1
                           : NextFunction<int (*)(int, char const*, int, ...)>("openat")(folder, path, flags, mode);
}

Q_DECL_EXPORT int open64(char const* path, int flags, ...) __attribute__((alias("open")));
Q_DECL_EXPORT int openat64(int folder, char const* path, int flags, ...) __attribute__((alias("openat")));

Q_DECL_EXPORT DIR* opendir(char const* path)
{
    return Fails("opendir") ? nullptr : NextFunction<DIR* (*)(char const*)>("opendir")(path);
}

Q_DECL_EXPORT DIR* fdopendir(int folder)
{
    return Fails("fdopendir") ? nullptr : NextFunction<DIR* (*)(int)>("fdopendir")(folder);
}

Q_DECL_EXPORT dirent* readdir(DIR* stream)
{
    return Fails("readdir") ? nullptr : NextFunction<dirent* (*)(DIR*)>("readdir")(stream);
}

Q_DECL_EXPORT dirent64* readdir64(DIR* stream)
{
    return Fails("readdir64") ? nullptr : NextFunction<dirent64* (*)(DIR*)>("readdir64")(stream);
}

Q_DECL_EXPORT int stat(char const* path, struct stat* status) noexcept
{
    return Fails("stat") ? -1 : NextFunction<int (*)(char const*, struct stat*)>("stat")(path, status);
}

Q_DECL_EXPORT int stat64(char const* path, struct stat64* status) noexcept
{
    return Fails("stat64") ? -1 : NextFunction<int (*)(char const*, struct stat64*)>("stat64")(path, status);
}

Q_DECL_EXPORT int lstat(char const* path, struct stat* status) noexcept
{
    return Fails("lstat") ? -1 : NextFunction<int (*)(char const*, struct stat*)>("lstat")(path, status);
}

Q_DECL_EXPORT int lstat64(char const* path, struct stat64* status) noexcept
{
    return Fails("lstat64") ? -1 : NextFunction<int (*)(char const*, struct stat64*)>("lstat64")(path, status);
}

Q_DECL_EXPORT int fstat(int file, struct stat* status) noexcept
{
    return Fails("fstat") ? -1 : NextFunction<int (*)(int, struct stat*)>("fstat")(file, status);
}

Q_DECL_EXPORT int fstat64(int file, struct stat64* status) noexcept
{
    return Fails("fstat64") ? -1 : NextFunction<int (*)(int, struct stat64*)>("fstat64")(file, status);
}

Q_DECL_EXPORT int fstatat(int folder, char const* path, struct stat* status, int flags) noexcept
{
    using Function = int (*)(int, char const*, struct stat*, int);
    return Fails("fstatat") ? -1 : NextFunction<Function>("fstatat")(folder, path, status, flags);
}

Q_DECL_EXPORT int fstatat64(int folder, char const* path, struct stat64* status, int flags) noexcept
{
    using Function = int (*)(int, char const*, struct stat64*, int);
    return Fails("fstatat64") ? -1 : NextFunction<Function>("fstatat64")(folder, path, status, flags);
}

Q_DECL_EXPORT int access(char const* path, int mode) noexcept
{
    return Fails("access") ? -1 : NextFunction<int (*)(char const*, int)>("access")(path, mode);
}

Q_DECL_EXPORT int faccessat(int folder, char const* path, int mode, int flags) noexcept
{
    using Function = int (*)(int, char const*, int, int);
    return Fails("faccessat") ? -1 : NextFunction<Function>("faccessat")(folder, path, mode, flags);
}

Q_DECL_EXPORT ssize_t readlink(char const* path, char* target, size_t size) noexcept
{
    return Fails("readlink") ? -1
                             : NextFunction<ssize_t (*)(char const*, char*, size_t)>("readlink")(path, target, size);
}

Q_DECL_EXPORT int statx(int folder, char const* path, int flags, unsigned int mask, struct statx* status) noexcept
{
    using Function = int (*)(int, char const*, int, unsigned int, struct statx*);
    return Fails("statx") ? -1 : NextFunction<Function>("statx")(folder, path, flags, mask, status);
}

Q_DECL_EXPORT int statvfs(char const* path, struct statvfs* volume) noexcept
{
    return Fails("statvfs") ? -1 : NextFunction<int (*)(char const*, struct statvfs*)>("statvfs")(path, volume);
}

Q_DECL_EXPORT int statvfs64(char const* path, struct statvfs64* volume) noexcept
{
    return Fails("statvfs64") ? -1 : NextFunction<int (*)(char const*, struct statvfs64*)>("statvfs64")(path, volume);
}

Q_DECL_EXPORT int mkdir(char const* path, mode_t mode) noexcept
{
    return Fails("mkdir") ? -1 : NextFunction<int (*)(char const*, mode_t)>("mkdir")(path, mode);
}

Q_DECL_EXPORT int mkdirat(int folder, char const* path, mode_t mode) noexcept
{
    return Fails("mkdirat") ? -1 : NextFunction<int (*)(int, char const*, mode_t)>("mkdirat")(folder, path, mode);
}

Q_DECL_EXPORT int unlink(char const* path) noexcept
{
    return Fails("unlink") ? -1 : NextFunction<int (*)(char const*)>("unlink")(path);
}

Q_DECL_EXPORT int unlinkat(int folder, char const* path, int flags) noexcept
{
    return Fails("unlinkat") ? -1 : NextFunction<int (*)(int, char const*, int)>("unlinkat")(folder, path, flags);
}

Q_DECL_EXPORT int rmdir(char const* path) noexcept
{
    return Fails("rmdir") ? -1 : NextFunction<int (*)(char const*)>("rmdir")(path);
}

Q_DECL_EXPORT int remove(char const* path) noexcept
{
    return Fails("remove") ? -1 : NextFunction<int (*)(char const*)>("remove")(path);
}

Q_DECL_EXPORT int chmod(char const* path, mode_t mode) noexcept
{
    return Fails("chmod") ? -1 : NextFunction<int (*)(char const*, mode_t)>("chmod")(path, mode);
}

Q_DECL_EXPORT int fchmod(int file, mode_t mode) noexcept
{
    return Fails("fchmod") ? -1 : NextFunction<int (*)(int, mode_t)>("fchmod")(file, mode);
}

Q_DECL_EXPORT int fchmodat(int folder, char const* path, mode_t mode, int flags) noexcept
{
    using Function = int (*)(int, char const*, mode_t, int);
    return Fails("fchmodat") ? -1 : NextFunction<Function>("fchmodat")(folder, path, mode, flags);
}

Q_DECL_EXPORT int rename(char const* from, char const* to) noexcept
{
    return Fails("rename") ? -1 : NextFunction<int (*)(char const*, char const*)>("rename")(from, to);
}

Q_DECL_EXPORT char* getcwd(char* path, size_t size) noexcept
{
    return Fails("getcwd") ? nullptr : NextFunction<char* (*)(char*, size_t)>("getcwd")(path, size);
}

Q_DECL_EXPORT char* realpath(char const* path, char* resolved) noexcept
{
    return Fails("realpath") ? nullptr : NextFunction<char* (*)(char const*, char*)>("realpath")(path, resolved);
}

} // extern "C"

// NOLINTEND(readability-inconsistent-declaration-parameter-name)

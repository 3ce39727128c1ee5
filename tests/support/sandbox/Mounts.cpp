#include <support/sandbox/Mounts.h>

#include <support/sandbox/Folders.h>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace Zelkor::Testing
{
namespace
{

void WriteToExistingFile(char const* path, std::string const& text)
{
    Descriptor const file(open(path, O_WRONLY | O_CLOEXEC));
    Check(static_cast<int>(write(file, text.data(), text.size())));
}

/// Moves this process into a new mount namespace, so that later mounts are visible only to this process.
void EnterMountNamespace()
{
    std::string const userMap = "0 " + std::to_string(geteuid()) + " 1";
    std::string const groupMap = "0 " + std::to_string(getegid()) + " 1";
    if (unshare(CLONE_NEWNS) != 0) {
        // Some containers allow a new mount namespace only together with a new user namespace.
        Check(unshare(CLONE_NEWUSER | CLONE_NEWNS));
        WriteToExistingFile("/proc/self/setgroups", "deny");
        WriteToExistingFile("/proc/self/uid_map", userMap);
        WriteToExistingFile("/proc/self/gid_map", groupMap);
    }
    Check(mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr));
}

} // namespace

void MountForThisProcess(std::string const& path, char const* options)
{
    EnterMountNamespace();
    Check(mount("none", path.c_str(), "tmpfs", 0, options));
}

} // namespace Zelkor::Testing

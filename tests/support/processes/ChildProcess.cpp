#include <support/processes/ChildProcess.h>

#include <support/sandbox/Folders.h>

#include <QtCore/QFile>

#include <stdexcept>

#include <fcntl.h>
#include <grp.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Zelkor::Testing
{
namespace
{

void Tell(char const* path, QByteArray const& text)
{
    Descriptor const file(open(path, O_WRONLY | O_CLOEXEC));
    Check(static_cast<int>(write(file, text.constData(), static_cast<std::size_t>(text.size()))));
}

/// From now on what is mounted is seen by this process alone. In a container that takes a user namespace.
void EnterOwnMounts()
{
    QByteArray const user = "0 " + QByteArray::number(geteuid()) + " 1";
    QByteArray const group = "0 " + QByteArray::number(getegid()) + " 1";
    if (unshare(CLONE_NEWNS) != 0) {
        Check(unshare(CLONE_NEWUSER | CLONE_NEWNS));
        Tell("/proc/self/setgroups", "deny");
        Tell("/proc/self/uid_map", user);
        Tell("/proc/self/gid_map", group);
    }
    Check(mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr));
}

} // namespace

QByteArray RunInFork(std::function<void()> const& prepare, std::function<QByteArray()> const& work)
{
    int ends[2];
    Check(pipe(ends));
    pid_t const child = Check(fork());
    if (child == 0) {
        close(ends[0]);
        alarm(60);
        prepare();
        QByteArray const result = work();
        _exit(write(ends[1], result.constData(), static_cast<std::size_t>(result.size())) == result.size() ? 0 : 1);
    }
    close(ends[1]);
    QFile input;
    input.open(ends[0], QIODevice::ReadOnly, QFileDevice::AutoCloseHandle);
    QByteArray result = input.readAll();
    int status = 0;
    if (Check(waitpid(child, &status, 0)) != child || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        throw std::runtime_error("The child process failed");
    }
    return result;
}

QByteArray RunAs(Identity const& who, std::function<QByteArray()> const& work)
{
    auto const become = [&] {
        Check(setgroups(who.groups.size(), who.groups.data()));
        Check(setresgid(who.group, who.effectiveGroup, who.effectiveGroup));
        Check(setresuid(who.user, who.effectiveUser, who.effectiveUser));
    };
    return RunInFork(become, work);
}

QByteArray RunWithMount(std::string const& path, char const* options, std::function<QByteArray()> const& work)
{
    auto const mountIt = [&] {
        EnterOwnMounts();
        Check(mount("none", path.c_str(), "tmpfs", 0, options));
    };
    return RunInFork(mountIt, work);
}

} // namespace Zelkor::Testing

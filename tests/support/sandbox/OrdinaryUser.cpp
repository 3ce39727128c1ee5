#include <support/sandbox/OrdinaryUser.h>

#include <QtCore/QFile>

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Zelkor::Testing
{
namespace
{

[[noreturn]] void RunChild(int output, std::function<QByteArray()> const& work)
{
    QFile file;
    bool const done =
        BecomeOrdinaryUser() && file.open(output, QIODevice::WriteOnly) && file.write(work()) >= 0 && file.flush();
    _exit(done ? 0 : 1);
}

} // namespace

bool BecomeOrdinaryUser()
{
    return geteuid() != 0 || (setgroups(0, nullptr) == 0 && setgid(Nobody) == 0 && setuid(Nobody) == 0);
}

QByteArray RunAsOrdinaryUser(std::function<QByteArray()> const& work)
{
    int ends[2];
    if (pipe(ends) != 0) {
        qFatal("No pipe");
    }
    pid_t const child = fork();
    if (child == 0) {
        close(ends[0]);
        RunChild(ends[1], work);
    }
    close(ends[1]);
    QFile input;
    input.open(ends[0], QIODevice::ReadOnly, QFileDevice::AutoCloseHandle);
    QByteArray result = input.readAll();
    int status = 0;
    if (waitpid(child, &status, 0) != child || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        qFatal("The child process of an ordinary user failed");
    }
    return result;
}

} // namespace Zelkor::Testing

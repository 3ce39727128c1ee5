#include <support/processes/ChildProcess.h>

#include <support/Timeouts.h>
#include <support/sandbox/Folders.h>

#include <QtCore/QRandomGenerator>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Zelkor::Testing
{
namespace
{

void WriteAll(int descriptor, char const* data, std::size_t size)
{
    while (size > 0) {
        auto const written = static_cast<std::size_t>(Check(static_cast<int>(write(descriptor, data, size))));
        data += written;
        size -= written;
    }
}

void ReadAll(int descriptor, char* data, std::size_t size)
{
    while (size > 0) {
        auto const count = static_cast<std::size_t>(Check(static_cast<int>(read(descriptor, data, size))));
        if (count == 0) {
            throw std::runtime_error("The other process has exited");
        }
        data += count;
        size -= count;
    }
}

/// Calls \a work. Returns the exit status for the child process: 0, or 1 if \a work throws an exception.
int Run(std::function<void(ChildProcess::Parent const&)> const& work, ChildProcess::Parent const& parent)
{
    try {
        work(parent);
        return 0;
    } catch (std::exception const& error) {
        std::fprintf(stderr, "Exception in the child process: %s\n", error.what());
        return 1;
    }
}

} // namespace

ChildProcess::Parent::Parent(int input, int output)
    : input_(input)
    , output_(output)
{}

void ChildProcess::Parent::WaitForContinue() const
{
    char byte = 0;
    ReadAll(input_, &byte, 1);
}

void ChildProcess::Parent::SendMessage(QByteArray const& message) const
{
    int const size = message.size();
    WriteAll(output_, reinterpret_cast<char const*>(&size), sizeof size);
    WriteAll(output_, message.constData(), static_cast<std::size_t>(size));
}

ChildProcess::ChildProcess(std::function<void(Parent const&)> const& work)
{
    int toChild[2];
    int toParent[2];
    Check(pipe2(toChild, O_CLOEXEC));
    Check(pipe2(toParent, O_CLOEXEC));
    process_ = Check(fork());
    if (process_ == 0) {
        close(toChild[1]);
        close(toParent[0]);
        alarm(TimeoutMs / 1000);
        // Unlike exit(), _exit() runs no exit handlers and no static destructors. Only the parent process may run them.
        _exit(Run(work, Parent(toChild[0], toParent[1])));
    }
    close(toChild[0]);
    close(toParent[1]);
    // Each child process inherits a copy of the state of Qt's random generator. Advance the state, so that the next
    // child does not choose the same random names for temporary folders as this child.
    QRandomGenerator::global()->discard(1000);
    input_ = toParent[0];
    output_ = toChild[1];
}

ChildProcess::~ChildProcess()
{
    Kill();
    close(input_);
    close(output_);
}

void ChildProcess::Continue()
{
    WriteAll(output_, "c", 1);
}

void ChildProcess::Finish()
{
    int status = 0;
    pid_t const process = std::exchange(process_, -1);
    if (Check(waitpid(process, &status, 0)) != process || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        throw std::runtime_error("The child process failed");
    }
}

void ChildProcess::Kill()
{
    if (process_ > 0) {
        kill(process_, SIGKILL);
        waitpid(std::exchange(process_, -1), nullptr, 0);
    }
}

QByteArray ChildProcess::ReceiveMessage()
{
    int size = 0;
    ReadAll(input_, reinterpret_cast<char*>(&size), sizeof size);
    QByteArray message(size, Qt::Uninitialized);
    ReadAll(input_, message.data(), static_cast<std::size_t>(size));
    return message;
}

} // namespace Zelkor::Testing

#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QDataStream>

#include <functional>
#include <string>
#include <type_traits>

#include <sys/types.h>

namespace Zelkor::Testing
{

/// Runs a function in a forked child process. The child process can exchange messages with this process.
///
/// The child process is a copy of this process: its QCoreApplication exists, and the static variables of the library
/// have the same values as in this process. A message is a value that QDataStream can write and read.
class ChildProcess
{
public:
    /// The child process uses an object of this class to communicate with its parent process.
    class Parent
    {
    public:
        Parent(int input, int output);

        template <class Value>
        void Send(Value const& value) const
        {
            QByteArray message;
            QDataStream stream(&message, QIODevice::WriteOnly);
            stream << value;
            SendMessage(message);
        }

        /// Blocks until the parent calls Continue().
        void WaitForContinue() const;

    private:
        void SendMessage(QByteArray const& message) const;

        int input_;
        int output_;
    };

    /// Starts the child process, which calls \a work. The child exits with status 0 when \a work returns, and with
    /// status 1 if \a work throws an exception. If the child runs longer than TimeoutMs, a signal terminates it.
    explicit ChildProcess(std::function<void(Parent const&)> const& work);

    /// Kills the child if it is still running.
    ~ChildProcess();
    ChildProcess(ChildProcess const&) = delete;
    ChildProcess& operator=(ChildProcess const&) = delete;

    /// Blocks until the child sends a value, and returns the value. Throws std::runtime_error if the child exits
    /// without sending a value.
    template <class Value>
    Value Receive()
    {
        QByteArray const message = ReceiveMessage();
        QDataStream stream(message);
        Value value{};
        stream >> value;
        return value;
    }

    /// Makes WaitForContinue() return in the child. If the child has not called WaitForContinue() yet, its next call of
    /// WaitForContinue() returns at once. Each call of Continue() affects only one call of WaitForContinue().
    void Continue();

    /// Blocks until the child exits. Throws std::runtime_error if the exit status of the child is not 0.
    void Finish();

    void Kill();

private:
    QByteArray ReceiveMessage();

    pid_t process_ = -1;
    int input_ = -1;
    int output_ = -1;
};

/// Runs \a work in a forked child process and returns the result of \a work. Throws std::runtime_error if \a work
/// throws an exception or the child crashes.
template <class Work>
auto RunInChild(Work const& work)
{
    using Result = decltype(work());
    if constexpr (std::is_void_v<Result>) {
        ChildProcess child([&](ChildProcess::Parent const&) { work(); });
        child.Finish();
    } else {
        ChildProcess child([&](ChildProcess::Parent const& parent) { parent.Send(work()); });
        Result result = child.Receive<Result>();
        child.Finish();
        return result;
    }
}

} // namespace Zelkor::Testing

// Measures ObjectsConnector: registers emitters and receivers under one name, and unregisters them. The registrations
// connect every emitter to every receiver.
//
// For comparison, the benchmark also measures handwritten code that creates and removes the same connections with
// QObject::connect() and QObject::disconnect().

#include "Support.h"

#include <Util/ObjectsConnector.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QObject>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace Zelkor::Benchmarks
{
namespace
{

class Emitter : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void changed(int);
};

class Receiver : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void setValue(int /*value*/) {}
};

struct ConnectorRunner
{
    static void Run(std::vector<Emitter>& emitters, std::vector<Receiver>& receivers)
    {
        using Util::ObjectsConnector;
        // QML passes a new string in every call. Create a new string here too: sharing one string would make the calls
        // faster than in an application.
        auto const id = [] { return QString::fromLatin1("volume"); };
        auto const signal = [] { return QString::fromLatin1("changed(int)"); };
        auto const slot = [] { return QString::fromLatin1("setValue(int)"); };
        for (Emitter& emitter : emitters) {
            ObjectsConnector::registerEmitter(id(), &emitter, signal());
        }
        for (Receiver& receiver : receivers) {
            ObjectsConnector::registerReceiver(id(), &receiver, slot());
        }
        for (Receiver& receiver : receivers) {
            ObjectsConnector::unregisterReceiver(id(), &receiver, slot());
        }
        for (Emitter& emitter : emitters) {
            ObjectsConnector::unregisterEmitter(id(), &emitter, signal());
        }
    }
};

struct ByHandRunner
{
    static void Run(std::vector<Emitter>& emitters, std::vector<Receiver>& receivers)
    {
        auto const type = static_cast<Qt::ConnectionType>(Qt::AutoConnection | Qt::UniqueConnection);
        for (Receiver& receiver : receivers) {
            for (Emitter& emitter : emitters) {
                QObject::connect(&emitter, SIGNAL(changed(int)), &receiver, SLOT(setValue(int)), type);
            }
        }
        for (Receiver& receiver : receivers) {
            for (Emitter& emitter : emitters) {
                QObject::disconnect(&emitter, SIGNAL(changed(int)), &receiver, SLOT(setValue(int)));
            }
        }
    }
};

/// Runs \a work in a child process. Returns the processor time of \a work in seconds.
///
/// The result depends on the heap addresses of the connections: it can vary by a factor of up to four. Every child
/// process starts with the same heap, so the results are comparable.
template <class Work>
double SecondsInChild(Work const& work)
{
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    pid_t const child = fork();
    if (child == 0) {
        double const seconds = ProcessorSeconds(work);
        _exit(write(ends[1], &seconds, sizeof(seconds)) == sizeof(seconds) ? 0 : 1);
    }
    close(ends[1]);
    double seconds = 0;
    bool const received = child > 0 && read(ends[0], &seconds, sizeof(seconds)) == sizeof(seconds);
    close(ends[0]);
    if (child > 0) {
        waitpid(child, nullptr, 0);
    }
    if (!received) {
        throw std::runtime_error("The child process failed");
    }
    return seconds;
}

template <class Runner, int Count>
void ConnectAndDisconnect(benchmark::State& state)
{
    for (auto _ : state) {
        std::vector<Emitter> emitters(Count);
        std::vector<Receiver> receivers(Count);
        state.SetIterationTime(SecondsInChild([&] { Runner::Run(emitters, receivers); }));
    }
}

template <int Count>
void Register()
{
    std::string const job = "Connect" + std::to_string(Count) + "/";
    for (auto* const registered :
         {benchmark::RegisterBenchmark((job + "ObjectsConnector").c_str(),
                                       ConnectAndDisconnect<ConnectorRunner, Count>),
          benchmark::RegisterBenchmark((job + "ConnectByHand").c_str(), ConnectAndDisconnect<ByHandRunner, Count>)}) {
        registered->Unit(benchmark::kMillisecond)->UseManualTime();
    }
}

} // namespace
} // namespace Zelkor::Benchmarks

int main(int argc, char** argv)
{
    QCoreApplication const application(argc, argv);
    Zelkor::Benchmarks::Register<100>();
    Zelkor::Benchmarks::Register<1000>();
    return Zelkor::Benchmarks::RunBenchmarks(argc, argv);
}

#include "ConnectorBenchmark.moc"

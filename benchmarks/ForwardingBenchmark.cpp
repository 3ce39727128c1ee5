// Measures FunctorExecutionForwarder, which calls functors on another thread. The benchmark measures the time to post
// functors, the time to call posted functors, and the time of round trips between two threads.
//
// For comparison, the benchmark measures four alternatives:
// - QCoreApplication::postEvent() with an event that contains the functor. Its time is the lower bound.
// - QMetaObject::invokeMethod() and QTimer::singleShot().
// - LeanForwarder, the smallest class that passes a std::function through a queued signal. FunctorExecutionForwarder
//   uses a queued signal too.

#include "LeanForwarder.h"
#include "Support.h"

#include <Util/FunctorExecutionForwarder.h>

#include <QtCore/QTimer>

#include <array>
#include <functional>
#include <string>
#include <thread>
#include <utility>

namespace Zelkor::Benchmarks
{

namespace
{

constexpr int FunctorCount = 100000;
constexpr int RoundTripCount = 1000;

template <class Forwarder>
class Forwarding
{
public:
    template <class Functor>
    void Post(Functor const& functor)
    {
        forwarder_.Forward(functor);
    }

    void MoveTo(QThread* thread) { forwarder_.moveToThread(thread); }

private:
    Forwarder forwarder_;
};

class InvokedMethods
{
public:
    template <class Functor>
    void Post(Functor const& functor)
    {
        QMetaObject::invokeMethod(&receiver_, functor, Qt::QueuedConnection);
    }

    void MoveTo(QThread* thread) { receiver_.moveToThread(thread); }

private:
    QObject receiver_;
};

class SingleShots
{
public:
    template <class Functor>
    void Post(Functor const& functor)
    {
        QTimer::singleShot(0, &receiver_, functor);
    }

    void MoveTo(QThread* thread) { receiver_.moveToThread(thread); }

private:
    QObject receiver_;
};

struct SmallFunctor
{
    Countdown* calls;
    void operator()() const { calls->Step(); }
};

struct BigFunctor
{
    Countdown* calls;
    std::array<char, 56> capture{};
    void operator()() const { calls->Step(); }
};

/// A functor that counts its copies. Moves are not counted.
class CountingFunctor
{
public:
    explicit CountingFunctor(int* copies)
        : copies_(copies)
    {}
    CountingFunctor(CountingFunctor const& other)
        : copies_(other.copies_)
    {
        ++*copies_;
    }
    CountingFunctor(CountingFunctor&&) = default;
    CountingFunctor& operator=(CountingFunctor const&) = delete;
    CountingFunctor& operator=(CountingFunctor&&) = delete;
    ~CountingFunctor() = default;

    void operator()() const {}

private:
    int* copies_;
};

/// Posts #FunctorCount functors to \a implementation from a new thread. Returns the processor time of the new thread in
/// seconds.
template <class Functor, class Implementation>
double PostFromOtherThread(Implementation& implementation, Countdown* calls)
{
    double seconds = 0;
    auto const post = [&] {
        for (int i = 0; i < FunctorCount; ++i) {
            implementation.Post(Functor{calls});
        }
    };
    std::thread([&] { seconds = ProcessorSeconds(post); }).join();
    return seconds;
}

template <class Implementation, class Functor>
void Post(benchmark::State& state)
{
    Implementation implementation;
    for (auto _ : state) {
        Countdown calls(FunctorCount);
        state.SetIterationTime(PostFromOtherThread<Functor>(implementation, &calls));
        calls.Wait();
    }
}

template <class Implementation>
void PostSmall(benchmark::State& state)
{
    Post<Implementation, SmallFunctor>(state);
}

template <class Implementation>
void PostBig(benchmark::State& state)
{
    Post<Implementation, BigFunctor>(state);
}

template <class Implementation>
void Drain(benchmark::State& state)
{
    Implementation implementation;
    for (auto _ : state) {
        Countdown calls(FunctorCount);
        PostFromOtherThread<SmallFunctor>(implementation, &calls);
        state.SetIterationTime(ProcessorSeconds([&] { calls.Wait(); }));
    }
}

/// Sends functors back and forth between the calling thread and a second thread.
template <class Implementation>
class RoundTrips
{
public:
    RoundTrips() { remote_.MoveTo(&thread_); }

    /// Makes #RoundTripCount round trips, one after another.
    void Run()
    {
        Countdown roundTrips(RoundTripCount);
        Send(&roundTrips);
        roundTrips.Wait();
    }

private:
    void Send(Countdown* roundTrips)
    {
        remote_.Post([this, roundTrips] { local_.Post([this, roundTrips] { OnReply(roundTrips); }); });
    }

    void OnReply(Countdown* roundTrips)
    {
        roundTrips->Step();
        if (roundTrips->Remaining() > 0) {
            Send(roundTrips);
        }
    }

    Implementation local_;
    Implementation remote_;
    EventThread thread_; // declared last, so that the thread stops before the objects that it uses are destroyed
};

template <class Implementation>
void PingPong(benchmark::State& state)
{
    PinToOneCore const pin;
    RoundTrips<Implementation> roundTrips;
    for (auto _ : state) {
        roundTrips.Run();
    }
}

// Measures no time. Counts the copies of functors and reports three counters:
// - "kept": the number of copies when Forward() is called with a variable.
// - "handed_over": the number of copies when Forward() is called with a temporary.
// - "called": the number of copies when the event loop calls the two functors.
template <class Forwarder>
void Copies(benchmark::State& state)
{
    int copies = 0;
    std::function<void()> functor = CountingFunctor(&copies);
    Forwarder forwarder;
    for (auto _ : state) {
        copies = 0;
        forwarder.Forward(functor);
        state.counters["kept"] = std::exchange(copies, 0);
        forwarder.Forward(std::function<void()>(CountingFunctor(&copies)));
        state.counters["handed_over"] = std::exchange(copies, 0);
        QCoreApplication::processEvents();
        state.counters["called"] = copies;
    }
}

template <class Implementation>
void Register(std::string const& name)
{
    auto const inMilliseconds = [&name](std::string const& job, void (*measure)(benchmark::State&)) {
        return benchmark::RegisterBenchmark((job + "/" + name).c_str(), measure)->Unit(benchmark::kMillisecond);
    };
    inMilliseconds("PostSmall", PostSmall<Implementation>)->UseManualTime();
    inMilliseconds("PostBig", PostBig<Implementation>)->UseManualTime();
    inMilliseconds("Drain", Drain<Implementation>)->UseManualTime();
    inMilliseconds("PingPong", PingPong<Implementation>)->UseRealTime();
}

} // namespace

void RegisterAll()
{
    Register<Forwarding<Util::FunctorExecutionForwarder>>("FunctorExecutionForwarder");
    Register<PostedEvents>("PostedEvent");
    Register<InvokedMethods>("InvokeMethod");
    Register<SingleShots>("SingleShot");
    Register<Forwarding<LeanForwarder>>("Lean");
    benchmark::RegisterBenchmark("Copies/FunctorExecutionForwarder", Copies<Util::FunctorExecutionForwarder>);
    benchmark::RegisterBenchmark("Copies/Lean", Copies<LeanForwarder>);
}

} // namespace Zelkor::Benchmarks

int main(int argc, char** argv)
{
    QCoreApplication const application(argc, argv);
    Zelkor::Benchmarks::RegisterAll();
    return Zelkor::Benchmarks::RunBenchmarks(argc, argv);
}

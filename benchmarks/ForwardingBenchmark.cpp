// Functors for another object's thread: what posting, calling and a round trip cost.
//
// The floor is a bare posted event with the functor inside. The peers are what Qt itself offers. The lean form is the
// least that a functor needs to travel as a std::function in a queued signal, which is how FunctorExecutionForwarder
// promises to carry it.

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

/// Counts how often it is copied; a move is no copy.
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

/// Posts functors from another thread, and returns what that took there in seconds.
template <class Functor, class Way>
double PostFromOtherThread(Way& way, Countdown* calls)
{
    double seconds = 0;
    auto const post = [&] {
        for (int i = 0; i < FunctorCount; ++i) {
            way.Post(Functor{calls});
        }
    };
    std::thread([&] { seconds = ProcessorSeconds(post); }).join();
    return seconds;
}

template <class Way, class Functor>
void Post(benchmark::State& state)
{
    Way way;
    for (auto _ : state) {
        Countdown calls(FunctorCount);
        state.SetIterationTime(PostFromOtherThread<Functor>(way, &calls));
        calls.Wait();
    }
}

template <class Way>
void PostSmall(benchmark::State& state)
{
    Post<Way, SmallFunctor>(state);
}

template <class Way>
void PostBig(benchmark::State& state)
{
    Post<Way, BigFunctor>(state);
}

template <class Way>
void Drain(benchmark::State& state)
{
    Way way;
    for (auto _ : state) {
        Countdown calls(FunctorCount);
        PostFromOtherThread<SmallFunctor>(way, &calls);
        state.SetIterationTime(ProcessorSeconds([&] { calls.Wait(); }));
    }
}

/// Two threads that call each other.
template <class Way>
class Rally
{
public:
    Rally() { there_.MoveTo(&thread_); }

    void Play()
    {
        Countdown roundTrips(RoundTripCount);
        Serve(&roundTrips);
        roundTrips.Wait();
    }

private:
    void Serve(Countdown* roundTrips)
    {
        there_.Post([this, roundTrips] { here_.Post([this, roundTrips] { Return(roundTrips); }); });
    }

    void Return(Countdown* roundTrips)
    {
        roundTrips->Step();
        if (roundTrips->Left() > 0) {
            Serve(roundTrips);
        }
    }

    Way here_;
    Way there_;
    EventThread thread_; // ends before what it serves
};

template <class Way>
void PingPong(benchmark::State& state)
{
    OneCore const core;
    Rally<Way> rally;
    for (auto _ : state) {
        rally.Play();
    }
}

// Copies of a functor on its way, as counters: in by value and into the queue, into the queue alone when the caller
// hands it over, and while it is called.
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

template <class Way>
void Register(std::string const& way)
{
    auto const inMilliseconds = [&way](std::string const& job, void (*measure)(benchmark::State&)) {
        return benchmark::RegisterBenchmark((job + "/" + way).c_str(), measure)->Unit(benchmark::kMillisecond);
    };
    inMilliseconds("PostSmall", PostSmall<Way>)->UseManualTime();
    inMilliseconds("PostBig", PostBig<Way>)->UseManualTime();
    inMilliseconds("Drain", Drain<Way>)->UseManualTime();
    inMilliseconds("PingPong", PingPong<Way>)->UseRealTime();
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

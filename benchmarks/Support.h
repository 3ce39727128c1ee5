#pragma once

/// \file
/// Helpers shared by the benchmarks.

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QEventLoop>
#include <QtCore/QObject>
#include <QtCore/QThread>

#include <benchmark/benchmark.h>

#include <sched.h>

#include <cstddef>
#include <cstdio>
#include <ctime>
#include <exception>
#include <utility>

namespace Zelkor::Benchmarks
{

/// Calls \a work and returns the processor time that the call used on the calling thread, in seconds. Unlike wall-clock
/// time, processor time does not grow when other programs run.
template <class Work>
double ProcessorSeconds(Work const& work)
{
    auto const now = [] {
        timespec time;
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
    };
    double const start = now();
    work();
    return now() - start;
}

/// Pins the calling thread to one core during the lifetime of the object. Threads that the calling thread starts during
/// this time are pinned to the same core.
///
/// Use PinToOneCore if two threads take turns: one of them works while the other one waits. If the threads ran on
/// different cores, the result would mainly depend on the time that an idle core needs to wake up.
class PinToOneCore
{
public:
    PinToOneCore()
    {
        sched_getaffinity(0, sizeof(before_), &before_);
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(static_cast<std::size_t>(sched_getcpu()), &one);
        sched_setaffinity(0, sizeof(one), &one);
    }

    ~PinToOneCore() { sched_setaffinity(0, sizeof(before_), &before_); }

    PinToOneCore(PinToOneCore const&) = delete;
    PinToOneCore& operator=(PinToOneCore const&) = delete;

private:
    cpu_set_t before_;
};

/// Runs the event loop of the calling thread until Step() has been called a given number of times.
class Countdown
{
public:
    explicit Countdown(int count)
        : count_(count)
    {}

    /// Decreases the count by one. Call Step() only on the thread that calls Wait(), from its event loop.
    void Step()
    {
        if (--count_ == 0) {
            loop_.quit();
        }
    }

    /// Returns the number of calls of Step() that are still needed before Wait() returns.
    int Remaining() const { return count_; }

    /// Runs the event loop until the count is zero.
    void Wait() { loop_.exec(); }

private:
    QEventLoop loop_;
    int count_;
};

/// Calls functors on another thread. Posts one event for each functor; the event contains the functor. The time of
/// this class is the lower bound for passing work to an event loop.
class PostedEvents : public QObject
{
public:
    /// Queues \a functor. The thread of this object calls the functor in its event loop.
    template <class Functor>
    void Post(Functor functor)
    {
        QCoreApplication::postEvent(this, new FunctorEvent<Functor>(std::move(functor)));
    }

    void MoveTo(QThread* thread) { moveToThread(thread); }

protected:
    bool event(QEvent* event) override
    {
        if (event->type() != QEvent::User) {
            return QObject::event(event);
        }
        static_cast<CallEvent*>(event)->Call();
        return true;
    }

private:
    struct CallEvent : QEvent
    {
        CallEvent()
            : QEvent(QEvent::User)
        {}
        virtual void Call() = 0;
    };

    template <class Functor>
    struct FunctorEvent : CallEvent
    {
        explicit FunctorEvent(Functor&& f)
            : functor(std::move(f))
        {}
        void Call() override { functor(); }
        Functor functor;
    };
};

/// A thread whose event loop runs during the lifetime of the object.
class EventThread : public QThread
{
public:
    EventThread() { start(); }

    ~EventThread() override
    {
        quit();
        wait();
    }
};

/// Runs the registered benchmarks with the command line \a argc and \a argv. Returns the exit code of the program. If a
/// benchmark needs an application object, main() must create the application object before this call.
inline int RunBenchmarks(int argc, char** argv)
{
    benchmark::AddCustomContext("qt_version", qVersion());
    benchmark::AddCustomContext("compiler",
#ifdef __clang__
                                __VERSION__);
#else
                                "GCC " __VERSION__);
#endif
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

/// Calls \a run and returns its result. If \a run throws a std::exception, prints the exception's message to the
/// standard error and returns 1.
template <class Run>
int ExitCodeOf(Run const& run)
{
    try {
        return run();
    } catch (std::exception const& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}

} // namespace Zelkor::Benchmarks

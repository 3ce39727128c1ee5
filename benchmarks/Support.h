#pragma once

/// \file
/// What the benchmarks share.

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

/// The processor time that this thread takes for \a work, in seconds: what other programs do meanwhile is not in it.
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

/// Keeps this thread, and the threads it starts meanwhile, on one core. Threads that wait for each other in turn are
/// then told in what each hand-over costs, not in how long an idle core takes to wake.
class OneCore
{
public:
    OneCore()
    {
        sched_getaffinity(0, sizeof(before_), &before_);
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(static_cast<std::size_t>(sched_getcpu()), &one);
        sched_setaffinity(0, sizeof(one), &one);
    }

    ~OneCore() { sched_setaffinity(0, sizeof(before_), &before_); }

    OneCore(OneCore const&) = delete;
    OneCore& operator=(OneCore const&) = delete;

private:
    cpu_set_t before_;
};

/// Turns this thread's event loop until a number of things have happened on it.
class Countdown
{
public:
    explicit Countdown(int count)
        : count_(count)
    {}

    /// One of them has happened. From within Wait() only.
    void Step()
    {
        if (--count_ == 0) {
            loop_.quit();
        }
    }

    int Left() const { return count_; }
    void Wait() { loop_.exec(); }

private:
    QEventLoop loop_;
    int count_;
};

/// The floor of every hand-over between threads with event loops: one posted event, with the functor inside.
class PostedEvents : public QObject
{
public:
    /// Calls \a functor on this object's thread.
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

/// A thread with an event loop, as long as it lives.
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

/// The body of every benchmark's main(), once an application object is there.
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

/// Calls \a run and returns what it does; what it throws ends on the standard error stream, and the program with 1.
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

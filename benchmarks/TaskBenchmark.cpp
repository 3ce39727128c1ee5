// Measures AsyncService, which runs jobs on one worker thread and delivers progress and completion to the owner thread.
//
// For comparison, the benchmark measures several alternatives. Like AsyncService, each alternative has only one worker
// thread. The time of EventsInBothDirections is the lower bound. It posts one event for each job, one event for each
// progress report, and one event for each completion.

#include "Support.h"

#include <Util/AsyncService.h>

#include <ThreadWeaver/Lambda>
#include <ThreadWeaver/QObjectDecorator>
#include <ThreadWeaver/Queue>
#include <ThreadWeaver/QueueStream>

#include <QtConcurrent/QtConcurrentRun>
#include <QtCore/QFutureInterface>
#include <QtCore/QFutureWatcher>
#include <QtCore/QRunnable>
#include <QtCore/QThreadPool>

#include <string>
#include <utility>

namespace Zelkor::Benchmarks
{
namespace
{

constexpr int BatchSize = 1000;
constexpr int ChainSize = 500;
constexpr int ReportingJobs = 100;
constexpr int ReportsPerJob = 100;

// Each of the following classes has a function Run(reports, progress, finished), which runs a job on the worker thread.
// The job reports every value from 0 to reports - 1. The owner thread calls `progress` for each report, and `finished`
// after the last report.

class Service
{
public:
    template <class Progress, class Finished>
    void Run(int reports, Progress const& progress, Finished const& finished)
    {
        auto* const task = service_.post([reports](Util::AsyncService::Reporter* reporter) {
            for (int value = 0; value < reports; ++value) {
                reporter->report(value);
            }
        });
        task->onProgress = progress;
        task->onFinished = finished;
        service_.run(task);
    }

private:
    Util::AsyncService service_;
};

class EventsInBothDirections
{
public:
    EventsInBothDirections() { worker_.MoveTo(&thread_); }

    template <class Progress, class Finished>
    void Run(int reports, Progress const& progress, Finished const& finished)
    {
        worker_.Post([=] {
            for (int value = 0; value < reports; ++value) {
                owner_.Post([=] { progress(value); });
            }
            owner_.Post(finished);
        });
    }

private:
    PostedEvents owner_;
    PostedEvents worker_;
    EventThread thread_; // declared last, so that the thread stops before the objects that it uses are destroyed
};

class OneThreadPool : public QThreadPool
{
public:
    OneThreadPool() { setMaxThreadCount(1); }
};

template <class Job>
class FunctorRunnable : public QRunnable
{
public:
    explicit FunctorRunnable(Job&& job)
        : job_(std::move(job))
    {}
    void run() override { job_(); }

private:
    Job job_;
};

class PoolWithCallback
{
public:
    template <class Progress, class Finished>
    void Run(int reports, Progress const& progress, Finished const& finished)
    {
        Start([=] {
            for (int value = 0; value < reports; ++value) {
                QMetaObject::invokeMethod(
                    &owner_, [=] { progress(value); }, Qt::QueuedConnection);
            }
            QMetaObject::invokeMethod(&owner_, finished, Qt::QueuedConnection);
        });
    }

private:
    template <class Job>
    void Start(Job job)
    {
        pool_.start(new FunctorRunnable<Job>(std::move(job)));
    }

    QObject owner_;
    OneThreadPool pool_;
};

class Weaver
{
public:
    Weaver()
    {
        qRegisterMetaType<ThreadWeaver::JobPointer>("ThreadWeaver::JobPointer");
        queue_.setMaximumNumberOfThreads(1);
    }

    template <class Progress, class Finished>
    void Run(int reports, Progress const& progress, Finished const& finished)
    {
        Start(
            [=] {
                for (int value = 0; value < reports; ++value) {
                    QMetaObject::invokeMethod(
                        &owner_, [=] { progress(value); }, Qt::QueuedConnection);
                }
            },
            finished);
    }

private:
    template <class Job, class Finished>
    void Start(Job const& job, Finished const& finished)
    {
        auto* const decorated = new ThreadWeaver::QObjectDecorator(new ThreadWeaver::Lambda<Job>(job));
        QObject::connect(decorated, &ThreadWeaver::QObjectDecorator::done, &owner_, finished, Qt::QueuedConnection);
        queue_.stream() << decorated;
    }

    QObject owner_;
    ThreadWeaver::Queue queue_;
};

/// Runs jobs with QtConcurrent::run(). A function called by QtConcurrent::run() cannot report progress. Therefore, this
/// class runs only jobs without progress reports.
class ConcurrentWithWatcher
{
public:
    template <class Progress, class Finished>
    void Run(int, Progress const&, Finished const& finished)
    {
        auto* const watcher = new QFutureWatcher<void>(&owner_);
        QObject::connect(watcher, &QFutureWatcher<void>::finished, &owner_, [watcher, finished] {
            watcher->deleteLater();
            finished();
        });
        watcher->setFuture(QtConcurrent::run(&pool_, [] {}));
    }

private:
    QObject owner_;
    OneThreadPool pool_;
};

/// Delivers each progress report as one result in a QFuture. QFuture also has progress values, but Qt drops some
/// progress values. In contrast, Qt delivers all results.
class FutureResults
{
public:
    template <class Progress, class Finished>
    void Run(int reports, Progress const& progress, Finished const& finished)
    {
        auto* const watcher = new QFutureWatcher<int>(&owner_);
        QObject::connect(watcher, &QFutureWatcher<int>::resultReadyAt, &owner_,
                         [watcher, progress](int index) { progress(watcher->resultAt(index)); });
        QObject::connect(watcher, &QFutureWatcher<int>::finished, &owner_, [watcher, finished] {
            watcher->deleteLater();
            finished();
        });
        QFutureInterface<int> future;
        future.reportStarted();
        watcher->setFuture(future.future());
        Start([future, reports]() mutable {
            for (int value = 0; value < reports; ++value) {
                future.reportResult(value);
            }
            future.reportFinished();
        });
    }

private:
    template <class Job>
    void Start(Job job)
    {
        pool_.start(new FunctorRunnable<Job>(std::move(job)));
    }

    QObject owner_;
    OneThreadPool pool_;
};

constexpr auto NoProgress = [](int) {};

template <class Implementation>
void Batch(benchmark::State& state)
{
    Implementation implementation;
    for (auto _ : state) {
        Countdown completions(BatchSize);
        for (int i = 0; i < BatchSize; ++i) {
            implementation.Run(0, NoProgress, [&] { completions.Step(); });
        }
        completions.Wait();
    }
}

/// Runs empty jobs one after another until \a completions reaches zero. Each job is started when the previous job has
/// finished.
template <class Implementation>
void RunChain(Implementation& implementation, Countdown& completions)
{
    implementation.Run(0, NoProgress, [&] {
        completions.Step();
        if (completions.Remaining() > 0) {
            RunChain(implementation, completions);
        }
    });
}

template <class Implementation>
void OneAfterTheOther(benchmark::State& state)
{
    PinToOneCore const pin;
    Implementation implementation;
    for (auto _ : state) {
        Countdown completions(ChainSize);
        RunChain(implementation, completions);
        completions.Wait();
    }
}

template <class Implementation>
void Progress(benchmark::State& state)
{
    Implementation implementation;
    for (auto _ : state) {
        int delivered = 0;
        Countdown completions(ReportingJobs);
        for (int i = 0; i < ReportingJobs; ++i) {
            implementation.Run(
                ReportsPerJob, [&](int) { ++delivered; }, [&] { completions.Step(); });
        }
        completions.Wait();
        if (delivered != ReportingJobs * ReportsPerJob) {
            state.SkipWithError("Not every report was delivered");
        }
    }
}

void Register(std::string const& name, void (*measure)(benchmark::State&))
{
    benchmark::RegisterBenchmark(name.c_str(), measure)->Unit(benchmark::kMillisecond)->UseRealTime();
}

template <class Implementation>
void RegisterTrivialJobs(std::string const& name)
{
    Register("Batch/" + name, Batch<Implementation>);
    Register("OneAfterTheOther/" + name, OneAfterTheOther<Implementation>);
}

template <class Implementation>
void RegisterEveryJob(std::string const& name)
{
    RegisterTrivialJobs<Implementation>(name);
    Register("Progress/" + name, Progress<Implementation>);
}

} // namespace

void RegisterAll()
{
    RegisterEveryJob<Service>("AsyncService");
    RegisterEveryJob<EventsInBothDirections>("PostedEvents");
    RegisterEveryJob<PoolWithCallback>("ThreadPool");
    RegisterEveryJob<Weaver>("ThreadWeaver");
    RegisterTrivialJobs<ConcurrentWithWatcher>("QtConcurrent");
    Register("Progress/FutureResults", Progress<FutureResults>);
}

} // namespace Zelkor::Benchmarks

int main(int argc, char** argv)
{
    QCoreApplication const application(argc, argv);
    Zelkor::Benchmarks::RegisterAll();
    return Zelkor::Benchmarks::RunBenchmarks(argc, argv);
}

#include <support/TestCase.h>
#include <unit/tasks/Tasks.h>

#include <Util/AsyncService.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtTest/QtTest>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <fstream>
#include <functional>
#include <memory>
#include <mutex>
#include <numeric>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <unistd.h>

using namespace Zelkor::Testing;

namespace
{

/// The event loop of the thread that owns a service.
class OwnerLoop
{
public:
    /// Runs the event loop until Quit() is called on the same thread. Returns false if Timeout expires first.
    bool Exec()
    {
        QTimer::singleShot(Timeout, &loop_, [this] { loop_.exit(1); });
        return loop_.exec() == 0;
    }

    void Quit() { loop_.quit(); }

private:
    QEventLoop loop_;
};

/// Lets a job wait until the owner thread is blocked. The owner thread is the thread that created this object.
class OwnerBlocking
{
public:
    /// Called by the owner thread immediately before the call that blocks.
    void Begin() { begun_ = true; }

    /// Called by the job. Repeatedly checks the state of the owner thread. Returns when 100 consecutive checks have
    /// found the owner thread asleep, or when Timeout expires.
    void Await() const
    {
        auto const deadline = std::chrono::steady_clock::now() + Timeout;
        for (int seen = 0; seen < 100 && std::chrono::steady_clock::now() < deadline;) {
            seen = begun_ && IsAsleep() ? seen + 1 : 0;
            std::this_thread::yield();
        }
    }

private:
    bool IsAsleep() const
    {
        std::ifstream file("/proc/self/task/" + std::to_string(owner_) + "/stat");
        std::string const status((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        std::size_t const nameEnd = status.rfind(')');
        return nameEnd != std::string::npos && status.compare(nameEnd, 3, ") S") == 0;
    }

    pid_t owner_ = gettid();
    std::atomic<bool> begun_{false};
};

/// Runs \a code on a new thread and waits until the thread finishes. Rethrows an exception of \a code on the calling
/// thread.
void RunOnAnotherThread(std::function<void()> const& code)
{
    std::exception_ptr error;
    std::thread thread([&] {
        try {
            code();
        } catch (...) {
            error = std::current_exception();
        }
    });
    thread.join();
    if (error) {
        std::rethrow_exception(error);
    }
}

} // namespace

class AsyncServiceThreadsTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void attachedObjectIsMovedToTheWorkerThread();
    void servicesRunTheirJobsInParallel();
    void ownerIsTheThreadThatCreatedTheService();
    void ownersOnSeveralThreadsReceiveTheirOwnProgress();
    void destructionWaitsForTheRunningJob();
    void destructionNeitherCancelsNorInterruptsTheRunningJob();
    void runningJobMayReportDuringDestruction();
    void destructionDropsQueuedJobs_data();
    void destructionDropsQueuedJobs();
    void destructionDoesNotDeleteUnstartedTasks();
    void destructionDropsCallbacksQueuedForTheOwner();
    void ownerThreadNeedsNoEventLoop();
    void runRestartsAFinishedWorkerThread();
    void losesNoJobThatIsQueuedWhileTheWorkerThreadFinishes();
    void losesNoQueuedJobWhenAJobQuitsTheWorkerThread();
};

void AsyncServiceThreadsTest::attachedObjectIsMovedToTheWorkerThread()
{
    AsyncService service;
    auto* const object = new QObject; // deleted on the worker thread
    QThread* slotThread = nullptr;
    QThread* jobThread = nullptr;
    Gate called;
    service.attach(object);
    QVERIFY(object->thread() != thread());
    QMetaObject::invokeMethod(object, [&] {
        slotThread = QThread::currentThread();
        called.Open();
    });
    DeliverQueuedEvents();

    service.run(service.post([&](Reporter*) { jobThread = QThread::currentThread(); }));
    called.Pass();
    QVERIFY(WaitUntilEmpty(service));

    QVERIFY(jobThread);
    QCOMPARE(slotThread, jobThread);
    QCOMPARE(object->thread(), jobThread);
    service.run(service.post([=](Reporter*) { delete object; }));
    QVERIFY(WaitUntilEmpty(service));
}

void AsyncServiceThreadsTest::servicesRunTheirJobsInParallel()
{
    constexpr int Count = 4;
    std::vector<std::unique_ptr<AsyncService>> services;
    std::vector<std::unique_ptr<Gate>> started;
    std::vector<QThread*> threads(Count);
    QVector<int> finished;
    for (int i = 0; i < Count; ++i) {
        services.push_back(std::make_unique<AsyncService>());
        started.push_back(std::make_unique<Gate>());
    }
    std::vector<Task*> tasks;
    for (int i = 0; i < Count; ++i) {
        auto const index = static_cast<std::size_t>(i);
        // Each job waits until all other jobs have started. Therefore, the jobs can finish only if all of them run at
        // the same time.
        tasks.push_back(services[index]->post([&, index](Reporter*) {
            threads[index] = QThread::currentThread();
            started[index]->Open();
            for (auto const& gate : started) {
                gate->Pass();
            }
        }));
        tasks.back()->onFinished = [&, i] { finished += i; };
        services[index]->run(tasks.back());
    }
    QVERIFY(services[0]->contains(tasks[0]));
    QVERIFY(!services[1]->contains(tasks[0]));
    QVERIFY(QTest::qWaitFor([&] { return finished.size() == Count; }, TimeoutMs));

    std::sort(threads.begin(), threads.end());
    QVERIFY(std::adjacent_find(threads.begin(), threads.end()) == threads.end());

    services[0].reset();
    bool finishedLater = false;
    Task* const task = services[1]->post([](Reporter*) {});
    task->onFinished = [&] { finishedLater = true; };
    services[1]->run(task);
    QVERIFY(WaitUntilEmpty(*services[1]));
    QVERIFY(finishedLater);
}

void AsyncServiceThreadsTest::ownerIsTheThreadThatCreatedTheService()
{
    QStringList calls;
    bool completed = false;
    RunOnAnotherThread([&] {
        OwnerLoop loop;
        AsyncService service;
        QThread* const owner = QThread::currentThread();
        auto const call = [&](QString const& name) {
            calls += QThread::currentThread() == owner ? name : QStringLiteral("wrong thread");
        };
        Task* const task = service.post([&](Reporter* reporter) {
            if (QThread::currentThread() != owner && QThread::currentThread() != thread()) {
                reporter->report(1);
            }
            throw Cancelled();
        });
        task->onProgress = [&](int) { call(QStringLiteral("progress")); };
        task->onCancelled = [&] {
            call(QStringLiteral("cancelled"));
            loop.Quit();
        };
        service.run(task);
        completed = loop.Exec() && service.empty();
    });

    QVERIFY(completed);
    QCOMPARE(calls, (QStringList{QStringLiteral("progress"), QStringLiteral("cancelled")}));
}

void AsyncServiceThreadsTest::ownersOnSeveralThreadsReceiveTheirOwnProgress()
{
    constexpr int Owners = 4;
    constexpr int Reports = 1000;
    std::vector<int> received(Owners);
    std::vector<std::thread> owners;
    owners.reserve(Owners);
    for (int& count : received) {
        owners.emplace_back([&count] {
            OwnerLoop loop;
            AsyncService service;
            Task* const task = service.post([](Reporter* reporter) {
                for (int i = 0; i < Reports; ++i) {
                    reporter->report(i);
                }
            });
            task->onProgress = [&count](int value) { count += value == count; };
            task->onFinished = [&loop] { loop.Quit(); };
            service.run(task);
            loop.Exec();
        });
    }
    for (std::thread& owner : owners) {
        owner.join();
    }
    QCOMPARE(received, std::vector<int>(Owners, Reports));
}

void AsyncServiceThreadsTest::destructionWaitsForTheRunningJob()
{
    auto service = std::make_unique<AsyncService>();
    QStringList calls;
    Gate started;
    std::atomic<bool> returned{false};
    OwnerBlocking destruction;
    std::unique_ptr<Task> const task(service->post([&](Reporter* reporter) {
        reporter->report(1);
        started.Open();
        destruction.Await();
        returned = true;
    }));
    task->onProgress = [&](int) { calls += QStringLiteral("progress"); };
    task->onFinished = [&] { calls += QStringLiteral("finished"); };
    task->onCancelled = [&] { calls += QStringLiteral("cancelled"); };
    task->onError = [&](std::exception_ptr const&) { calls += QStringLiteral("error"); };
    service->run(task.get());
    started.Pass();

    destruction.Begin();
    service.reset();

    QVERIFY(returned);
    DeliverQueuedEvents();
    QCOMPARE(calls, QStringList());
}

void AsyncServiceThreadsTest::destructionNeitherCancelsNorInterruptsTheRunningJob()
{
    auto service = std::make_unique<AsyncService>();
    Gate started;
    bool returned = false;
    bool cancelled = false;
    bool interrupted = false;
    OwnerBlocking destruction;
    std::unique_ptr<Task> const task(service->post([&](Reporter* reporter) {
        started.Open();
        destruction.Await();
        cancelled = reporter->isCancelled();
        interrupted = QThread::currentThread()->isInterruptionRequested();
        returned = true;
    }));
    service->run(task.get());
    started.Pass();

    destruction.Begin();
    service.reset();

    QVERIFY(returned);
    QVERIFY(!cancelled);
    QVERIFY(!interrupted);
}

void AsyncServiceThreadsTest::runningJobMayReportDuringDestruction()
{
    auto service = std::make_unique<AsyncService>();
    QVector<int> values;
    Gate started;
    int reported = 0;
    OwnerBlocking destruction;
    std::unique_ptr<Task> const task(service->post([&](Reporter* reporter) {
        started.Open();
        destruction.Await();
        for (; reported < 100; ++reported) {
            reporter->report(reported);
        }
    }));
    task->onProgress = [&](int value) { values += value; };
    service->run(task.get());
    started.Pass();

    destruction.Begin();
    service.reset();

    QCOMPARE(reported, 100);
    DeliverQueuedEvents();
    QCOMPARE(values, QVector<int>());
}

void AsyncServiceThreadsTest::destructionDropsQueuedJobs_data()
{
    QTest::addColumn<bool>("queuedBefore");
    QTest::newRow("queued before the running job starts") << true;
    QTest::newRow("queued while the job runs") << false;
}

void AsyncServiceThreadsTest::destructionDropsQueuedJobs()
{
    QFETCH(bool, queuedBefore);
    auto service = std::make_unique<AsyncService>();
    QStringList calls;
    Gate queued;
    Gate started;
    std::atomic<bool> returned{false};
    std::atomic<int> ran{0};
    OwnerBlocking destruction;
    std::vector<std::unique_ptr<Task>> tasks;
    auto const add = [&](Job job) {
        tasks.emplace_back(service->post(std::move(job)));
        tasks.back()->onFinished = [&] { calls += QStringLiteral("finished"); };
        service->run(tasks.back().get());
    };
    Task* const before = service->post([&](Reporter*) { queued.Pass(); });
    service->run(before);
    add([&](Reporter*) {
        started.Open();
        destruction.Await();
        returned = true;
    });
    if (queuedBefore) {
        for (int i = 0; i < 10; ++i) {
            add([&](Reporter*) { ++ran; });
        }
    }
    queued.Open();
    started.Pass();
    QVERIFY(WaitUntilCompleted(*service, before));
    if (!queuedBefore) {
        for (int i = 0; i < 10; ++i) {
            add([&](Reporter*) { ++ran; });
        }
    }

    destruction.Begin();
    service.reset();

    QVERIFY(returned);
    DeliverQueuedEvents();
    QCOMPARE(ran.load(), 0);
    QCOMPARE(calls, QStringList());
}

void AsyncServiceThreadsTest::destructionDoesNotDeleteUnstartedTasks()
{
    QStringList destroyed;
    auto service = std::make_unique<AsyncService>();
    std::unique_ptr<Task> const posted(
        service->post([logger = MakeDestructionLogger(destroyed, "posted")](Reporter*) {}));
    auto own = std::make_unique<Task>();
    own->work = [logger = MakeDestructionLogger(destroyed, "own")](Reporter*) {};
    service->post(own.get());
    service->cancel(own.get());
    QVERIFY(WaitUntilCompleted(*service, WaitForWorker(*service)));
    QVERIFY(service->contains(posted.get()) && service->contains(own.get()));

    service.reset();

    QCOMPARE(destroyed, QStringList());
    QVERIFY(posted->work && own->work);
}

void AsyncServiceThreadsTest::destructionDropsCallbacksQueuedForTheOwner()
{
    auto service = std::make_unique<AsyncService>();
    QStringList calls;
    Gate done;
    std::unique_ptr<Task> const task(service->post([](Reporter* reporter) { reporter->report(1); }));
    task->onProgress = [&](int) { calls += QStringLiteral("progress"); };
    task->onFinished = [&] { calls += QStringLiteral("finished"); };
    std::unique_ptr<Task> const last(service->post([&](Reporter*) { done.Open(); }));
    service->run(task.get());
    service->run(last.get());
    done.Pass();

    service.reset();

    DeliverQueuedEvents();
    QCOMPARE(calls, QStringList());
}

void AsyncServiceThreadsTest::ownerThreadNeedsNoEventLoop()
{
    std::atomic<int> ran{0};
    std::atomic<int> called{0};
    RunOnAnotherThread([&] {
        std::vector<std::unique_ptr<Task>> tasks;
        AsyncService service;
        Gate done;
        for (int i = 0; i < 5; ++i) {
            tasks.emplace_back(service.post([&, i](Reporter* reporter) {
                ++ran;
                reporter->report(i);
                if (i == 4) {
                    done.Open();
                }
            }));
            tasks.back()->onProgress = [&](int) { ++called; };
            tasks.back()->onFinished = [&] { ++called; };
            service.run(tasks.back().get());
        }
        done.Pass();
    });
    QCOMPARE(ran.load(), 5);
    QCOMPARE(called.load(), 0);
}

void AsyncServiceThreadsTest::runRestartsAFinishedWorkerThread()
{
    QObject object;
    AsyncService service;
    service.attach(&object);
    QThread* const worker = object.thread();
    for (int round = 0; round < 3; ++round) {
        service.run(service.post([](Reporter*) { QThread::currentThread()->quit(); }));
        QVERIFY(WaitUntilEmpty(service));
        QVERIFY(QTest::qWaitFor([&] { return worker->isFinished(); }, TimeoutMs));
        DeliverQueuedEvents();
        QVERIFY(!worker->isRunning());

        bool finished = false;
        QThread* jobThread = nullptr;
        Task* const next = service.post([&](Reporter*) { jobThread = QThread::currentThread(); });
        next->onFinished = [&] { finished = true; };
        service.run(next);
        QVERIFY(worker->isRunning());
        QVERIFY(WaitUntilEmpty(service));
        QVERIFY(finished);
        QCOMPARE(jobThread, worker);
    }
}

// Each job quits the worker thread. The next job is queued after a varying delay, so that some jobs are queued while
// the thread finishes.
void AsyncServiceThreadsTest::losesNoJobThatIsQueuedWhileTheWorkerThreadFinishes()
{
    constexpr int Rounds = 3000;
    AsyncService service;
    OwnerLoop loop;
    int completed = 0;
    std::atomic<int> ran{0};
    std::function<void()> next = [&] {
        Task* const task = service.post([&](Reporter*) {
            ++ran;
            QThread::currentThread()->quit();
        });
        task->onFinished = [&] {
            if (++completed == Rounds) {
                loop.Quit();
            } else {
                next();
            }
        };
        // The delay is between 0 and 99.5 microseconds. The worker thread takes about 100 microseconds to finish.
        int const delayNs = completed % 200 * 500;
        QElapsedTimer elapsed;
        elapsed.start();
        while (elapsed.nsecsElapsed() < delayNs) {
        }
        service.run(task);
    };

    next();
    QVERIFY(loop.Exec());

    QCOMPARE(completed, Rounds);
    QCOMPARE(ran.load(), Rounds);
    QVERIFY(service.empty());
}

void AsyncServiceThreadsTest::losesNoQueuedJobWhenAJobQuitsTheWorkerThread()
{
    constexpr int Count = 300;
    AsyncService service;
    // The jobs run one after another, so they do not need this mutex. Without it, the thread sanitizer would report
    // false data races when the worker thread restarts between two jobs.
    std::mutex guard;
    QVector<int> jobs;
    QVector<int> finished;
    for (int i = 0; i < Count; ++i) {
        Task* const task = service.post([&, i](Reporter*) {
            std::lock_guard<std::mutex> const lock(guard);
            jobs += i;
            QThread::currentThread()->quit();
        });
        task->onFinished = [&, i] { finished += i; };
        service.run(task);
    }
    QVERIFY(WaitUntilEmpty(service));

    QVector<int> expected(Count);
    std::iota(expected.begin(), expected.end(), 0);
    QCOMPARE(jobs, expected);
    QCOMPARE(finished, expected);
}

ZQTUTIL_TEST_MAIN(AsyncServiceThreadsTest)
#include "AsyncServiceThreadsTest.moc"

#include <support/ProgrammingError.h>
#include <support/TestCase.h>
#include <support/overrides/ConnectionRefusal.h>
#include <unit/tasks/Tasks.h>

#include <Util/AsyncService.h>

#include <QtCore/QByteArrayList>
#include <QtCore/QPointer>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtTest/QtTest>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

using namespace Zelkor::Testing;

static_assert(std::is_polymorphic_v<AsyncService> && std::has_virtual_destructor_v<AsyncService>);
static_assert(!std::is_base_of_v<QObject, AsyncService> && !std::is_final_v<AsyncService>);
static_assert(std::is_default_constructible_v<AsyncService>);
static_assert(!std::is_copy_constructible_v<AsyncService> && !std::is_copy_assignable_v<AsyncService>);
static_assert(!std::is_move_constructible_v<AsyncService> && !std::is_move_assignable_v<AsyncService>);

static_assert(std::is_aggregate_v<Task> && !std::is_polymorphic_v<Task>);
static_assert(std::is_same_v<decltype(Task::service), AsyncService*>);
static_assert(std::is_same_v<decltype(Task::error), std::exception_ptr>);
static_assert(std::is_same_v<decltype(Task::work), std::function<void(Reporter*)>>);
static_assert(std::is_same_v<decltype(Task::onFinished), std::function<void()>>);
static_assert(std::is_same_v<decltype(Task::onCancelled), std::function<void()>>);
static_assert(std::is_same_v<decltype(Task::onProgress), std::function<void(int)>>);
static_assert(std::is_same_v<decltype(Task::onError), std::function<void(std::exception_ptr)>>);

static_assert(std::is_aggregate_v<Reporter> && !std::is_polymorphic_v<Reporter>);
static_assert(!std::is_copy_constructible_v<Reporter> && !std::is_copy_assignable_v<Reporter>);
static_assert(std::is_same_v<decltype(Reporter::service), AsyncService*>);
static_assert(std::is_same_v<decltype(Reporter::task), Task*>);
static_assert(std::is_same_v<decltype(Reporter::cancelled), std::atomic<bool>>);

static_assert(std::is_empty_v<Cancelled> && !std::is_polymorphic_v<Cancelled>);
static_assert(!std::is_base_of_v<std::exception, Cancelled>);
static_assert(std::is_nothrow_default_constructible_v<Cancelled> && std::is_copy_constructible_v<Cancelled>);

static_assert(std::is_same_v<decltype(std::declval<AsyncService&>().post(std::function<void(Reporter*)>())), Task*>);
static_assert(std::is_same_v<decltype(std::declval<AsyncService&>().post(std::declval<Task*>())), Task*>);
static_assert(std::is_same_v<decltype(std::declval<AsyncService const&>().contains(nullptr)), bool>);
static_assert(std::is_same_v<decltype(std::declval<AsyncService const&>().empty()), bool>);

namespace
{

/// Object that counts its copies.
struct CopyCounter
{
    explicit CopyCounter(std::atomic<int>& count)
        : copies(&count)
    {}
    CopyCounter(CopyCounter const& other)
        : copies(other.copies)
    {
        ++*copies;
    }
    CopyCounter(CopyCounter&&) = default;
    CopyCounter& operator=(CopyCounter const&) = delete;
    CopyCounter& operator=(CopyCounter&&) = delete;
    ~CopyCounter() = default;

    std::atomic<int>* copies;
};

using Misuse = void (*)(AsyncService& service);

} // namespace

Q_DECLARE_METATYPE(Misuse)

class AsyncServiceTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    // Tests of the classes Task, Reporter and AsyncService
    void taskIsAnAggregateWithItsMembersInOrder();
    void reporterReflectsItsCancelledFlag();
    void reporterReportsForItsTask();
    void derivedServiceIsDestroyedThroughItsBase();

    // Tests of post() and run()
    void newServiceIsEmpty();
    void postRegistersANewTask();
    void postMovesTheWork();
    void postOfATaskSetsItsServiceAndResetsItsError();
    void postedTaskIsNotStarted();
    void postingAgainReplacesTheReporter();
    void queuedJobKeepsItsReporterWhenPostedAgain();
    void replacedReporterLivesAsLongAsTheService_data();
    void replacedReporterLivesAsLongAsTheService();
    void jobIsCalledOnceWithItsReporter();
    void jobsRunOnOneWorkerThread();
    void jobsRunInTheOrderOfTheirRunCalls();
    void thousandsOfTasksCompleteOnceEachInOrder();
    void taskThatWasNeverPostedRunsWithoutReporter();
    void workerThreadStartsWithTheFirstRun();
    void ownerEventLoopRunsDuringAJob();

    // Tests of invalid calls
    void rejectsNullPointers_data();
    void rejectsNullPointers();

    // Test of signal connections that fail
    void constructorThrowsWhenAConnectionFails_data();
    void constructorThrowsWhenAConnectionFails();
};

void AsyncServiceTest::taskIsAnAggregateWithItsMembersInOrder()
{
    AsyncService service;
    QByteArrayList calls;
    auto const call = [&calls](char const* name) { calls += name; };
    Task const task{&service,
                    std::make_exception_ptr(1),
                    [&](Reporter*) { call("work"); },
                    [&] { call("finished"); },
                    [&] { call("cancelled"); },
                    [&](int) { call("progress"); },
                    [&](std::exception_ptr const&) { call("error"); }};

    task.work(nullptr);
    task.onFinished();
    task.onCancelled();
    task.onProgress(1);
    task.onError(task.error);

    QCOMPARE(calls, (QByteArrayList{"work", "finished", "cancelled", "progress", "error"}));
    QCOMPARE(task.service, &service);
    QVERIFY(!Task().service && !Task().error && !Task().work && !Task().onFinished && !Task().onCancelled &&
            !Task().onProgress && !Task().onError);
}

void AsyncServiceTest::reporterReflectsItsCancelledFlag()
{
    Task task;
    Reporter reporter{nullptr, &task};
    QCOMPARE(reporter.task, &task);
    QVERIFY(!reporter.service);
    QVERIFY(!reporter.isCancelled());
    reporter.checkCancelled();

    reporter.cancelled = true;

    QVERIFY(reporter.isCancelled());
    QVERIFY_EXCEPTION_THROWN(reporter.checkCancelled(), Cancelled);
    bool isStandardException = true;
    try {
        reporter.checkCancelled();
    } catch (std::exception const&) {
    } catch (...) {
        isStandardException = false;
    }
    QVERIFY(!isStandardException);

    Reporter const cancelledFromTheStart{nullptr, nullptr, {true}};
    QVERIFY(cancelledFromTheStart.isCancelled());
}

void AsyncServiceTest::reporterReportsForItsTask()
{
    AsyncService service;
    Task* const first = service.post([](Reporter*) {});
    Task* const second = service.post([](Reporter*) {});
    QStringList calls;
    first->onProgress = [&](int value) { calls += QStringLiteral("first %1").arg(value); };
    second->onProgress = [&](int value) { calls += QStringLiteral("second %1").arg(value); };

    Reporter{&service, second}.report(2);
    Reporter{&service, first}.report(1);
    DeliverQueuedEvents();

    QCOMPARE(calls, (QStringList{QStringLiteral("second 2"), QStringLiteral("first 1")}));
    service.run(first);
    service.run(second);
    QVERIFY(WaitUntilEmpty(service));
}

void AsyncServiceTest::derivedServiceIsDestroyedThroughItsBase()
{
    class Derived : public AsyncService
    {
    public:
        explicit Derived(bool& destroyed)
            : destroyed_(destroyed)
        {}
        ~Derived() override { destroyed_ = true; }

    private:
        bool& destroyed_;
    };
    bool destroyed = false;
    std::unique_ptr<AsyncService>(std::make_unique<Derived>(destroyed)).reset();
    QVERIFY(destroyed);
}

void AsyncServiceTest::newServiceIsEmpty()
{
    AsyncService const service;
    QVERIFY(service.empty());
    QVERIFY(!service.contains(nullptr));
    Task task;
    QVERIFY(!service.contains(&task));
}

void AsyncServiceTest::postRegistersANewTask()
{
    AsyncService service;

    Task* const task = service.post([](Reporter*) {});

    QVERIFY(task);
    QCOMPARE(task->service, &service);
    QVERIFY(!task->error);
    QVERIFY(task->work);
    QVERIFY(!task->onFinished && !task->onCancelled && !task->onProgress && !task->onError);
    QVERIFY(service.contains(task));
    QVERIFY(!service.empty());
    service.run(task);
    QVERIFY(service.contains(task));
    QVERIFY(WaitUntilEmpty(service));
    QVERIFY(!service.contains(task));
}

void AsyncServiceTest::postMovesTheWork()
{
    AsyncService service;
    std::atomic<int> copies{0};
    Job job = [counted = CopyCounter(copies)](Reporter*) { static_cast<void>(counted); };
    copies = 0;

    service.run(service.post(std::move(job)));
    QVERIFY(WaitUntilEmpty(service));

    QCOMPARE(copies.load(), 0);
}

void AsyncServiceTest::postOfATaskSetsItsServiceAndResetsItsError()
{
    AsyncService other;
    AsyncService service;
    QStringList calls;
    auto* const task = new Task;
    task->service = &other;
    task->error = std::make_exception_ptr(1);
    task->work = [](Reporter*) {};
    task->onFinished = [&] { calls += QStringLiteral("finished"); };
    task->onError = [&](std::exception_ptr const&) { calls += QStringLiteral("error"); };

    QCOMPARE(service.post(task), task);

    QCOMPARE(task->service, &service);
    QVERIFY(!task->error);
    QVERIFY(service.contains(task));
    QVERIFY(!other.contains(task));
    service.run(task);
    QVERIFY(WaitUntilEmpty(service));
    QCOMPARE(calls, QStringList{QStringLiteral("finished")});
}

void AsyncServiceTest::postedTaskIsNotStarted()
{
    AsyncService service;
    std::atomic<bool> called{false};
    Task* const task = service.post([&](Reporter*) { called = true; });

    QVERIFY(WaitUntilCompleted(service, WaitForWorker(service)));

    QVERIFY(!called);
    QVERIFY(service.contains(task));
    service.run(task);
    QVERIFY(WaitUntilEmpty(service));
    QVERIFY(called);
}

void AsyncServiceTest::postingAgainReplacesTheReporter()
{
    AsyncService service;
    bool cancelledAtStart = true;
    int finished = 0;
    Task* const task = service.post([&](Reporter* reporter) { cancelledAtStart = reporter->isCancelled(); });
    task->onFinished = [&] { ++finished; };
    service.cancel(task);

    QCOMPARE(service.post(task), task);
    QVERIFY(service.contains(task));
    service.run(task);
    QVERIFY(WaitUntilEmpty(service));

    QVERIFY(!cancelledAtStart);
    QCOMPARE(finished, 1);
}

void AsyncServiceTest::queuedJobKeepsItsReporterWhenPostedAgain()
{
    AsyncService service;
    Gate cancelled;
    bool sawCancelled = true;
    QVector<int> values;
    int finished = 0;
    Task* const task = service.post([&](Reporter* reporter) {
        cancelled.Pass();
        sawCancelled = reporter->isCancelled();
        reporter->report(7);
    });
    task->onProgress = [&](int value) { values += value; };
    task->onFinished = [&] { ++finished; };
    service.run(task);

    service.post(task);
    service.cancel(task);
    cancelled.Open();
    QVERIFY(WaitUntilEmpty(service));

    QVERIFY(!sawCancelled);
    QCOMPARE(values, QVector<int>{7});
    QCOMPARE(finished, 1);
}

void AsyncServiceTest::replacedReporterLivesAsLongAsTheService_data()
{
    QTest::addColumn<bool>("cancelled");
    QTest::newRow("cancelled before it was replaced") << true;
    QTest::newRow("cancelled after it was replaced") << false;
}

// The test posts other tasks, because their reporters would probably overwrite the memory of a freed reporter.
void AsyncServiceTest::replacedReporterLivesAsLongAsTheService()
{
    QFETCH(bool, cancelled);
    Gate started;
    Gate go;
    AsyncService service;
    Reporter* first = nullptr;
    Task* const task = service.post([&](Reporter* reporter) {
        first = reporter;
        started.Open();
        go.Pass();
    });
    service.run(task);
    started.Pass();
    auto const isIntact = [&] {
        return first->service == &service && first->task == task && first->cancelled == cancelled;
    };
    std::vector<Task*> others;
    auto const postOthers = [&] {
        for (int i = 0; i < 10; ++i) {
            others.push_back(service.post([](Reporter*) {}));
        }
    };

    if (cancelled) {
        service.cancel(task);
    }
    service.post(task);
    service.cancel(task);
    postOthers();
    bool const whileTheJobRuns = isIntact();
    go.Open();
    QVERIFY(WaitUntilCompleted(service, task));
    postOthers();

    QVERIFY(whileTheJobRuns);
    QVERIFY(isIntact());
    for (Task* const other : others) {
        service.run(other);
    }
    QVERIFY(WaitUntilEmpty(service));
    QVERIFY(isIntact());
}

void AsyncServiceTest::jobIsCalledOnceWithItsReporter()
{
    AsyncService service;
    std::atomic<int> calls{0};
    Task* task = nullptr;
    bool hasExpectedReporter = false;
    task = service.post([&](Reporter* reporter) {
        ++calls;
        hasExpectedReporter = reporter->service == &service && reporter->task == task && !reporter->cancelled;
    });

    service.run(task);
    QVERIFY(WaitUntilEmpty(service));
    DeliverQueuedEvents();

    QCOMPARE(calls.load(), 1);
    QVERIFY(hasExpectedReporter);
}

void AsyncServiceTest::jobsRunOnOneWorkerThread()
{
    AsyncService service;
    std::vector<QThread*> threads;
    for (int i = 0; i < 20; ++i) {
        service.run(service.post([&](Reporter*) { threads.push_back(QThread::currentThread()); }));
        if (i == 10) {
            QVERIFY(WaitUntilEmpty(service));
        }
    }
    QVERIFY(WaitUntilEmpty(service));

    QCOMPARE(threads.size(), std::size_t{20});
    QVERIFY(threads.front() != QThread::currentThread());
    QCOMPARE(std::count(threads.begin(), threads.end(), threads.front()), std::ptrdiff_t{20});
}

void AsyncServiceTest::jobsRunInTheOrderOfTheirRunCalls()
{
    AsyncService service;
    QByteArrayList order;
    auto const post = [&](char const* name) { return service.post([&order, name](Reporter*) { order += name; }); };
    Task* const a = post("a");
    Task* const b = post("b");
    Task* const c = post("c");
    Task* const d = post("d");

    for (Task* const task : {c, a, d, b}) {
        service.run(task);
    }
    QVERIFY(WaitUntilEmpty(service));

    QCOMPARE(order, (QByteArrayList{"c", "a", "d", "b"}));
}

void AsyncServiceTest::thousandsOfTasksCompleteOnceEachInOrder()
{
    constexpr int Count = 5000;
    AsyncService service;
    std::atomic<int> running{0};
    std::atomic<bool> overlapped{false};
    QVector<int> jobs;
    QVector<int> progress;
    QVector<int> finished;
    for (int i = 0; i < Count; ++i) {
        Task* const task = service.post([&, i](Reporter* reporter) {
            overlapped = ++running > 1 || overlapped;
            jobs += i;
            reporter->report(i);
            --running;
        });
        task->onProgress = [&](int value) { progress += value; };
        task->onFinished = [&, i] { finished += i; };
        service.run(task);
    }
    QVERIFY(WaitUntilEmpty(service));
    DeliverQueuedEvents();

    QVector<int> expected(Count);
    std::iota(expected.begin(), expected.end(), 0);
    QVERIFY(!overlapped);
    QCOMPARE(jobs, expected);
    QCOMPARE(progress, expected);
    QCOMPARE(finished, expected);
}

void AsyncServiceTest::taskThatWasNeverPostedRunsWithoutReporter()
{
    AsyncService service;
    QStringList destroyed;
    QVector<int> values;
    Gate go;
    bool withoutReporter = false;
    int finished = 0;
    auto* const task = new Task;
    task->work = [&, logger = MakeDestructionLogger(destroyed, "task")](Reporter* reporter) {
        go.Pass();
        withoutReporter = reporter == nullptr;
    };
    task->onProgress = [&](int value) { values += value; };
    task->onFinished = [&] { ++finished; };

    service.run(task);
    QVERIFY(service.contains(task));
    QVERIFY(!service.empty());
    service.cancel(task);
    service.report(task, 4);
    go.Open();
    QVERIFY(WaitUntilEmpty(service));

    QVERIFY(withoutReporter);
    QCOMPARE(values, QVector<int>{4});
    QCOMPARE(finished, 1);
    QCOMPARE(destroyed, QStringList{QStringLiteral("task")});
}

void AsyncServiceTest::workerThreadStartsWithTheFirstRun()
{
    QObject object;
    auto service = std::make_unique<AsyncService>();
    service->attach(&object);
    QPointer<QThread> const worker(object.thread());
    QVERIFY(worker != QThread::currentThread());
    QVERIFY(!worker->isRunning());
    QVERIFY(!worker->parent());

    Task* const task = service->post([](Reporter*) {});
    QVERIFY(!worker->isRunning());
    service->cancel(task);
    service->report(task, 1);
    DeliverQueuedEvents();
    QVERIFY(!worker->isRunning());

    service->run(task);
    QVERIFY(worker->isRunning());
    QCOMPARE(worker->priority(), QThread::InheritPriority);
    QVERIFY(WaitUntilEmpty(*service));
    QVERIFY(worker->isRunning());

    service.reset();
    QVERIFY(!worker);
}

void AsyncServiceTest::ownerEventLoopRunsDuringAJob()
{
    AsyncService service;
    Gate ticked;
    int ticks = 0;
    bool finished = false;
    bool finishedBeforeTheTicks = false;
    QTimer timer;
    connect(&timer, &QTimer::timeout, &timer, [&] {
        finishedBeforeTheTicks = finishedBeforeTheTicks || (finished && ticks < 5);
        if (++ticks == 5) {
            ticked.Open();
        }
    });
    Task* const task = service.post([&](Reporter*) { ticked.Pass(); });
    task->onFinished = [&] { finished = true; };
    timer.start(0);

    service.run(task);
    QVERIFY(WaitUntilEmpty(service));

    QVERIFY(ticks >= 5);
    QVERIFY(finished);
    QVERIFY(!finishedBeforeTheTicks);
}

void AsyncServiceTest::rejectsNullPointers_data()
{
    QTest::addColumn<Misuse>("misuse");
    QTest::addColumn<QString>("message");
    auto const add = [](char const* name, Misuse misuse, char const* message) {
        QTest::newRow(name) << misuse << QString::fromLatin1(message);
    };
    add(
        "post", [](AsyncService& service) { service.post(static_cast<Task*>(nullptr)); },
        "AsyncService use without task!");
    add(
        "run", [](AsyncService& service) { service.run(nullptr); }, "AsyncService use without task!");
    add(
        "attach", [](AsyncService& service) { service.attach(nullptr); }, "AsyncService use without object!");
}

void AsyncServiceTest::rejectsNullPointers()
{
    QFETCH(Misuse, misuse);
    QFETCH(QString, message);
    AsyncService service;
    ProgrammingError const error = CatchProgrammingError<std::invalid_argument>([&] { misuse(service); });

    QCOMPARE(error.message, message);
    QVERIFY2(error.callStack.contains(QStringLiteral("AsyncService")), qPrintable(error.callStack));
    QCOMPARE(error.file, QStringLiteral("Util/AsyncService.cpp"));
    QVERIFY2(error.function.contains(QStringLiteral("AsyncService")) && error.function.contains(QLatin1Char('(')),
             qPrintable(error.function));
    QVERIFY(error.line > 0);
    QVERIFY(service.empty());
}

void AsyncServiceTest::constructorThrowsWhenAConnectionFails_data()
{
    QTest::addColumn<int>("allowed");
    QTest::newRow("first connection") << 0;
    QTest::newRow("second connection") << 1;
}

void AsyncServiceTest::constructorThrowsWhenAConnectionFails()
{
    QFETCH(int, allowed);
    auto const count = static_cast<std::size_t>(allowed);
    {
        ConnectionRefusal const refusal(count);
        ProgrammingError const error = CatchProgrammingError<std::logic_error>([] { AsyncService(); });

        QCOMPARE(error.message, QStringLiteral("Failed to connect signal and slot"));
        QVERIFY2(error.callStack.contains(QStringLiteral("AsyncService::AsyncService")), qPrintable(error.callStack));
        QCOMPARE(refusal.requests.size(), count + 1);
    }

    AsyncService service;
    bool finished = false;
    Task* const task = service.post([](Reporter*) {});
    task->onFinished = [&] { finished = true; };
    service.run(task);
    QVERIFY(WaitUntilEmpty(service));
    QVERIFY(finished);
}

ZQTUTIL_TEST_MAIN(AsyncServiceTest)
#include "AsyncServiceTest.moc"

#include <support/ProgrammingError.h>
#include <support/TestCase.h>
#include <support/overrides/ConnectionRefusal.h>
#include <unit/tasks/Tasks.h>

#include <Util/AsyncService.h>

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

/// An object whose copies are counted.
struct CountsCopies
{
    explicit CountsCopies(std::atomic<int>& count)
        : copies(&count)
    {}
    CountsCopies(CountsCopies const& other)
        : copies(other.copies)
    {
        ++*copies;
    }
    CountsCopies(CountsCopies&&) = default;
    CountsCopies& operator=(CountsCopies const&) = delete;
    CountsCopies& operator=(CountsCopies&&) = delete;
    ~CountsCopies() = default;

    std::atomic<int>* copies;
};

using Misuse = void (*)(AsyncService& service);

} // namespace

Q_DECLARE_METATYPE(Misuse)

class AsyncServiceTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    // Records
    void taskIsARecordInThisOrder();
    void reporterIsARecordThatTellsOfCancellation();
    void reporterReportsForItsTask();
    void derivedServiceIsDestroyedThroughItsBase();

    // post, run
    void newServiceIsEmpty();
    void postMakesARegisteredTask();
    void postMovesTheWork();
    void postOfATaskSetsItsServiceAndResetsItsError();
    void postedTaskIsNotStarted();
    void postAgainLeavesOneTaskWithTheSecondReporter();
    void postAgainLeavesAQueuedJobTheFirstReporter();
    void replacedReporterLivesAsLongAsTheService_data();
    void replacedReporterLivesAsLongAsTheService();
    void jobIsCalledOnceWithItsReporter();
    void jobsRunOnOneThreadThatIsNotTheOwner();
    void jobsRunInTheOrderOfTheRuns();
    void thousandsOfTasksCompleteOnceEachInOrder();
    void taskThatWasNeverPostedRunsWithoutReporter();
    void workerThreadStartsWithTheFirstRun();
    void eventLoopKeepsTurningWhileAJobRuns();

    // Misuse
    void nullPointerIsRefused_data();
    void nullPointerIsRefused();

    // Qt refuses
    void constructorThrowsWhenQtRefusesAConnection_data();
    void constructorThrowsWhenQtRefusesAConnection();
};

void AsyncServiceTest::taskIsARecordInThisOrder()
{
    AsyncService service;
    QStringList calls;
    auto const call = [&calls](char const* name) { calls += QString::fromLatin1(name); };
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

    QCOMPARE(calls.join(QLatin1Char(' ')), QStringLiteral("work finished cancelled progress error"));
    QCOMPARE(task.service, &service);
    QVERIFY(!Task().service && !Task().error && !Task().work && !Task().onFinished && !Task().onCancelled &&
            !Task().onProgress && !Task().onError);
}

void AsyncServiceTest::reporterIsARecordThatTellsOfCancellation()
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
    bool standard = true;
    try {
        reporter.checkCancelled();
    } catch (std::exception const&) {
    } catch (...) {
        standard = false;
    }
    QVERIFY(!standard);

    Reporter const asked{nullptr, nullptr, {true}};
    QVERIFY(asked.isCancelled());
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
    DeliverQueued();

    QCOMPARE(calls, (QStringList{QStringLiteral("second 2"), QStringLiteral("first 1")}));
    service.run(first);
    service.run(second);
    QVERIFY(TurnUntilEmpty(service));
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

void AsyncServiceTest::postMakesARegisteredTask()
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
    QVERIFY(TurnUntilEmpty(service));
    QVERIFY(!service.contains(task));
}

void AsyncServiceTest::postMovesTheWork()
{
    AsyncService service;
    std::atomic<int> copies{0};
    Job job = [counted = CountsCopies(copies)](Reporter*) { static_cast<void>(counted); };
    copies = 0;

    service.run(service.post(std::move(job)));
    QVERIFY(TurnUntilEmpty(service));

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
    QVERIFY(TurnUntilEmpty(service));
    QCOMPARE(calls, QStringList{QStringLiteral("finished")});
}

void AsyncServiceTest::postedTaskIsNotStarted()
{
    AsyncService service;
    std::atomic<bool> called{false};
    Task* const task = service.post([&](Reporter*) { called = true; });

    QVERIFY(TurnUntilGone(service, LetWorkerFinish(service)));

    QVERIFY(!called);
    QVERIFY(service.contains(task));
    service.run(task);
    QVERIFY(TurnUntilEmpty(service));
    QVERIFY(called);
}

void AsyncServiceTest::postAgainLeavesOneTaskWithTheSecondReporter()
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
    QVERIFY(TurnUntilEmpty(service));

    QVERIFY(!cancelledAtStart);
    QCOMPARE(finished, 1);
}

void AsyncServiceTest::postAgainLeavesAQueuedJobTheFirstReporter()
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
    QVERIFY(TurnUntilEmpty(service));

    QVERIFY(!sawCancelled);
    QCOMPARE(values, QVector<int>{7});
    QCOMPARE(finished, 1);
}

void AsyncServiceTest::replacedReporterLivesAsLongAsTheService_data()
{
    QTest::addColumn<bool>("cancelled");
    QTest::newRow("cancelled before it was replaced") << true;
    QTest::newRow("cancelled when it was replaced already") << false;
}

// Whatever takes the place of a reporter that has been freed fills in other fields.
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
    QVERIFY(TurnUntilGone(service, task));
    postOthers();

    QVERIFY(whileTheJobRuns);
    QVERIFY(isIntact());
    for (Task* const other : others) {
        service.run(other);
    }
    QVERIFY(TurnUntilEmpty(service));
    QVERIFY(isIntact());
}

void AsyncServiceTest::jobIsCalledOnceWithItsReporter()
{
    AsyncService service;
    std::atomic<int> calls{0};
    Task* task = nullptr;
    bool asExpected = false;
    task = service.post([&](Reporter* reporter) {
        ++calls;
        asExpected = reporter->service == &service && reporter->task == task && !reporter->cancelled;
    });

    service.run(task);
    QVERIFY(TurnUntilEmpty(service));
    DeliverQueued();

    QCOMPARE(calls.load(), 1);
    QVERIFY(asExpected);
}

void AsyncServiceTest::jobsRunOnOneThreadThatIsNotTheOwner()
{
    AsyncService service;
    std::vector<QThread*> threads;
    for (int i = 0; i < 20; ++i) {
        service.run(service.post([&](Reporter*) { threads.push_back(QThread::currentThread()); }));
        if (i == 10) {
            QVERIFY(TurnUntilEmpty(service));
        }
    }
    QVERIFY(TurnUntilEmpty(service));

    QCOMPARE(threads.size(), std::size_t{20});
    QVERIFY(threads.front() != QThread::currentThread());
    QCOMPARE(std::count(threads.begin(), threads.end(), threads.front()), std::ptrdiff_t{20});
}

void AsyncServiceTest::jobsRunInTheOrderOfTheRuns()
{
    AsyncService service;
    QStringList order;
    auto const post = [&](char const* name) {
        return service.post([&order, name](Reporter*) { order += QString::fromLatin1(name); });
    };
    Task* const a = post("a");
    Task* const b = post("b");
    Task* const c = post("c");
    Task* const d = post("d");

    for (Task* const task : {c, a, d, b}) {
        service.run(task);
    }
    QVERIFY(TurnUntilEmpty(service));

    QCOMPARE(order.join(QLatin1Char(' ')), QStringLiteral("c a d b"));
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
    QVERIFY(TurnUntilEmpty(service));
    DeliverQueued();

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
    QStringList deaths;
    QVector<int> values;
    Gate go;
    bool withoutReporter = false;
    int finished = 0;
    auto* const task = new Task;
    task->work = [&, witness = MakeWitness(deaths, "task")](Reporter* reporter) {
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
    QVERIFY(TurnUntilEmpty(service));

    QVERIFY(withoutReporter);
    QCOMPARE(values, QVector<int>{4});
    QCOMPARE(finished, 1);
    QCOMPARE(deaths, QStringList{QStringLiteral("task")});
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
    DeliverQueued();
    QVERIFY(!worker->isRunning());

    service->run(task);
    QVERIFY(worker->isRunning());
    QCOMPARE(worker->priority(), QThread::InheritPriority);
    QVERIFY(TurnUntilEmpty(*service));
    QVERIFY(worker->isRunning());

    service.reset();
    QVERIFY(!worker);
}

void AsyncServiceTest::eventLoopKeepsTurningWhileAJobRuns()
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
    QVERIFY(TurnUntilEmpty(service));

    QVERIFY(ticks >= 5);
    QVERIFY(finished);
    QVERIFY(!finishedBeforeTheTicks);
}

void AsyncServiceTest::nullPointerIsRefused_data()
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

void AsyncServiceTest::nullPointerIsRefused()
{
    QFETCH(Misuse, misuse);
    QFETCH(QString, message);
    AsyncService service;
    ProgrammingError const complaint = CatchProgrammingError<std::invalid_argument>([&] { misuse(service); });

    QCOMPARE(complaint.message, message);
    QVERIFY2(complaint.callStack.contains(QStringLiteral("AsyncService")), qPrintable(complaint.callStack));
    QCOMPARE(complaint.file, QStringLiteral("Util/AsyncService.cpp"));
    QVERIFY2(complaint.function.contains(QStringLiteral("AsyncService")) &&
                 complaint.function.contains(QLatin1Char('(')),
             qPrintable(complaint.function));
    QVERIFY(complaint.line > 0);
    QVERIFY(service.empty());
}

void AsyncServiceTest::constructorThrowsWhenQtRefusesAConnection_data()
{
    QTest::addColumn<int>("allowed");
    QTest::newRow("the first") << 0;
    QTest::newRow("the second") << 1;
}

void AsyncServiceTest::constructorThrowsWhenQtRefusesAConnection()
{
    QFETCH(int, allowed);
    auto const count = static_cast<std::size_t>(allowed);
    {
        ConnectionRefusal const refusal(count);
        ProgrammingError const complaint = CatchProgrammingError<std::logic_error>([] { AsyncService(); });

        QCOMPARE(complaint.message, QStringLiteral("Failed to connect signal and slot"));
        QVERIFY2(complaint.callStack.contains(QStringLiteral("AsyncService::AsyncService")),
                 qPrintable(complaint.callStack));
        QCOMPARE(refusal.requests.size(), count + 1);
    }

    AsyncService service;
    bool finished = false;
    Task* const task = service.post([](Reporter*) {});
    task->onFinished = [&] { finished = true; };
    service.run(task);
    QVERIFY(TurnUntilEmpty(service));
    QVERIFY(finished);
}

ZQTUTIL_TEST_MAIN(AsyncServiceTest)
#include "AsyncServiceTest.moc"

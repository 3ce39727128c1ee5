#include <LogCapture.h>
#include <TestCase.h>

#include <Util/AsyncService.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QPointer>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtTest/QtTest>

#include <boost/exception/all.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <climits>
#include <condition_variable>
#include <fstream>
#include <functional>
#include <memory>
#include <mutex>
#include <numeric>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include <unistd.h>

using Zelkor::Testing::LogCapture;
using Zelkor::Util::AsyncService;
using Task = AsyncService::Task;
using Reporter = AsyncService::Reporter;
using Cancelled = AsyncService::Cancelled;

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

constexpr int Patience = 60000; // ms; only a broken library takes so long

/// What one thread waits for and another one opens. Made of what the thread sanitizer sees through.
class Gate
{
public:
    /// The gate may go as soon as the other thread has passed.
    void Open()
    {
        std::shared_ptr<State> const state = state_;
        std::lock_guard<std::mutex> const lock(state->guard);
        state->open = true;
        state->opened.notify_all();
    }

    /// Waits for Open(). Throws when nobody opens it.
    void Pass()
    {
        std::unique_lock<std::mutex> lock(state_->guard);
        if (!state_->opened.wait_for(lock, std::chrono::milliseconds(Patience), [this] { return state_->open; })) {
            throw std::runtime_error("Nobody opened the gate");
        }
    }

private:
    struct State
    {
        std::mutex guard;
        std::condition_variable opened;
        bool open = false;
    };
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

/// Turns this thread's event loop until Quit() is called on this thread, or for Patience.
class OwnerLoop
{
public:
    bool Exec()
    {
        QTimer::singleShot(Patience, &loop_, [this] { loop_.exit(1); });
        return loop_.exec() == 0;
    }

    void Quit() { loop_.quit(); }

private:
    QEventLoop loop_;
};

/// Turns the event loop until \a service is empty.
bool TurnUntilEmpty(AsyncService const& service)
{
    return QTest::qWaitFor([&] { return service.empty(); }, Patience);
}

/// Delivers everything that is queued for this thread, and all that this queues in turn.
void DeliverQueued()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

/// Returns when the worker thread has done all that was queued for it so far; the owner thread's events stay queued.
/// Returns the task that it took for that.
Task* LetWorkerFinish(AsyncService& service)
{
    Gate reached;
    Task* const last = service.post([&](Reporter*) { reached.Open(); });
    service.run(last);
    reached.Pass();
    return last;
}

/// Turns the event loop until \a task has completed.
bool TurnUntilGone(AsyncService const& service, Task* task)
{
    return QTest::qWaitFor([&] { return !service.contains(task); }, Patience);
}

/// Turns the event loop until an exception of type \a E leaves it, and returns whether one did.
template <class E>
bool TurnUntilThrown()
{
    QElapsedTimer timer;
    timer.start();
    while (!timer.hasExpired(Patience)) {
        try {
            QCoreApplication::sendPostedEvents();
        } catch (E const&) {
            return true;
        }
        std::this_thread::yield();
    }
    return false;
}

/// Lets a job wait until the thread that made this has come to a wait of its own.
class OwnersWait
{
public:
    /// To be called by the owner right before.
    void Begin() { begun_ = true; }

    /// To be called by the job.
    void Await() const
    {
        auto const deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(Patience);
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

/// Appends its name when it dies.
class Witness
{
public:
    Witness(QStringList& deaths, QString name)
        : deaths_(deaths)
        , name_(std::move(name))
    {}
    ~Witness()
    {
        deaths_ += QThread::currentThread() == QCoreApplication::instance()->thread()
                       ? name_
                       : name_ + QStringLiteral(" on another thread");
    }
    Witness(Witness const&) = delete;
    Witness& operator=(Witness const&) = delete;

private:
    QStringList& deaths_;
    QString name_;
};

std::shared_ptr<Witness> MakeWitness(QStringList& deaths, char const* name)
{
    return std::make_shared<Witness>(deaths, QString::fromLatin1(name));
}

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

struct Failure : std::runtime_error
{
    explicit Failure(int value)
        : std::runtime_error("failure")
        , number(value)
    {}
    int number;
};

/// What leaves a call-back.
struct Escape
{};

/// A cancellation of the application's own.
class Abandoned : public Cancelled
{};

using Job = std::function<void(Reporter*)>;

/// Runs code on a thread that is not the main thread and has an event loop when the code turns one.
void OnAnotherThread(std::function<void()> const& code)
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

Q_DECLARE_METATYPE(Job)

class AsyncServiceTest : public Zelkor::Testing::TestCase
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
    void jobIsCalledOnceWithItsReporter();
    void jobsRunOnOneThreadThatIsNotTheOwner();
    void jobsRunInTheOrderOfTheRuns();
    void thousandsOfTasksCompleteOnceEachInOrder();
    void taskThatWasNeverPostedRunsWithoutReporter();
    void workerThreadStartsWithTheFirstRun();
    void eventLoopKeepsTurningWhileAJobRuns();

    // Completion
    void outcomeCallsOneCallBack_data();
    void outcomeCallsOneCallBack();
    void errorIsTheExceptionThatEscaped();
    void errorOfAnyTypeIsKept();
    void errorWithoutCallBackStaysInTheTaskAndOutOfTheLog();
    void errorIsEmptyWithoutException_data();
    void errorIsEmptyWithoutException();
    void callBacksAreLookedUpAtCompletion();
    void callBacksMayPostAndRun();
    void callBacksAreDestroyedInReverseOrderAfterTheCall();
    void callBackThatThrowsStillFreesItsTask_data();
    void callBackThatThrowsStillFreesItsTask();
    void lastCallBackMayDestroyTheService_data();
    void lastCallBackMayDestroyTheService();

    // Progress
    void progressIsPassedThroughInOrder();
    void progressIsDeliveredWhileTheJobRuns();
    void progressWithoutCallBackIsDropped();
    void progressIsQueuedOnTheOwnerThreadToo();
    void progressCallBackIsLookedUpAtDelivery_data();
    void progressCallBackIsLookedUpAtDelivery();
    void progressOfATaskThatIsNotRunningIsDelivered();
    void progressBehindTheCompletionIsDropped();
    void progressAfterTheCompletionIsDropped();
    void progressOfUnknownTasksIsDropped();
    void progressComesFromAnyThread();
    void progressCallBackMayPostAndRun();
    void progressCallBackThatThrowsLeavesTheTaskRegistered();

    // Progress call-backs with an event loop of their own
    void taskLivesUntilItsProgressCallBackReturns();
    void taskLivesUntilItsOutermostProgressCallBackReturns();
    void taskLivesThroughProgressOfAnother();
    void otherTaskCompletesInsideAProgressCallBack();
    void serviceMayGoInsideAProgressCallBack_data();
    void serviceMayGoInsideAProgressCallBack();

    // cancel
    void cancelSetsTheFlag_data();
    void cancelSetsTheFlag();
    void cancelReachesARunningJob();
    void cancelOfOneTaskLeavesTheOthers();
    void cancelAfterTheJobChangesNothing();
    void cancelOfUnknownTasksDoesNothing();

    // Threads and destruction
    void attachedObjectWorksOnTheWorkerThread();
    void severalServicesWorkSideBySide();
    void ownerIsTheThreadThatMadeTheService();
    void destructionWaitsForTheRunningJob();
    void destructionDropsTheJobsBehind_data();
    void destructionDropsTheJobsBehind();
    void destructionLeavesUnstartedTasksToTheirMaker();
    void destructionDropsWhatIsQueuedForTheOwner();
    void ownerThreadNeedNotTurnItsLoop();
    void quitWorkerStartsAgainWithTheNextRun();
    void quitWorkerLosesNoJobThatComesAsItEnds();
    void quitWorkerLosesNoJobThatIsQueued();

    // Misuse
    void nullPointerIsRefused_data();
    void nullPointerIsRefused();
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

void AsyncServiceTest::outcomeCallsOneCallBack_data()
{
    QTest::addColumn<Job>("job");
    QTest::addColumn<QString>("set");
    QTest::addColumn<QString>("called");

    enum Outcome { Returns, Cancels, Throws };
    struct
    {
        char const* name;
        Job job;
        Outcome outcome;
    } const jobs[] = {
        {"returns", [](Reporter*) {}, Returns},
        {"returns although cancelled", [](Reporter* reporter) { reporter->cancelled = true; }, Returns},
        {"throws an exception although cancelled",
         [](Reporter* reporter) {
             reporter->cancelled = true;
             throw std::runtime_error("error");
         },
         Throws},
        {"throws Cancelled", [](Reporter*) { throw Cancelled(); }, Cancels},
        {"throws a class of Cancelled", [](Reporter*) { throw Abandoned(); }, Cancels},
        {"throws an exception", [](Reporter*) { throw std::runtime_error("error"); }, Throws},
        {"throws an exception that is none of the standard", [](Reporter*) { throw 5; }, Throws},
        {"throws a pointer to Cancelled", [](Reporter*) { throw static_cast<Cancelled*>(nullptr); }, Throws},
        {"is empty", Job(), Throws},
    };
    // The call-backs that are set, by initials, and the one called after each outcome.
    struct
    {
        char const* set;
        char const* called[3]; // Returns, Cancels, Throws
    } const table[] = {
        {"", {"", "", ""}},      {"F", {"F", "F", "F"}},  {"C", {"", "C", ""}},   {"E", {"", "", "E"}},
        {"FC", {"F", "C", "F"}}, {"FE", {"F", "F", "E"}}, {"CE", {"", "C", "E"}}, {"FCE", {"F", "C", "E"}},
    };
    for (auto const& job : jobs) {
        for (auto const& row : table) {
            QTest::addRow("%s, set: %s", job.name, *row.set ? row.set : "none")
                << job.job << QString::fromLatin1(row.set) << QString::fromLatin1(row.called[job.outcome]);
        }
    }
}

void AsyncServiceTest::outcomeCallsOneCallBack()
{
    QFETCH(Job, job);
    QFETCH(QString, set);
    QFETCH(QString, called);
    AsyncService service;
    QStringList deaths;
    QString calls;
    bool registeredInside = false;
    bool onAnotherThread = false;
    Task* task = nullptr;
    auto const call = [&](char name) {
        calls += QLatin1Char(name);
        registeredInside = service.contains(task) || !service.empty();
        onAnotherThread = QThread::currentThread() != thread();
    };
    task = service.post(job);
    auto witness = MakeWitness(deaths, "task");
    if (set.contains(QLatin1Char('F'))) {
        task->onFinished = [&, witness] { call('F'); };
    }
    if (set.contains(QLatin1Char('C'))) {
        task->onCancelled = [&, witness] { call('C'); };
    }
    if (set.contains(QLatin1Char('E'))) {
        task->onError = [&, witness](std::exception_ptr const&) { call('E'); };
    }
    task->onProgress = [witness](int) {};
    std::weak_ptr<Witness> const alive = witness;
    witness.reset();

    service.run(task);
    QVERIFY(TurnUntilEmpty(service));
    DeliverQueued();

    QCOMPARE(calls, called);
    QVERIFY(!registeredInside);
    QVERIFY(!onAnotherThread);
    QVERIFY2(alive.expired(), "The task is not freed");
}

void AsyncServiceTest::errorIsTheExceptionThatEscaped()
{
    AsyncService service;
    int number = 0;
    bool same = false;
    bool cleanTask = false;
    Task* const task = service.post([](Reporter*) { throw Failure(42); });
    task->onError = [&](std::exception_ptr const& error) {
        same = error == task->error;
        cleanTask = task->service == &service && task->work;
        try {
            std::rethrow_exception(error);
        } catch (Failure const& failure) {
            number = failure.number;
        }
    };

    service.run(task);
    QVERIFY(TurnUntilEmpty(service));

    QCOMPARE(number, 42);
    QVERIFY(same);
    QVERIFY(cleanTask);
}

void AsyncServiceTest::errorOfAnyTypeIsKept()
{
    AsyncService service;
    std::vector<std::exception_ptr> errors;
    for (Job const& job : {Job([](Reporter*) { throw 7; }), Job()}) {
        Task* const task = service.post(job);
        task->onError = [&](std::exception_ptr const& error) { errors.push_back(error); };
        service.run(task);
    }
    QVERIFY(TurnUntilEmpty(service));

    QCOMPARE(errors.size(), std::size_t{2});
    QVERIFY_EXCEPTION_THROWN(std::rethrow_exception(errors[0]), int);
    QVERIFY_EXCEPTION_THROWN(std::rethrow_exception(errors[1]), std::bad_function_call);
}

void AsyncServiceTest::errorWithoutCallBackStaysInTheTaskAndOutOfTheLog()
{
    LogCapture const capture;
    AsyncService service;
    std::exception_ptr error;
    Task* const task = service.post([](Reporter*) { throw Failure(1); });
    task->onFinished = [&] { error = task->error; };

    service.run(task);
    QVERIFY(TurnUntilEmpty(service));

    QVERIFY(error);
    QVERIFY_EXCEPTION_THROWN(std::rethrow_exception(error), Failure);
    QCOMPARE(capture.Texts(), QStringList());
}

void AsyncServiceTest::errorIsEmptyWithoutException_data()
{
    QTest::addColumn<Job>("job");
    QTest::newRow("returns") << Job([](Reporter*) {});
    QTest::newRow("throws Cancelled") << Job([](Reporter*) { throw Cancelled(); });
}

void AsyncServiceTest::errorIsEmptyWithoutException()
{
    QFETCH(Job, job);
    AsyncService service;
    bool called = false;
    bool empty = false;
    Task* const task = service.post(job);
    task->onFinished = [&] {
        called = true;
        empty = !task->error;
    };

    service.run(task);
    QVERIFY(TurnUntilEmpty(service));

    QVERIFY(called);
    QVERIFY(empty);
}

void AsyncServiceTest::callBacksAreLookedUpAtCompletion()
{
    AsyncService service;
    QStringList calls;
    Task* const first = service.post([](Reporter*) {});
    Task* const second = service.post([](Reporter*) { throw Cancelled(); });
    first->onFinished = [&] { calls += QStringLiteral("early"); };
    service.run(first);
    service.run(second);
    LetWorkerFinish(service);

    first->onFinished = [&] { calls += QStringLiteral("finished"); };
    second->onCancelled = [&] { calls += QStringLiteral("cancelled"); };
    QVERIFY(TurnUntilEmpty(service));

    QCOMPARE(calls, (QStringList{QStringLiteral("finished"), QStringLiteral("cancelled")}));
}

void AsyncServiceTest::callBacksMayPostAndRun()
{
    AsyncService service;
    QStringList calls;
    Task* const first = service.post([](Reporter*) {});
    first->onFinished = [&] {
        calls += QStringLiteral("finished");
        Task* const second = service.post([](Reporter*) { throw Cancelled(); });
        second->onCancelled = [&] {
            calls += QStringLiteral("cancelled");
            Task* const third = service.post([](Reporter*) { throw Failure(1); });
            third->onError = [&](std::exception_ptr const&) { calls += QStringLiteral("error"); };
            service.run(third);
        };
        service.run(second);
        calls += service.contains(second) ? QStringLiteral("registered") : QStringLiteral("not registered");
    };

    service.run(first);
    QVERIFY(TurnUntilEmpty(service));

    QCOMPARE(calls.join(QLatin1Char(' ')), QStringLiteral("finished registered cancelled error"));
}

void AsyncServiceTest::callBacksAreDestroyedInReverseOrderAfterTheCall()
{
    struct Fatal
    {
        std::shared_ptr<Witness> witness;
    };
    AsyncService service;
    QStringList deaths;
    QStringList deathsAtTheCall;
    // In no thread but the owner's hands once the job has thrown.
    auto* const thrown = new std::shared_ptr<Witness>(MakeWitness(deaths, "error"));
    auto const capture = [&](char const* name) {
        return [witness = MakeWitness(deaths, name)] { static_cast<void>(witness); };
    };
    Task* const task = service.post([thrown, hold = capture("work")](Reporter*) {
        Fatal const fatal{std::move(*thrown)};
        delete thrown;
        throw fatal;
    });
    task->onFinished = capture("finished");
    task->onCancelled = capture("cancelled");
    task->onProgress = [hold = capture("progress")](int) {};
    task->onError = [&, hold = capture("onError")](std::exception_ptr const&) { deathsAtTheCall = deaths; };

    service.run(task);
    QVERIFY(TurnUntilEmpty(service));

    QCOMPARE(deathsAtTheCall, QStringList());
    QCOMPARE(deaths.join(QLatin1Char(' ')), QStringLiteral("onError progress cancelled finished work error"));
}

void AsyncServiceTest::callBackThatThrowsStillFreesItsTask_data()
{
    QTest::addColumn<Job>("job");
    QTest::newRow("onFinished") << Job([](Reporter*) {});
    QTest::newRow("onCancelled") << Job([](Reporter*) { throw Cancelled(); });
    QTest::newRow("onError") << Job([](Reporter*) { throw Failure(1); });
}

void AsyncServiceTest::callBackThatThrowsStillFreesItsTask()
{
    QFETCH(Job, job);
    AsyncService service;
    QStringList deaths;
    Task* const task = service.post(job);
    task->onProgress = [witness = MakeWitness(deaths, "task")](int) {};
    task->onFinished = [] { throw Escape(); };
    task->onCancelled = [] { throw Escape(); };
    task->onError = [](std::exception_ptr const&) { throw Escape(); };

    service.run(task);
    QVERIFY(TurnUntilThrown<Escape>());

    QCOMPARE(deaths, QStringList{QStringLiteral("task")});
    QVERIFY(service.empty());
    bool finished = false;
    Task* const next = service.post([](Reporter*) {});
    next->onFinished = [&] { finished = true; };
    service.run(next);
    QVERIFY(TurnUntilEmpty(service));
    QVERIFY(finished);
}

void AsyncServiceTest::lastCallBackMayDestroyTheService_data()
{
    callBackThatThrowsStillFreesItsTask_data();
}

void AsyncServiceTest::lastCallBackMayDestroyTheService()
{
    QFETCH(Job, job);
    auto service = std::make_unique<AsyncService>();
    QStringList deaths;
    QStringList deathsInside{QStringLiteral("not called")};
    auto const destroy = [&] {
        service.reset();
        deathsInside = deaths;
    };
    Task* const task = service->post(job);
    task->onProgress = [witness = MakeWitness(deaths, "task")](int) {};
    task->onFinished = destroy;
    task->onCancelled = destroy;
    task->onError = [&](std::exception_ptr const&) { destroy(); };

    service->run(task);
    QVERIFY(QTest::qWaitFor([&] { return !service; }, Patience));
    DeliverQueued();

    QCOMPARE(deathsInside, QStringList());
    QCOMPARE(deaths, QStringList{QStringLiteral("task")});
}

void AsyncServiceTest::progressIsPassedThroughInOrder()
{
    AsyncService service;
    QVector<int> const reported{5, 50, 100, 100, 100, 0, -1, INT_MIN, INT_MAX, 101, 5};
    QVector<int> values;
    int valuesAtTheEnd = 0;
    bool onAnotherThread = false;
    bool unregistered = false;
    Task* const task = service.post([&](Reporter* reporter) {
        for (int const value : reported) {
            reporter->report(value);
        }
    });
    task->onProgress = [&](int value) {
        values += value;
        onAnotherThread = onAnotherThread || QThread::currentThread() != thread();
        unregistered = unregistered || !service.contains(task);
    };
    task->onFinished = [&] { valuesAtTheEnd = values.size(); };

    service.run(task);
    QVERIFY(TurnUntilEmpty(service));
    DeliverQueued();

    QCOMPARE(values, reported);
    QCOMPARE(valuesAtTheEnd, reported.size());
    QVERIFY(!onAnotherThread);
    QVERIFY(!unregistered);
}

void AsyncServiceTest::progressIsDeliveredWhileTheJobRuns()
{
    AsyncService service;
    Gate delivered;
    bool passed = false;
    Task* const task = service.post([&](Reporter* reporter) {
        reporter->report(1);
        delivered.Pass();
        passed = true;
    });
    task->onProgress = [&](int) { delivered.Open(); };

    service.run(task);
    QVERIFY(TurnUntilEmpty(service));

    QVERIFY(passed);
}

void AsyncServiceTest::progressWithoutCallBackIsDropped()
{
    AsyncService service;
    bool finished = false;
    Task* const task = service.post([](Reporter* reporter) { reporter->report(1); });
    task->onFinished = [&] { finished = true; };

    service.run(task);
    QVERIFY(TurnUntilEmpty(service));

    QVERIFY(finished);
}

void AsyncServiceTest::progressIsQueuedOnTheOwnerThreadToo()
{
    AsyncService service;
    QVector<int> values;
    Task* const task = service.post([](Reporter*) {});
    task->onProgress = [&](int value) { values += value; };

    service.report(task, 3);
    QCOMPARE(values, QVector<int>());
    DeliverQueued();
    QCOMPARE(values, QVector<int>{3});

    service.run(task);
    QVERIFY(TurnUntilEmpty(service));
}

void AsyncServiceTest::progressCallBackIsLookedUpAtDelivery_data()
{
    QTest::addColumn<bool>("before");
    QTest::addColumn<bool>("after");
    QTest::addColumn<QString>("called");
    QTest::newRow("set after the report") << false << true << QStringLiteral("after");
    QTest::newRow("replaced after the report") << true << true << QStringLiteral("after");
    QTest::newRow("cleared after the report") << true << false << QString();
}

void AsyncServiceTest::progressCallBackIsLookedUpAtDelivery()
{
    QFETCH(bool, before);
    QFETCH(bool, after);
    QFETCH(QString, called);
    AsyncService service;
    QString calls;
    Task* const task = service.post([](Reporter* reporter) { reporter->report(1); });
    if (before) {
        task->onProgress = [&](int) { calls += QStringLiteral("before"); };
    }
    service.run(task);
    LetWorkerFinish(service);

    task->onProgress = nullptr;
    if (after) {
        task->onProgress = [&](int) { calls += QStringLiteral("after"); };
    }
    QVERIFY(TurnUntilEmpty(service));

    QCOMPARE(calls, called);
}

void AsyncServiceTest::progressOfATaskThatIsNotRunningIsDelivered()
{
    AsyncService service;
    Gate go;
    QVector<int> values;
    Task* const blocker = service.post([&](Reporter*) { go.Pass(); });
    Task* const task = service.post([](Reporter*) {});
    task->onProgress = [&](int value) { values += value; };

    service.report(task, 1);
    DeliverQueued();
    service.run(blocker);
    service.run(task);
    service.report(task, 2);
    DeliverQueued();

    QCOMPARE(values, (QVector<int>{1, 2}));
    go.Open();
    QVERIFY(TurnUntilEmpty(service));
}

void AsyncServiceTest::progressBehindTheCompletionIsDropped()
{
    AsyncService service;
    QVector<int> values;
    bool finished = false;
    Task* const task = service.post([](Reporter* reporter) { reporter->report(1); });
    task->onProgress = [&](int value) { values += value; };
    task->onFinished = [&] { finished = true; };
    service.run(task);
    LetWorkerFinish(service);

    std::thread([&] { service.report(task, 2); }).join();
    service.report(task, 3);
    QVERIFY(service.contains(task));
    QVERIFY(TurnUntilEmpty(service));
    DeliverQueued();

    QVERIFY(finished);
    QCOMPARE(values, QVector<int>{1});
}

void AsyncServiceTest::progressAfterTheCompletionIsDropped()
{
    AsyncService service;
    QVector<int> values;
    Task* const task = service.post([](Reporter*) {});
    task->onProgress = [&](int value) { values += value; };
    service.run(task);
    QVERIFY(TurnUntilEmpty(service));

    std::thread([&] { service.report(task, 1); }).join();
    DeliverQueued();

    QCOMPARE(values, QVector<int>());
    QVERIFY(service.empty());
}

void AsyncServiceTest::progressOfUnknownTasksIsDropped()
{
    AsyncService service;
    QVector<int> values;
    Task task;
    task.onProgress = [&](int value) { values += value; };

    service.report(&task, 1);
    service.report(nullptr, 1);
    DeliverQueued();

    QCOMPARE(values, QVector<int>());
    QVERIFY(service.empty());
}

void AsyncServiceTest::progressComesFromAnyThread()
{
    constexpr int Threads = 4;
    constexpr int Values = 500;
    AsyncService service;
    QVector<QVector<int>> values(Threads);
    Task* const task = service.post([](Reporter* reporter) {
        std::vector<std::thread> threads;
        threads.reserve(Threads);
        for (int i = 0; i < Threads; ++i) {
            threads.emplace_back([=] {
                for (int value = 0; value < Values; ++value) {
                    reporter->report(i * Values + value);
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    });
    task->onProgress = [&](int value) { values[value / Values] += value % Values; };

    service.run(task);
    QVERIFY(TurnUntilEmpty(service));

    QVector<int> expected(Values);
    std::iota(expected.begin(), expected.end(), 0);
    QCOMPARE(values, QVector<QVector<int>>(Threads, expected));
}

void AsyncServiceTest::progressCallBackMayPostAndRun()
{
    AsyncService service;
    QStringList calls;
    Task* const task = service.post([](Reporter* reporter) { reporter->report(1); });
    task->onProgress = [&](int) {
        Task* const next = service.post([](Reporter*) {});
        next->onFinished = [&] { calls += QStringLiteral("next"); };
        service.run(next);
    };
    task->onFinished = [&] { calls += QStringLiteral("first"); };

    service.run(task);
    QVERIFY(TurnUntilEmpty(service));

    QCOMPARE(calls, (QStringList{QStringLiteral("first"), QStringLiteral("next")}));
}

void AsyncServiceTest::progressCallBackThatThrowsLeavesTheTaskRegistered()
{
    AsyncService service;
    QStringList deaths;
    Gate go;
    QVector<int> values;
    bool finished = false;
    Task* const task = service.post([&](Reporter* reporter) {
        reporter->report(1);
        go.Pass();
        reporter->report(2);
    });
    task->onProgress = [&, witness = MakeWitness(deaths, "task")](int value) {
        values += value;
        if (value == 1) {
            throw Escape();
        }
    };
    task->onFinished = [&] { finished = true; };

    service.run(task);
    QVERIFY(TurnUntilThrown<Escape>());
    QVERIFY(service.contains(task));
    QCOMPARE(deaths, QStringList());
    go.Open();
    QVERIFY(TurnUntilEmpty(service));

    QCOMPARE(values, (QVector<int>{1, 2}));
    QVERIFY(finished);
    QCOMPARE(deaths, QStringList{QStringLiteral("task")});
}

void AsyncServiceTest::taskLivesUntilItsProgressCallBackReturns()
{
    AsyncService service;
    QStringList deaths;
    QStringList calls;
    Task* const task = service.post([](Reporter* reporter) {
        reporter->report(1);
        reporter->report(2);
    });
    task->onProgress = [&, witness = MakeWitness(deaths, "task")](int value) {
        calls += QStringLiteral("begin %1").arg(value);
        if (value == 1 && !TurnUntilEmpty(service)) {
            calls += QStringLiteral("never empty");
        }
        calls += QStringLiteral("end %1, %2 dead").arg(value).arg(deaths.size());
    };
    task->onFinished = [&] { calls += QStringLiteral("finished"); };

    service.run(task);
    QVERIFY(QTest::qWaitFor([&] { return !deaths.isEmpty(); }, Patience));

    QCOMPARE(calls, (QStringList{QStringLiteral("begin 1"), QStringLiteral("begin 2"), QStringLiteral("end 2, 0 dead"),
                                 QStringLiteral("finished"), QStringLiteral("end 1, 0 dead")}));
    QVERIFY(service.empty());
}

void AsyncServiceTest::taskLivesUntilItsOutermostProgressCallBackReturns()
{
    AsyncService service;
    QStringList deaths;
    QStringList calls;
    Task* const task = service.post([](Reporter* reporter) {
        reporter->report(1);
        reporter->report(2);
    });
    // Both turn loops, and the task completes in the inner one.
    task->onProgress = [&, witness = MakeWitness(deaths, "task")](int value) {
        if (!TurnUntilEmpty(service)) {
            calls += QStringLiteral("never empty");
        }
        calls += QStringLiteral("end %1, %2 dead").arg(value).arg(deaths.size());
    };

    service.run(task);
    QVERIFY(QTest::qWaitFor([&] { return !deaths.isEmpty(); }, Patience));

    QCOMPARE(calls, (QStringList{QStringLiteral("end 2, 0 dead"), QStringLiteral("end 1, 0 dead")}));
    QCOMPARE(deaths.size(), 1);
}

void AsyncServiceTest::taskLivesThroughProgressOfAnother()
{
    AsyncService service;
    QStringList deaths;
    QStringList calls;
    Gate go;
    Task* const first = service.post([&](Reporter* reporter) {
        reporter->report(1);
        go.Pass();
    });
    Task* const second = service.post([](Reporter*) {});
    // The progress of the second is delivered inside that of the first, and the first completes inside both.
    first->onProgress = [&, witness = MakeWitness(deaths, "first")](int) {
        service.report(second, 1);
        if (!TurnUntilEmpty(service)) {
            calls += QStringLiteral("never empty");
        }
        calls += QStringLiteral("first ends: ") + deaths.join(QLatin1Char(' '));
    };
    second->onProgress = [&, witness = MakeWitness(deaths, "second")](int) {
        go.Open();
        if (!TurnUntilGone(service, first)) {
            calls += QStringLiteral("never completed");
        }
        calls += QStringLiteral("second ends: ") + deaths.join(QLatin1Char(' '));
        service.run(second);
    };

    service.run(first);
    QVERIFY(QTest::qWaitFor([&] { return deaths.size() == 2; }, Patience));

    QCOMPARE(calls, (QStringList{QStringLiteral("second ends: "), QStringLiteral("first ends: second")}));
    QCOMPARE(deaths, (QStringList{QStringLiteral("second"), QStringLiteral("first")}));
}

void AsyncServiceTest::otherTaskCompletesInsideAProgressCallBack()
{
    AsyncService service;
    QStringList deaths;
    QStringList deathsInside;
    Gate go;
    Task* const other = service.post([](Reporter*) {});
    other->onFinished = [witness = MakeWitness(deaths, "other")] {};
    Task* const task = service.post([&](Reporter*) { go.Pass(); });
    task->onProgress = [&, witness = MakeWitness(deaths, "task")](int) {
        service.run(other);
        deathsInside = TurnUntilGone(service, other) ? deaths : QStringList{QStringLiteral("never completed")};
    };

    service.report(task, 1);
    DeliverQueued();
    QCOMPARE(deathsInside, QStringList{QStringLiteral("other")});

    service.run(task);
    go.Open();
    QVERIFY(TurnUntilEmpty(service));
    QCOMPARE(deaths, (QStringList{QStringLiteral("other"), QStringLiteral("task")}));
}

void AsyncServiceTest::serviceMayGoInsideAProgressCallBack_data()
{
    QTest::addColumn<bool>("inCompletion");
    QTest::addColumn<int>("reports");
    QTest::newRow("in the completion call-back") << true << 1;
    QTest::newRow("after the completion") << false << 1;
    QTest::newRow("in the completion call-back, two levels deep") << true << 2;
    QTest::newRow("after the completion, two levels deep") << false << 2;
}

void AsyncServiceTest::serviceMayGoInsideAProgressCallBack()
{
    QFETCH(bool, inCompletion);
    QFETCH(int, reports);
    auto service = std::make_unique<AsyncService>();
    QStringList deaths;
    QStringList calls;
    Task* const task = service->post([=](Reporter* reporter) {
        for (int value = 1; value <= reports; ++value) {
            reporter->report(value);
        }
    });
    task->onProgress = [&, witness = MakeWitness(deaths, "task")](int value) {
        if (!QTest::qWaitFor([&] { return !service || service->empty(); }, Patience)) {
            calls += QStringLiteral("never empty");
        }
        service.reset();
        calls += QStringLiteral("end %1, %2 dead").arg(value).arg(deaths.size());
    };
    task->onFinished = [&] {
        if (inCompletion) {
            service.reset();
        }
    };

    service->run(task);
    QVERIFY(QTest::qWaitFor([&] { return !deaths.isEmpty(); }, Patience));
    DeliverQueued();

    QStringList expected;
    for (int value = reports; value >= 1; --value) {
        expected += QStringLiteral("end %1, 0 dead").arg(value);
    }
    QCOMPARE(calls, expected);
    QCOMPARE(deaths.size(), 1);
    QVERIFY(!service);
}

void AsyncServiceTest::cancelSetsTheFlag_data()
{
    QTest::addColumn<QString>("when");
    QTest::newRow("before the run") << QStringLiteral("before");
    QTest::newRow("while queued") << QStringLiteral("queued");
    QTest::newRow("not at all") << QString();
}

void AsyncServiceTest::cancelSetsTheFlag()
{
    QFETCH(QString, when);
    AsyncService service;
    Gate go;
    bool ran = false;
    bool sawCancelled = false;
    QStringList calls;
    Task* const blocker = service.post([&](Reporter*) { go.Pass(); });
    Task* const task = service.post([&](Reporter* reporter) {
        ran = true;
        sawCancelled = reporter->isCancelled();
        reporter->checkCancelled();
    });
    task->onFinished = [&] { calls += QStringLiteral("finished"); };
    task->onCancelled = [&] { calls += QStringLiteral("cancelled"); };

    if (when == QStringLiteral("before")) {
        service.cancel(task);
        QVERIFY(service.contains(task));
    }
    service.run(blocker);
    service.run(task);
    if (when == QStringLiteral("queued")) {
        service.cancel(task);
        QVERIFY(service.contains(task));
    }
    go.Open();
    QVERIFY(TurnUntilEmpty(service));

    QVERIFY(ran);
    QCOMPARE(sawCancelled, !when.isEmpty());
    QCOMPARE(calls, QStringList{when.isEmpty() ? QStringLiteral("finished") : QStringLiteral("cancelled")});
}

void AsyncServiceTest::cancelReachesARunningJob()
{
    AsyncService service;
    Gate started;
    bool cancelled = false;
    Task* const task = service.post([&](Reporter* reporter) {
        bool const cancelledAtStart = reporter->isCancelled();
        started.Open();
        auto const deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(Patience);
        while (!cancelledAtStart && std::chrono::steady_clock::now() < deadline) {
            reporter->checkCancelled();
            std::this_thread::yield();
        }
    });
    task->onCancelled = [&] { cancelled = true; };
    service.run(task);
    started.Pass();

    service.cancel(task);
    QVERIFY(TurnUntilEmpty(service));

    QVERIFY(cancelled);
}

void AsyncServiceTest::cancelOfOneTaskLeavesTheOthers()
{
    AsyncService service;
    QStringList calls;
    std::vector<Task*> tasks;
    for (int i = 0; i < 3; ++i) {
        tasks.push_back(service.post([](Reporter* reporter) { reporter->checkCancelled(); }));
        tasks.back()->onFinished = [&calls, i] { calls += QStringLiteral("finished %1").arg(i); };
        tasks.back()->onCancelled = [&calls, i] { calls += QStringLiteral("cancelled %1").arg(i); };
    }

    service.cancel(tasks[1]);
    for (Task* const task : tasks) {
        service.run(task);
    }
    QVERIFY(TurnUntilEmpty(service));

    QCOMPARE(calls.join(QLatin1Char(' ')), QStringLiteral("finished 0 cancelled 1 finished 2"));
}

void AsyncServiceTest::cancelAfterTheJobChangesNothing()
{
    AsyncService service;
    QStringList calls;
    Task* const task = service.post([](Reporter* reporter) { reporter->checkCancelled(); });
    task->onFinished = [&] { calls += QStringLiteral("finished"); };
    task->onCancelled = [&] { calls += QStringLiteral("cancelled"); };
    service.run(task);
    LetWorkerFinish(service);

    service.cancel(task);
    QVERIFY(TurnUntilEmpty(service));
    service.cancel(task);

    QCOMPARE(calls, QStringList{QStringLiteral("finished")});
    QVERIFY(service.empty());
}

void AsyncServiceTest::cancelOfUnknownTasksDoesNothing()
{
    AsyncService service;
    Task task;
    service.cancel(&task);
    service.cancel(nullptr);
    QVERIFY(service.empty());
    QVERIFY(!service.contains(&task));
}

void AsyncServiceTest::attachedObjectWorksOnTheWorkerThread()
{
    AsyncService service;
    auto* const object = new QObject; // deleted on its thread
    QThread* slotThread = nullptr;
    QThread* jobThread = nullptr;
    Gate called;
    service.attach(object);
    QVERIFY(object->thread() != thread());
    QMetaObject::invokeMethod(object, [&] {
        slotThread = QThread::currentThread();
        called.Open();
    });
    DeliverQueued();

    service.run(service.post([&](Reporter*) { jobThread = QThread::currentThread(); }));
    called.Pass();
    QVERIFY(TurnUntilEmpty(service));

    QVERIFY(jobThread);
    QCOMPARE(slotThread, jobThread);
    QCOMPARE(object->thread(), jobThread);
    service.run(service.post([=](Reporter*) { delete object; }));
    QVERIFY(TurnUntilEmpty(service));
}

void AsyncServiceTest::severalServicesWorkSideBySide()
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
        // Each job waits for all others: they can only end together.
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
    QVERIFY(QTest::qWaitFor([&] { return finished.size() == Count; }, Patience));

    std::sort(threads.begin(), threads.end());
    QVERIFY(std::adjacent_find(threads.begin(), threads.end()) == threads.end());

    services[0].reset();
    bool still = false;
    Task* const task = services[1]->post([](Reporter*) {});
    task->onFinished = [&] { still = true; };
    services[1]->run(task);
    QVERIFY(TurnUntilEmpty(*services[1]));
    QVERIFY(still);
}

void AsyncServiceTest::ownerIsTheThreadThatMadeTheService()
{
    QStringList calls;
    bool completed = false;
    OnAnotherThread([&] {
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

void AsyncServiceTest::destructionWaitsForTheRunningJob()
{
    auto service = std::make_unique<AsyncService>();
    QStringList calls;
    Gate started;
    std::atomic<bool> returned{false};
    OwnersWait destruction;
    std::unique_ptr<Task> const task(service->post([&](Reporter* reporter) {
        reporter->report(1);
        started.Open();
        destruction.Await();
        reporter->report(reporter->isCancelled() ? -1 : 2);
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
    DeliverQueued();
    QCOMPARE(calls, QStringList());
}

void AsyncServiceTest::destructionDropsTheJobsBehind_data()
{
    QTest::addColumn<bool>("longBefore");
    QTest::newRow("queued before the running job began") << true;
    QTest::newRow("queued while the job was running") << false;
}

void AsyncServiceTest::destructionDropsTheJobsBehind()
{
    QFETCH(bool, longBefore);
    auto service = std::make_unique<AsyncService>();
    QStringList calls;
    Gate queued;
    Gate started;
    std::atomic<bool> returned{false};
    std::atomic<int> ran{0};
    OwnersWait destruction;
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
    if (longBefore) {
        for (int i = 0; i < 10; ++i) {
            add([&](Reporter*) { ++ran; });
        }
    }
    queued.Open();
    started.Pass();
    QVERIFY(TurnUntilGone(*service, before));
    if (!longBefore) {
        for (int i = 0; i < 10; ++i) {
            add([&](Reporter*) { ++ran; });
        }
    }

    destruction.Begin();
    service.reset();

    QVERIFY(returned);
    DeliverQueued();
    QCOMPARE(ran.load(), 0);
    QCOMPARE(calls, QStringList());
}

void AsyncServiceTest::destructionLeavesUnstartedTasksToTheirMaker()
{
    QStringList deaths;
    auto service = std::make_unique<AsyncService>();
    std::unique_ptr<Task> const posted(service->post([witness = MakeWitness(deaths, "posted")](Reporter*) {}));
    auto own = std::make_unique<Task>();
    own->work = [witness = MakeWitness(deaths, "own")](Reporter*) {};
    service->post(own.get());
    service->cancel(own.get());
    QVERIFY(TurnUntilGone(*service, LetWorkerFinish(*service)));
    QVERIFY(service->contains(posted.get()) && service->contains(own.get()));

    service.reset();

    QCOMPARE(deaths, QStringList());
    QVERIFY(posted->work && own->work);
}

void AsyncServiceTest::destructionDropsWhatIsQueuedForTheOwner()
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

    DeliverQueued();
    QCOMPARE(calls, QStringList());
}

void AsyncServiceTest::ownerThreadNeedNotTurnItsLoop()
{
    std::atomic<int> ran{0};
    std::atomic<int> called{0};
    OnAnotherThread([&] {
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

void AsyncServiceTest::quitWorkerStartsAgainWithTheNextRun()
{
    QObject object;
    AsyncService service;
    service.attach(&object);
    QThread* const worker = object.thread();
    for (int round = 0; round < 3; ++round) {
        service.run(service.post([](Reporter*) { QThread::currentThread()->quit(); }));
        QVERIFY(TurnUntilEmpty(service));
        QVERIFY(QTest::qWaitFor([&] { return worker->isFinished(); }, Patience));
        DeliverQueued();
        QVERIFY(!worker->isRunning());

        bool finished = false;
        QThread* jobThread = nullptr;
        Task* const next = service.post([&](Reporter*) { jobThread = QThread::currentThread(); });
        next->onFinished = [&] { finished = true; };
        service.run(next);
        QVERIFY(worker->isRunning());
        QVERIFY(TurnUntilEmpty(service));
        QVERIFY(finished);
        QCOMPARE(jobThread, worker);
    }
}

// At each completion the thread is about to end: sooner or later a job comes in at every moment of that.
void AsyncServiceTest::quitWorkerLosesNoJobThatComesAsItEnds()
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
        // From at once to about as late as the thread takes to end.
        int const delay = completed % 200 * 500; // nanoseconds
        QElapsedTimer elapsed;
        elapsed.start();
        while (elapsed.nsecsElapsed() < delay) {
        }
        service.run(task);
    };

    next();
    QVERIFY(loop.Exec());

    QCOMPARE(completed, Rounds);
    QCOMPARE(ran.load(), Rounds);
    QVERIFY(service.empty());
}

void AsyncServiceTest::quitWorkerLosesNoJobThatIsQueued()
{
    constexpr int Count = 300;
    AsyncService service;
    std::mutex guard; // between one run of the thread and the next
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
    QVERIFY(TurnUntilEmpty(service));

    QVector<int> expected(Count);
    std::iota(expected.begin(), expected.end(), 0);
    QCOMPARE(jobs, expected);
    QCOMPARE(finished, expected);
}

namespace
{

using Misuse = void (*)(AsyncService& service);

} // namespace

Q_DECLARE_METATYPE(Misuse)

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
    QString text;
    QString file;
    QString function;
    int line = 0;
    try {
        misuse(service);
    } catch (std::invalid_argument const& error) {
        text = QString::fromUtf8(error.what());
        if (char const* const* const value = boost::get_error_info<boost::throw_file>(error)) {
            file = QString::fromUtf8(*value);
        }
        if (char const* const* const value = boost::get_error_info<boost::throw_function>(error)) {
            function = QString::fromUtf8(*value);
        }
        if (int const* const value = boost::get_error_info<boost::throw_line>(error)) {
            line = *value;
        }
    }

    QCOMPARE(text.section(QLatin1Char('\n'), 0, 0), message);
    QVERIFY2(text.section(QLatin1Char('\n'), 1).contains(QStringLiteral("AsyncService")), qPrintable(text));
    QCOMPARE(file, QStringLiteral("Util/AsyncService.cpp"));
    QVERIFY2(function.contains(QStringLiteral("AsyncService")) && function.contains(QLatin1Char('(')),
             qPrintable(function));
    QVERIFY(line > 0);
    QVERIFY(service.empty());
}

ZQTUTIL_TEST_MAIN(AsyncServiceTest)
#include "AsyncServiceTest.moc"

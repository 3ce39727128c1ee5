#include <support/TestCase.h>
#include <support/logs/LogCapture.h>
#include <unit/tasks/Tasks.h>

#include <Util/AsyncService.h>

#include <QtCore/QByteArrayList>
#include <QtCore/QThread>
#include <QtTest/QtTest>

#include <exception>
#include <functional>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

using namespace Zelkor::Testing;

namespace
{

struct Failure : std::runtime_error
{
    explicit Failure(int value)
        : std::runtime_error("failure")
        , number(value)
    {}
    int number;
};

/// A cancellation exception that an application defines.
class CustomCancelled : public Cancelled
{};

/// Function that sets the job of \a task, and installs \a callback as one of the callbacks of \a task.
using SetUpTask = void (*)(Task* task, std::function<void()> callback);

} // namespace

Q_DECLARE_METATYPE(Job)
Q_DECLARE_METATYPE(SetUpTask)

class AsyncServiceCompletionTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void outcomeCallsOneCallback_data();
    void outcomeCallsOneCallback();
    void errorIsTheThrownException();
    void errorOfAnyTypeIsKept();
    void errorWithoutCallbackIsStoredButNotLogged();
    void errorIsNullWithoutException_data();
    void errorIsNullWithoutException();
    void callbacksMayBeSetUntilTheCompletion();
    void callbacksMayPostAndRun();
    void callbacksAreDestroyedInReverseOrderAfterTheCall();
    void throwingCallbackStillFreesItsTask_data();
    void throwingCallbackStillFreesItsTask();
    void lastCallbackMayDestroyTheService_data();
    void lastCallbackMayDestroyTheService();

    // Tests with callbacks that run a nested event loop
    void otherTasksCompleteInsideACallback_data();
    void otherTasksCompleteInsideACallback();
    void serviceMayBeDestroyedInTheEventLoopOfACallback_data();
    void serviceMayBeDestroyedInTheEventLoopOfACallback();
};

void AsyncServiceCompletionTest::outcomeCallsOneCallback_data()
{
    QTest::addColumn<Job>("job");
    QTest::addColumn<bool>("hasOnFinished");
    QTest::addColumn<bool>("hasOnCancelled");
    QTest::addColumn<bool>("hasOnError");
    QTest::addColumn<QByteArrayList>("called");

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
        {"throws a subclass of Cancelled", [](Reporter*) { throw CustomCancelled(); }, Cancels},
        {"throws an exception", [](Reporter*) { throw std::runtime_error("error"); }, Throws},
        {"throws an exception that is no std::exception", [](Reporter*) { throw 5; }, Throws},
        {"throws a pointer to Cancelled", [](Reporter*) { throw static_cast<Cancelled*>(nullptr); }, Throws},
        {"is empty", Job(), Throws},
    };
    QByteArrayList const none;
    QByteArrayList const finished{"onFinished"};
    QByteArrayList const cancelled{"onCancelled"};
    QByteArrayList const error{"onError"};
    struct
    {
        char const* callbacks;
        bool hasOnFinished;
        bool hasOnCancelled;
        bool hasOnError;
        QByteArrayList called[3]; // for each Outcome: the callbacks that must be called
    } const table[] = {
        {"no callback", false, false, false, {none, none, none}},
        {"onFinished", true, false, false, {finished, finished, finished}},
        {"onCancelled", false, true, false, {none, cancelled, none}},
        {"onError", false, false, true, {none, none, error}},
        {"onFinished and onCancelled", true, true, false, {finished, cancelled, finished}},
        {"onFinished and onError", true, false, true, {finished, finished, error}},
        {"onCancelled and onError", false, true, true, {none, cancelled, error}},
        {"all callbacks", true, true, true, {finished, cancelled, error}},
    };
    for (auto const& job : jobs) {
        for (auto const& row : table) {
            QTest::addRow("%s, %s", job.name, row.callbacks)
                << job.job << row.hasOnFinished << row.hasOnCancelled << row.hasOnError << row.called[job.outcome];
        }
    }
}

void AsyncServiceCompletionTest::outcomeCallsOneCallback()
{
    QFETCH(Job, job);
    QFETCH(bool, hasOnFinished);
    QFETCH(bool, hasOnCancelled);
    QFETCH(bool, hasOnError);
    QFETCH(QByteArrayList, called);
    AsyncService service;
    QStringList destroyed;
    QByteArrayList calls;
    bool registeredInside = false;
    bool onAnotherThread = false;
    Task* task = nullptr;
    auto const recordCall = [&](char const* name) {
        calls += name;
        registeredInside = service.contains(task) || !service.empty();
        onAnotherThread = QThread::currentThread() != thread();
    };
    task = service.post(job);
    auto logger = MakeDestructionLogger(destroyed, "task");
    if (hasOnFinished) {
        task->onFinished = [&, logger] { recordCall("onFinished"); };
    }
    if (hasOnCancelled) {
        task->onCancelled = [&, logger] { recordCall("onCancelled"); };
    }
    if (hasOnError) {
        task->onError = [&, logger](std::exception_ptr const&) { recordCall("onError"); };
    }
    task->onProgress = [logger](int) {};
    std::weak_ptr<void> const alive = logger;
    logger.reset();

    service.run(task);
    QVERIFY(WaitUntilEmpty(service));
    DeliverQueuedEvents();

    QCOMPARE(calls, called);
    QVERIFY(!registeredInside);
    QVERIFY(!onAnotherThread);
    QVERIFY2(alive.expired(), "The task is not deleted");
}

void AsyncServiceCompletionTest::errorIsTheThrownException()
{
    AsyncService service;
    int number = 0;
    bool isTaskError = false;
    bool isTaskIntact = false;
    Task* const task = service.post([](Reporter*) { throw Failure(42); });
    task->onError = [&](std::exception_ptr const& error) {
        isTaskError = error == task->error;
        isTaskIntact = task->service == &service && task->work;
        try {
            std::rethrow_exception(error);
        } catch (Failure const& failure) {
            number = failure.number;
        }
    };

    service.run(task);
    QVERIFY(WaitUntilEmpty(service));

    QCOMPARE(number, 42);
    QVERIFY(isTaskError);
    QVERIFY(isTaskIntact);
}

void AsyncServiceCompletionTest::errorOfAnyTypeIsKept()
{
    AsyncService service;
    std::vector<std::exception_ptr> errors;
    for (Job const& job : {Job([](Reporter*) { throw 7; }), Job()}) {
        Task* const task = service.post(job);
        task->onError = [&](std::exception_ptr const& error) { errors.push_back(error); };
        service.run(task);
    }
    QVERIFY(WaitUntilEmpty(service));

    QCOMPARE(errors.size(), std::size_t{2});
    QVERIFY_EXCEPTION_THROWN(std::rethrow_exception(errors[0]), int);
    QVERIFY_EXCEPTION_THROWN(std::rethrow_exception(errors[1]), std::bad_function_call);
}

void AsyncServiceCompletionTest::errorWithoutCallbackIsStoredButNotLogged()
{
    LogCapture const capture;
    AsyncService service;
    std::exception_ptr error;
    Task* const task = service.post([](Reporter*) { throw Failure(1); });
    task->onFinished = [&] { error = task->error; };

    service.run(task);
    QVERIFY(WaitUntilEmpty(service));

    QVERIFY(error);
    QVERIFY_EXCEPTION_THROWN(std::rethrow_exception(error), Failure);
    QCOMPARE(capture.Texts(), QStringList());
}

void AsyncServiceCompletionTest::errorIsNullWithoutException_data()
{
    QTest::addColumn<Job>("job");
    QTest::newRow("returns") << Job([](Reporter*) {});
    QTest::newRow("throws Cancelled") << Job([](Reporter*) { throw Cancelled(); });
}

void AsyncServiceCompletionTest::errorIsNullWithoutException()
{
    QFETCH(Job, job);
    AsyncService service;
    bool called = false;
    bool isErrorNull = false;
    Task* const task = service.post(job);
    task->onFinished = [&] {
        called = true;
        isErrorNull = !task->error;
    };

    service.run(task);
    QVERIFY(WaitUntilEmpty(service));

    QVERIFY(called);
    QVERIFY(isErrorNull);
}

void AsyncServiceCompletionTest::callbacksMayBeSetUntilTheCompletion()
{
    AsyncService service;
    QStringList calls;
    Task* const first = service.post([](Reporter*) {});
    Task* const second = service.post([](Reporter*) { throw Cancelled(); });
    first->onFinished = [&] { calls += QStringLiteral("early"); };
    service.run(first);
    service.run(second);
    WaitForWorker(service);

    first->onFinished = [&] { calls += QStringLiteral("finished"); };
    second->onCancelled = [&] { calls += QStringLiteral("cancelled"); };
    QVERIFY(WaitUntilEmpty(service));

    QCOMPARE(calls, (QStringList{QStringLiteral("finished"), QStringLiteral("cancelled")}));
}

void AsyncServiceCompletionTest::callbacksMayPostAndRun()
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
    QVERIFY(WaitUntilEmpty(service));

    QCOMPARE(calls, (QStringList{QStringLiteral("finished"), QStringLiteral("registered"), QStringLiteral("cancelled"),
                                 QStringLiteral("error")}));
}

void AsyncServiceCompletionTest::callbacksAreDestroyedInReverseOrderAfterTheCall()
{
    struct LoggingError
    {
        std::shared_ptr<void> logger;
    };
    AsyncService service;
    QStringList destroyed;
    QStringList destroyedAtTheCall;
    // The job moves this logger into the exception that it throws. The owner thread destroys the exception.
    auto* const exceptionLogger = new std::shared_ptr<void>(MakeDestructionLogger(destroyed, "error"));
    auto const capture = [&](char const* name) {
        return [logger = MakeDestructionLogger(destroyed, name)] { static_cast<void>(logger); };
    };
    Task* const task = service.post([exceptionLogger, logger = capture("work")](Reporter*) {
        LoggingError const error{std::move(*exceptionLogger)};
        delete exceptionLogger;
        throw error;
    });
    task->onFinished = capture("finished");
    task->onCancelled = capture("cancelled");
    task->onProgress = [logger = capture("progress")](int) {};
    task->onError = [&, logger = capture("onError")](std::exception_ptr const&) { destroyedAtTheCall = destroyed; };

    service.run(task);
    QVERIFY(WaitUntilEmpty(service));

    QCOMPARE(destroyedAtTheCall, QStringList());
    QCOMPARE(destroyed, (QStringList{QStringLiteral("onError"), QStringLiteral("progress"), QStringLiteral("cancelled"),
                                     QStringLiteral("finished"), QStringLiteral("work"), QStringLiteral("error")}));
}

void AsyncServiceCompletionTest::throwingCallbackStillFreesItsTask_data()
{
    QTest::addColumn<Job>("job");
    QTest::newRow("onFinished") << Job([](Reporter*) {});
    QTest::newRow("onCancelled") << Job([](Reporter*) { throw Cancelled(); });
    QTest::newRow("onError") << Job([](Reporter*) { throw Failure(1); });
}

void AsyncServiceCompletionTest::throwingCallbackStillFreesItsTask()
{
    QFETCH(Job, job);
    AsyncService service;
    QStringList destroyed;
    Task* const task = service.post(job);
    task->onProgress = [logger = MakeDestructionLogger(destroyed, "task")](int) {};
    task->onFinished = [] { throw CallbackError(); };
    task->onCancelled = [] { throw CallbackError(); };
    task->onError = [](std::exception_ptr const&) { throw CallbackError(); };

    service.run(task);
    QVERIFY(WaitUntilThrown<CallbackError>());

    QCOMPARE(destroyed, QStringList{QStringLiteral("task")});
    QVERIFY(service.empty());
    bool finished = false;
    Task* const next = service.post([](Reporter*) {});
    next->onFinished = [&] { finished = true; };
    service.run(next);
    QVERIFY(WaitUntilEmpty(service));
    QVERIFY(finished);
}

void AsyncServiceCompletionTest::lastCallbackMayDestroyTheService_data()
{
    throwingCallbackStillFreesItsTask_data();
}

void AsyncServiceCompletionTest::lastCallbackMayDestroyTheService()
{
    QFETCH(Job, job);
    auto service = std::make_unique<AsyncService>();
    QStringList destroyed;
    QStringList destroyedInside{QStringLiteral("not called")};
    auto const destroy = [&] {
        service.reset();
        destroyedInside = destroyed;
    };
    Task* const task = service->post(job);
    task->onProgress = [logger = MakeDestructionLogger(destroyed, "task")](int) {};
    task->onFinished = destroy;
    task->onCancelled = destroy;
    task->onError = [&](std::exception_ptr const&) { destroy(); };

    service->run(task);
    QVERIFY(QTest::qWaitFor([&] { return !service; }, TimeoutMs));
    DeliverQueuedEvents();

    QCOMPARE(destroyedInside, QStringList());
    QCOMPARE(destroyed, QStringList{QStringLiteral("task")});
}

void AsyncServiceCompletionTest::otherTasksCompleteInsideACallback_data()
{
    QTest::addColumn<SetUpTask>("setUpTask");
    auto const add = [](char const* name, SetUpTask setUpTask) { QTest::newRow(name) << setUpTask; };
    add("onFinished", [](Task* task, std::function<void()> callback) {
        task->work = [](Reporter*) {};
        task->onFinished = std::move(callback);
    });
    add("onCancelled", [](Task* task, std::function<void()> callback) {
        task->work = [](Reporter*) { throw Cancelled(); };
        task->onCancelled = std::move(callback);
    });
    add("onError", [](Task* task, std::function<void()> callback) {
        task->work = [](Reporter*) { throw Failure(1); };
        task->onError = [callback = std::move(callback)](std::exception_ptr const&) { callback(); };
    });
}

void AsyncServiceCompletionTest::otherTasksCompleteInsideACallback()
{
    QFETCH(SetUpTask, setUpTask);
    AsyncService service;
    QStringList destroyed;
    QStringList calls;
    Task* const task = service.post(Job());
    Task* const queued = service.post([](Reporter* reporter) { reporter->report(1); });
    queued->onProgress = [&](int) { calls += QStringLiteral("progress"); };
    queued->onFinished = [&, logger = MakeDestructionLogger(destroyed, "queued")] {
        calls += QStringLiteral("finished");
    };
    bool isRegisteredInside = true;
    bool didOthersComplete = false;
    QStringList destroyedInside;
    setUpTask(task, [&, logger = MakeDestructionLogger(destroyed, "task")] {
        isRegisteredInside = service.contains(task);
        Task* const added = service.post([](Reporter*) { throw Cancelled(); });
        added->onCancelled = [&, other = MakeDestructionLogger(destroyed, "added")] {
            calls += QStringLiteral("cancelled");
        };
        service.run(added);
        didOthersComplete = WaitUntilEmpty(service);
        calls += QStringLiteral("return");
        destroyedInside = destroyed;
    });

    service.run(task);
    service.run(queued);
    QVERIFY(QTest::qWaitFor([&] { return destroyed.size() == 3; }, TimeoutMs));

    QCOMPARE(calls, (QStringList{QStringLiteral("progress"), QStringLiteral("finished"), QStringLiteral("cancelled"),
                                 QStringLiteral("return")}));
    QVERIFY(!isRegisteredInside);
    QVERIFY(didOthersComplete);
    QCOMPARE(destroyedInside, (QStringList{QStringLiteral("queued"), QStringLiteral("added")}));
    QCOMPARE(destroyed, (QStringList{QStringLiteral("queued"), QStringLiteral("added"), QStringLiteral("task")}));
    QVERIFY(service.empty());
}

void AsyncServiceCompletionTest::serviceMayBeDestroyedInTheEventLoopOfACallback_data()
{
    otherTasksCompleteInsideACallback_data();
}

void AsyncServiceCompletionTest::serviceMayBeDestroyedInTheEventLoopOfACallback()
{
    QFETCH(SetUpTask, setUpTask);
    auto service = std::make_unique<AsyncService>();
    QStringList destroyed;
    bool isServiceDestroyedInside = false;
    QStringList destroyedInside;
    Task* const task = service->post(Job());
    setUpTask(task, [&, logger = MakeDestructionLogger(destroyed, "task")] {
        Task* const added = service->post([](Reporter*) {});
        added->onFinished = [&, other = MakeDestructionLogger(destroyed, "added")] { service.reset(); };
        service->run(added);
        isServiceDestroyedInside = QTest::qWaitFor([&] { return !service; }, TimeoutMs);
        destroyedInside = destroyed;
    });

    service->run(task);
    QVERIFY(QTest::qWaitFor([&] { return destroyed.size() == 2; }, TimeoutMs));
    DeliverQueuedEvents();

    QVERIFY(isServiceDestroyedInside);
    QCOMPARE(destroyedInside, QStringList{QStringLiteral("added")});
    QCOMPARE(destroyed, (QStringList{QStringLiteral("added"), QStringLiteral("task")}));
}

ZQTUTIL_TEST_MAIN(AsyncServiceCompletionTest)
#include "AsyncServiceCompletionTest.moc"

#include <support/TestCase.h>
#include <support/logs/LogCapture.h>
#include <unit/tasks/Tasks.h>

#include <Util/AsyncService.h>

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

/// A cancellation of the application's own.
class Abandoned : public Cancelled
{};

/// Gives a task a job, and the call-back of that job's outcome.
using Ending = void (*)(Task* task, std::function<void()> callBack);

} // namespace

Q_DECLARE_METATYPE(Job)
Q_DECLARE_METATYPE(Ending)

class AsyncServiceCompletionTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
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

    // Call-backs with an event loop of their own
    void othersCompleteInsideACallBack_data();
    void othersCompleteInsideACallBack();
    void serviceMayGoInsideALoopOfACallBack_data();
    void serviceMayGoInsideALoopOfACallBack();
};

void AsyncServiceCompletionTest::outcomeCallsOneCallBack_data()
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

void AsyncServiceCompletionTest::outcomeCallsOneCallBack()
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
    std::weak_ptr<void> const alive = witness;
    witness.reset();

    service.run(task);
    QVERIFY(TurnUntilEmpty(service));
    DeliverQueued();

    QCOMPARE(calls, called);
    QVERIFY(!registeredInside);
    QVERIFY(!onAnotherThread);
    QVERIFY2(alive.expired(), "The task is not freed");
}

void AsyncServiceCompletionTest::errorIsTheExceptionThatEscaped()
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

void AsyncServiceCompletionTest::errorOfAnyTypeIsKept()
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

void AsyncServiceCompletionTest::errorWithoutCallBackStaysInTheTaskAndOutOfTheLog()
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

void AsyncServiceCompletionTest::errorIsEmptyWithoutException_data()
{
    QTest::addColumn<Job>("job");
    QTest::newRow("returns") << Job([](Reporter*) {});
    QTest::newRow("throws Cancelled") << Job([](Reporter*) { throw Cancelled(); });
}

void AsyncServiceCompletionTest::errorIsEmptyWithoutException()
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

void AsyncServiceCompletionTest::callBacksAreLookedUpAtCompletion()
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

void AsyncServiceCompletionTest::callBacksMayPostAndRun()
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

void AsyncServiceCompletionTest::callBacksAreDestroyedInReverseOrderAfterTheCall()
{
    struct Fatal
    {
        std::shared_ptr<void> witness;
    };
    AsyncService service;
    QStringList deaths;
    QStringList deathsAtTheCall;
    // In no thread but the owner's hands once the job has thrown.
    auto* const thrown = new std::shared_ptr<void>(MakeWitness(deaths, "error"));
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

void AsyncServiceCompletionTest::callBackThatThrowsStillFreesItsTask_data()
{
    QTest::addColumn<Job>("job");
    QTest::newRow("onFinished") << Job([](Reporter*) {});
    QTest::newRow("onCancelled") << Job([](Reporter*) { throw Cancelled(); });
    QTest::newRow("onError") << Job([](Reporter*) { throw Failure(1); });
}

void AsyncServiceCompletionTest::callBackThatThrowsStillFreesItsTask()
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

void AsyncServiceCompletionTest::lastCallBackMayDestroyTheService_data()
{
    callBackThatThrowsStillFreesItsTask_data();
}

void AsyncServiceCompletionTest::lastCallBackMayDestroyTheService()
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

void AsyncServiceCompletionTest::othersCompleteInsideACallBack_data()
{
    QTest::addColumn<Ending>("ending");
    auto const add = [](char const* name, Ending ending) { QTest::newRow(name) << ending; };
    add("onFinished", [](Task* task, std::function<void()> callBack) {
        task->work = [](Reporter*) {};
        task->onFinished = std::move(callBack);
    });
    add("onCancelled", [](Task* task, std::function<void()> callBack) {
        task->work = [](Reporter*) { throw Cancelled(); };
        task->onCancelled = std::move(callBack);
    });
    add("onError", [](Task* task, std::function<void()> callBack) {
        task->work = [](Reporter*) { throw Failure(1); };
        task->onError = [callBack = std::move(callBack)](std::exception_ptr const&) { callBack(); };
    });
}

void AsyncServiceCompletionTest::othersCompleteInsideACallBack()
{
    QFETCH(Ending, ending);
    AsyncService service;
    QStringList deaths;
    QStringList calls;
    Task* const task = service.post(Job());
    Task* const queued = service.post([](Reporter* reporter) { reporter->report(1); });
    queued->onProgress = [&](int) { calls += QStringLiteral("progress"); };
    queued->onFinished = [&, witness = MakeWitness(deaths, "queued")] { calls += QStringLiteral("finished"); };
    ending(task, [&, witness = MakeWitness(deaths, "task")] {
        bool const registered = service.contains(task);
        Task* const added = service.post([](Reporter*) { throw Cancelled(); });
        added->onCancelled = [&, other = MakeWitness(deaths, "added")] { calls += QStringLiteral("cancelled"); };
        service.run(added);
        bool const completed = TurnUntilEmpty(service);
        calls += QStringLiteral("end, registered: %1, others completed: %2, dead: %3")
                     .arg(registered)
                     .arg(completed)
                     .arg(deaths.join(QLatin1Char(' ')));
    });

    service.run(task);
    service.run(queued);
    QVERIFY(QTest::qWaitFor([&] { return deaths.size() == 3; }, Patience));

    QCOMPARE(calls, (QStringList{QStringLiteral("progress"), QStringLiteral("finished"), QStringLiteral("cancelled"),
                                 QStringLiteral("end, registered: 0, others completed: 1, dead: queued added")}));
    QCOMPARE(deaths.join(QLatin1Char(' ')), QStringLiteral("queued added task"));
    QVERIFY(service.empty());
}

void AsyncServiceCompletionTest::serviceMayGoInsideALoopOfACallBack_data()
{
    othersCompleteInsideACallBack_data();
}

void AsyncServiceCompletionTest::serviceMayGoInsideALoopOfACallBack()
{
    QFETCH(Ending, ending);
    auto service = std::make_unique<AsyncService>();
    QStringList deaths;
    QStringList calls;
    Task* const task = service->post(Job());
    ending(task, [&, witness = MakeWitness(deaths, "task")] {
        Task* const added = service->post([](Reporter*) {});
        added->onFinished = [&, other = MakeWitness(deaths, "added")] { service.reset(); };
        service->run(added);
        bool const gone = QTest::qWaitFor([&] { return !service; }, Patience);
        calls += QStringLiteral("end, service gone: %1, dead: %2").arg(gone).arg(deaths.join(QLatin1Char(' ')));
    });

    service->run(task);
    QVERIFY(QTest::qWaitFor([&] { return deaths.size() == 2; }, Patience));
    DeliverQueued();

    QCOMPARE(calls, QStringList{QStringLiteral("end, service gone: 1, dead: added")});
    QCOMPARE(deaths.join(QLatin1Char(' ')), QStringLiteral("added task"));
}

ZQTUTIL_TEST_MAIN(AsyncServiceCompletionTest)
#include "AsyncServiceCompletionTest.moc"

#include <support/TestCase.h>
#include <unit/tasks/Tasks.h>

#include <Util/AsyncService.h>

#include <QtTest/QtTest>

#include <chrono>
#include <thread>
#include <vector>

using namespace Zelkor::Testing;

class AsyncServiceCancelTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void cancelSetsTheFlag_data();
    void cancelSetsTheFlag();
    void cancelReachesARunningJob();
    void cancelOfOneTaskLeavesTheOthers();
    void cancelAfterTheJobChangesNothing();
    void cancelOfUnknownTasksDoesNothing();
};

void AsyncServiceCancelTest::cancelSetsTheFlag_data()
{
    QTest::addColumn<bool>("cancelBeforeRun");
    QTest::addColumn<bool>("cancelWhileQueued");
    QTest::newRow("before the run") << true << false;
    QTest::newRow("while queued") << false << true;
    QTest::newRow("never") << false << false;
}

void AsyncServiceCancelTest::cancelSetsTheFlag()
{
    QFETCH(bool, cancelBeforeRun);
    QFETCH(bool, cancelWhileQueued);
    bool const isCancelled = cancelBeforeRun || cancelWhileQueued;
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

    if (cancelBeforeRun) {
        service.cancel(task);
        QVERIFY(service.contains(task));
    }
    service.run(blocker);
    service.run(task);
    if (cancelWhileQueued) {
        service.cancel(task);
        QVERIFY(service.contains(task));
    }
    go.Open();
    QVERIFY(WaitUntilEmpty(service));

    QVERIFY(ran);
    QCOMPARE(sawCancelled, isCancelled);
    QCOMPARE(calls, QStringList{isCancelled ? QStringLiteral("cancelled") : QStringLiteral("finished")});
}

void AsyncServiceCancelTest::cancelReachesARunningJob()
{
    AsyncService service;
    Gate started;
    bool cancelled = false;
    Task* const task = service.post([&](Reporter* reporter) {
        bool const cancelledAtStart = reporter->isCancelled();
        started.Open();
        auto const deadline = std::chrono::steady_clock::now() + Timeout;
        while (!cancelledAtStart && std::chrono::steady_clock::now() < deadline) {
            reporter->checkCancelled();
            std::this_thread::yield();
        }
    });
    task->onCancelled = [&] { cancelled = true; };
    service.run(task);
    started.Pass();

    service.cancel(task);
    QVERIFY(WaitUntilEmpty(service));

    QVERIFY(cancelled);
}

void AsyncServiceCancelTest::cancelOfOneTaskLeavesTheOthers()
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
    QVERIFY(WaitUntilEmpty(service));

    QCOMPARE(calls,
             (QStringList{QStringLiteral("finished 0"), QStringLiteral("cancelled 1"), QStringLiteral("finished 2")}));
}

void AsyncServiceCancelTest::cancelAfterTheJobChangesNothing()
{
    AsyncService service;
    QStringList calls;
    Task* const task = service.post([](Reporter* reporter) { reporter->checkCancelled(); });
    task->onFinished = [&] { calls += QStringLiteral("finished"); };
    task->onCancelled = [&] { calls += QStringLiteral("cancelled"); };
    service.run(task);
    WaitForWorker(service);

    service.cancel(task);
    QVERIFY(WaitUntilEmpty(service));
    service.cancel(task);

    QCOMPARE(calls, QStringList{QStringLiteral("finished")});
    QVERIFY(service.empty());
}

void AsyncServiceCancelTest::cancelOfUnknownTasksDoesNothing()
{
    AsyncService service;
    Task task;
    service.cancel(&task);
    service.cancel(nullptr);
    QVERIFY(service.empty());
    QVERIFY(!service.contains(&task));
}

ZQTUTIL_TEST_MAIN(AsyncServiceCancelTest)
#include "AsyncServiceCancelTest.moc"

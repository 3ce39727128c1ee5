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
    QTest::addColumn<QString>("when");
    QTest::newRow("before the run") << QStringLiteral("before");
    QTest::newRow("while queued") << QStringLiteral("queued");
    QTest::newRow("not at all") << QString();
}

void AsyncServiceCancelTest::cancelSetsTheFlag()
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

void AsyncServiceCancelTest::cancelReachesARunningJob()
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
    QVERIFY(TurnUntilEmpty(service));

    QCOMPARE(calls.join(QLatin1Char(' ')), QStringLiteral("finished 0 cancelled 1 finished 2"));
}

void AsyncServiceCancelTest::cancelAfterTheJobChangesNothing()
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

#include <support/TestCase.h>
#include <unit/tasks/Tasks.h>

#include <Util/AsyncService.h>

#include <QtCore/QThread>
#include <QtTest/QtTest>

#include <climits>
#include <memory>
#include <numeric>
#include <thread>
#include <vector>

using namespace Zelkor::Testing;

class AsyncServiceProgressTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    // Tests of the delivery of progress
    void progressIsDeliveredInOrder();
    void progressIsDeliveredWhileTheJobRuns();
    void progressWithoutCallbackIsDropped();
    void progressIsQueuedOnTheOwnerThreadToo();
    void progressCallbackMayBeSetUntilTheDelivery_data();
    void progressCallbackMayBeSetUntilTheDelivery();
    void progressOfATaskThatIsNotRunningIsDelivered();
    void progressQueuedBehindTheCompletionIsDropped();
    void progressAfterTheCompletionIsDropped();
    void progressOfUnknownTasksIsDropped();
    void progressIsDeliveredByTheServiceOfItsTask_data();
    void progressIsDeliveredByTheServiceOfItsTask();
    void progressMayBeReportedOnAnyThread();
    void progressCallbackMayPostAndRun();
    void throwingProgressCallbackKeepsTheTaskRegistered();

    // Tests with progress callbacks that run a nested event loop
    void taskLivesUntilItsProgressCallbackReturns();
    void taskLivesUntilItsOutermostProgressCallbackReturns();
    void taskLivesThroughProgressOfAnother();
    void otherTaskCompletesInsideAProgressCallback();
    void serviceMayBeDestroyedInsideAProgressCallback_data();
    void serviceMayBeDestroyedInsideAProgressCallback();
};

void AsyncServiceProgressTest::progressIsDeliveredInOrder()
{
    AsyncService service;
    QVector<int> const reported{5, 50, 100, 100, 100, 0, -1, INT_MIN, INT_MAX, 101, 5};
    QVector<int> values;
    int valuesAtCompletion = 0;
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
    task->onFinished = [&] { valuesAtCompletion = values.size(); };

    service.run(task);
    QVERIFY(WaitUntilEmpty(service));
    DeliverQueuedEvents();

    QCOMPARE(values, reported);
    QCOMPARE(valuesAtCompletion, reported.size());
    QVERIFY(!onAnotherThread);
    QVERIFY(!unregistered);
}

void AsyncServiceProgressTest::progressIsDeliveredWhileTheJobRuns()
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
    QVERIFY(WaitUntilEmpty(service));

    QVERIFY(passed);
}

void AsyncServiceProgressTest::progressWithoutCallbackIsDropped()
{
    AsyncService service;
    bool finished = false;
    Task* const task = service.post([](Reporter* reporter) { reporter->report(1); });
    task->onFinished = [&] { finished = true; };

    service.run(task);
    QVERIFY(WaitUntilEmpty(service));

    QVERIFY(finished);
}

void AsyncServiceProgressTest::progressIsQueuedOnTheOwnerThreadToo()
{
    AsyncService service;
    QVector<int> values;
    Task* const task = service.post([](Reporter*) {});
    task->onProgress = [&](int value) { values += value; };

    service.report(task, 3);
    QCOMPARE(values, QVector<int>());
    DeliverQueuedEvents();
    QCOMPARE(values, QVector<int>{3});

    service.run(task);
    QVERIFY(WaitUntilEmpty(service));
}

void AsyncServiceProgressTest::progressCallbackMayBeSetUntilTheDelivery_data()
{
    QTest::addColumn<bool>("before");
    QTest::addColumn<bool>("after");
    QTest::addColumn<QString>("called");
    QTest::newRow("set after the report") << false << true << QStringLiteral("after");
    QTest::newRow("replaced after the report") << true << true << QStringLiteral("after");
    QTest::newRow("cleared after the report") << true << false << QString();
}

void AsyncServiceProgressTest::progressCallbackMayBeSetUntilTheDelivery()
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
    WaitForWorker(service);

    task->onProgress = nullptr;
    if (after) {
        task->onProgress = [&](int) { calls += QStringLiteral("after"); };
    }
    QVERIFY(WaitUntilEmpty(service));

    QCOMPARE(calls, called);
}

void AsyncServiceProgressTest::progressOfATaskThatIsNotRunningIsDelivered()
{
    AsyncService service;
    Gate go;
    QVector<int> values;
    Task* const blocker = service.post([&](Reporter*) { go.Pass(); });
    Task* const task = service.post([](Reporter*) {});
    task->onProgress = [&](int value) { values += value; };

    service.report(task, 1);
    DeliverQueuedEvents();
    service.run(blocker);
    service.run(task);
    service.report(task, 2);
    DeliverQueuedEvents();

    QCOMPARE(values, (QVector<int>{1, 2}));
    go.Open();
    QVERIFY(WaitUntilEmpty(service));
}

void AsyncServiceProgressTest::progressQueuedBehindTheCompletionIsDropped()
{
    AsyncService service;
    QVector<int> values;
    bool finished = false;
    Task* const task = service.post([](Reporter* reporter) { reporter->report(1); });
    task->onProgress = [&](int value) { values += value; };
    task->onFinished = [&] { finished = true; };
    service.run(task);
    WaitForWorker(service);

    std::thread([&] { service.report(task, 2); }).join();
    service.report(task, 3);
    QVERIFY(service.contains(task));
    QVERIFY(WaitUntilEmpty(service));
    DeliverQueuedEvents();

    QVERIFY(finished);
    QCOMPARE(values, QVector<int>{1});
}

void AsyncServiceProgressTest::progressAfterTheCompletionIsDropped()
{
    AsyncService service;
    QVector<int> values;
    Task* const task = service.post([](Reporter*) {});
    task->onProgress = [&](int value) { values += value; };
    service.run(task);
    QVERIFY(WaitUntilEmpty(service));

    std::thread([&] { service.report(task, 1); }).join();
    DeliverQueuedEvents();

    QCOMPARE(values, QVector<int>());
    QVERIFY(service.empty());
}

void AsyncServiceProgressTest::progressOfUnknownTasksIsDropped()
{
    AsyncService service;
    QVector<int> values;
    Task task;
    task.onProgress = [&](int value) { values += value; };

    service.report(&task, 1);
    service.report(nullptr, 1);
    DeliverQueuedEvents();

    QCOMPARE(values, QVector<int>());
    QVERIFY(service.empty());
}

void AsyncServiceProgressTest::progressIsDeliveredByTheServiceOfItsTask_data()
{
    QTest::addColumn<bool>("isNested");
    QTest::newRow("consecutive deliveries") << false;
    QTest::newRow("nested deliveries") << true;
}

void AsyncServiceProgressTest::progressIsDeliveredByTheServiceOfItsTask()
{
    QFETCH(bool, isNested);
    AsyncService first;
    AsyncService second;
    QStringList values;
    auto const record = [&](char const* service) {
        return [&values, isNested, service](int value) {
            values += QStringLiteral("%1 %2").arg(QLatin1String(service)).arg(value);
            if (isNested) {
                DeliverQueuedEvents();
            }
        };
    };
    Task* const one = first.post([](Reporter*) {});
    Task* const two = second.post([](Reporter*) {});
    one->onProgress = record("first");
    two->onProgress = record("second");

    first.report(one, 1);
    second.report(two, 2);
    first.report(one, 3);
    DeliverQueuedEvents();

    QCOMPARE(values, (QStringList{QStringLiteral("first 1"), QStringLiteral("second 2"), QStringLiteral("first 3")}));
    first.run(one);
    second.run(two);
    QVERIFY(WaitUntilEmpty(first) && WaitUntilEmpty(second));
}

void AsyncServiceProgressTest::progressMayBeReportedOnAnyThread()
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
    QVERIFY(WaitUntilEmpty(service));

    QVector<int> expected(Values);
    std::iota(expected.begin(), expected.end(), 0);
    QCOMPARE(values, QVector<QVector<int>>(Threads, expected));
}

void AsyncServiceProgressTest::progressCallbackMayPostAndRun()
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
    QVERIFY(WaitUntilEmpty(service));

    QCOMPARE(calls, (QStringList{QStringLiteral("first"), QStringLiteral("next")}));
}

void AsyncServiceProgressTest::throwingProgressCallbackKeepsTheTaskRegistered()
{
    AsyncService service;
    QStringList destroyed;
    Gate go;
    QVector<int> values;
    bool finished = false;
    Task* const task = service.post([&](Reporter* reporter) {
        reporter->report(1);
        go.Pass();
        reporter->report(2);
    });
    task->onProgress = [&, logger = MakeDestructionLogger(destroyed, "task")](int value) {
        values += value;
        if (value == 1) {
            throw CallbackError();
        }
    };
    task->onFinished = [&] { finished = true; };

    service.run(task);
    QVERIFY(WaitUntilThrown<CallbackError>());
    QVERIFY(service.contains(task));
    QCOMPARE(destroyed, QStringList());
    go.Open();
    QVERIFY(WaitUntilEmpty(service));

    QCOMPARE(values, (QVector<int>{1, 2}));
    QVERIFY(finished);
    QCOMPARE(destroyed, QStringList{QStringLiteral("task")});
}

void AsyncServiceProgressTest::taskLivesUntilItsProgressCallbackReturns()
{
    AsyncService service;
    QStringList destroyed;
    QStringList calls;
    Task* const task = service.post([](Reporter* reporter) {
        reporter->report(1);
        reporter->report(2);
    });
    task->onProgress = [&, logger = MakeDestructionLogger(destroyed, "task")](int value) {
        calls += QStringLiteral("call %1").arg(value);
        if (value == 1 && !WaitUntilEmpty(service)) {
            calls += QStringLiteral("never empty");
        }
        calls += QStringLiteral("return %1, destroyed: %2").arg(value).arg(destroyed.size());
    };
    task->onFinished = [&] { calls += QStringLiteral("finished"); };

    service.run(task);
    QVERIFY(QTest::qWaitFor([&] { return !destroyed.isEmpty(); }, TimeoutMs));

    QCOMPARE(calls,
             (QStringList{QStringLiteral("call 1"), QStringLiteral("call 2"), QStringLiteral("return 2, destroyed: 0"),
                          QStringLiteral("finished"), QStringLiteral("return 1, destroyed: 0")}));
    QVERIFY(service.empty());
}

void AsyncServiceProgressTest::taskLivesUntilItsOutermostProgressCallbackReturns()
{
    AsyncService service;
    QStringList destroyed;
    QStringList calls;
    Task* const task = service.post([](Reporter* reporter) {
        reporter->report(1);
        reporter->report(2);
    });
    // The job reports progress twice, so this callback is called twice. Each call runs a nested event loop, and the
    // second call runs inside the event loop of the first call. The task completes in the innermost event loop.
    task->onProgress = [&, logger = MakeDestructionLogger(destroyed, "task")](int value) {
        if (!WaitUntilEmpty(service)) {
            calls += QStringLiteral("never empty");
        }
        calls += QStringLiteral("return %1, destroyed: %2").arg(value).arg(destroyed.size());
    };

    service.run(task);
    QVERIFY(QTest::qWaitFor([&] { return !destroyed.isEmpty(); }, TimeoutMs));

    QCOMPARE(calls, (QStringList{QStringLiteral("return 2, destroyed: 0"), QStringLiteral("return 1, destroyed: 0")}));
    QCOMPARE(destroyed.size(), 1);
}

void AsyncServiceProgressTest::taskLivesThroughProgressOfAnother()
{
    AsyncService service;
    QStringList destroyed;
    QStringList destroyedInFirst;
    QStringList destroyedInSecond{QStringLiteral("not called")};
    bool inTime = true;
    Gate go;
    Task* const first = service.post([&](Reporter* reporter) {
        reporter->report(1);
        go.Pass();
    });
    Task* const second = service.post([](Reporter*) {});
    // The progress of the second task is delivered while the progress callback of the first task runs. The first task
    // completes while both progress callbacks run.
    first->onProgress = [&, logger = MakeDestructionLogger(destroyed, "first")](int) {
        service.report(second, 1);
        inTime = WaitUntilEmpty(service) && inTime;
        destroyedInFirst = destroyed;
    };
    second->onProgress = [&, logger = MakeDestructionLogger(destroyed, "second")](int) {
        go.Open();
        inTime = WaitUntilCompleted(service, first) && inTime;
        destroyedInSecond = destroyed;
        service.run(second);
    };

    service.run(first);
    QVERIFY(QTest::qWaitFor([&] { return destroyed.size() == 2; }, TimeoutMs));

    QVERIFY(inTime);
    QCOMPARE(destroyedInSecond, QStringList());
    QCOMPARE(destroyedInFirst, QStringList{QStringLiteral("second")});
    QCOMPARE(destroyed, (QStringList{QStringLiteral("second"), QStringLiteral("first")}));
}

void AsyncServiceProgressTest::otherTaskCompletesInsideAProgressCallback()
{
    AsyncService service;
    QStringList destroyed;
    QStringList destroyedInside;
    Gate go;
    Task* const other = service.post([](Reporter*) {});
    other->onFinished = [logger = MakeDestructionLogger(destroyed, "other")] {};
    Task* const task = service.post([&](Reporter*) { go.Pass(); });
    task->onProgress = [&, logger = MakeDestructionLogger(destroyed, "task")](int) {
        service.run(other);
        destroyedInside =
            WaitUntilCompleted(service, other) ? destroyed : QStringList{QStringLiteral("never completed")};
    };

    service.report(task, 1);
    DeliverQueuedEvents();
    QCOMPARE(destroyedInside, QStringList{QStringLiteral("other")});

    service.run(task);
    go.Open();
    QVERIFY(WaitUntilEmpty(service));
    QCOMPARE(destroyed, (QStringList{QStringLiteral("other"), QStringLiteral("task")}));
}

void AsyncServiceProgressTest::serviceMayBeDestroyedInsideAProgressCallback_data()
{
    QTest::addColumn<bool>("inCompletion");
    QTest::addColumn<int>("reports");
    QTest::newRow("in the completion callback") << true << 1;
    QTest::newRow("after the completion") << false << 1;
    QTest::newRow("in the completion callback, two levels deep") << true << 2;
    QTest::newRow("after the completion, two levels deep") << false << 2;
}

void AsyncServiceProgressTest::serviceMayBeDestroyedInsideAProgressCallback()
{
    QFETCH(bool, inCompletion);
    QFETCH(int, reports);
    auto service = std::make_unique<AsyncService>();
    QStringList destroyed;
    QStringList calls;
    Task* const task = service->post([=](Reporter* reporter) {
        for (int value = 1; value <= reports; ++value) {
            reporter->report(value);
        }
    });
    task->onProgress = [&, logger = MakeDestructionLogger(destroyed, "task")](int value) {
        if (!QTest::qWaitFor([&] { return !service || service->empty(); }, TimeoutMs)) {
            calls += QStringLiteral("never empty");
        }
        service.reset();
        calls += QStringLiteral("return %1, destroyed: %2").arg(value).arg(destroyed.size());
    };
    task->onFinished = [&] {
        if (inCompletion) {
            service.reset();
        }
    };

    service->run(task);
    QVERIFY(QTest::qWaitFor([&] { return !destroyed.isEmpty(); }, TimeoutMs));
    DeliverQueuedEvents();

    QStringList expected;
    for (int value = reports; value >= 1; --value) {
        expected += QStringLiteral("return %1, destroyed: 0").arg(value);
    }
    QCOMPARE(calls, expected);
    QCOMPARE(destroyed.size(), 1);
    QVERIFY(!service);
}

ZQTUTIL_TEST_MAIN(AsyncServiceProgressTest)
#include "AsyncServiceProgressTest.moc"

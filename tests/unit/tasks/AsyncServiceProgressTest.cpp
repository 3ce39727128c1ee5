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
    void progressGoesToTheServiceOfItsTask_data();
    void progressGoesToTheServiceOfItsTask();
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
};

void AsyncServiceProgressTest::progressIsPassedThroughInOrder()
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
    QVERIFY(TurnUntilEmpty(service));

    QVERIFY(passed);
}

void AsyncServiceProgressTest::progressWithoutCallBackIsDropped()
{
    AsyncService service;
    bool finished = false;
    Task* const task = service.post([](Reporter* reporter) { reporter->report(1); });
    task->onFinished = [&] { finished = true; };

    service.run(task);
    QVERIFY(TurnUntilEmpty(service));

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
    DeliverQueued();
    QCOMPARE(values, QVector<int>{3});

    service.run(task);
    QVERIFY(TurnUntilEmpty(service));
}

void AsyncServiceProgressTest::progressCallBackIsLookedUpAtDelivery_data()
{
    QTest::addColumn<bool>("before");
    QTest::addColumn<bool>("after");
    QTest::addColumn<QString>("called");
    QTest::newRow("set after the report") << false << true << QStringLiteral("after");
    QTest::newRow("replaced after the report") << true << true << QStringLiteral("after");
    QTest::newRow("cleared after the report") << true << false << QString();
}

void AsyncServiceProgressTest::progressCallBackIsLookedUpAtDelivery()
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

void AsyncServiceProgressTest::progressOfATaskThatIsNotRunningIsDelivered()
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

void AsyncServiceProgressTest::progressBehindTheCompletionIsDropped()
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

void AsyncServiceProgressTest::progressAfterTheCompletionIsDropped()
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

void AsyncServiceProgressTest::progressOfUnknownTasksIsDropped()
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

void AsyncServiceProgressTest::progressGoesToTheServiceOfItsTask_data()
{
    QTest::addColumn<bool>("isNested");
    QTest::newRow("one after the other") << false;
    QTest::newRow("inside a call-back of the other") << true;
}

void AsyncServiceProgressTest::progressGoesToTheServiceOfItsTask()
{
    QFETCH(bool, isNested);
    AsyncService first;
    AsyncService second;
    QStringList values;
    auto const note = [&](char const* service) {
        return [&values, isNested, service](int value) {
            values += QStringLiteral("%1 %2").arg(QLatin1String(service)).arg(value);
            if (isNested) {
                DeliverQueued();
            }
        };
    };
    Task* const one = first.post([](Reporter*) {});
    Task* const two = second.post([](Reporter*) {});
    one->onProgress = note("first");
    two->onProgress = note("second");

    first.report(one, 1);
    second.report(two, 2);
    first.report(one, 3);
    DeliverQueued();

    QCOMPARE(values, (QStringList{QStringLiteral("first 1"), QStringLiteral("second 2"), QStringLiteral("first 3")}));
    first.run(one);
    second.run(two);
    QVERIFY(TurnUntilEmpty(first) && TurnUntilEmpty(second));
}

void AsyncServiceProgressTest::progressComesFromAnyThread()
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

void AsyncServiceProgressTest::progressCallBackMayPostAndRun()
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

void AsyncServiceProgressTest::progressCallBackThatThrowsLeavesTheTaskRegistered()
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

void AsyncServiceProgressTest::taskLivesUntilItsProgressCallBackReturns()
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

void AsyncServiceProgressTest::taskLivesUntilItsOutermostProgressCallBackReturns()
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

void AsyncServiceProgressTest::taskLivesThroughProgressOfAnother()
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

void AsyncServiceProgressTest::otherTaskCompletesInsideAProgressCallBack()
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

void AsyncServiceProgressTest::serviceMayGoInsideAProgressCallBack_data()
{
    QTest::addColumn<bool>("inCompletion");
    QTest::addColumn<int>("reports");
    QTest::newRow("in the completion call-back") << true << 1;
    QTest::newRow("after the completion") << false << 1;
    QTest::newRow("in the completion call-back, two levels deep") << true << 2;
    QTest::newRow("after the completion, two levels deep") << false << 2;
}

void AsyncServiceProgressTest::serviceMayGoInsideAProgressCallBack()
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

ZQTUTIL_TEST_MAIN(AsyncServiceProgressTest)
#include "AsyncServiceProgressTest.moc"

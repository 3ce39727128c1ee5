#include <support/TestCase.h>
#include <support/sandbox/Folders.h>
#include <support/sandbox/Users.h>
#include <unit/tasks/Tasks.h>

#include <Util/AsyncService.h>

#include <QtCore/QThread>
#include <QtTest/QtTest>

#include <exception>
#include <functional>
#include <system_error>

#include <sys/resource.h>

using namespace Zelkor::Testing;

namespace
{

/// Sets the limit of processes and threads of the current user to 0, so that the system starts no new thread. Does not
/// affect root. The destructor restores the limit.
class ThreadLimit
{
public:
    ThreadLimit()
    {
        Check(getrlimit(RLIMIT_NPROC, &original_));
        rlimit const none{0, original_.rlim_max};
        Check(setrlimit(RLIMIT_NPROC, &none));
    }

    ~ThreadLimit() { setrlimit(RLIMIT_NPROC, &original_); }

    ThreadLimit(ThreadLimit const&) = delete;
    ThreadLimit& operator=(ThreadLimit const&) = delete;

private:
    rlimit original_{};
};

/// Posts a task that writes an entry to \a log when its job runs, when a completion callback is called, and when the
/// task is destroyed. Each entry begins with \a name.
Task* PostLogging(AsyncService& service, QStringList& log, char const* name)
{
    auto const write = [&log, prefix = QString::fromLatin1(name)](char const* event) {
        log += prefix + QLatin1Char(' ') + QLatin1String(event);
    };
    Task* const task = service.post([write, logger = MakeDestructionLogger(log, name)](Reporter*) { write("ran"); });
    task->onFinished = [write] { write("finished"); };
    task->onCancelled = [write] { write("cancelled"); };
    task->onError = [write, &service, task](std::exception_ptr const& error) {
        write(service.contains(task) ? "error while registered" : "error");
        try {
            std::rethrow_exception(error);
        } catch (std::system_error const& systemError) {
            write(systemError.code() == std::errc::resource_unavailable_try_again ? "EAGAIN" : "other code");
            write(systemError.what());
        }
    };
    return task;
}

/// Returns the log of a task with the name \a name that completes because the worker thread cannot be started.
QStringList StartErrorLog(QString const& name)
{
    return {
        name + QStringLiteral(" error"),
        name + QStringLiteral(" EAGAIN"),
        name + QStringLiteral(" The worker thread could not be started: Resource temporarily unavailable"),
        name,
    };
}

} // namespace

/// Tests in which the system cannot start the worker thread. The tests run in child processes, because the limit of
/// threads affects ordinary users only.
class AsyncServiceThreadLimitTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void completesTheTaskWithAnError()
    {
        auto const result = RunAsOrdinaryUser([] {
            QStringList log;
            AsyncService service;
            ThreadLimit const limit;
            ExpectQtWarning(StartWarning);
            service.run(PostLogging(service, log, "a"));
            log += service.empty() ? QStringLiteral("empty") : QStringLiteral("run");
            log += WaitUntilEmpty(service) ? QStringLiteral("empty") : QStringLiteral("timeout");
            return log;
        });
        QCOMPARE(result, QStringList(QStringLiteral("run")) + StartErrorLog(QStringLiteral("a")) +
                             QStringList(QStringLiteral("empty")));
    }

    void callsOnFinishedIfThereIsNoErrorCallback()
    {
        auto const result = RunAsOrdinaryUser([] {
            QStringList log;
            AsyncService service;
            ThreadLimit const limit;
            ExpectQtWarning(StartWarning);
            Task* const task = PostLogging(service, log, "a");
            task->onError = nullptr;
            service.run(task);
            WaitUntilEmpty(service);
            return log;
        });
        QCOMPARE(result, (QStringList{QStringLiteral("a finished"), QStringLiteral("a")}));
    }

    void completesATaskThatWasNotPosted()
    {
        bool const completed = RunAsOrdinaryUser([] {
            AsyncService service;
            ThreadLimit const limit;
            ExpectQtWarning(StartWarning);
            bool failed = false;
            auto* const task = new Task;
            task->onError = [&failed](std::exception_ptr const&) { failed = true; };
            service.run(task);
            return WaitUntilEmpty(service) && failed;
        });
        QVERIFY(completed);
    }

    void startsTheThreadWhenThreadsAreAvailableAgain()
    {
        auto const result = RunAsOrdinaryUser([] {
            QStringList log;
            AsyncService service;
            {
                ThreadLimit const limit;
                ExpectQtWarning(StartWarning);
                service.run(PostLogging(service, log, "a"));
            }
            // The completion of task "a" is still queued when task "b" is run.
            service.run(PostLogging(service, log, "b"));
            WaitForWorker(service);
            WaitUntilEmpty(service);
            return log;
        });
        QStringList const logOfB{QStringLiteral("b finished"), QStringLiteral("b")};
        QCOMPARE(result, QStringList(QStringLiteral("b ran")) + StartErrorLog(QStringLiteral("a")) + logOfB);
    }

    void completesQueuedTasksWhenTheThreadCannotBeRestarted()
    {
        auto const result = RunAsOrdinaryUser([] {
            QStringList log;
            AsyncService service;
            Gate started;
            Gate queued;
            service.run(service.post([&](Reporter*) {
                started.Open();
                queued.Pass();
                QThread::currentThread()->quit();
            }));
            started.Pass();
            service.run(PostLogging(service, log, "a"));
            service.run(PostLogging(service, log, "b"));
            {
                ThreadLimit const limit;
                ExpectQtWarning(StartWarning);
                queued.Open();
                WaitUntilEmpty(service);
            }
            // The removed jobs do not run later.
            service.run(PostLogging(service, log, "c"));
            WaitUntilEmpty(service);
            return log;
        });
        QStringList const logOfC{QStringLiteral("c ran"), QStringLiteral("c finished"), QStringLiteral("c")};
        QCOMPARE(result, StartErrorLog(QStringLiteral("a")) + StartErrorLog(QStringLiteral("b")) + logOfC);
    }

    // When the owner thread receives the first signal QThread::finished(), the job on the restarted thread has already
    // run, but its completion is still queued.
    void completesAJobOfARestartedThreadOnlyOnce()
    {
        auto const result = RunAsOrdinaryUser([] {
            QStringList log;
            AsyncService service;
            QObject object;
            service.attach(&object);
            QThread* const worker = object.thread();
            auto const quit = [](Reporter*) { QThread::currentThread()->quit(); };
            Task* const first = service.post(quit);
            service.run(first);
            if (!worker->wait(TimeoutMs)) {
                return log;
            }
            Task* const second = service.post(quit);
            second->onFinished = [&log] { log += QStringLiteral("finished"); };
            second->onError = [&log](std::exception_ptr const&) { log += QStringLiteral("error"); };
            service.run(second);
            if (!worker->wait(TimeoutMs)) {
                return log;
            }
            ThreadLimit const limit;
            WaitUntilEmpty(service);
            DeliverQueuedEvents();
            return log;
        });
        QCOMPARE(result, QStringList(QStringLiteral("finished")));
    }

private:
    static inline QRegularExpression const StartWarning{QStringLiteral("Thread creation error")};
};

ZQTUTIL_TEST_MAIN(AsyncServiceThreadLimitTest)
#include "AsyncServiceThreadLimitTest.moc"

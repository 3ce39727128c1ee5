#pragma once

/// \file
/// Background jobs on a worker thread. Progress and results are delivered on the owner thread.

#include <Util/Export.h>

#include <QtCore/QtGlobal>

#include <atomic>
#include <exception>
#include <functional>
#include <memory>

QT_BEGIN_NAMESPACE
class QObject;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Util
{

/// Runs jobs one after another on a worker thread. Callbacks run on the thread that created the service (the owner
/// thread, normally the GUI thread).
///
/// \code
/// AsyncService service;
/// auto* task = service.post([](AsyncService::Reporter* reporter) {
///     for (int percent = 0; percent < 100; ++percent) {
///         reporter->checkCancelled();
///         ...
///         reporter->report(percent);
///     }
/// });
/// task->onProgress = [&](int percent) { bar->setValue(percent); };
/// task->onFinished = [&] { label->setText(tr("Done")); };
/// service.run(task);
/// \endcode
///
/// **When to use it:** for the jobs of one window or document that must neither overlap nor block the GUI. **When not
/// to use it:** for jobs that should run in parallel (use `QThreadPool`), or for jobs that the GUI thread cannot wait
/// for: the destructor waits for the running job.
///
/// **Threads.** Call all functions on the owner thread, except report() and the functions of Reporter. All callbacks
/// run on the owner thread, from its event loop. Without an event loop there, nothing is delivered.
///
/// **Guarantees**
/// - Jobs do not overlap and run in the order of the run() calls.
/// - Each task completes exactly once and calls at most one of Task::onError, Task::onCancelled and Task::onFinished.
/// - Progress values are delivered in the order in which the job reported them, all before the completion.
/// - The task is unregistered before its completion callback runs. The callback may therefore post and run other tasks,
///   and may destroy the service if it is empty().
///
/// **Ownership.** post() transfers the ownership of the task to the service, which deletes the task when it completes.
/// Destroy a service only when it is empty(): tasks that are still registered are not freed, and their callbacks are
/// not called.
class ZQTUTIL_EXPORT AsyncService
{
public:
    struct Reporter;

    /// Thrown by value by a job to complete as cancelled. Not derived from `std::exception`, so a job that catches its
    /// own errors does not catch a cancellation by mistake.
    class Cancelled
    {};

    /// A job and its callbacks: a plain record, created by post() or with `new`.
    ///
    /// Empty callbacks are skipped. An exception from a callback leaves the event loop of the owner thread; the task is
    /// freed nevertheless.
    struct Task
    {
        /// The service that the task was posted to.
        AsyncService* service = nullptr;
        /// The exception that left the job, except Cancelled.
        std::exception_ptr error;
        /// The job, called once on the worker thread. An empty job completes with `std::bad_function_call`.
        std::function<void(Reporter*)> work;
        /// Called when the job has returned. Also called if the job was cancelled and #onCancelled is empty, or if the
        /// job failed and #onError is empty.
        std::function<void()> onFinished;
        /// Called when the job has thrown Cancelled.
        std::function<void()> onCancelled;
        /// Called with each reported value. The callback may run its own event loop, for example in a message box: the
        /// task is not deleted before the callback returns.
        std::function<void(int)> onProgress;
        /// Called with #error when the job has thrown anything except Cancelled.
        std::function<void(std::exception_ptr)> onError;
    };

    /// Creates a service. Its worker thread starts with the first run().
    ///
    /// Throws `std::logic_error` if Qt refuses the internal connections.
    AsyncService();

    /// Stops the worker thread. Waits without a time limit for the running job.
    ///
    /// Queued jobs are not run. Queued progress and completions are dropped.
    virtual ~AsyncService();

    AsyncService(AsyncService const&) = delete;
    AsyncService& operator=(AsyncService const&) = delete;

    /// Creates a task from \a work, registers and returns it. Does not start it.
    Task* post(std::function<void(Reporter*)> work);

    /// Registers \a task and returns it. Does not start it. Resets Task::error.
    ///
    /// \a task must have been created with plain `new`. A task that is posted again gets a new reporter that is not
    /// cancelled; a job that is already queued keeps the previous reporter.
    ///
    /// Throws `std::invalid_argument` if \a task is null.
    Task* post(Task* task);

    /// Queues the job of \a task. Starts the worker thread if it is not running.
    ///
    /// Call it exactly once for each posted task; the task is deleted when it completes. A task that is not registered
    /// is registered without a reporter, and its job is called with null.
    ///
    /// Throws `std::invalid_argument` if \a task is null.
    void run(Task* task);

    /// Requests the cancellation of \a task. Does nothing if the task is not registered.
    ///
    /// The job is called in any case. It completes as cancelled only if it throws Cancelled.
    void cancel(Task* task);

    /// Returns true if \a task is registered: posted and not yet completed.
    bool contains(Task* task) const;

    /// Returns true if no task is registered.
    bool empty() const;

    /// Moves \a object to the worker thread, which then runs its slots and event handlers.
    ///
    /// \a object must have no parent and must belong to the calling thread. The caller keeps the ownership.
    /// Throws `std::invalid_argument` if \a object is null.
    void attach(QObject* object);

    /// Queues \a value for the progress callback of \a task. The value is dropped if the task has completed before the
    /// delivery. Thread-safe while the service exists.
    ///
    /// Do not call this for a task that may have completed: a new task can have the same address and would then receive
    /// the value.
    void report(Task* task, int value);

private:
    struct ZQTUTIL_NO_EXPORT Impl;
    std::unique_ptr<Impl> impl_;
};

/// The job's access to the service: a plain record.
///
/// The service frees it when the task completes. If the task was posted again meanwhile, the service frees it in its
/// own destructor.
struct AsyncService::Reporter
{
    /// The service that runs the job.
    AsyncService* service = nullptr;
    /// The task of the job.
    Task* task = nullptr;
    /// True if the cancellation was requested.
    std::atomic<bool> cancelled{false};

    /// Queues \a value for the progress callback of the task, unchanged. Thread-safe until the job has returned.
    void report(int value) { service->report(task, value); }

    /// Returns true if the cancellation was requested. Thread-safe.
    bool isCancelled() const { return cancelled; }

    /// Throws Cancelled if the cancellation was requested.
    void checkCancelled() const
    {
        if (isCancelled()) {
            throw Cancelled();
        }
    }
};

} // namespace Util
} // namespace Zelkor

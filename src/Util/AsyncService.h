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
/// **When to use it:** for the jobs of one window or document, if these jobs must not overlap and must not block the
/// GUI. **When not to use it:** if jobs should run in parallel (use `QThreadPool`). Also, do not use it if the owner
/// thread must never wait for a job, because the destructor of the service waits for the running job.
///
/// **Threads.** Call all functions on the owner thread, except report() and the functions of Reporter. The event loop
/// of the owner thread calls all callbacks. If the owner thread runs no event loop, no callback is called.
///
/// **Guarantees**
/// - Jobs do not overlap and run in the order of the run() calls.
/// - Each task completes exactly once and calls at most one of Task::onError, Task::onCancelled and Task::onFinished.
/// - Progress values are delivered in the order in which the job reported them, all of them before the completion
///   callback.
/// - The task is unregistered before its completion callback runs. The callback may therefore post and run other tasks,
///   and may destroy the service if the service is empty().
///
/// **Ownership.** post() transfers the ownership of the task to the service, which deletes the task when it completes.
/// Destroy a service only when empty() returns true: tasks that are still registered are not freed, and their callbacks
/// are not called.
class ZQTUTIL_EXPORT AsyncService
{
public:
    struct Reporter;

    /// A job throws Cancelled by value to report that it was cancelled. The class is not derived from `std::exception`:
    /// a job that catches `std::exception` does not catch a cancellation by mistake.
    class Cancelled
    {};

    /// A plain struct with a job and its callbacks. Create it with post() or with `new`.
    ///
    /// Empty callbacks are skipped. An exception that a callback throws propagates through the event loop of the owner
    /// thread. The task is nevertheless deleted when it completes.
    struct Task
    {
        /// The service that the task was posted to. Null before the first post().
        AsyncService* service = nullptr;
        /// The exception that the job threw, or the error of run() if the worker thread could not be started. Null if
        /// the job threw nothing or threw Cancelled.
        std::exception_ptr error;
        /// The job. It is called once, on the worker thread. It is not called if the worker thread cannot be started.
        /// If #work is empty, the service behaves as if the job had thrown `std::bad_function_call`.
        std::function<void(Reporter*)> work;
        /// Called when the job has returned normally. Also called if the job has thrown Cancelled and #onCancelled is
        /// empty, or if #error is not null and #onError is empty.
        std::function<void()> onFinished;
        /// Called when the job has thrown Cancelled.
        std::function<void()> onCancelled;
        /// Called with each reported value. The callback may run its own event loop, for example for a message
        /// box. The task is not deleted before the callback returns.
        std::function<void(int)> onProgress;
        /// Called with the exception if the job has thrown anything other than Cancelled. Called with a
        /// `std::system_error` if the worker thread could not be started; the job has not run then.
        std::function<void(std::exception_ptr)> onError;
    };

    /// Creates a service. The first call of run() starts the worker thread.
    ///
    /// Throws `std::logic_error` if an internal connection of a signal to a slot fails.
    AsyncService();

    /// Stops the worker thread. Waits without a time limit for the running job.
    ///
    /// Queued jobs are not run. Queued progress values and completions are not delivered.
    virtual ~AsyncService();

    AsyncService(AsyncService const&) = delete;
    AsyncService& operator=(AsyncService const&) = delete;

    /// Creates and registers a task with the job \a work. Returns the task. Does not start the job.
    Task* post(std::function<void(Reporter*)> work);

    /// Registers \a task and sets Task::error to null. Returns \a task. Does not start the job.
    ///
    /// \a task must have been created with `new`, because the service deletes it with `delete`.
    ///
    /// A second post() of the same task creates a new reporter. In this reporter, Reporter::cancelled is false. A job
    /// that was queued before the second post() still uses the first reporter.
    ///
    /// Throws `std::invalid_argument` if \a task is null.
    Task* post(Task* task);

    /// Queues the job of \a task. Starts the worker thread if it is not running.
    ///
    /// Call this function exactly once for each posted task. The task is deleted when it completes. If \a task is not
    /// registered, this function registers it without a reporter, and the job is called with a null reporter.
    ///
    /// If the system cannot start the worker thread, for example because the user has too many processes, the job does
    /// not run. The event loop of the owner thread then completes \a task with Task::onError. The error is a
    /// `std::system_error` with the code `std::errc::resource_unavailable_try_again`. Qt logs a warning. The next call
    /// of this function tries to start the thread again. The same error completes jobs that are still queued when a job
    /// quits the event loop of the worker thread and the thread cannot be restarted.
    ///
    /// Throws `std::invalid_argument` if \a task is null.
    void run(Task* task);

    /// Requests the cancellation of \a task. Does nothing if the task is not registered.
    ///
    /// If this function is called before the job starts, the job is nevertheless called. The task completes as
    /// cancelled only if the job throws Cancelled.
    void cancel(Task* task);

    /// Returns true if \a task is registered, that is, if it has been posted and has not completed yet.
    bool contains(Task* task) const;

    /// Returns true if no task is registered.
    bool empty() const;

    /// Moves \a object to the worker thread, which then runs the slots and event handlers of \a object.
    ///
    /// \a object must have no parent and must belong to the calling thread. The caller remains the owner of \a object.
    /// Throws `std::invalid_argument` if \a object is null.
    void attach(QObject* object);

    /// Queues \a value for the progress callback of \a task. The value is dropped if the task has completed before the
    /// delivery. Thread-safe while the service exists.
    ///
    /// Do not call this function for a task that may have completed: a new task can have the same address and would
    /// then receive the value.
    void report(Task* task, int value);

private:
    struct ZQTUTIL_NO_EXPORT Impl;
    std::unique_ptr<Impl> impl_;
};

/// A plain struct that a job uses to report progress and to check for cancellation.
///
/// The service deletes the reporter when the task completes. A second post() of the same task creates a new reporter;
/// the destructor of the service then deletes the first reporter.
struct AsyncService::Reporter
{
    /// The service that runs the job.
    AsyncService* service = nullptr;
    /// The task of the job.
    Task* task = nullptr;
    /// True if cancel() has been called for the task.
    std::atomic<bool> cancelled{false};

    /// Queues \a value for Task::onProgress, which receives it unchanged. Thread-safe until the job has returned.
    void report(int value) { service->report(task, value); }

    /// Returns true if cancellation has been requested. Thread-safe.
    bool isCancelled() const { return cancelled; }

    /// Throws Cancelled if cancellation has been requested.
    void checkCancelled() const
    {
        if (isCancelled()) {
            throw Cancelled();
        }
    }
};

} // namespace Util
} // namespace Zelkor

#pragma once

/// \file
/// Jobs on a worker thread, with progress and outcome delivered to the thread that asked for them.

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

/// Runs jobs one after another on a worker thread of its own, and reports on the thread that made the service, the
/// owner thread, normally the GUI thread.
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
/// **When to use it:** for jobs of one window or document that should neither overlap nor block the GUI. **When not:**
/// for jobs that should run side by side (`QThreadPool`), or for a job that cannot be waited for: the destructor waits
/// for the one that is running.
///
/// **Threads.** Everything but the job itself, report() and the reporter's operations is called on the owner thread,
/// and every call-back runs there, from its event loop. Without an event loop on the owner thread nothing is delivered.
///
/// **Promises.** Jobs never overlap and run in the order of the run() calls. A task completes exactly once, and calls
/// at most one of Task::onError, Task::onCancelled and Task::onFinished. What a job reported is delivered in that order
/// before its completion; nothing is delivered after it. At the completion call-back the task is no longer
/// registered, so the call-back may post and run again, and may destroy the service when it is empty().
///
/// **Ownership.** From post() on the task belongs to the service, which deletes it when it completes. A service is
/// destroyed only when it is empty(): tasks that are registered then are not freed, and nothing more is called.
class ZQTUTIL_EXPORT AsyncService
{
public:
    struct Reporter;

    /// What a job throws, by value, to end as cancelled. Deliberately no `std::exception`.
    class Cancelled
    {};

    /// A job and its call-backs: a plain record, made by post() or with `new`. Empty call-backs are skipped. What a
    /// call-back throws leaves through the owner thread's event loop; the task is freed all the same.
    struct Task
    {
        /// The service that it was posted to.
        AsyncService* service = nullptr;
        /// What escaped the job, other than Cancelled.
        std::exception_ptr error;
        /// The job, called once on the worker thread. An empty one ends with `std::bad_function_call`.
        std::function<void(Reporter*)> work;
        /// Called when the job has returned, and in place of #onCancelled and #onError when these are empty.
        std::function<void()> onFinished;
        /// Called when the job has thrown Cancelled.
        std::function<void()> onCancelled;
        /// Called for every value that the job reported. It may turn an event loop of its own (a message box): the
        /// task stays alive until it returns.
        std::function<void(int)> onProgress;
        /// Called with #error when the job has thrown anything but Cancelled.
        std::function<void(std::exception_ptr)> onError;
    };

    /// A service whose worker thread starts with the first run(). Throws `std::logic_error` when Qt refuses the
    /// connections that it works with.
    AsyncService();

    /// Ends the worker thread, waiting without a limit for a job that is running. Jobs behind it do not run; progress
    /// and completions still queued for the owner thread are dropped.
    virtual ~AsyncService();

    AsyncService(AsyncService const&) = delete;
    AsyncService& operator=(AsyncService const&) = delete;

    /// Registers a new task for \a work, which is moved, and returns it. Does not start it.
    Task* post(std::function<void(Reporter*)> work);

    /// Registers \a task, made with plain `new`, and returns it. Does not start it. Its error is reset.
    ///
    /// Posted again, the task gets a new reporter, not cancelled; a job that is queued already keeps the earlier one.
    /// Throws `std::invalid_argument` for a null pointer.
    Task* post(Task* task);

    /// Queues the job of \a task, and starts the worker thread if it does not run. To be called exactly once for a
    /// posted task, which does not outlive its job. A task that is not registered is registered without a reporter:
    /// its job is called with null.
    ///
    /// Throws `std::invalid_argument` for a null pointer.
    void run(Task* task);

    /// Asks the job of \a task to end, if the task is registered. The job is called in any case, and decides alone
    /// whether it obeys: one that returns has finished.
    void cancel(Task* task);

    /// Whether \a task is registered: posted and not yet completed.
    bool contains(Task* task) const;

    /// Whether no task is registered.
    bool empty() const;

    /// Moves \a object, which must have no parent and live on the calling thread, to the worker thread, where its slots
    /// and events then run; it stays the caller's. Throws `std::invalid_argument` for a null pointer.
    void attach(QObject* object);

    /// Queues the delivery of \a value to the progress call-back of \a task; the value is dropped when the task has
    /// completed by then. Any thread, as long as the service lives.
    void report(Task* task, int value);

private:
    struct ZQTUTIL_NO_EXPORT Impl;
    std::unique_ptr<Impl> impl_;
};

/// What a job knows of the service: a plain record, which the service frees when the job's task completes, or with
/// itself when the task was posted again meanwhile.
struct AsyncService::Reporter
{
    /// The service that the job runs on.
    AsyncService* service = nullptr;
    /// The task that the job belongs to.
    Task* task = nullptr;
    /// Whether somebody has asked the job to end.
    std::atomic<bool> cancelled{false};

    /// Queues \a value for the task's progress call-back, unchanged. Any thread.
    void report(int value) { service->report(task, value); }

    /// Whether somebody has asked the job to end. Any thread.
    bool isCancelled() const { return cancelled; }

    /// Throws Cancelled when somebody has asked the job to end.
    void checkCancelled() const
    {
        if (isCancelled()) {
            throw Cancelled();
        }
    }
};

} // namespace Util
} // namespace Zelkor

#include <Util/AsyncService.h>

#include <Base/StackLink.h>
#include <Base/Throw.h>
#include <Util/FunctorExecutionForwarder.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QScopedPointer>
#include <QtCore/QThread>

#include <memory>
#include <system_error>
#include <utility>
#include <vector>

// Jobs run on the worker thread; all other code runs on the owner thread. Two FunctorExecutionForwarder objects pass
// functors between the threads. Only the owner thread uses the map of registered tasks, so the map needs no lock. While
// a job runs, Reporter::cancelled is the only variable that both threads use.

namespace Zelkor::Util
{
namespace
{

AsyncService::Task* CheckedTask(AsyncService::Task* task)
{
    if (!task) {
        ZELKOR_THROW(std::invalid_argument("AsyncService use without task!"));
    }
    return task;
}

std::exception_ptr StartError()
{
    return std::make_exception_ptr(std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again),
                                                     "The worker thread could not be started"));
}

} // namespace

struct AsyncService::Impl
{
    /// Represents a running call of Task::onProgress. The callback may run an event loop. While this event loop runs,
    /// the task can complete and the service can be destroyed.
    struct Delivery : StackLink<Delivery>
    {
        Delivery(Impl* impl, Task* deliveredTask)
            : StackLink(impl->innermostDelivery)
            , task(deliveredTask)
        {}

        Task* const task;
        std::unique_ptr<Task> completedTask; ///< Owns the task if the task completes during the callback.
    };

    Impl();
    ~Impl();

    void stop();

    void registerTask(Task* task, AsyncService* service);
    bool startThread();
    void onThreadFinished();
    void run(Task* task);
    void work(Task* task, Reporter* reporter); // runs on the worker thread
    void completeWithStartError(Task* task);
    void complete(Task* task, bool cancelled);
    void deliver(Task* task, int value);
    void keepDuringDelivery(std::unique_ptr<Task>& task) const;

    QMap<Task*, Reporter*> tasks;
    QScopedPointer<QThread> thread;
    FunctorExecutionForwarder workerForwarder;
    FunctorExecutionForwarder ownerForwarder;

    // If a task is posted a second time, it gets a new reporter. The old reporter is kept here, because a queued job of
    // the task may still use it.
    std::vector<std::unique_ptr<Reporter>> replacedReporters;
    QList<Task*> queuedTasks; // passed to the worker thread and not completed yet, in the order of the run() calls
    int unfinishedStarts = 0; // starts of the thread for which onThreadFinished() has not been called yet
    Delivery* innermostDelivery = nullptr;
};

AsyncService::Impl::Impl()
    : thread(new QThread)
{
    thread->setObjectName(QStringLiteral("AsyncService"));
    workerForwarder.moveToThread(thread.data());
    QObject::connect(thread.data(), &QThread::finished, &ownerForwarder, [this] { onThreadFinished(); });
}

AsyncService::Impl::~Impl()
{
    for (Delivery* delivery = innermostDelivery; delivery; delivery = delivery->Outer()) {
        delivery->Detach();
    }
    qDeleteAll(tasks);
}

void AsyncService::Impl::stop()
{
    // After quit(), the event loop would still call all jobs that are already queued. Remove them first.
    QCoreApplication::removePostedEvents(&workerForwarder);
    thread->quit();
    thread->wait();
}

void AsyncService::Impl::registerTask(Task* task, AsyncService* service)
{
    task->service = service;
    task->error = nullptr;
    std::unique_ptr<Reporter> reporter(new Reporter{service, task});
    Reporter*& current = tasks[task];
    if (current) {
        replacedReporters.emplace_back(current);
    }
    current = reporter.release();
}

/// Starts the worker thread if it is not running. Returns false if the system cannot start a thread.
bool AsyncService::Impl::startThread()
{
    if (thread->isRunning()) {
        return true;
    }
    thread->start(QThread::InheritPriority);
    // QThread reports a failed start only with a warning. A started thread may already have finished here, because a
    // queued job may quit it.
    bool const started = thread->isRunning() || thread->isFinished();
    unfinishedStarts += started;
    return started;
}

void AsyncService::Impl::onThreadFinished()
{
    --unfinishedStarts;
    // If run() has already restarted the thread, some tasks in queuedTasks may have run on the restarted thread.
    // Wait until that thread finishes too: then the tasks that have run are no longer in queuedTasks.
    if (unfinishedStarts > 0 || queuedTasks.isEmpty()) {
        return;
    }
    // A job has quit the event loop of the worker thread. The jobs that are still queued need a new event loop.
    if (!startThread()) {
        QCoreApplication::removePostedEvents(&workerForwarder);
        for (Task* const task : std::exchange(queuedTasks, {})) {
            completeWithStartError(task);
        }
    }
}

void AsyncService::Impl::run(Task* task)
{
    // If the task is not registered, operator[] registers it with a null reporter.
    Reporter* const reporter = tasks[task];
    if (!startThread()) {
        completeWithStartError(task);
        return;
    }
    queuedTasks.append(task);
    workerForwarder.Forward([this, task, reporter] { work(task, reporter); });
}

void AsyncService::Impl::work(Task* task, Reporter* reporter)
{
    bool cancelled = false;
    try {
        task->work(reporter);
    } catch (Cancelled const&) {
        cancelled = true;
    } catch (...) {
        task->error = std::current_exception();
    }
    ownerForwarder.Forward([this, task, cancelled] { complete(task, cancelled); });
}

/// Queues the completion of \a task, whose job does not run.
void AsyncService::Impl::completeWithStartError(Task* task)
{
    task->error = StartError();
    ownerForwarder.Forward([this, task] { complete(task, false); });
}

void AsyncService::Impl::complete(Task* task, bool cancelled)
{
    std::unique_ptr<Task> completed(task);
    queuedTasks.removeOne(task);
    delete tasks.take(task);
    keepDuringDelivery(completed);

    // Each of the following callbacks may destroy the service. Therefore, access only the task from here on.
    if (task->error && task->onError) {
        task->onError(task->error);
    } else if (cancelled && task->onCancelled) {
        task->onCancelled();
    } else if (task->onFinished) {
        task->onFinished();
    }
}

void AsyncService::Impl::deliver(Task* task, int value)
{
    if (tasks.contains(task) && task->onProgress) {
        Delivery delivery(this, task); // not const: keepDuringDelivery() stores the completed task in it
        task->onProgress(value);
    }
}

/// Keeps \a task alive while its Task::onProgress callback is running. If calls of this callback are nested, the
/// Delivery object of the outermost call takes ownership of \a task, because the outermost call returns last.
void AsyncService::Impl::keepDuringDelivery(std::unique_ptr<Task>& task) const
{
    Delivery* outermost = nullptr;
    for (Delivery* delivery = innermostDelivery; delivery; delivery = delivery->Outer()) {
        if (delivery->task == task.get()) {
            outermost = delivery;
        }
    }
    if (outermost) {
        outermost->completedTask = std::move(task);
    }
}

AsyncService::AsyncService()
    : impl_(std::make_unique<Impl>())
{}

AsyncService::~AsyncService()
{
    // Stop the thread here and not in ~Impl(): the running job uses impl_ to report progress, but some standard
    // libraries set impl_ to null before they call ~Impl().
    impl_->stop();
}

AsyncService::Task* AsyncService::post(std::function<void(Reporter*)> work)
{
    auto task = std::make_unique<Task>();
    task->work = std::move(work);
    post(task.get());
    return task.release();
}

AsyncService::Task* AsyncService::post(Task* task)
{
    impl_->registerTask(CheckedTask(task), this);
    return task;
}

void AsyncService::run(Task* task)
{
    impl_->run(CheckedTask(task));
}

void AsyncService::cancel(Task* task)
{
    if (Reporter* const reporter = impl_->tasks.value(task)) {
        reporter->cancelled.store(true);
    }
}

bool AsyncService::contains(Task* task) const
{
    return impl_->tasks.contains(task);
}

bool AsyncService::empty() const
{
    return impl_->tasks.isEmpty();
}

void AsyncService::attach(QObject* object)
{
    if (!object) {
        ZELKOR_THROW(std::invalid_argument("AsyncService use without object!"));
    }
    object->moveToThread(impl_->thread.data());
}

void AsyncService::report(Task* task, int value)
{
    impl_->ownerForwarder.Forward([impl = impl_.get(), task, value] { impl->deliver(task, value); });
}

} // namespace Zelkor::Util

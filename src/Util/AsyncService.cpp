#include <Util/AsyncService.h>

#include <Base/StackLink.h>
#include <Base/Throw.h>
#include <Util/FunctorExecutionForwarder.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QMap>
#include <QtCore/QScopedPointer>
#include <QtCore/QThread>

#include <memory>
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
    void startThread();
    void run(Task* task);
    void work(Task* task, Reporter* reporter); // runs on the worker thread
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
    int queuedJobs = 0;
    Delivery* innermostDelivery = nullptr;
};

AsyncService::Impl::Impl()
    : thread(new QThread)
{
    thread->setObjectName(QStringLiteral("AsyncService"));
    workerForwarder.moveToThread(thread.data());
    // A job may quit the event loop of the worker thread. The jobs that are still queued then need a new event loop.
    // Restart the thread for them.
    QObject::connect(thread.data(), &QThread::finished, &ownerForwarder, [this] {
        if (queuedJobs > 0) {
            startThread();
        }
    });
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

void AsyncService::Impl::startThread()
{
    if (!thread->isRunning()) {
        thread->start(QThread::InheritPriority);
    }
}

void AsyncService::Impl::run(Task* task)
{
    startThread();
    // If the task is not registered, operator[] registers it with a null reporter.
    Reporter* const reporter = tasks[task];
    ++queuedJobs;
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

void AsyncService::Impl::complete(Task* task, bool cancelled)
{
    std::unique_ptr<Task> completed(task);
    --queuedJobs;
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

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

// Jobs run on the worker thread, everything else on the owner thread. Two forwarders carry functors between the
// threads, so the registry needs no lock. The only datum that both threads share while a job runs is
// Reporter::cancelled.

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
    /// A running progress callback. It may run an event loop in which its task completes or the service is destroyed.
    struct Delivery : StackLink<Delivery>
    {
        Delivery(Impl* impl, Task* deliveredTask)
            : StackLink(impl->innermostDelivery)
            , task(deliveredTask)
        {}

        Task* const task;
        std::unique_ptr<Task> completedTask; ///< The same task once it has completed; deleted with this object.
    };

    Impl();
    ~Impl();

    void stop();

    void registerTask(Task* task, AsyncService* service);
    void startThread();
    void run(Task* task);
    void work(Task* task, Reporter* reporter); // worker thread
    void complete(Task* task, bool cancelled);
    void deliver(Task* task, int value);
    void keepDuringDelivery(std::unique_ptr<Task>& task) const;

    QMap<Task*, Reporter*> tasks;
    QScopedPointer<QThread> thread;
    FunctorExecutionForwarder workerForwarder;
    FunctorExecutionForwarder ownerForwarder;

    // A queued job may still use a reporter that a second post() has replaced.
    std::vector<std::unique_ptr<Reporter>> replacedReporters;
    int queuedJobs = 0;
    Delivery* innermostDelivery = nullptr;
};

AsyncService::Impl::Impl()
    : thread(new QThread)
{
    thread->setObjectName(QStringLiteral("AsyncService"));
    workerForwarder.moveToThread(thread.data());
    // A job may quit its thread's event loop. A run() that still sees the thread running would then queue a job that
    // nobody calls, so the thread is restarted while jobs are queued.
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
    // quit() alone would let the event loop call every job that is already queued.
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
    // An unregistered task is registered with a null reporter, so that its completion is delivered as well.
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

    // The callback may destroy the service, so only the task is used from here on.
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
        Delivery const delivery(this, task);
        task->onProgress(value);
    }
}

/// Moves \a task into the outermost delivery of its progress, if any. That delivery returns last, so the callbacks of
/// all deliveries stay alive until they have returned.
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
    // Not in ~Impl(): the running job reports through impl_, which some standard libraries clear before they destroy
    // Impl.
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

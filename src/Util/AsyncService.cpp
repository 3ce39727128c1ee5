#include <Util/AsyncService.h>

#include <Base/Throw.h>
#include <Util/FunctorExecutionForwarder.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QMap>
#include <QtCore/QScopedPointer>
#include <QtCore/QThread>

#include <utility>
#include <vector>

namespace Zelkor::Util
{
namespace
{

AsyncService::Task* Given(AsyncService::Task* task)
{
    if (!task) {
        ZELKOR_THROW(std::invalid_argument("AsyncService use without task!"));
    }
    return task;
}

} // namespace

// All of it belongs to the owner thread, but for Work(), which runs on the worker thread.
struct AsyncService::Impl
{
    class Delivery;

    /// Tells the functors that it calls whose they are.
    class OwnerForwarder : public FunctorExecutionForwarder
    {
    public:
        explicit OwnerForwarder(Impl* service)
            : service_(service)
        {}

        /// The service whose functor the calling thread has just begun; later the functor may have called others.
        static Impl* Calling() { return g_calling_; }

    protected:
        bool event(QEvent* event) override
        {
            g_calling_ = service_;
            return FunctorExecutionForwarder::event(event);
        }

    private:
        static thread_local Impl* g_calling_;

        Impl* const service_;
    };

    Impl();
    ~Impl();

    void Stop();

    void Register(Task* task, AsyncService* service);
    void Start();
    void Run(Task* task);
    void Work(Task* task, Reporter* reporter);
    void Complete(Task* task, bool cancelled);
    void Deliver(Task* task, int value);

    QMap<Task*, Reporter*> tasks;
    QScopedPointer<QThread> thread;
    FunctorExecutionForwarder workerForwarder;
    OwnerForwarder ownerForwarder;

    // Reporters that a second post() replaced: a queued job may still hold them.
    std::vector<std::unique_ptr<Reporter>> replaced;
    int queuedJobs = 0;
    Delivery* deliveries = nullptr;
};

// A progress call-back on the stack. It may turn an event loop in which its own task completes, or even the service
// goes; the task, and with it the running call-back, is then kept until the call-back returns.
class AsyncService::Impl::Delivery
{
public:
    Delivery(Impl* impl, Task* task)
        : impl_(impl)
        , task_(task)
        , outer_(impl->deliveries)
    {
        impl->deliveries = this;
    }

    ~Delivery()
    {
        if (impl_) {
            impl_->deliveries = outer_;
        }
    }

    Delivery(Delivery const&) = delete;
    Delivery& operator=(Delivery const&) = delete;

    /// Hands \a task to the outermost of the \a deliveries of it that are on the stack, if any.
    static void KeepWhileRunning(std::unique_ptr<Task>& task, Delivery* deliveries)
    {
        Delivery* outermost = nullptr;
        for (Delivery* delivery = deliveries; delivery; delivery = delivery->outer_) {
            if (delivery->task_ == task.get()) {
                outermost = delivery;
            }
        }
        if (outermost) {
            outermost->completed_ = std::move(task);
        }
    }

    static void Orphan(Delivery* deliveries)
    {
        for (; deliveries; deliveries = deliveries->outer_) {
            deliveries->impl_ = nullptr;
        }
    }

private:
    Impl* impl_;
    Task* task_;
    Delivery* outer_;
    std::unique_ptr<Task> completed_;
};

thread_local AsyncService::Impl* AsyncService::Impl::OwnerForwarder::g_calling_ = nullptr;

AsyncService::Impl::Impl()
    : thread(new QThread)
    , ownerForwarder(this)
{
    thread->setObjectName(QStringLiteral("AsyncService"));
    workerForwarder.moveToThread(thread.data());
    // A job may quit its thread's loop, and the thread may then end with jobs queued that run() still saw it alive for.
    QObject::connect(thread.data(), &QThread::finished, &ownerForwarder, [this] {
        if (queuedJobs > 0) {
            Start();
        }
    });
}

AsyncService::Impl::~Impl()
{
    Delivery::Orphan(deliveries);
    qDeleteAll(tasks);
}

void AsyncService::Impl::Stop()
{
    // Quitting alone would let the loop call everything that is queued already.
    QCoreApplication::removePostedEvents(&workerForwarder);
    thread->quit();
    thread->wait();
}

void AsyncService::Impl::Register(Task* task, AsyncService* service)
{
    task->service = service;
    task->error = nullptr;
    std::unique_ptr<Reporter> reporter(new Reporter{service, task});
    Reporter*& current = tasks[task];
    if (current) {
        replaced.emplace_back(current);
    }
    current = reporter.release();
}

void AsyncService::Impl::Start()
{
    if (!thread->isRunning()) {
        thread->start(QThread::InheritPriority);
    }
}

void AsyncService::Impl::Run(Task* task)
{
    Start();
    Reporter* const reporter = tasks[task];
    ++queuedJobs;
    workerForwarder.Forward([this, task, reporter] { Work(task, reporter); });
}

void AsyncService::Impl::Work(Task* task, Reporter* reporter)
{
    bool cancelled = false;
    try {
        task->work(reporter);
    } catch (Cancelled const&) {
        cancelled = true;
    } catch (...) {
        task->error = std::current_exception();
    }
    ownerForwarder.Forward([this, task, cancelled] { Complete(task, cancelled); });
}

void AsyncService::Impl::Complete(Task* task, bool cancelled)
{
    std::unique_ptr<Task> completed(task);
    --queuedJobs;
    delete tasks.take(task);
    Delivery::KeepWhileRunning(completed, deliveries);

    // The call-back may destroy the service: from here on only the task is touched.
    if (task->error && task->onError) {
        task->onError(task->error);
    } else if (cancelled && task->onCancelled) {
        task->onCancelled();
    } else if (task->onFinished) {
        task->onFinished();
    }
}

void AsyncService::Impl::Deliver(Task* task, int value)
{
    if (tasks.contains(task) && task->onProgress) {
        Delivery const delivery(this, task);
        task->onProgress(value);
    }
}

AsyncService::AsyncService()
    : impl_(std::make_unique<Impl>())
{}

AsyncService::~AsyncService()
{
    impl_->Stop(); // not when impl goes: until its job returns, the worker thread reports through impl
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
    impl_->Register(Given(task), this);
    return task;
}

void AsyncService::run(Task* task)
{
    impl_->Run(Given(task));
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
    // With the service in it, a functor would need memory of its own, which one thread takes and the other gives back.
    impl_->ownerForwarder.Forward([task, value] { Impl::OwnerForwarder::Calling()->Deliver(task, value); });
}

} // namespace Zelkor::Util

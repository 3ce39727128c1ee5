// Posts, runs and cancels tasks of several services. The callbacks of the tasks run further operations, run nested
// event loops, and destroy services. Each task has a record. The storm compares this record with the calls to the
// task's job and callbacks.

#include <storms/Storm.h>

#include <support/Timeouts.h>

#include <Util/AsyncService.h>
#include <Util/FunctorExecutionForwarder.h>

#include <QtCore/QEventLoop>
#include <QtCore/QThread>
#include <QtCore/QTimer>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

using Zelkor::Testing::Random;
using Zelkor::Testing::Require;
using Zelkor::Testing::Timeout;
using Zelkor::Util::AsyncService;
using Zelkor::Util::FunctorExecutionForwarder;
using Task = AsyncService::Task;
using Reporter = AsyncService::Reporter;

namespace
{

constexpr std::size_t ServiceCount = 2;
constexpr std::size_t MaxRegistered = 30; // tasks per service

enum class JobKind {
    Returns,
    ReturnsAndQuitsTheThread,
    Throws,
    ObservesCancellation,
};

enum class Result {
    None,
    Finished,
    Cancelled,
    Error,
};

struct Record;

struct Service
{
    // These objects belong to the worker thread. They are destroyed after `service`, when the thread has finished.
    std::vector<std::unique_ptr<FunctorExecutionForwarder>> attached;
    std::vector<std::shared_ptr<Record>> registered; // the registered tasks
    int queuedJobs = 0;                              // number of run() calls
    std::atomic<int> startedJobs{0};
    std::atomic<int> runningJobs{0};
    AsyncService service;
};

/// The expected and the observed state of a task.
struct Record
{
    Service* service = nullptr;
    Task* task = nullptr;
    JobKind kind = JobKind::Returns;
    int reportCount = 0; // progress values that the job reports unless it is cancelled
    bool mustBeCancelled = false;
    bool isQueued = false;
    int position = 0; // the number of jobs that were queued earlier
    int delivered = 0;
    bool isCompleted = false;
    bool isAbandoned = false; // the service was destroyed before the task completed
    bool isDeleted = false;

    // Written by the job.
    std::atomic<int> reported{0};
    std::atomic<Result> result{Result::None};
};

/// The job of a task.
void Work(Record& record, Service& service, Reporter* reporter)
{
    Require(QThread::currentThread() != QCoreApplication::instance()->thread(), "jobs run on the worker thread");
    Require(++service.runningJobs == 1, "jobs do not overlap");
    Require(service.startedJobs++ == record.position, "jobs run once and in the order of the run() calls");
    for (int value = 1; value <= record.reportCount; ++value) {
        if (record.kind == JobKind::ObservesCancellation && reporter->isCancelled()) {
            record.result = Result::Cancelled;
            --service.runningJobs;
            throw AsyncService::Cancelled();
        }
        record.reported = value;
        reporter->report(value);
        QThread::yieldCurrentThread();
    }
    --service.runningJobs;
    if (record.kind == JobKind::Throws) {
        record.result = Result::Error;
        throw std::runtime_error("storm");
    }
    if (record.kind == JobKind::ReturnsAndQuitsTheThread) {
        QThread::currentThread()->quit();
    }
    record.result = Result::Finished;
}

class TaskStorm
{
public:
    explicit TaskStorm(Random& random)
        : random_(random)
    {
        for (auto& service : services_) {
            service = std::make_unique<Service>();
        }
    }

    void Step()
    {
        Operate();
        if (random_.OneIn(50)) {
            Drain(random_.Below(ServiceCount));
        }
        CheckDeletedTasks();
        CheckServices();
    }

    void Finish()
    {
        callbacksOperate_ = false;
        for (std::size_t index = 0; index < ServiceCount; ++index) {
            auto const registered = services_[index]->registered;
            for (auto const& record : registered) {
                Run(*record);
            }
            Drain(index);
            Require(services_[index]->service.empty(), "all tasks complete");
        }
        CheckDeletedTasks();
        CheckServices();
    }

private:
    void Operate()
    {
        std::size_t const index = random_.Below(ServiceCount);
        Service& service = *services_[index];
        int const operation = static_cast<int>(random_.Below(100));
        if (operation < 30) {
            Post(service);
        } else if (operation < 65) {
            WithRegistered(service, [this](Record& record) { Run(record); });
        } else if (operation < 72) {
            WithRegistered(service, [this](Record& record) { Cancel(record); });
        } else if (operation < 76) {
            WithRegistered(service, [this](Record& record) { PostAgain(record); });
        } else if (operation < 78) {
            Attach(service);
        } else if (operation < 79) {
            DestroyService(index);
        } else {
            ProcessEvents();
        }
    }

    void OperateInCallback()
    {
        if (callbacksOperate_ && depth_ < 3 && random_.OneIn(3)) {
            ++depth_;
            Operate();
            CheckServices();
            --depth_;
        }
    }

    template <class Function>
    void WithRegistered(Service& service, Function const& function)
    {
        if (!service.registered.empty()) {
            std::shared_ptr<Record> const record = random_.Pick(service.registered);
            function(*record);
        }
    }

    void Post(Service& service)
    {
        if (service.registered.size() >= MaxRegistered) {
            return;
        }
        auto const record = std::make_shared<Record>();
        record->service = &service;
        record->kind = static_cast<JobKind>(random_.Below(4));
        record->reportCount = static_cast<int>(random_.Below(5));

        std::shared_ptr<void> const deletion(nullptr, [record](std::nullptr_t) {
            Require(QThread::currentThread() == QCoreApplication::instance()->thread(),
                    "tasks are deleted on the owner thread");
            record->isDeleted = true;
        });
        auto work = [record = record.get(), deletion, &service](Reporter* reporter) {
            Work(*record, service, reporter);
        };
        if (random_.OneIn(2)) {
            record->task = service.service.post(std::move(work));
        } else {
            record->task = new Task;
            record->task->work = std::move(work);
            service.service.post(record->task);
        }
        std::weak_ptr<Record> const observer = record;
        record->task->onProgress = [this, observer](int value) { OnProgress(*observer.lock(), value); };
        record->task->onFinished = [this, observer] { OnCompleted(*observer.lock(), Result::Finished); };
        if (random_.OneIn(2)) {
            record->task->onCancelled = [this, observer] { OnCompleted(*observer.lock(), Result::Cancelled); };
        }
        if (random_.OneIn(2)) {
            record->task->onError = [this, observer](std::exception_ptr const& error) {
                Require(error != nullptr, "onError receives the exception");
                OnCompleted(*observer.lock(), Result::Error);
            };
        }
        service.registered.push_back(record);
    }

    void PostAgain(Record& record)
    {
        if (!record.isQueued) {
            record.service->service.post(record.task);
            record.mustBeCancelled = false; // the new reporter is not cancelled
        }
    }

    void Run(Record& record)
    {
        if (!record.isQueued) {
            record.isQueued = true;
            record.position = record.service->queuedJobs++;
            record.service->service.run(record.task);
        }
    }

    void Cancel(Record& record)
    {
        if (!record.isQueued && record.kind == JobKind::ObservesCancellation && record.reportCount > 0) {
            record.mustBeCancelled = true;
        }
        record.service->service.cancel(record.task);
    }

    void Attach(Service& service)
    {
        service.attached.push_back(std::make_unique<FunctorExecutionForwarder>());
        FunctorExecutionForwarder const* const object = service.attached.back().get();
        service.service.attach(service.attached.back().get());
        object->Forward([object] {
            Require(QThread::currentThread() == object->thread(), "attached objects use the worker thread");
        });
    }

    void DestroyService(std::size_t index)
    {
        std::unique_ptr<Service> const destroyed = std::exchange(services_[index], std::make_unique<Service>());
        for (auto const& record : destroyed->registered) {
            record->isAbandoned = true;
            abandoned_.push_back(record);
        }
    }

    void ProcessEvents() const
    {
        if (depth_ == 0) {
            QCoreApplication::processEvents();
            return;
        }
        QEventLoop loop;
        QTimer::singleShot(0, &loop, &QEventLoop::quit);
        loop.exec();
    }

    void OnProgress(Record& record, int value)
    {
        RequireUnfinished(record);
        Require(value == ++record.delivered, "progress values arrive in the order of the reports");
        OperateInCallback();
        Require(!record.isDeleted, "a task exists until its progress callback returns");
    }

    void OnCompleted(Record& record, Result callback)
    {
        RequireUnfinished(record);
        Result const result = record.result;
        Require(result != Result::None, "the job runs before its task completes");
        Require(!record.mustBeCancelled || result == Result::Cancelled, "the job observes the cancellation");
        bool const hasCallback = (result == Result::Cancelled && record.task->onCancelled) ||
                                 (result == Result::Error && record.task->onError);
        Require(callback == (hasCallback ? result : Result::Finished), "the task calls the callback of its result");
        Require((result == Result::Error) == (record.task->error != nullptr), "Task::error contains the exception");
        Require(record.delivered == record.reported, "all progress values arrive before the completion");

        record.isCompleted = true;
        auto& registered = record.service->registered;
        auto const found = std::find_if(registered.begin(), registered.end(),
                                        [&](auto const& other) { return other.get() == &record; });
        Require(found != registered.end(), "the task is registered until it completes");
        completed_.push_back(*found);
        registered.erase(found);
        Require(!record.service->service.contains(record.task), "a completed task is not registered");
        OperateInCallback();
        Require(!record.isDeleted, "a task exists until its completion callback returns");
    }

    static void RequireUnfinished(Record const& record)
    {
        Require(!record.isCompleted, "no callback after the completion");
        Require(!record.isAbandoned, "no callback after the destruction of the service");
        Require(!record.isDeleted, "no callback of a deleted task");
    }

    /// Processes events until all queued tasks of a service have completed.
    void Drain(std::size_t index)
    {
        QDeadlineTimer const deadline(Timeout);
        auto const isQueued = [](auto const& record) { return record->isQueued; };
        while (std::any_of(services_[index]->registered.begin(), services_[index]->registered.end(), isQueued)) {
            Require(!deadline.hasExpired(), "queued tasks complete");
            QCoreApplication::processEvents();
            QThread::yieldCurrentThread();
        }
    }

    void CheckServices() const
    {
        for (auto const& service : services_) {
            Require(service->service.empty() == service->registered.empty(), "empty() is true without tasks");
            for (auto const& record : service->registered) {
                Require(service->service.contains(record->task), "tasks are registered until they complete");
                Require(!record->isDeleted, "registered tasks are not deleted");
            }
        }
    }

    /// Checks the tasks that have completed in this step, and the tasks whose service was destroyed in this step. Call
    /// this function only while no callback is running.
    void CheckDeletedTasks()
    {
        for (auto const& record : std::exchange(completed_, {})) {
            Require(record->isDeleted, "a completed task is deleted");
        }
        for (auto const& record : std::exchange(abandoned_, {})) {
            Require(!record->isDeleted, "the service does not delete the tasks that it still contains");
            delete record->task;
            Require(record->isDeleted, "a task destroys its job");
        }
    }

    Random& random_;
    std::array<std::unique_ptr<Service>, ServiceCount> services_;
    std::vector<std::shared_ptr<Record>> completed_; // tasks that have completed in this step
    std::vector<std::shared_ptr<Record>> abandoned_; // tasks of services that were destroyed in this step
    bool callbacksOperate_ = true;
    int depth_ = 0;
};

} // namespace

int main(int argc, char** argv)
{
    return Zelkor::Testing::RunStorm<TaskStorm>(argc, argv);
}

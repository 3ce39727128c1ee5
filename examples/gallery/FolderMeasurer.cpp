#include "FolderMeasurer.h"

#include "Texts.h"

#include <Util/AsyncService.h>

#include <boost/filesystem/exception.hpp>

#include <algorithm>
#include <chrono>
#include <utility>

namespace Zelkor::Gallery
{

using Util::AsyncService;

// One measurement of a folder. It is destroyed when its AsyncService has no more tasks.
//
// Each measurement has its own AsyncService. With a shared service, a new measurement would have to wait until the
// cancelled measurement has measured its current entry.
class FolderMeasurer::Measurement
{
public:
    Measurement(FolderMeasurer* measurer, ioPath folder)
        : measurer_(measurer)
        , folder_(std::move(folder))
    {}

    void Start();
    void Cancel();

    FolderTotals const& Totals() const { return totals_; }

    /// Returns the reason why the folder could not be read, or an empty string.
    QString const& Failure() const { return failure_; }

private:
    using Entries = std::vector<FolderEntry>;

    bool IsCurrent() const { return measurer_->current_ == this; }

    AsyncService::Task* Post(std::function<void(AsyncService::Reporter*)> work);
    void MeasureAll(Entries const& entries);
    void Measure(int row, FolderEntry const& entry);
    void ReportStarted(int row);
    void ReportFinished(int row, FolderEntry const& entry);
    void Fail(std::exception_ptr const& error);
    void RemoveWhenEmpty();

    FolderMeasurer* measurer_;
    ioPath const folder_;
    AsyncService service_;
    std::vector<AsyncService::Task*> tasks_;
    FolderTotals totals_;
    QString failure_;
    std::chrono::steady_clock::time_point const start_ = std::chrono::steady_clock::now();
};

void FolderMeasurer::Measurement::Start()
{
    auto const entries = std::make_shared<Entries>();
    AsyncService::Task* const task = Post([folder = folder_, entries](AsyncService::Reporter* reporter) {
        *entries = ListFolder(folder, [reporter] { reporter->checkCancelled(); });
    });
    task->onFinished = [this, entries] { MeasureAll(*entries); };
    task->onCancelled = [this] { RemoveWhenEmpty(); };
    task->onError = [this](std::exception_ptr error) { Fail(error); };
    service_.run(task);
}

void FolderMeasurer::Measurement::Cancel()
{
    totals_.cancelled = true;
    for (AsyncService::Task* const task : tasks_) {
        service_.cancel(task);
    }
}

AsyncService::Task* FolderMeasurer::Measurement::Post(std::function<void(AsyncService::Reporter*)> work)
{
    return tasks_.emplace_back(service_.post(std::move(work)));
}

void FolderMeasurer::Measurement::MeasureAll(Entries const& entries)
{
    totals_.entries = static_cast<int>(entries.size());
    if (IsCurrent()) {
        Q_EMIT measurer_->Listed(entries);
    }
    tasks_.clear();
    tasks_.reserve(entries.size());
    int row = 0;
    for (FolderEntry const& entry : entries) {
        Measure(row++, entry);
    }
    // Cancel() may have been called before the loop above created the tasks. In that case, these tasks have not been
    // cancelled, so cancel them now.
    if (totals_.cancelled) {
        Cancel();
    }
    RemoveWhenEmpty();
}

void FolderMeasurer::Measurement::Measure(int row, FolderEntry const& entry)
{
    // No lock is necessary: the job writes *result on the worker thread, and the owner thread reads it only after the
    // job has finished.
    auto const result = std::make_shared<FolderEntry>(entry);
    AsyncService::Task* const task = Post([result](AsyncService::Reporter* reporter) {
        reporter->checkCancelled();
        reporter->report(0);
        MeasureEntry(*result);
    });
    task->onProgress = [this, row](int) { ReportStarted(row); };
    task->onFinished = [this, row, result] { ReportFinished(row, *result); };
    task->onCancelled = [this, row, result] {
        result->state = EntryState::Cancelled;
        ReportFinished(row, *result);
    };
    task->onError = [this, row, result](std::exception_ptr) {
        result->state = EntryState::WithoutSize;
        result->unmeasured = {result->path};
        ReportFinished(row, *result);
    };
    service_.run(task);
}

void FolderMeasurer::Measurement::ReportStarted(int row)
{
    if (IsCurrent()) {
        Q_EMIT measurer_->EntryStarted(row);
    }
}

void FolderMeasurer::Measurement::ReportFinished(int row, FolderEntry const& entry)
{
    totals_.size += entry.size;
    totals_.unmeasured += entry.unmeasured.size();
    totals_.cancelledEntries += entry.state == EntryState::Cancelled;
    if (IsCurrent()) {
        Q_EMIT measurer_->EntryFinished(row, entry);
    }
    RemoveWhenEmpty();
}

void FolderMeasurer::Measurement::Fail(std::exception_ptr const& error)
{
    try {
        std::rethrow_exception(error);
    } catch (boost::filesystem::filesystem_error const& unreadable) {
        failure_ = UnreadableFolderText(folder_, unreadable.code());
    } catch (std::exception const& other) {
        failure_ = UnreadableFolderText(folder_, QString::fromLocal8Bit(other.what()));
    }
    RemoveWhenEmpty();
}

void FolderMeasurer::Measurement::RemoveWhenEmpty()
{
    if (service_.empty()) {
        totals_.microseconds =
            std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start_).count();
        measurer_->Remove(this);
    }
}

FolderMeasurer::FolderMeasurer(QObject* parent)
    : QObject(parent)
{}

FolderMeasurer::~FolderMeasurer() = default;

void FolderMeasurer::Start(ioPath const& folder)
{
    Cancel();
    current_ = measurements_.emplace_back(std::make_unique<Measurement>(this, folder)).get();
    current_->Start();
}

void FolderMeasurer::Cancel()
{
    if (current_) {
        current_->Cancel();
    }
}

bool FolderMeasurer::IsBusy() const
{
    return !measurements_.empty();
}

void FolderMeasurer::Remove(Measurement* measurement)
{
    auto const position = std::find_if(measurements_.begin(), measurements_.end(),
                                       [measurement](auto const& known) { return known.get() == measurement; });
    std::unique_ptr<Measurement> const finished = std::move(*position);
    measurements_.erase(position);

    if (current_ == measurement) {
        current_ = nullptr;
        if (finished->Failure().isEmpty()) {
            Q_EMIT Finished(finished->Totals());
        } else {
            Q_EMIT Failed(finished->Failure());
        }
    }
    if (measurements_.empty()) {
        Q_EMIT BecameIdle();
    }
}

} // namespace Zelkor::Gallery

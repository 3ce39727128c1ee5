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

// One measuring. It has a service of its own, so that the next one need not wait for an entry of this one that takes
// its time, and it lives until that service is empty.
class FolderMeasurer::Run
{
public:
    Run(FolderMeasurer* measurer, ioPath folder)
        : measurer_(measurer)
        , folder_(std::move(folder))
    {}

    void Start();
    void Cancel();

    FolderTotals const& Totals() const { return totals_; }

    /// Why the folder could not be read; empty when it could.
    QString const& Failure() const { return failure_; }

private:
    using Entries = std::vector<FolderEntry>;

    bool IsCurrent() const { return measurer_->current_ == this; }

    AsyncService::Task* Post(std::function<void(AsyncService::Reporter*)> work);
    void MeasureAll(Entries const& entries);
    void Measure(int row, FolderEntry const& entry);
    void ReportStart(int row);
    void ReportEnd(int row, FolderEntry const& entry);
    void Fail(std::exception_ptr const& error);
    void RetireWhenEmpty();

    FolderMeasurer* measurer_;
    ioPath const folder_;
    AsyncService service_;
    std::vector<AsyncService::Task*> tasks_;
    FolderTotals totals_;
    QString failure_;
    std::chrono::steady_clock::time_point const start_ = std::chrono::steady_clock::now();
};

void FolderMeasurer::Run::Start()
{
    auto const entries = std::make_shared<Entries>();
    AsyncService::Task* const task = Post([folder = folder_, entries](AsyncService::Reporter* reporter) {
        *entries = ListFolder(folder, [reporter] { reporter->checkCancelled(); });
    });
    task->onFinished = [this, entries] { MeasureAll(*entries); };
    task->onCancelled = [this] { RetireWhenEmpty(); };
    task->onError = [this](std::exception_ptr error) { Fail(error); };
    service_.run(task);
}

void FolderMeasurer::Run::Cancel()
{
    totals_.cancelled = true;
    for (AsyncService::Task* const task : tasks_) {
        service_.cancel(task);
    }
}

AsyncService::Task* FolderMeasurer::Run::Post(std::function<void(AsyncService::Reporter*)> work)
{
    return tasks_.emplace_back(service_.post(std::move(work)));
}

void FolderMeasurer::Run::MeasureAll(Entries const& entries)
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
    // The list may have been complete already when somebody cancelled it.
    if (totals_.cancelled) {
        Cancel();
    }
    RetireWhenEmpty();
}

void FolderMeasurer::Run::Measure(int row, FolderEntry const& entry)
{
    // The job fills it in, and the owner thread reads it when the job has ended.
    auto const result = std::make_shared<FolderEntry>(entry);
    AsyncService::Task* const task = Post([result](AsyncService::Reporter* reporter) {
        reporter->checkCancelled();
        reporter->report(0);
        MeasureEntry(*result);
    });
    task->onProgress = [this, row](int) { ReportStart(row); };
    task->onFinished = [this, row, result] { ReportEnd(row, *result); };
    task->onCancelled = [this, row, result] {
        result->state = EntryState::Cancelled;
        ReportEnd(row, *result);
    };
    task->onError = [this, row, result](std::exception_ptr) {
        result->state = EntryState::Sizeless;
        result->unmeasured = {result->path};
        ReportEnd(row, *result);
    };
    service_.run(task);
}

void FolderMeasurer::Run::ReportStart(int row)
{
    if (IsCurrent()) {
        Q_EMIT measurer_->EntryStarted(row);
    }
}

void FolderMeasurer::Run::ReportEnd(int row, FolderEntry const& entry)
{
    totals_.size += entry.size;
    totals_.unmeasured += entry.unmeasured.size();
    totals_.cancelledEntries += entry.state == EntryState::Cancelled;
    if (IsCurrent()) {
        Q_EMIT measurer_->EntryEnded(row, entry);
    }
    RetireWhenEmpty();
}

void FolderMeasurer::Run::Fail(std::exception_ptr const& error)
{
    try {
        std::rethrow_exception(error);
    } catch (boost::filesystem::filesystem_error const& unreadable) {
        failure_ = UnreadableFolderText(folder_, unreadable.code());
    } catch (std::exception const& other) {
        failure_ = UnreadableFolderText(folder_, QString::fromLocal8Bit(other.what()));
    }
    RetireWhenEmpty();
}

void FolderMeasurer::Run::RetireWhenEmpty()
{
    if (service_.empty()) {
        totals_.microseconds =
            std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start_).count();
        measurer_->Retire(this);
    }
}

FolderMeasurer::FolderMeasurer(QObject* parent)
    : QObject(parent)
{}

FolderMeasurer::~FolderMeasurer() = default;

void FolderMeasurer::Start(ioPath const& folder)
{
    Cancel();
    current_ = runs_.emplace_back(std::make_unique<Run>(this, folder)).get();
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
    return !runs_.empty();
}

void FolderMeasurer::Retire(Run* run)
{
    auto const position =
        std::find_if(runs_.begin(), runs_.end(), [run](auto const& candidate) { return candidate.get() == run; });
    std::unique_ptr<Run> const ended = std::move(*position);
    runs_.erase(position);

    if (current_ == run) {
        current_ = nullptr;
        if (ended->Failure().isEmpty()) {
            Q_EMIT Finished(ended->Totals());
        } else {
            Q_EMIT Failed(ended->Failure());
        }
    }
    if (runs_.empty()) {
        Q_EMIT BecameIdle();
    }
}

} // namespace Zelkor::Gallery

#pragma once

/// \file
/// Measures the entries of a folder in the background. Has no user interface.

#include "FolderEntry.h"

#include <QtCore/QObject>
#include <QtCore/QString>

#include <memory>
#include <vector>

namespace Zelkor
{
namespace Gallery
{

/// The result of measuring a folder.
struct FolderTotals
{
    /// The size of all entries in bytes.
    unsigned long long size = 0;
    /// The number of entries in the folder.
    int entries = 0;
    /// The number of entries that were not measured because of FolderMeasurer::Cancel().
    int cancelledEntries = 0;
    /// The number of paths that could not be measured. Links to folders are not counted.
    std::size_t unmeasured = 0;
    /// The time since FolderMeasurer::Start() in microseconds.
    long long microseconds = 0;
    /// True if FolderMeasurer::Cancel() was called before the measurement finished.
    bool cancelled = false;
};

/// Measures the entries of a folder one after another on a worker thread, each as one task of an AsyncService.
///
/// All signals are emitted on the thread of the object, which needs an event loop.
///
/// Destroy the object only while IsBusy() returns false. Otherwise the destructor blocks until the current entry is
/// measured, and the tasks of the other entries leak. Do not destroy the object in a slot connected to one of its
/// signals.
class FolderMeasurer : public QObject
{
    Q_OBJECT

public:
    explicit FolderMeasurer(QObject* parent = nullptr);
    ~FolderMeasurer() override;

    /// Starts to measure \a folder. A measurement that is still running is cancelled and emits no more signals.
    void Start(ioPath const& folder);

    /// Cancels the current measurement. The entry that is being measured cannot be interrupted and is reported first.
    /// The waiting entries are then reported as cancelled.
    void Cancel();

    /// Returns true while the current measurement or an earlier one is running.
    bool IsBusy() const;

Q_SIGNALS:
    /// Emitted when the folder was read. All \a entries are in the state EntryState::Waiting.
    void Listed(std::vector<FolderEntry> const& entries);

    /// Emitted when the measurement of the entry at index \a row of the list starts.
    void EntryStarted(int row);

    /// Emitted when the entry at index \a row of the list was measured or cancelled. \a entry is the result.
    void EntryFinished(int row, FolderEntry const& entry);

    /// Emitted with the \a totals when all entries were measured or cancelled. The slot may call Start().
    void Finished(FolderTotals const& totals);

    /// Emitted instead of Finished() if the folder could not be read. \a message is the reason for the user.
    void Failed(QString const& message);

    /// Emitted when IsBusy() has changed to false.
    void BecameIdle();

private:
    class Measurement;

    void Remove(Measurement* measurement);

    std::vector<std::unique_ptr<Measurement>> measurements_; // the running ones
    Measurement* current_ = nullptr;
};

} // namespace Gallery
} // namespace Zelkor

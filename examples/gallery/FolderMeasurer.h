#pragma once

/// \file
/// A class that measures the entries of a folder in the background. It has no user interface.

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
    /// The number of entries that were not measured because FolderMeasurer::Cancel() was called.
    int cancelledEntries = 0;
    /// The number of paths that could not be measured. Links to folders are not counted.
    std::size_t unmeasured = 0;
    /// The time from the call to FolderMeasurer::Start() to the end of the measurement, in microseconds.
    long long microseconds = 0;
    /// True if FolderMeasurer::Cancel() was called before the measurement finished.
    bool cancelled = false;
};

/// Measures the entries of a folder one after another on a worker thread. Each entry is one task of an AsyncService.
///
/// All signals are emitted on the thread of the FolderMeasurer object. This thread needs an event loop.
///
/// Destroy the object only while IsBusy() returns false. Otherwise the destructor blocks until the current entry is
/// measured, and the tasks of the other entries leak. Do not destroy the object in a slot that is connected to one of
/// the object's signals.
class FolderMeasurer : public QObject
{
    Q_OBJECT

public:
    explicit FolderMeasurer(QObject* parent = nullptr);
    ~FolderMeasurer() override;

    /// Starts to measure \a folder. If another measurement is running, cancels it; the cancelled measurement emits no
    /// more signals.
    void Start(ioPath const& folder);

    /// Cancels the current measurement. The entry that is being measured cannot be interrupted: it is finished and
    /// reported as usual. Then all waiting entries are reported as cancelled.
    void Cancel();

    /// Returns true while a measurement is running. A cancelled measurement counts as running until its
    /// current entry has been measured.
    bool IsBusy() const;

Q_SIGNALS:
    /// Emitted when the folder has been read. All \a entries are in the state EntryState::Waiting.
    void Listed(std::vector<FolderEntry> const& entries);

    /// Emitted when the measurement of an entry starts. \a row is the index of the entry in the list that the signal
    /// Listed() passed.
    void EntryStarted(int row);

    /// Emitted when an entry has been measured or cancelled. \a row is the index of the entry in the list that the
    /// signal Listed() passed. \a entry is the result.
    void EntryFinished(int row, FolderEntry const& entry);

    /// Emitted when all entries have been measured or cancelled. \a totals is the result of the measurement. A slot
    /// connected to this signal may call Start().
    void Finished(FolderTotals const& totals);

    /// Emitted instead of Finished() if the folder could not be read. \a message explains the reason to the user.
    void Failed(QString const& message);

    /// Emitted when IsBusy() has changed to false.
    void BecameIdle();

private:
    class Measurement;

    void Remove(Measurement* measurement);

    std::vector<std::unique_ptr<Measurement>> measurements_; // all measurements that are still running
    Measurement* current_ = nullptr;
};

} // namespace Gallery
} // namespace Zelkor

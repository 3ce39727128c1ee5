#pragma once

/// \file
/// The measuring of a folder, entry by entry, without a user interface.

#include "FolderEntry.h"

#include <QtCore/QObject>
#include <QtCore/QString>

#include <memory>
#include <vector>

namespace Zelkor
{
namespace Gallery
{

/// What a measuring came to.
struct FolderTotals
{
    /// Bytes of all entries together.
    unsigned long long size = 0;
    /// How many entries the folder has, and how many of them were not measured because of a Cancel().
    int entries = 0;
    int cancelledEntries = 0;
    /// How many paths have no size, links to folders among the entries aside.
    std::size_t unmeasured = 0;
    /// From Start() to the end.
    long long microseconds = 0;
    /// Whether Cancel() was called before the end.
    bool cancelled = false;
};

/// Measures the entries of a folder one after another on a worker thread, each as one task of an AsyncService.
///
/// Needs an event loop on its thread, where all signals are emitted. To be destroyed when BecameIdle() has been
/// emitted, as a window that is closed waits for it. Destroyed while it IsBusy(), it waits for the entry that is being
/// measured, and the tasks of the others are never freed; it must not be destroyed in a slot of its own signals.
class FolderMeasurer : public QObject
{
    Q_OBJECT

public:
    explicit FolderMeasurer(QObject* parent = nullptr);
    ~FolderMeasurer() override;

    /// Measures \a folder. Nothing more is heard of an earlier measuring, which is cancelled and need not have ended.
    void Start(ioPath const& folder);

    /// Asks the current measuring to end: the entries that are still waiting come back as cancelled. The entry that is
    /// being measured cannot be interrupted, and is reported first.
    void Cancel();

    /// Whether a worker is still at work, be it for the current measuring or for an earlier one.
    bool IsBusy() const;

Q_SIGNALS:
    /// The folder has been read: \a entries, all of them waiting.
    void Listed(std::vector<FolderEntry> const& entries);

    /// The entry at \a row of the list is being measured from now on.
    void EntryStarted(int row);

    /// The entry at \a row of the list was measured or cancelled.
    void EntryEnded(int row, FolderEntry const& entry);

    /// The end of a measuring. Start() may be called again.
    void Finished(FolderTotals const& totals);

    /// The end of a measuring whose folder could not be read, for the reason in \a message.
    void Failed(QString const& message);

    /// IsBusy() has turned false.
    void BecameIdle();

private:
    class Run;

    void Retire(Run* run);

    std::vector<std::unique_ptr<Run>> runs_; // that have not ended yet
    Run* current_ = nullptr;
};

} // namespace Gallery
} // namespace Zelkor

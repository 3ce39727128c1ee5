#pragma once

/// \file
/// The entries of a folder, and how one is measured.

#include <Base/IoPath.h>

#include <functional>
#include <vector>

namespace Zelkor
{
namespace Gallery
{

enum class EntryKind { File, Folder, LinkToFile, LinkToFolder };

enum class EntryState { Waiting, Measuring, Measured, Sizeless, Cancelled };

/// One entry of a folder, and what is known of it so far.
struct FolderEntry
{
    ioPath path;
    EntryKind kind = EntryKind::File;
    EntryState state = EntryState::Waiting;
    /// Bytes; of what could be measured.
    unsigned long long size = 0;
    /// How long the measuring took.
    long long microseconds = 0;
    /// What has no size, in order: the entry itself, or paths below it.
    std::vector<ioPath> unmeasured;
};

/// The entries of \a folder, ordered by the bytes of their names. Calls \a onEntry before each, which may throw to end
/// the listing. Throws `boost::filesystem::filesystem_error` when the folder cannot be read. Any thread.
std::vector<FolderEntry> ListFolder(ioPath const& folder, std::function<void()> const& onEntry);

/// Measures \a entry and fills in what it found. A link to a folder stays sizeless. Any thread.
void MeasureEntry(FolderEntry& entry);

} // namespace Gallery
} // namespace Zelkor

#pragma once

/// \file
/// Functions that list the entries of a folder and measure their sizes.

#include <Base/IoPath.h>

#include <functional>
#include <vector>

namespace Zelkor
{
namespace Gallery
{

enum class EntryKind { File, Folder, LinkToFile, LinkToFolder };

enum class EntryState { Waiting, Measuring, Measured, WithoutSize, Cancelled };

/// One entry of a folder and the result of measuring it.
struct FolderEntry
{
    ioPath path;
    EntryKind kind = EntryKind::File;
    EntryState state = EntryState::Waiting;
    /// The size in bytes. Does not include the paths in #unmeasured.
    unsigned long long size = 0;
    /// The duration of the measurement in microseconds.
    long long microseconds = 0;
    /// The paths that could not be measured, sorted by their bytes: either the path of the entry itself, or paths below
    /// it.
    std::vector<ioPath> unmeasured;
};

/// Returns the entries of \a folder, sorted by the bytes of their paths. Can be called on any thread.
///
/// Calls \a onEntry before reading the attributes of each entry. If \a onEntry throws an exception, stops and passes
/// the exception on to the caller. Throws `boost::filesystem::filesystem_error` if the folder cannot be read.
std::vector<FolderEntry> ListFolder(ioPath const& folder, std::function<void()> const& onEntry);

/// Measures \a entry and sets its state, size, duration and unmeasured paths. If \a entry is a link to a folder, only
/// sets its state. Can be called on any thread.
void MeasureEntry(FolderEntry& entry);

} // namespace Gallery
} // namespace Zelkor

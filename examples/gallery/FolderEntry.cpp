#include "FolderEntry.h"

#include "UnmeasuredPaths.h"

#include <Util/FileUtils.h>

#include <boost/filesystem/directory.hpp>

#include <algorithm>
#include <chrono>

namespace Zelkor::Gallery
{
namespace
{

namespace fs = boost::filesystem;

EntryKind KindOf(fs::directory_entry const& entry)
{
    boost::system::error_code ignored;
    bool const isLink = fs::is_symlink(entry.symlink_status(ignored));
    if (fs::is_directory(entry.status(ignored))) {
        return isLink ? EntryKind::LinkToFolder : EntryKind::Folder;
    }
    return isLink ? EntryKind::LinkToFile : EntryKind::File;
}

// Compares the paths as sequences of bytes. operator< of boost::filesystem::path would be slow, because it splits both
// paths into their elements for every comparison.
bool IsPathBefore(ioPath const& left, ioPath const& right)
{
    return left.native() < right.native();
}

bool IsEntryBefore(FolderEntry const& left, FolderEntry const& right)
{
    return IsPathBefore(left.path, right.path);
}

} // namespace

std::vector<FolderEntry> ListFolder(ioPath const& folder, std::function<void()> const& onEntry)
{
    std::vector<FolderEntry> entries;
    for (fs::directory_entry const& listed : fs::directory_iterator(folder)) {
        onEntry();
        FolderEntry entry;
        entry.path = listed.path();
        entry.kind = KindOf(listed);
        entries.push_back(std::move(entry));
    }
    std::sort(entries.begin(), entries.end(), IsEntryBefore);
    return entries;
}

void MeasureEntry(FolderEntry& entry)
{
    entry.state = EntryState::WithoutSize;
    if (entry.kind == EntryKind::LinkToFolder) {
        return;
    }
    auto const start = std::chrono::steady_clock::now();
    UnmeasuredPaths unmeasured;
    entry.size = Util::GetPathSize(entry.path);
    entry.unmeasured = unmeasured.Take();
    std::sort(entry.unmeasured.begin(), entry.unmeasured.end(), IsPathBefore);
    entry.microseconds =
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start).count();
    bool const isItselfUnmeasured = entry.unmeasured.size() == 1 && entry.unmeasured.front() == entry.path;
    if (!isItselfUnmeasured) {
        entry.state = EntryState::Measured;
    }
}

} // namespace Zelkor::Gallery

#pragma once

#include <string>

namespace Zelkor::Testing
{

/// Makes readdir() return all entries with the type DT_UNKNOWN, as it does on some file systems.
class EntriesWithoutTypes
{
public:
    EntriesWithoutTypes();
    ~EntriesWithoutTypes();
    EntriesWithoutTypes(EntriesWithoutTypes const&) = delete;
    EntriesWithoutTypes& operator=(EntriesWithoutTypes const&) = delete;

    /// Returns the number of entries that readdir() has returned with the type DT_UNKNOWN.
    int Count() const;
};

/// Makes readdir() fail with EIO after it has returned all entries of a certain folder.
class UnreadableFolder
{
public:
    explicit UnreadableFolder(std::string const& path);
    ~UnreadableFolder();
    UnreadableFolder(UnreadableFolder const&) = delete;
    UnreadableFolder& operator=(UnreadableFolder const&) = delete;

    /// Returns the number of calls of readdir() that have failed with EIO.
    int Count() const;
};

} // namespace Zelkor::Testing

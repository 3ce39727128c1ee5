#pragma once

#include <string>

namespace Zelkor::Testing
{

/// Makes readdir() report the type DT_UNKNOWN for every entry. On some file systems, the real readdir() does this too.
class EntriesWithoutTypes
{
public:
    EntriesWithoutTypes();
    ~EntriesWithoutTypes();
    EntriesWithoutTypes(EntriesWithoutTypes const&) = delete;
    EntriesWithoutTypes& operator=(EntriesWithoutTypes const&) = delete;

    /// Returns the number of entries for which readdir() has reported the type DT_UNKNOWN.
    int Count() const;
};

/// Makes readdir() fail with EIO for one folder, after readdir() has returned all entries of this folder.
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

/// Makes fstat() fail with EIO.
class UnidentifiableFolders
{
public:
    UnidentifiableFolders();
    ~UnidentifiableFolders();
    UnidentifiableFolders(UnidentifiableFolders const&) = delete;
    UnidentifiableFolders& operator=(UnidentifiableFolders const&) = delete;

    /// Returns the number of calls of fstat() that have failed with EIO.
    int Count() const;
};

} // namespace Zelkor::Testing

#pragma once

#include <string>

namespace Zelkor::Testing
{

/// Makes readdir() return entries without their types, as some file systems do.
class EntriesWithoutTypes
{
public:
    EntriesWithoutTypes();
    ~EntriesWithoutTypes();
    EntriesWithoutTypes(EntriesWithoutTypes const&) = delete;
    EntriesWithoutTypes& operator=(EntriesWithoutTypes const&) = delete;

    /// Returns the number of entries that readdir() has returned without a type.
    int Count() const;
};

/// Makes readdir() return all entries of a folder and then fail with EIO.
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

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

    /// The number of entries returned without a type.
    int Count() const;
};

/// Makes readdir() fail with EIO after the last entry of a folder.
class UnreadableFolder
{
public:
    explicit UnreadableFolder(std::string const& path);
    ~UnreadableFolder();
    UnreadableFolder(UnreadableFolder const&) = delete;
    UnreadableFolder& operator=(UnreadableFolder const&) = delete;

    /// The number of failures.
    int Count() const;
};

} // namespace Zelkor::Testing

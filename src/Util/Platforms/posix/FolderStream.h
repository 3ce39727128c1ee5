#pragma once

#include <memory>

#include <dirent.h>

namespace Zelkor
{
namespace Util
{

struct CloseFolder
{
    void operator()(DIR* stream) const { closedir(stream); }
};

/// An open folder whose entries can be read with readdir(), or null.
using FolderStream = std::unique_ptr<DIR, CloseFolder>;

/// Opens the folder \a name in the folder that is open as the file descriptor \a parent. Returns null and sets errno if
/// this fails, for example because \a name is a link.
FolderStream OpenFolderStream(int parent, char const* name);

} // namespace Util
} // namespace Zelkor

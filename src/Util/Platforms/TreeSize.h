#pragma once

// Computes the size of a file or a folder tree. Private to the library.

#include <functional>
#include <string>

namespace Zelkor
{
namespace Util
{

/// Receives the path of a file system entry whose size cannot be determined.
using SizelessHandler = std::function<void(std::string const& path)>;

/// Returns the size in bytes of the file at \a path, or of all files below the folder \a path.
///
/// Implements GetPathSize() without logging: calls \a onSizeless for each entry that GetPathSize() logs. If a folder
/// cannot be read completely, the files in it are not counted either.
unsigned long long TreeSize(std::string const& path, SizelessHandler const& onSizeless);

} // namespace Util
} // namespace Zelkor

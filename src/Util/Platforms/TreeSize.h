#pragma once

// Computes the size of a file or a folder tree. Private to the library.

#include <functional>
#include <string>

namespace Zelkor
{
namespace Util
{

/// A callback that receives the path of a file system entry whose size cannot be determined.
using SizelessHandler = std::function<void(std::string const& path)>;

/// Returns the size in bytes of the file at \a path, or of all files below the folder \a path.
///
/// GetPathSize() calls this function. For each entry whose size cannot be determined, this function calls \a onSizeless
/// instead of writing to the log. If a folder cannot be read completely, none of its contents are counted.
unsigned long long TreeSize(std::string const& path, SizelessHandler const& onSizeless);

} // namespace Util
} // namespace Zelkor

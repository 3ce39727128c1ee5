#pragma once

// Computes the size of a file or a tree. Private to the library.

#include <functional>
#include <string>

namespace Zelkor
{
namespace Util
{

/// Receives the path of an entry that has no size.
using SizelessHandler = std::function<void(std::string const& path)>;

/// Returns the size in bytes of the file at \a path, or of all files below the folder \a path.
///
/// Implements GetPathSize() except the log lines: calls \a onSizeless where GetPathSize() logs. A folder that cannot be
/// read completely has no size, so its files do not count either.
unsigned long long TreeSize(std::string const& path, SizelessHandler const& onSizeless);

} // namespace Util
} // namespace Zelkor

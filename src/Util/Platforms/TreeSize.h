#pragma once

// The size of a file or a tree, on every system. Private to the library.

#include <functional>
#include <string>

namespace Zelkor
{
namespace Util
{

/// Receives the path of something that has no size to tell.
using SizelessHandler = std::function<void(std::string const& path)>;

/// The sum of the sizes of the files at and below \a path, in bytes: GetPathSize() without its log lines. Links are not
/// entered. A folder that cannot be read to its end is sizeless as a whole.
unsigned long long TreeSize(std::string const& path, SizelessHandler const& onSizeless);

} // namespace Util
} // namespace Zelkor

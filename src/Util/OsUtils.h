#pragma once

/// \file
/// Information about the running process.

#include <Util/Export.h>

#include <string>

namespace Zelkor
{
namespace Util
{

/// Returns the size of a pointer of the process in bits, as a string. The result is always "64", because the library
/// supports only 64-bit processes. May be called on any thread.
ZQTUTIL_EXPORT std::string AppBits();

} // namespace Util
} // namespace Zelkor

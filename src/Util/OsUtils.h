#pragma once

/// \file
/// Information about the running process.

#include <Util/Export.h>

#include <string>

namespace Zelkor
{
namespace Util
{

/// Returns the word size of the process in bits as text. It is always "64", because the library supports only 64-bit
/// processes. Any thread.
ZQTUTIL_EXPORT std::string AppBits();

} // namespace Util
} // namespace Zelkor

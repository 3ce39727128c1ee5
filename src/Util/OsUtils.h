#pragma once

/// \file
/// What the application runs on.

#include <Util/Export.h>

#include <string>

namespace Zelkor
{
namespace Util
{

/// The word size of the process in bits, "64": the library is built for 64-bit processes only. Any thread.
ZQTUTIL_EXPORT std::string AppBits();

} // namespace Util
} // namespace Zelkor

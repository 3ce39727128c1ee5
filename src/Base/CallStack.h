#pragma once

/// \file
/// The calling thread's call stack as text.

#include <Base/Export.h>

#include <string>

namespace Zelkor
{

/// The call stack of the calling thread, the caller's own frame first, one line a frame: number, function, and the
/// source line or the binary it stands in, as far as the binaries tell.
///
/// The text is for people and log files; its form may change. Reading symbol tables takes milliseconds, more on the
/// first call, so this is for errors, not for traces. Any thread. Throws `std::bad_alloc` only.
ZQTUTIL_EXPORT std::string GetCallStack();

} // namespace Zelkor

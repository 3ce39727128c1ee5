#pragma once

/// \file
/// The call stack of the calling thread as text.

#include <Base/Export.h>

#include <string>

namespace Zelkor
{

/// Returns the call stack of the calling thread. The caller's frame is the first.
///
/// Each frame is one line: its number, the function, and the source line or the name of the binary. Parts that the
/// symbol table does not contain are missing.
///
/// The text is meant for people and log files. Its format may change. A call reads symbol tables, which takes
/// milliseconds, and more on the first call. Use it for errors, not for tracing.
///
/// May be called on any thread. Throws only `std::bad_alloc`.
ZQTUTIL_EXPORT std::string GetCallStack();

} // namespace Zelkor

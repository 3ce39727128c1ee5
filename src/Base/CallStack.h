#pragma once

/// \file
/// The call stack of the calling thread as text.

#include <Base/Export.h>

#include <string>

namespace Zelkor
{

/// Returns the call stack of the calling thread. The caller's frame is the first.
///
/// Each frame is one line: the number of the frame, the function, and the source line or the name of the binary. A line
/// omits the parts that the symbol table does not contain.
///
/// The text is meant for people and log files. The format of the text may change. Each call reads symbol tables. This
/// takes milliseconds, and longer on the first call. Use this function for errors, not for tracing.
///
/// May be called on any thread. Throws only `std::bad_alloc`.
ZQTUTIL_EXPORT std::string GetCallStack();

} // namespace Zelkor

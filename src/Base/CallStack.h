#pragma once

/// \file
/// A function that returns the call stack of the calling thread as text.

#include <Base/Export.h>

#include <string>

namespace Zelkor
{

/// Returns the call stack of the calling thread. The first frame is the function that calls GetCallStack().
///
/// Each frame is one line of text: the number of the frame, the function, and the source line or the name of the
/// binary. Information that the symbol table does not contain is omitted.
///
/// The text is meant for people and log files. The format of the text may change. Each call reads symbol tables. This
/// takes several milliseconds, and longer on the first call. Therefore, use this function to report errors, not for
/// tracing.
///
/// May be called on any thread. Throws only `std::bad_alloc`.
ZQTUTIL_EXPORT std::string GetCallStack();

} // namespace Zelkor

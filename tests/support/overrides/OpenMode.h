#pragma once

#include <cstdarg>

#include <fcntl.h>
#include <sys/types.h>

namespace Zelkor::Testing
{

/// Returns the mode in the optional \a arguments of open() or openat(). Returns 0 if \a flags requires no mode.
inline mode_t OpenMode(int flags, va_list arguments)
{
    bool const hasMode = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return hasMode ? va_arg(arguments, mode_t) : 0;
}

} // namespace Zelkor::Testing

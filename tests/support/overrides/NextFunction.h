#pragma once

// Not a replacement: gives the replacements in this folder access to the original function, which they hide.

#include <dlfcn.h>

namespace Zelkor::Testing
{

/// Returns the function \a symbol that a replacement in this program hides. \a symbol is the mangled name of a C++
/// function. Null if there is no such function.
template <class Function>
Function NextFunction(char const* symbol)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, symbol));
}

} // namespace Zelkor::Testing

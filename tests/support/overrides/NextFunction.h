#pragma once

// The files in this folder replace functions of Qt and of the system. They use this header to call the original
// functions.

#include <dlfcn.h>

namespace Zelkor::Testing
{

/// Returns the library function \a symbol, even if this program defines a function that replaces it. Returns null if no
/// library defines \a symbol. For a C++ function, \a symbol is the mangled name.
template <class Function>
Function NextFunction(char const* symbol)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, symbol));
}

} // namespace Zelkor::Testing

#pragma once

// The files in this folder replace functions of Qt and of the system. With this header, these files can call the
// original functions.

#include <dlfcn.h>

namespace Zelkor::Testing
{

/// Returns the original function \a symbol, which a function in this program replaces. Returns null if no library
/// defines \a symbol. For a C++ function, \a symbol is the mangled name.
template <class Function>
Function NextFunction(char const* symbol)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, symbol));
}

} // namespace Zelkor::Testing

#pragma once

#include <dlfcn.h>

namespace Zelkor::Testing
{

/// The next definition of a C or C++ function after this program's, which stands in its way.
template <class Function>
Function NextFunction(char const* symbol)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, symbol));
}

} // namespace Zelkor::Testing

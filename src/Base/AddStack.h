#pragma once

/// \file
/// Exceptions that tell where they come from.

#include <Base/CallStack.h>

#include <stdexcept>
#include <string>
#include <type_traits>

namespace Zelkor
{

/// Returns an exception of the same type whose text is the text of \a exception, a line feed, and the calling thread's
/// call stack.
///
/// \tparam E `std::logic_error`, `std::runtime_error` or a type derived from one of them that is made from a
///           `std::string`.
///
/// \code
/// throw Zelkor::AddStack(std::invalid_argument("Negative duration"));
/// \endcode
template <class E>
E AddStack(E const& exception)
{
    static_assert(std::is_base_of_v<std::logic_error, E> || std::is_base_of_v<std::runtime_error, E>,
                  "AddStack takes exceptions derived from std::logic_error or std::runtime_error");
    return E(std::string(exception.what()) + "\n" + GetCallStack());
}

} // namespace Zelkor

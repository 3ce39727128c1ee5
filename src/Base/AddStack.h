#pragma once

/// \file
/// Adds the call stack to the text of an exception.

#include <Base/CallStack.h>

#include <stdexcept>
#include <string>
#include <type_traits>

namespace Zelkor
{

/// Returns a copy of \a exception whose text also contains the call stack of the calling thread.
///
/// The new text is the text of \a exception, a line feed, and the result of GetCallStack(). This function may be called
/// on any thread.
///
/// \tparam E        `std::logic_error`, `std::runtime_error`, or a type derived from one of them. The type must be
///                  constructible from a `std::string`.
/// \param exception  the exception to copy
/// \return a new exception of type \a E
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

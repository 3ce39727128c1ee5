#pragma once

// Throws the library's exceptions. ZELKOR_THROW(std::logic_error("...")) adds the call stack to the text of the
// exception. It also attaches the source location (file, full function signature, line) for Boost.Exception.
//
// ZELKOR_THROW is a macro, because in C++17 only a macro can read the full signature of the function that uses it. This
// header is private to the library, so that applications do not depend on Boost.Exception.

#include <Base/AddStack.h>

#include <boost/assert/source_location.hpp>
#include <boost/current_function.hpp>
#include <boost/throw_exception.hpp>

// BOOST_CURRENT_LOCATION is not used, because in newer releases of Boost it does not contain the signature of the
// function.
#define ZELKOR_THROW(exception)                                                                                        \
    ::boost::throw_exception(::Zelkor::AddStack(exception),                                                            \
                             ::boost::source_location(__FILE__, __LINE__, BOOST_CURRENT_FUNCTION))

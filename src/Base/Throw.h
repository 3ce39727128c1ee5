#pragma once

// The one way in which the library throws: ZELKOR_THROW(std::logic_error("...")) adds the call stack to the text and
// the source location (file, full function signature, line) to the exception, as Boost.Exception reads it back.
// Private to the library: it names Boost.Exception, which applications need not know.

#include <Base/AddStack.h>

#include <boost/assert/source_location.hpp>
#include <boost/current_function.hpp>
#include <boost/throw_exception.hpp>

// Not BOOST_CURRENT_LOCATION: newer releases of Boost leave the signature out of it.
#define ZELKOR_THROW(exception)                                                                                        \
    ::boost::throw_exception(::Zelkor::AddStack(exception),                                                            \
                             ::boost::source_location(__FILE__, __LINE__, BOOST_CURRENT_FUNCTION))

#pragma once

#include <QtCore/QString>

#include <boost/exception/exception.hpp>
#include <boost/exception/get_error_info.hpp>
#include <boost/throw_exception.hpp>

namespace Zelkor::Testing
{

/// The parts of an exception that the library throws for a programming error.
struct ProgrammingError
{
    QString message;   // the first line of what()
    QString callStack; // the remaining lines of what()
    QString file;
    QString function;
    int line = 0;
};

/// Calls \a call. Returns the parts of the exception that \a call throws, or a ProgrammingError with empty strings if
/// \a call throws nothing.
///
/// Exceptions of classes other than \a Error, and exceptions without a source location, propagate to the caller.
template <class Error, class Call>
ProgrammingError CatchProgrammingError(Call const& call)
{
    try {
        call();
    } catch (boost::wrapexcept<Error> const& error) {
        QString const text = QString::fromUtf8(error.what());
        return {text.section(QLatin1Char('\n'), 0, 0), text.section(QLatin1Char('\n'), 1),
                QString::fromUtf8(*boost::get_error_info<boost::throw_file>(error)),
                QString::fromUtf8(*boost::get_error_info<boost::throw_function>(error)),
                *boost::get_error_info<boost::throw_line>(error)};
    }
    return {};
}

} // namespace Zelkor::Testing

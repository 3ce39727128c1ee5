#pragma once

#include <QtCore/QString>

#include <boost/exception/exception.hpp>
#include <boost/exception/get_error_info.hpp>
#include <boost/throw_exception.hpp>

namespace Zelkor::Testing
{

/// What an application sees of a mistake that the library complains about by throwing.
struct ProgrammingError
{
    QString message; // the first line of the text
    QString callStack;
    QString file;
    QString function;
    int line = 0;
};

/// Calls \a call and returns the complaint, an \a Error thrown with its source location; empty when nothing is thrown.
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

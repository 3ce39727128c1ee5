#pragma once

#include <QtCore/QByteArray>

namespace Zelkor::Testing
{

/// Describes the exception that the current thread has thrown most recently, even if the library itself has caught it.
struct LastException
{
    QByteArray type;
    QByteArray what; // the result of what()
};

/// Returns the description of the most recent exception that the calling thread has thrown.
LastException& GetLastException();

} // namespace Zelkor::Testing

#pragma once

#include <QtCore/QByteArray>

namespace Zelkor::Testing
{

/// Describes the most recent exception that a thread has thrown, even if the library itself has caught this exception.
struct LastException
{
    QByteArray type;
    QByteArray what; // the result of what()
};

/// Returns the description of the most recent exception that the calling thread has thrown.
LastException& GetLastException();

} // namespace Zelkor::Testing

#pragma once

#include <QtCore/QByteArray>

namespace Zelkor::Testing
{

/// The exception that the current thread has thrown last, including exceptions that the library catches itself.
struct LastException
{
    QByteArray type;
    QByteArray what; // the result of what()
};

LastException& GetLastException();

} // namespace Zelkor::Testing

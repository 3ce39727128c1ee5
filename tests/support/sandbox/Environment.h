#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QtGlobal>

#include <ctime>

namespace Zelkor::Testing
{

/// Sets an environment variable. The destructor restores the previous value of the variable.
class EnvironmentVariable
{
public:
    EnvironmentVariable(char const* name, QByteArray const& value)
        : name_(name)
        , wasSet_(qEnvironmentVariableIsSet(name))
        , previousValue_(qgetenv(name))
    {
        qputenv(name, value);
        tzset(); // needed if the variable is TZ
    }
    ~EnvironmentVariable()
    {
        if (wasSet_) {
            qputenv(name_, previousValue_);
        } else {
            qunsetenv(name_);
        }
        tzset();
    }
    EnvironmentVariable(EnvironmentVariable const&) = delete;
    EnvironmentVariable& operator=(EnvironmentVariable const&) = delete;

private:
    char const* name_;
    bool wasSet_;
    QByteArray previousValue_;
};

} // namespace Zelkor::Testing

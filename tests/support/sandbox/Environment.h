#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QtGlobal>

#include <ctime>

namespace Zelkor::Testing
{

/// Sets a variable of the environment while it lives.
class Environment
{
public:
    Environment(char const* name, QByteArray const& value)
        : name_(name)
        , wasSet_(qEnvironmentVariableIsSet(name))
        , before_(qgetenv(name))
    {
        qputenv(name, value);
        tzset();
    }
    ~Environment()
    {
        if (wasSet_) {
            qputenv(name_, before_);
        } else {
            qunsetenv(name_);
        }
        tzset();
    }
    Environment(Environment const&) = delete;
    Environment& operator=(Environment const&) = delete;

private:
    char const* name_;
    bool wasSet_;
    QByteArray before_;
};

} // namespace Zelkor::Testing

#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayList>

#include <functional>
#include <string>

class QDataStream;

namespace Zelkor::Testing
{

using Bytes = unsigned long long;

/// The result of GetPathSize(), and the paths that it logged because they have no size: sorted, byte for byte.
struct Measured
{
    Bytes bytes = 0;
    QByteArrayList sizeless;
};

QDataStream& operator<<(QDataStream& stream, Measured const& measured);
QDataStream& operator>>(QDataStream& stream, Measured& measured);

/// Calls GetPathSize(). Calls \a onSizeless with each path that GetPathSize() logs, at the time of the log message.
Measured Measure(std::string const& path, std::function<void(QByteArray const&)> onSizeless = {});

/// As Measure(), in a child process without privileges.
Measured MeasureAsOrdinaryUser(std::string const& path, std::function<void(QByteArray const&)> const& onSizeless = {});

} // namespace Zelkor::Testing

#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayList>

#include <functional>
#include <string>

class QDataStream;

namespace Zelkor::Testing
{

using Bytes = unsigned long long;

/// The result and the log messages of a call of GetPathSize().
struct Measured
{
    Bytes bytes = 0;         // the result
    QByteArrayList sizeless; // the sorted paths that GetPathSize() logged: the paths of all entries without a size
};

QDataStream& operator<<(QDataStream& stream, Measured const& measured);
QDataStream& operator>>(QDataStream& stream, Measured& measured);

/// Calls GetPathSize() with \a path. Calls \a onSizeless with each path when GetPathSize() logs the path.
Measured Measure(std::string const& path, std::function<void(QByteArray const&)> onSizeless = {});

/// Calls Measure() in a child process without root privileges.
Measured MeasureAsOrdinaryUser(std::string const& path, std::function<void(QByteArray const&)> const& onSizeless = {});

} // namespace Zelkor::Testing

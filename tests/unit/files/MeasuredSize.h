#pragma once

// What GetPathSize() answers and logs of a path.

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayList>

#include <functional>
#include <string>

namespace Zelkor::Testing
{

using Bytes = unsigned long long;

/// What GetPathSize() returned, and the paths it logged, sorted, byte for byte.
struct Measured
{
    Bytes bytes = 0;
    QByteArrayList sizeless;
};

/// Calls \a atEach with each path that is logged, byte for byte, in the middle of the walk.
Measured Measure(std::string const& path, std::function<void(QByteArray const&)> atEach = {});

/// The result of \a measure in a child process without privileges.
Measured MeasuredByOrdinaryUser(std::function<Measured()> const& measure);

/// Measures in a child process without privileges.
Measured MeasureAsOrdinaryUser(std::string const& path, std::function<void(QByteArray const&)> const& atEach = {});

} // namespace Zelkor::Testing

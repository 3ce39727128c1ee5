#pragma once

/// \file
/// Conversions between AV time and `QTime`. AV time is the signed number of microseconds that media code uses; `QTime`
/// has a resolution of one millisecond. Any thread.

#include <Util/Export.h>

#include <QtCore/QTime>

namespace Zelkor
{
namespace Util
{

/// Returns the time of day \a microseconds after midnight.
///
/// The value is rounded toward zero to whole milliseconds. The time wraps around midnight in both directions: -1000 is
/// 23:59:59.999, and a whole day is 00:00:00.000.
ZQTUTIL_EXPORT QTime AvTimeToQTime(long long microseconds);

/// Returns the number of microseconds from midnight to \a time.
///
/// An invalid \a time is not rejected. Each of its components is -1, so the result is -3661001000.
ZQTUTIL_EXPORT long long QTimeToAvTime(QTime time);

} // namespace Util
} // namespace Zelkor

#pragma once

/// \file
/// Conversions between AV time and `QTime`. AV time is the time format of audio and video code: a signed number of
/// microseconds. `QTime` has a resolution of one millisecond. All functions in this file may be called on any thread.

#include <Util/Export.h>

#include <QtCore/QTime>

namespace Zelkor
{
namespace Util
{

/// Converts \a microseconds, the number of microseconds since midnight, to a time of day.
///
/// The value is rounded toward zero to whole milliseconds. The time wraps around midnight in both directions: -1000
/// gives 23:59:59.999, and 86400000000 (24 hours) gives 00:00:00.000.
ZQTUTIL_EXPORT QTime AvTimeToQTime(long long microseconds);

/// Returns the number of microseconds from midnight to \a time.
///
/// An invalid \a time is not rejected. Each component of an invalid `QTime` is -1, so the result is -3661001000.
ZQTUTIL_EXPORT long long QTimeToAvTime(QTime time);

} // namespace Util
} // namespace Zelkor

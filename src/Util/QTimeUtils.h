#pragma once

/// \file
/// AV time, the signed count of microseconds of media code, to and from `QTime`, which counts milliseconds.

#include <Util/Export.h>

#include <QtCore/QTime>

namespace Zelkor
{
namespace Util
{

/// The time of day \a microseconds after midnight.
///
/// Microseconds below one millisecond are dropped, toward zero; the time wraps around midnight in both directions, so
/// -1000 is 23:59:59.999 and a whole day is 00:00:00.000. Any thread.
ZQTUTIL_EXPORT QTime AvTimeToQTime(long long microseconds);

/// The microseconds from midnight to \a time.
///
/// An invalid time is not rejected: its components are -1 each, which gives -3661001000. Any thread.
ZQTUTIL_EXPORT long long QTimeToAvTime(QTime time);

} // namespace Util
} // namespace Zelkor

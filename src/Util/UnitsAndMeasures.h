#pragma once

/// \file
/// Functions that format sizes, rates and durations for users, and that convert a size suffix to a multiplier.
///
/// All unit names are translated with `QObject::tr`. All functions are thread-safe and log nothing.

#include <Util/Export.h>

#include <QtCore/QString>
#include <QtCore/QTime>

namespace Zelkor
{
namespace Util
{

/// The units of file sizes, from bytes to terabytes.
enum SizeUnit : int { B, KB, MB, GB, TB };

/// The factor between a unit and the next larger unit, for example the number of KB in one MB.
enum KiloSize : int { Kilo1000 = 1000, Kilo1024 = 1024 };

/// Returns the recommended number of decimal places for a file size of \a size bytes: 0 below 1 000 000 bytes, 1 below
/// 1 000 000 000 bytes, otherwise 2.
///
/// These limits apply even if the caller then formats the size with Kilo1024.
ZQTUTIL_EXPORT int PrecisionForFileSize(unsigned long long size);

/// Formats the file size \a size, for example as "2.5 MB".
///
/// The function uses the largest unit in which the number is at least 1, but no unit smaller than \a minUnit. The
/// decimal separator is always a point, whereas QLocale::formattedDataSize() uses the separator of the locale.
///
/// \param size       the size in bytes
/// \param precision  the number of decimal places, at most 1000; a larger value has the same effect as 1000. A negative
///                   value selects PrecisionForFileSize(). Sizes in bytes (B) have no decimal places.
/// \param minUnit    the smallest unit to use. For example, if \a minUnit is MB and \a precision is 0, the result for
///                   10 bytes is "0 MB".
/// \param kilo       the factor between a unit and the next larger unit
ZQTUTIL_EXPORT QString FormatFileSize(unsigned long long size, int precision, SizeUnit minUnit, KiloSize kilo);

/// Returns the number of bytes in the unit \a suffix. The result is 1000 for "KB", 1000000 for "MB", 1000000000 for
/// "GB" and 1000000000000 for "TB". For any other string, the result is 1. \a suffix is compared with the translated
/// names of the units, and the comparison is case-insensitive.
///
/// The multipliers are always powers of 1000, never of 1024. The function name is misspelt, but is kept because
/// applications link against it.
ZQTUTIL_EXPORT unsigned long long SizeSuffixToMultipler(QString const& suffix);

/// Formats the bit rate \a bitsPerSecond in kilobits per second, for example as "192 Kbps". The value is truncated
/// toward zero.
ZQTUTIL_EXPORT QString FormatBitrate(long long bitsPerSecond);

/// Formats the sample rate \a hertz, for example as "44100 Hz".
ZQTUTIL_EXPORT QString FormatSampleRate(long long hertz);

/// Splits \a seconds into \a hours, \a minutes (0 to 59) and \a secs (0 to 59).
///
/// \a hours can exceed 24. If the number of hours exceeds the range of `int` (about 245 000 years), \a hours receives a
/// truncated value.
///
/// Throws `std::invalid_argument` ("Negative duration") if \a seconds is negative. The output parameters are then
/// unchanged.
ZQTUTIL_EXPORT void DurationInSecondsToTimeComponents(long seconds, int& hours, int& minutes, int& secs);

/// Converts \a seconds, the number of seconds since midnight, to a time of day. The result is invalid if \a seconds is
/// 86400 (24 hours) or more.
///
/// Throws `std::invalid_argument` ("Negative duration") if \a seconds is negative.
ZQTUTIL_EXPORT QTime DurationInSecondsToQTime(long seconds);

/// Formats \a seconds, the number of seconds since midnight, as a time of day. \a format is a format
/// string as accepted by QTime::toString(). Returns an empty string if \a seconds is 86400 (24 hours) or more.
///
/// Throws `std::invalid_argument` ("Negative duration") if \a seconds is negative.
ZQTUTIL_EXPORT QString DurationInSecondsToString(long seconds, QString const& format);

/// Formats the duration \a microseconds. The format is "S.mmm" for less than one minute, "M:SS.mmm" for less than one
/// hour, and "H:MM:SS.mmm" for one hour or more. If \a alwaysShowHours is true, the format is always "H:MM:SS.mmm".
/// Negative durations start with "-". Fractions of a millisecond are dropped.
ZQTUTIL_EXPORT QString FormatDuration(long long microseconds, bool alwaysShowHours);

} // namespace Util
} // namespace Zelkor

#pragma once

/// \file
/// Formats sizes, rates and durations as short texts for users, and converts a size suffix to a multiplier.
///
/// All unit names are translated with `QObject::tr`. All functions are thread-safe and log nothing.

#include <Util/Export.h>

#include <QtCore/QString>
#include <QtCore/QTime>

namespace Zelkor
{
namespace Util
{

/// The smallest unit that FormatFileSize() may use.
enum SizeUnit : int { B, KB, MB, GB, TB };

/// The number of units that make one of the next larger unit.
enum KiloSize : int { Kilo1000 = 1000, Kilo1024 = 1024 };

/// Returns the number of decimal places that suits \a size (bytes): 0 below 1 000 000, 1 below 1 000 000 000,
/// otherwise 2.
///
/// The limits are decimal, even if the size is then formatted with Kilo1024.
ZQTUTIL_EXPORT int PrecisionForFileSize(unsigned long long size);

/// Returns \a size as text, for example "2.5 MB".
///
/// The text uses the largest unit that \a size reaches, but at least \a minUnit. Unlike QLocale::formattedDataSize(),
/// the decimal separator is always a point.
///
/// \param size       the size in bytes
/// \param precision  the number of decimal places; a negative value selects PrecisionForFileSize(). Sizes in bytes (B)
///                   have no decimal places.
/// \param minUnit    the smallest unit to use. It affects the unit, not the number: 10 bytes in MB are "0 MB" with
///                   precision 0.
/// \param kilo       the factor between two units
ZQTUTIL_EXPORT QString FormatFileSize(unsigned long long size, int precision, SizeUnit minUnit, KiloSize kilo);

/// Returns the number of bytes that \a suffix represents: 1000, 1000000, 1000000000 or 1000000000000 for the
/// translations of "KB", "MB", "GB" and "TB" in upper or lower case, and 1 for any other text.
///
/// The multipliers are decimal, even in applications that format sizes with Kilo1024. The function name is misspelt
/// since the first release; applications link it under this name.
ZQTUTIL_EXPORT unsigned long long SizeSuffixToMultipler(QString const& suffix);

/// Returns \a bitsPerSecond as text in kilobits per second, for example "192 Kbps". Truncates toward zero.
ZQTUTIL_EXPORT QString FormatBitrate(long long bitsPerSecond);

/// Returns \a hertz as text, for example "44100 Hz".
ZQTUTIL_EXPORT QString FormatSampleRate(long long hertz);

/// Splits \a seconds into \a hours, \a minutes (0 to 59) and \a secs (0 to 59).
///
/// Hours can exceed 24. They are truncated to the range of `int`, about 245 000 years.
///
/// Throws `std::invalid_argument` ("Negative duration") if \a seconds is negative. The output parameters are then
/// unchanged.
ZQTUTIL_EXPORT void DurationInSecondsToTimeComponents(long seconds, int& hours, int& minutes, int& secs);

/// Returns \a seconds as a time of day. The result is invalid if \a seconds is 86400 (24 hours) or more.
///
/// Throws `std::invalid_argument` ("Negative duration") if \a seconds is negative.
ZQTUTIL_EXPORT QTime DurationInSecondsToQTime(long seconds);

/// Returns DurationInSecondsToQTime() of \a seconds in \a format, which QTime::toString() documents. Returns an empty
/// text if \a seconds is 86400 (24 hours) or more.
///
/// Throws `std::invalid_argument` ("Negative duration") if \a seconds is negative.
ZQTUTIL_EXPORT QString DurationInSecondsToString(long seconds, QString const& format);

/// Returns \a microseconds as "S.mmm" below one minute, as "M:SS.mmm" below one hour, and as "H:MM:SS.mmm" otherwise or
/// if \a alwaysShowHours is true. Negative durations start with "-". Fractions of a millisecond are dropped.
ZQTUTIL_EXPORT QString FormatDuration(long long microseconds, bool alwaysShowHours);

} // namespace Util
} // namespace Zelkor

#pragma once

/// \file
/// Sizes, rates and durations as the short texts that people read, and a size's suffix back as a number.
///
/// All unit words go through `QObject::tr` and so through the translators that the application installed. Every
/// function may be called on any thread, and logs nothing.

#include <Util/Export.h>

#include <QtCore/QString>
#include <QtCore/QTime>

namespace Zelkor
{
namespace Util
{

/// The smallest unit in which FormatFileSize() may show a size.
enum SizeUnit : int { B, KB, MB, GB, TB };

/// How many units make one of the next larger unit.
enum KiloSize : int { Kilo1000 = 1000, Kilo1024 = 1024 };

/// The number of digits behind the decimal point that suits \a size, in bytes: none below 1 000 000, one below
/// 1 000 000 000, else two.
ZQTUTIL_EXPORT int PrecisionForFileSize(unsigned long long size);

/// \a size as text, such as "2.5 MB": in the largest unit that it fills, but at least in \a minUnit.
///
/// \param size       bytes
/// \param precision  digits behind the decimal point; a negative number stands for PrecisionForFileSize(). Plain bytes
///                   never have any.
/// \param minUnit    the smallest unit to use. It chooses the unit and leaves the number alone: 10 bytes with MB are
///                   "0 MB" at precision 0.
/// \param kilo       the step from one unit to the next
ZQTUTIL_EXPORT QString FormatFileSize(unsigned long long size, int precision, SizeUnit minUnit, KiloSize kilo);

/// The number of bytes that \a suffix stands for: 1000, 1000000, 1000000000 or 1000000000000 for the application's
/// words for "KB", "MB", "GB" and "TB" in capitals or not, 1 for everything else. Always decimal.
ZQTUTIL_EXPORT unsigned long long SizeSuffixToMultipler(QString const& suffix);

/// \a bitsPerSecond as text, such as "192 Kbps"; less than a thousand bits are dropped, toward zero.
ZQTUTIL_EXPORT QString FormatBitrate(long long bitsPerSecond);

/// \a hertz as text, such as "44100 Hz".
ZQTUTIL_EXPORT QString FormatSampleRate(long long hertz);

/// Splits \a seconds into hours, which may pass 24, minutes (0 to 59) and seconds (0 to 59). Hours are cut to what an
/// `int` holds, some 245 000 years.
///
/// Throws `std::invalid_argument` ("Negative duration") for a negative number; \a hours, \a minutes and \a secs are
/// untouched then.
ZQTUTIL_EXPORT void DurationInSecondsToTimeComponents(long seconds, int& hours, int& minutes, int& secs);

/// \a seconds as a time of day, which is invalid from 24 hours on. The hours are those of
/// DurationInSecondsToTimeComponents().
///
/// Throws `std::invalid_argument` ("Negative duration") for a negative number.
ZQTUTIL_EXPORT QTime DurationInSecondsToQTime(long seconds);

/// DurationInSecondsToQTime() of \a seconds in the given `QTime::toString` format; empty from 24 hours on.
///
/// Throws `std::invalid_argument` ("Negative duration") for a negative number.
ZQTUTIL_EXPORT QString DurationInSecondsToString(long seconds, QString const& format);

/// \a microseconds as S.mmm below one minute, as M:SS.mmm below one hour, and as H:MM:SS.mmm from one hour on or when
/// \a alwaysShowHours is set; with a leading "-" when negative. Microseconds below one millisecond are dropped.
ZQTUTIL_EXPORT QString FormatDuration(long long microseconds, bool alwaysShowHours);

} // namespace Util
} // namespace Zelkor

#include <Util/UnitsAndMeasures.h>

#include <Base/Throw.h>

#include <QtCore/QCoreApplication>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>

namespace Zelkor::Util
{
namespace
{

constexpr unsigned long long MicrosecondsInMillisecond = 1000;
constexpr unsigned long long MicrosecondsInSecond = 1000000;
constexpr unsigned long long SecondsInMinute = 60;
constexpr unsigned long long SecondsInHour = 3600;

// QString::arg() aborts if the number does not fit into a QString. No size has more than 92 decimal places that are not
// zero, because a double has 53 significant bits and the smallest size is 1e-12 TB.
constexpr int MaxPrecision = 1000;

/// Contains a function tr() that gives the same results as QObject::tr(), but uses no meta-object. FormatFileSize() is
/// therefore noticeably faster.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(QObject)
};

/// Returns \a number as a decimal string. Adds leading zeros if \a number has fewer than \a width digits.
std::string Padded(unsigned long long number, std::size_t width)
{
    std::string digits = std::to_string(number);
    digits.insert(0, width - std::min(width, digits.size()), '0');
    return digits;
}

} // namespace

int PrecisionForFileSize(unsigned long long size)
{
    if (size < 1000000) {
        return 0;
    }
    return size < 1000000000 ? 1 : 2;
}

QString FormatFileSize(unsigned long long size, int precision, SizeUnit minUnit, KiloSize kilo)
{
    int const effectivePrecision = precision >= 0 ? std::min(precision, MaxPrecision) : PrecisionForFileSize(size);
    // Required behaviour: each call translates all four labels in this order, although it uses at most one of them.
    QString const labels[] = {Text::tr("%1 TB"), Text::tr("%1 GB"), Text::tr("%1 MB"), Text::tr("%1 KB")};

    auto const base = static_cast<unsigned long long>(kilo);
    unsigned long long const divisors[] = {base * base * base * base, base * base * base, base * base, base};
    unsigned long long const floor = minUnit >= KB && minUnit <= TB ? divisors[TB - minUnit] : 1;
    unsigned long long const selection = std::max(size, floor);
    for (std::size_t unit = 0; unit < std::size(divisors); ++unit) {
        if (selection >= divisors[unit]) {
            double const value = static_cast<double>(size) / static_cast<double>(divisors[unit]);
            return labels[unit].arg(value, 0, 'f', effectivePrecision, QLatin1Char(' '));
        }
    }
    return Text::tr("%1 B").arg(size);
}

unsigned long long SizeSuffixToMultipler(QString const& suffix)
{
    QString const wanted = suffix.toUpper();
    if (wanted == Text::tr("TB").toUpper()) {
        return 1000000000000;
    }
    if (wanted == Text::tr("GB").toUpper()) {
        return 1000000000;
    }
    if (wanted == Text::tr("MB").toUpper()) {
        return 1000000;
    }
    if (wanted == Text::tr("KB").toUpper()) {
        return 1000;
    }
    return 1;
}

QString FormatBitrate(long long bitsPerSecond)
{
    return Text::tr("%1 Kbps").arg(bitsPerSecond / 1000);
}

QString FormatSampleRate(long long hertz)
{
    return Text::tr("%1 Hz").arg(hertz);
}

void DurationInSecondsToTimeComponents(long seconds, int& hours, int& minutes, int& secs)
{
    if (seconds < 0) {
        ZELKOR_THROW(std::invalid_argument("Negative duration"));
    }
    hours = static_cast<int>(seconds / 3600);
    minutes = static_cast<int>(seconds % 3600 / 60);
    secs = static_cast<int>(seconds % 60);
}

QTime DurationInSecondsToQTime(long seconds)
{
    int hours = 0;
    int minutes = 0;
    int secs = 0;
    DurationInSecondsToTimeComponents(seconds, hours, minutes, secs);
    // For very long durations, hours is truncated and can be any number. QTime() is invalid.
    return seconds < 24 * static_cast<long>(SecondsInHour) ? QTime(hours, minutes, secs, 0) : QTime();
}

QString DurationInSecondsToString(long seconds, QString const& format)
{
    return DurationInSecondsToQTime(seconds).toString(format);
}

QString FormatDuration(long long microseconds, bool alwaysShowHours)
{
    auto magnitude = static_cast<unsigned long long>(microseconds);
    if (microseconds < 0) {
        magnitude = 0 - magnitude; // unsigned arithmetic, because -microseconds overflows for the smallest long long
    }
    unsigned long long const seconds = magnitude / MicrosecondsInSecond;
    unsigned long long const milliseconds = magnitude % MicrosecondsInSecond / MicrosecondsInMillisecond;
    unsigned long long const minutesInHour = seconds % SecondsInHour / SecondsInMinute;
    bool const showHours = alwaysShowHours || seconds >= SecondsInHour;

    std::string text = microseconds < 0 ? "-" : "";
    if (showHours) {
        text += std::to_string(seconds / SecondsInHour) + ':' + Padded(minutesInHour, 2) + ':' +
                Padded(seconds % SecondsInMinute, 2);
    } else if (seconds >= SecondsInMinute) {
        text += std::to_string(minutesInHour) + ':' + Padded(seconds % SecondsInMinute, 2);
    } else {
        text += std::to_string(seconds);
    }
    text += '.' + Padded(milliseconds, 3);
    return QString::fromStdString(text);
}

} // namespace Zelkor::Util

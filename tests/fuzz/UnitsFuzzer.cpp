// Fuzzes the formatted sizes, rates and durations, and the conversions of times.

#include <fuzz/Fuzzing.h>

#include <Util/QTimeUtils.h>
#include <Util/UnitsAndMeasures.h>

#include <climits>
#include <cmath>
#include <iterator>
#include <stdexcept>

using namespace Zelkor::Util;
using Zelkor::Testing::FuzzInput;
using Zelkor::Testing::RequireEqual;

namespace
{

char const* const UnitNames[] = {"B", "KB", "MB", "GB", "TB"};

unsigned long long BytesIn(int unit, unsigned long long kilo)
{
    unsigned long long bytes = 1;
    for (int i = 0; i < unit; ++i) {
        bytes *= kilo;
    }
    return bytes;
}

int ExpectedUnit(unsigned long long size, int minUnit, unsigned long long kilo)
{
    int unit = minUnit;
    while (unit < TB && size / BytesIn(unit + 1, kilo) >= 1) {
        ++unit;
    }
    return unit;
}

int ExpectedPrecision(unsigned long long size)
{
    if (size >= 1000000000) {
        return 2;
    }
    return size >= 1000000 ? 1 : 0;
}

void CheckFileSize(unsigned long long size, int precision, SizeUnit minUnit, KiloSize kilo)
{
    RequireEqual(PrecisionForFileSize(size), ExpectedPrecision(size), "precision");

    QStringList const parts = FormatFileSize(size, precision, minUnit, kilo).split(QLatin1Char(' '));
    auto const base = static_cast<unsigned long long>(kilo);
    int const unit = ExpectedUnit(size, minUnit, base);
    RequireEqual(parts.size(), 2, "number of parts of a file size");
    RequireEqual(parts[1], QString::fromLatin1(UnitNames[unit]), "unit of a file size");
    std::string const number = parts[0].toStdString();
    if (unit == B) {
        RequireEqual(number, std::to_string(size), "number of bytes");
        return;
    }

    // A number exactly between two decimals may be rounded up or down. Therefore, compare the numbers with a tolerance.
    int const places = precision < 0 ? ExpectedPrecision(size) : std::min(precision, 1000);
    std::size_t const point = number.find('.');
    std::size_t const actualPlaces = point == std::string::npos ? 0 : number.size() - point - 1;
    RequireEqual(actualPlaces, static_cast<std::size_t>(places), "number of decimal places");
    long double const exact = static_cast<long double>(size) / static_cast<long double>(BytesIn(unit, base));
    long double const difference = std::abs(std::stold(number) - exact);
    long double const tolerance = 0.5L * std::pow(10.0L, -places) + exact * 1e-15L;
    RequireEqual(difference <= tolerance, true, "number of a file size is exact");
}

void CheckSuffix(std::string const& suffix)
{
    unsigned long long expected = 1;
    for (int unit = KB; unit <= TB; ++unit) {
        if (qstricmp(suffix.c_str(), UnitNames[unit]) == 0 && suffix.size() == 2) {
            expected = BytesIn(unit, 1000);
        }
    }
    RequireEqual(SizeSuffixToMultipler(QString::fromStdString(suffix)), expected, "multiplier of a suffix");
}

void CheckRates(long long rate)
{
    RequireEqual(FormatBitrate(rate).toStdString(), std::to_string(rate / 1000) + " Kbps", "bit rate");
    RequireEqual(FormatSampleRate(rate).toStdString(), std::to_string(rate) + " Hz", "sample rate");
}

template <class Function>
bool ReportsNegativeDuration(Function const& function)
{
    try {
        function();
    } catch (std::invalid_argument const& error) {
        return QByteArray(error.what()).startsWith("Negative duration\n");
    }
    return false;
}

void CheckSeconds(long seconds, QString const& format)
{
    int hours = -1;
    int minutes = -1;
    int secs = -1;
    auto const split = [&] { DurationInSecondsToTimeComponents(seconds, hours, minutes, secs); };
    if (seconds < 0) {
        RequireEqual(ReportsNegativeDuration(split), true, "negative duration is reported");
        RequireEqual(hours == -1 && minutes == -1 && secs == -1, true, "output is unchanged");
        RequireEqual(ReportsNegativeDuration([&] { DurationInSecondsToQTime(seconds); }), true,
                     "negative duration of a time is reported");
        RequireEqual(ReportsNegativeDuration([&] { DurationInSecondsToString(seconds, format); }), true,
                     "negative duration of a string is reported");
        return;
    }
    split();
    RequireEqual(minutes >= 0 && minutes < 60 && secs >= 0 && secs < 60, true, "minutes and seconds are in range");
    if (seconds / 3600 <= INT_MAX) {
        RequireEqual(hours * 3600L + minutes * 60L + secs, seconds, "sum of hours, minutes and seconds");
    }

    bool const fitsInDay = seconds < 86400;
    QTime const time = DurationInSecondsToQTime(seconds);
    RequireEqual(time.isValid(), fitsInDay, "time is valid");
    if (fitsInDay) {
        RequireEqual(static_cast<long>(QTime(0, 0).secsTo(time)), seconds, "seconds since midnight");
    }
    QString const expected = fitsInDay ? QTime(0, 0).addSecs(static_cast<int>(seconds)).toString(format) : QString();
    RequireEqual(DurationInSecondsToString(seconds, format), expected, "formatted time");
}

void CheckDuration(long long microseconds, bool alwaysShowHours)
{
    bool const isNegative = microseconds < 0;
    unsigned long long const magnitude =
        isNegative ? 0 - static_cast<unsigned long long>(microseconds) : static_cast<unsigned long long>(microseconds);
    unsigned long long const milliseconds = magnitude / 1000;
    unsigned long long const hours = milliseconds / 3600000;
    unsigned long long const minutes = milliseconds / 60000 % 60;
    unsigned long long const seconds = milliseconds / 1000 % 60;
    QString expected;
    if (alwaysShowHours || hours > 0) {
        expected = QString::asprintf("%llu:%02llu:%02llu", hours, minutes, seconds);
    } else if (minutes > 0) {
        expected = QString::asprintf("%llu:%02llu", minutes, seconds);
    } else {
        expected = QString::asprintf("%llu", seconds);
    }
    expected += QString::asprintf(".%03llu", milliseconds % 1000);
    if (isNegative) {
        expected.prepend(QLatin1Char('-'));
    }
    RequireEqual(FormatDuration(microseconds, alwaysShowHours), expected, "formatted duration");
}

void CheckAvTime(long long microseconds)
{
    constexpr long long MillisecondsInDay = 86400000;
    long long expected = microseconds / 1000 % MillisecondsInDay;
    if (expected < 0) {
        expected += MillisecondsInDay;
    }
    QTime const time = AvTimeToQTime(microseconds);
    RequireEqual(static_cast<long long>(time.msecsSinceStartOfDay()), expected, "time of day");
    RequireEqual(QTimeToAvTime(time), expected * 1000, "AV time of a time of day");
}

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    constexpr int Precisions[] = {INT_MIN, -1, 0, 1, 2, 3, 10, 20, 40, 999, 1000, 1001, INT_MAX};

    FuzzInput input(data, size);
    auto const number = input.Number<long long>();
    int const precision = Precisions[input.Byte() % std::size(Precisions)];
    auto const minUnit = static_cast<SizeUnit>(input.Byte() % 5);
    KiloSize const kilo = input.Flag() ? Kilo1024 : Kilo1000;
    bool const alwaysShowHours = input.Flag();
    std::string const text = input.Rest();

    CheckFileSize(static_cast<unsigned long long>(number), precision, minUnit, kilo);
    CheckSuffix(text);
    CheckRates(number);
    CheckSeconds(static_cast<long>(number), QString::fromStdString(text));
    CheckSeconds(static_cast<long>(number % 100000), QString::fromStdString(text));
    CheckDuration(number, alwaysShowHours);
    CheckAvTime(number);
    return 0;
}

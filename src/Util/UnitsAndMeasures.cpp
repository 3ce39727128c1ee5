#include <Util/UnitsAndMeasures.h>

#include <Base/Throw.h>

#include <QtCore/QObject>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <limits>

namespace Zelkor::Util
{
namespace
{

constexpr unsigned long long MicrosecondsInMillisecond = 1000;
constexpr unsigned long long MicrosecondsInSecond = 1000000;
constexpr unsigned long long SecondsInMinute = 60;
constexpr unsigned long long SecondsInHour = 3600;

// The longest text of a 64-bit count of microseconds, or of a 32-bit number with three decimals, is well below this.
constexpr std::size_t NumberCapacity = 32;

// "%1"
constexpr int PlaceMarkerSize = 2;

/// A short ASCII text on the stack.
class NumberText
{
public:
    void Append(char character) { *end_++ = character; }

    void Append(unsigned long long number) { end_ = std::to_chars(end_, text_ + NumberCapacity, number).ptr; }

    void AppendPadded(unsigned long long number, int width)
    {
        end_ += width;
        for (char* digit = end_; width > 0; --width, number /= 10) {
            *--digit = static_cast<char>('0' + number % 10);
        }
    }

    int Size() const { return static_cast<int>(end_ - text_); }
    QLatin1String View() const { return QLatin1String(text_, Size()); }

private:
    char text_[NumberCapacity];
    char* end_ = text_;
};

constexpr std::array<unsigned long long, 4> PowersOfTen{1, 10, 100, 1000};

/// Writes \a value with \a precision decimals as QString::arg does: the double's exact value, half a digit rounded up.
/// Returns false for a number that integers of 64 bits do not carry through the rounding.
bool WriteFixed(NumberText& text, double value, int precision)
{
    if (precision < 0 || static_cast<std::size_t>(precision) >= PowersOfTen.size() || !(value >= 1) ||
        !(value < 4294967296.0)) {
        return false;
    }
    // What std::frexp() tells, without its call: the number is normal and positive here.
    static_assert(std::numeric_limits<double>::is_iec559 && sizeof(double) == sizeof(unsigned long long));
    constexpr int storedBits = std::numeric_limits<double>::digits - 1;
    constexpr int exponentBias = std::numeric_limits<double>::max_exponent - 1;
    constexpr unsigned long long leadingBit = 1ULL << storedBits;
    unsigned long long bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    unsigned long long const mantissa = (bits & (leadingBit - 1)) | leadingBit;
    int const fractionBits = storedBits + exponentBias - static_cast<int>(bits >> storedBits);

    unsigned long long const one = 1ULL << fractionBits;
    unsigned long long const scale = PowersOfTen[static_cast<std::size_t>(precision)];
    unsigned long long const decimals = ((mantissa & (one - 1)) * scale + one / 2) >> fractionBits;
    bool const carry = decimals == scale;
    text.Append((mantissa >> fractionBits) + (carry ? 1 : 0));
    if (precision > 0) {
        text.Append('.');
        text.AppendPadded(decimals, precision); // of a carry the zeros
    }
    return true;
}

/// Where the plain "%1" of \a label stands, or -1 when QString::arg would find more in it than that.
int FindOnlyPlaceMarker(QString const& label)
{
    constexpr QLatin1Char percent('%');
    QChar const* const begin = label.cbegin();
    QChar const* const end = label.cend();
    QChar const* const at = std::find(begin, end, percent);
    bool const isOne = end - at >= PlaceMarkerSize && at[1] == QLatin1Char('1');
    if (!isOne) {
        return -1;
    }
    QChar const* const rest = at + PlaceMarkerSize;
    bool const goesOn = (rest != end && rest->digitValue() != -1) || std::find(rest, end, percent) != end;
    return goesOn ? -1 : static_cast<int>(at - begin);
}

/// Puts \a number in the place of the place marker \a at which FindOnlyPlaceMarker() has found in \a label.
QString FillIn(QString const& label, int at, NumberText const& number)
{
    QString text(label.size() - PlaceMarkerSize + number.Size(), Qt::Uninitialized);
    QChar* out = std::copy_n(label.cbegin(), at, text.data());
    for (char const digit : number.View()) {
        *out++ = QLatin1Char(digit);
    }
    std::copy(label.cbegin() + at + PlaceMarkerSize, label.cend(), out);
    return text;
}

/// The same as label.arg(value, 0, 'f', precision, QLatin1Char(' ')), at a fraction of its time.
QString FillIn(QString const& label, double value, int precision)
{
    NumberText number;
    int const at = FindOnlyPlaceMarker(label);
    if (at < 0 || !WriteFixed(number, value, precision)) {
        return label.arg(value, 0, 'f', precision, QLatin1Char(' '));
    }
    return FillIn(label, at, number);
}

/// The same as label.arg(value), at a fraction of its time.
QString FillIn(QString const& label, unsigned long long value)
{
    int const at = FindOnlyPlaceMarker(label);
    if (at < 0) {
        return label.arg(value);
    }
    NumberText number;
    number.Append(value);
    return FillIn(label, at, number);
}

unsigned long long Power(unsigned long long base, int exponent)
{
    unsigned long long power = 1;
    while (exponent-- > 0) {
        power *= base;
    }
    return power;
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
    int const effectivePrecision = precision >= 0 ? precision : PrecisionForFileSize(size);
    QString const labels[] = {QObject::tr("%1 TB"), QObject::tr("%1 GB"), QObject::tr("%1 MB"), QObject::tr("%1 KB")};

    auto const base = static_cast<unsigned long long>(kilo);
    unsigned long long const floor = minUnit >= KB && minUnit <= TB ? Power(base, minUnit) : 1;
    unsigned long long const selection = std::max(size, floor);
    unsigned long long divisor = Power(base, TB);
    for (QString const& label : labels) {
        if (selection >= divisor) {
            return FillIn(label, static_cast<double>(size) / static_cast<double>(divisor), effectivePrecision);
        }
        divisor /= base;
    }
    return FillIn(QObject::tr("%1 B"), size);
}

unsigned long long SizeSuffixToMultipler(QString const& suffix)
{
    QString const wanted = suffix.toUpper();
    if (wanted == QObject::tr("TB").toUpper()) {
        return 1000000000000;
    }
    if (wanted == QObject::tr("GB").toUpper()) {
        return 1000000000;
    }
    if (wanted == QObject::tr("MB").toUpper()) {
        return 1000000;
    }
    if (wanted == QObject::tr("KB").toUpper()) {
        return 1000;
    }
    return 1;
}

QString FormatBitrate(long long bitsPerSecond)
{
    return QObject::tr("%1 Kbps").arg(bitsPerSecond / 1000);
}

QString FormatSampleRate(long long hertz)
{
    return QObject::tr("%1 Hz").arg(hertz);
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
    return QTime(hours, minutes, secs, 0);
}

QString DurationInSecondsToString(long seconds, QString const& format)
{
    return DurationInSecondsToQTime(seconds).toString(format);
}

QString FormatDuration(long long microseconds, bool alwaysShowHours)
{
    NumberText text;
    auto value = static_cast<unsigned long long>(microseconds);
    if (microseconds < 0) {
        text.Append('-');
        value = 0 - value; // the smallest number has no positive counterpart, unsigned it has
    }
    unsigned long long const seconds = value / MicrosecondsInSecond;
    unsigned long long const milliseconds = value % MicrosecondsInSecond / MicrosecondsInMillisecond;
    bool const showHours = alwaysShowHours || seconds >= SecondsInHour;
    bool const showMinutes = showHours || seconds >= SecondsInMinute;

    if (showHours) {
        text.Append(seconds / SecondsInHour);
        text.Append(':');
    }
    if (showMinutes) {
        unsigned long long const minutes = seconds % SecondsInHour / SecondsInMinute;
        if (showHours) {
            text.AppendPadded(minutes, 2);
        } else {
            text.Append(minutes);
        }
        text.Append(':');
        text.AppendPadded(seconds % SecondsInMinute, 2);
    } else {
        text.Append(seconds);
    }
    text.Append('.');
    text.AppendPadded(milliseconds, 3);
    return text.View();
}

} // namespace Zelkor::Util

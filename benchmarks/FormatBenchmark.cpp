// Measures FormatFileSize() and FormatDuration(). Each call formats the next value of a table.
//
// For comparison, the benchmark also measures snprintf(), which writes into a buffer. Its time is the lower bound. A
// QLabel needs a QString, so the benchmark also measures snprintf() with a conversion to QString. The other functions
// for comparison are the formatters of Qt and of the KDE frameworks.

#include "Support.h"

#include <Util/UnitsAndMeasures.h>

#include <KFormat>

#include <QtCore/QLocale>
#include <QtCore/QTime>

#include <array>
#include <cstdio>

namespace Zelkor::Benchmarks
{
namespace
{

constexpr int Precision = 1;

// Sizes in bytes: at least one size for each unit from bytes to terabytes. 999999 is just below one megabyte.
constexpr std::array<unsigned long long, 8> Sizes{512,      1500,       999999,      2500000,
                                                  73400320, 1999999999, 64424509440, 5497558138880};

// Durations in milliseconds. All of them are shorter than a day, because QTime cannot represent a day or more.
constexpr std::array<int, 8> Durations{1234, 59999, 60000, 754321, 3599999, 3600000, 20123456, 86399999};

/// Measures calls of \a format. Each call formats the next element of \a values. After the last element, the first
/// element is next.
template <class Values, class Format>
void FormatInTurn(benchmark::State& state, Values const& values, Format const& format)
{
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(format(values[next]));
        next = (next + 1) % values.size();
    }
}

void SizeFormatFileSize(benchmark::State& state)
{
    FormatInTurn(state, Sizes, [](unsigned long long size) {
        return Util::FormatFileSize(size, Precision, Util::B, Util::Kilo1000);
    });
}

void SizeLocale(benchmark::State& state)
{
    QLocale const locale;
    FormatInTurn(state, Sizes, [&](unsigned long long size) {
        return locale.formattedDataSize(static_cast<qint64>(size), Precision, QLocale::DataSizeSIFormat);
    });
}

void SizeKFormat(benchmark::State& state)
{
    KFormat const kformat;
    FormatInTurn(state, Sizes, [&](unsigned long long size) {
        return kformat.formatByteSize(static_cast<double>(size), Precision, KFormat::MetricBinaryDialect);
    });
}

using Buffer = std::array<char, 64>;

int PrintSize(Buffer& buffer, unsigned long long size)
{
    static constexpr std::array<char const*, 4> units{"KB", "MB", "GB", "TB"};
    if (size < 1000) {
        return std::snprintf(buffer.data(), buffer.size(), "%llu B", size);
    }
    std::size_t unit = 0;
    double number = static_cast<double>(size) / 1000;
    for (; number >= 1000 && unit + 1 < units.size(); ++unit) {
        number /= 1000;
    }
    return std::snprintf(buffer.data(), buffer.size(), "%.*f %s", Precision, number, units[unit]);
}

int PrintDuration(Buffer& buffer, int milliseconds)
{
    int const seconds = milliseconds / 1000;
    int const rest = milliseconds % 1000;
    if (seconds >= 3600) {
        return std::snprintf(buffer.data(), buffer.size(), "%d:%02d:%02d.%03d", seconds / 3600, seconds % 3600 / 60,
                             seconds % 60, rest);
    }
    if (seconds >= 60) {
        return std::snprintf(buffer.data(), buffer.size(), "%d:%02d.%03d", seconds / 60, seconds % 60, rest);
    }
    return std::snprintf(buffer.data(), buffer.size(), "%d.%03d", seconds, rest);
}

template <class Values, class Print>
void PrintInTurn(benchmark::State& state, Values const& values, Print const& print)
{
    Buffer buffer;
    FormatInTurn(state, values, [&](auto value) {
        int const size = print(buffer, value);
        benchmark::ClobberMemory();
        return size;
    });
}

template <class Values, class Print>
void PrintStringInTurn(benchmark::State& state, Values const& values, Print const& print)
{
    Buffer buffer;
    FormatInTurn(state, values, [&](auto value) { return QString::fromLatin1(buffer.data(), print(buffer, value)); });
}

void SizePrintf(benchmark::State& state)
{
    PrintStringInTurn(state, Sizes, PrintSize);
}

void SizePrintfBuffer(benchmark::State& state)
{
    PrintInTurn(state, Sizes, PrintSize);
}

void DurationFormatDuration(benchmark::State& state)
{
    FormatInTurn(state, Durations, [](int milliseconds) { return Util::FormatDuration(milliseconds * 1000LL, false); });
}

void DurationKFormat(benchmark::State& state)
{
    KFormat const kformat;
    FormatInTurn(state, Durations, [&](int milliseconds) {
        return kformat.formatDuration(static_cast<quint64>(milliseconds), KFormat::ShowMilliseconds);
    });
}

void DurationTime(benchmark::State& state)
{
    QString const format = QStringLiteral("h:mm:ss.zzz");
    FormatInTurn(state, Durations,
                 [&](int milliseconds) { return QTime::fromMSecsSinceStartOfDay(milliseconds).toString(format); });
}

void DurationPrintf(benchmark::State& state)
{
    PrintStringInTurn(state, Durations, PrintDuration);
}

void DurationPrintfBuffer(benchmark::State& state)
{
    PrintInTurn(state, Durations, PrintDuration);
}

BENCHMARK(SizeFormatFileSize)->Name("FileSizeText/FormatFileSize");
BENCHMARK(SizeLocale)->Name("FileSizeText/QLocale");
BENCHMARK(SizeKFormat)->Name("FileSizeText/KFormat");
BENCHMARK(SizePrintf)->Name("FileSizeText/Snprintf");
BENCHMARK(SizePrintfBuffer)->Name("FileSizeText/SnprintfBuffer");

BENCHMARK(DurationFormatDuration)->Name("DurationText/FormatDuration");
BENCHMARK(DurationTime)->Name("DurationText/QTime");
BENCHMARK(DurationKFormat)->Name("DurationText/KFormat");
BENCHMARK(DurationPrintf)->Name("DurationText/Snprintf");
BENCHMARK(DurationPrintfBuffer)->Name("DurationText/SnprintfBuffer");

} // namespace
} // namespace Zelkor::Benchmarks

int main(int argc, char** argv)
{
    QCoreApplication const application(argc, argv);
    return Zelkor::Benchmarks::RunBenchmarks(argc, argv);
}

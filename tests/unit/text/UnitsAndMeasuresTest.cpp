#include <support/ProgrammingError.h>
#include <support/TestCase.h>

#include <Util/UnitsAndMeasures.h>

#include <QtCore/QHash>
#include <QtCore/QTranslator>
#include <QtTest/QtTest>

#include <iomanip>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <stdexcept>
#include <type_traits>
#include <vector>

using Zelkor::Testing::CatchProgrammingError;
using Zelkor::Testing::ProgrammingError;
using namespace Zelkor::Util;

static_assert(B == 0 && KB == 1 && MB == 2 && GB == 3 && TB == 4);
static_assert(Kilo1000 == 1000 && Kilo1024 == 1024);
static_assert(std::is_convertible_v<SizeUnit, int> && std::is_convertible_v<KiloSize, int>);
static_assert(std::is_same_v<decltype(&PrecisionForFileSize), int (*)(unsigned long long)>);
static_assert(std::is_same_v<decltype(&FormatFileSize), QString (*)(unsigned long long, int, SizeUnit, KiloSize)>);
static_assert(std::is_same_v<decltype(&SizeSuffixToMultipler), unsigned long long (*)(QString const&)>);
static_assert(std::is_same_v<decltype(&FormatBitrate), QString (*)(long long)>);
static_assert(std::is_same_v<decltype(&FormatSampleRate), QString (*)(long long)>);
static_assert(std::is_same_v<decltype(&DurationInSecondsToTimeComponents), void (*)(long, int&, int&, int&)>);
static_assert(std::is_same_v<decltype(&DurationInSecondsToQTime), QTime (*)(long)>);
static_assert(std::is_same_v<decltype(&DurationInSecondsToString), QString (*)(long, QString const&)>);
static_assert(std::is_same_v<decltype(&FormatDuration), QString (*)(long long, bool)>);

Q_DECLARE_METATYPE(Zelkor::Util::SizeUnit)
Q_DECLARE_METATYPE(Zelkor::Util::KiloSize)

namespace
{

constexpr unsigned long long LargestSize = std::numeric_limits<unsigned long long>::max();
constexpr long Longest = std::numeric_limits<long>::max();
constexpr KiloSize BothBases[] = {Kilo1000, Kilo1024};

using Texts = QHash<QString, QString>;

/// Translator with a fixed table of translations. Records each source string for which Qt requests a translation. The
/// constructor installs the translator, and the destructor removes it.
class Translation : public QTranslator
{
public:
    explicit Translation(Texts texts = {})
        : texts_(std::move(texts))
    {
        QCoreApplication::installTranslator(this);
        sourceTexts_.clear();
    }

    ~Translation() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }

    QString translate(char const* context, char const* source, char const* disambiguation, int n) const override
    {
        sourceTexts_ += QString::fromUtf8(source);
        usesDefaultArguments_ =
            usesDefaultArguments_ && qstrcmp(context, "QObject") == 0 && qstrlen(disambiguation) == 0 && n == -1;
        return texts_.value(QString::fromUtf8(source));
    }

    QStringList SourceTexts() const { return sourceTexts_; }
    bool UsesDefaultArguments() const { return usesDefaultArguments_; }

private:
    Texts texts_;
    mutable QStringList sourceTexts_;
    mutable bool usesDefaultArguments_ = true;
};

/// Sets the default locale in the constructor, and restores the previous default locale in the destructor.
class DefaultLocale
{
public:
    explicit DefaultLocale(QLocale const& locale) { QLocale::setDefault(locale); }
    ~DefaultLocale() { QLocale::setDefault(before_); }
    Q_DISABLE_COPY_MOVE(DefaultLocale)

private:
    QLocale before_;
};

QString Translated(char const* source)
{
    return QCoreApplication::translate("QObject", source);
}

QString ExpectedFileSize(unsigned long long size, int precision, int minUnit, unsigned long long kilo)
{
    int const automatic = size < 1000000ULL ? 0 : size < 1000000000ULL ? 1 : 2;
    int const digits = precision >= 0 ? precision : automatic;

    unsigned long long floorValue = 1;
    for (int step = 0; minUnit >= 1 && minUnit <= 4 && step < minUnit; ++step) {
        floorValue *= kilo;
    }
    unsigned long long const selection = size > floorValue ? size : floorValue;

    struct Step
    {
        char const* label;
        unsigned long long divisor;
    };
    Step const steps[] = {
        {"%1 TB", kilo * kilo * kilo * kilo}, {"%1 GB", kilo * kilo * kilo}, {"%1 MB", kilo * kilo}, {"%1 KB", kilo}};
    for (Step const& step : steps) {
        if (selection >= step.divisor) {
            double const value = static_cast<double>(size) / static_cast<double>(step.divisor);
            return QString(Translated(step.label)).arg(value, 0, 'f', digits, QLatin1Char(' '));
        }
    }
    return Translated("%1 B").arg(size);
}

/// Compares the results of FormatFileSize() and ExpectedFileSize(). Returns an empty string if the results are equal,
/// otherwise a description of the difference.
QString FileSizeDifference(unsigned long long size, int precision, int minUnit, KiloSize kilo)
{
    QString const actual = FormatFileSize(size, precision, static_cast<SizeUnit>(minUnit), kilo);
    QString const expected = ExpectedFileSize(size, precision, minUnit, static_cast<unsigned long long>(kilo));
    if (actual == expected) {
        return QString();
    }
    return QStringLiteral("%1 with precision %2, unit %3, base %4: \"%5\" instead of \"%6\"")
        .arg(size)
        .arg(precision)
        .arg(minUnit)
        .arg(kilo)
        .arg(actual, expected);
}

/// Returns file sizes in bytes for which errors are likely: sizes near multiples of each unit, and sizes at which
/// rounding changes the last displayed digit.
std::vector<unsigned long long> EdgeSizes(unsigned long long kilo)
{
    std::vector<unsigned long long> sizes{0, 1, LargestSize, LargestSize - 1, 1ULL << 63, (1ULL << 53) + 1};
    auto const addAround = [&sizes](unsigned long long size) { sizes.insert(sizes.end(), {size - 1, size, size + 1}); };
    unsigned long long divisor = 1;
    for (int unit = 1; unit <= 4; ++unit) {
        divisor *= kilo;
        for (unsigned long long const whole :
             {1ULL, 2ULL, 3ULL, 9ULL, 10ULL, 99ULL, 512ULL, 999ULL, 1000ULL, 1023ULL}) {
            for (unsigned long long const sixteenth : {0ULL, 1ULL, 2ULL, 3ULL, 8ULL, 13ULL, 15ULL}) {
                addAround(whole * divisor + sixteenth * divisor / 16);
            }
            for (unsigned long long const decimal : {5ULL, 49ULL, 95ULL, 995ULL, 999ULL}) {
                addAround(whole * divisor + decimal * divisor / 1000);
            }
        }
    }
    return sizes;
}

QString ExpectedDuration(long long microseconds, bool alwaysShowHours)
{
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.fill('0');
    auto value = static_cast<unsigned long long>(microseconds);
    if (microseconds < 0) {
        text << '-';
        value = ~value + 1;
    }
    int width = 0;
    if (value >= 3600000000ULL || alwaysShowHours) {
        text << value / 3600000000ULL << ':';
        width = 2;
    }
    if (value >= 60000000ULL || alwaysShowHours) {
        text << std::setw(width) << value / 1000000 % 3600 / 60 << ':';
        width = 2;
    }
    text << std::setw(width) << value / 1000000 % 60 << '.' << std::setw(3) << value % 1000000 / 1000;
    return QString::fromStdString(text.str());
}

} // namespace

class UnitsAndMeasuresTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void choosesThePrecisionForAFileSize_data()
    {
        QTest::addColumn<unsigned long long>("size");
        QTest::addColumn<int>("precision");
        QTest::newRow("zero") << 0ULL << 0;
        QTest::newRow("just below a million") << 999999ULL << 0;
        QTest::newRow("a million") << 1000000ULL << 1;
        QTest::newRow("a binary megabyte") << 1048576ULL << 1;
        QTest::newRow("just below a billion") << 999999999ULL << 1;
        QTest::newRow("a billion") << 1000000000ULL << 2;
        QTest::newRow("largest size") << LargestSize << 2;
    }

    void choosesThePrecisionForAFileSize()
    {
        QFETCH(unsigned long long, size);
        QFETCH(int, precision);
        QCOMPARE(PrecisionForFileSize(size), precision);
    }

    void formatsFileSizes_data()
    {
        QTest::addColumn<unsigned long long>("size");
        QTest::addColumn<int>("precision");
        QTest::addColumn<SizeUnit>("minUnit");
        QTest::addColumn<KiloSize>("kilo");
        QTest::addColumn<QString>("text");
        auto const row = [](char const* name, unsigned long long size, int precision, int minUnit, KiloSize kilo,
                            char const* text) {
            QTest::newRow(name) << size << precision << static_cast<SizeUnit>(minUnit) << kilo
                                << QString::fromLatin1(text);
        };
        row("zero", 0, -1, B, Kilo1024, "0 B");
        row("just below a kilobyte", 999, -1, B, Kilo1000, "999 B");
        row("a kilobyte", 1000, -1, B, Kilo1000, "1 KB");
        row("just below a binary kilobyte", 1023, -1, B, Kilo1024, "1023 B");
        row("a binary kilobyte", 1024, -1, B, Kilo1024, "1 KB");
        row("bytes with a precision", 999, 5, B, Kilo1000, "999 B");
        row("one decimal", 1536, 1, B, Kilo1024, "1.5 KB");
        row("automatic precision 0", 1700, -1, B, Kilo1024, "2 KB");
        row("automatic precision 1", 2500000, -1, B, Kilo1000, "2.5 MB");
        row("automatic precision 2", 2500000000, -1, B, Kilo1000, "2.50 GB");
        row("automatic precision at a million", 1000000, -1, B, Kilo1024, "976.6 KB");
        row("automatic precision just below a million", 999999, -1, B, Kilo1024, "977 KB");
        row("any negative precision", 2500000, -7, B, Kilo1000, "2.5 MB");
        row("precision 0", 2400000, 0, B, Kilo1000, "2 MB");
        row("half after an even digit", 2500000, 0, B, Kilo1000, "3 MB");
        row("half at two decimals", 1152, 2, B, Kilo1024, "1.13 KB");
        row("half at three decimals", 1088, 3, B, Kilo1024, "1.063 KB");
        row("rounding to 1000 without the next unit", 999999, 0, B, Kilo1000, "1000 KB");
        row("rounding with carry", 1999999, 2, B, Kilo1000, "2.00 MB");
        row("leading zeros in decimals", 1001000, 3, B, Kilo1000, "1.001 MB");
        row("just below a megabyte", 999999, 3, B, Kilo1000, "999.999 KB");
        row("a megabyte", 1000000, 3, B, Kilo1000, "1.000 MB");
        row("just below a gigabyte", 999999999, 0, KB, Kilo1000, "1000 MB");
        row("a gigabyte", 1000000000, 0, B, Kilo1000, "1 GB");
        row("just below a terabyte", 999999999999, 0, B, Kilo1000, "1000 GB");
        row("a terabyte", 1000000000000, 0, B, Kilo1000, "1 TB");
        row("just below a binary terabyte", (1ULL << 40) - 1, 0, B, Kilo1024, "1024 GB");
        row("a binary terabyte", 1ULL << 40, 0, B, Kilo1024, "1 TB");
        row("largest", LargestSize, -1, B, Kilo1000, "18446744.07 TB");
        row("largest in base 1024", LargestSize, -1, B, Kilo1024, "16777216.00 TB");
        row("at least KB", 10, 2, KB, Kilo1000, "0.01 KB");
        row("at least MB", 10, -1, MB, Kilo1000, "0 MB");
        row("at least GB", 5000000, 3, GB, Kilo1000, "0.005 GB");
        row("at least TB", 1ULL << 39, 1, TB, Kilo1024, "0.5 TB");
        row("zero in at least TB", 0, 1, TB, Kilo1024, "0.0 TB");
        row("larger than the smallest unit", 5000000, 0, KB, Kilo1000, "5 MB");
        row("unit just outside the enumeration", 10, -1, 5, Kilo1000, "10 B");
        row("unit far outside the enumeration", 5000000, -1, 100, Kilo1000, "5.0 MB");
        row("unit below the enumeration", 10, -1, -1, Kilo1000, "10 B");
        row("many decimals", 1500, 20, B, Kilo1000, "1.50000000000000000000 KB");
        row("more decimals than a double stores exactly", 1100, 20, B, Kilo1000, "1.10000000000000008882 KB");
    }

    void formatsFileSizes()
    {
        QFETCH(unsigned long long, size);
        QFETCH(int, precision);
        QFETCH(SizeUnit, minUnit);
        QFETCH(KiloSize, kilo);
        QFETCH(QString, text);
        QCOMPARE(FormatFileSize(size, precision, minUnit, kilo), text);
    }

    void limitsThePrecision_data()
    {
        QTest::addColumn<int>("precision");
        QTest::addColumn<int>("decimals");
        QTest::newRow("200") << 200 << 200;
        QTest::newRow("just below the limit") << 999 << 999;
        QTest::newRow("limit") << 1000 << 1000;
        QTest::newRow("just above the limit") << 1001 << 1000;
        QTest::newRow("a billion") << 1000000000 << 1000;
        QTest::newRow("maximum") << std::numeric_limits<int>::max() << 1000;
    }

    void limitsThePrecision()
    {
        QFETCH(int, precision);
        QFETCH(int, decimals);
        // The exact value of the double 1e-12. All further decimal places are zero.
        QString const exact = QStringLiteral("0.0000000000009999999999999999798866476292556153672528435061"
                                             "2952266601496376097202301025390625");
        QString const zeros = QString(decimals - (exact.size() - 2), QLatin1Char('0'));
        QString const text = FormatFileSize(1, precision, TB, Kilo1000);
        QCOMPARE(text.size(), decimals + 5);
        QCOMPARE(text, exact + zeros + QStringLiteral(" TB"));
    }

    void formatsEdgeSizesLikeQt()
    {
        for (KiloSize const kilo : BothBases) {
            for (unsigned long long const size : EdgeSizes(static_cast<unsigned long long>(kilo))) {
                for (int precision = -1; precision <= 20; ++precision) {
                    QString const difference = FileSizeDifference(size, precision, B, kilo);
                    QVERIFY2(difference.isEmpty(), qPrintable(difference));
                }
            }
        }
    }

    void formatsRandomSizesLikeQt()
    {
        std::mt19937_64 random(20240229);
        for (int i = 0; i < 40000; ++i) {
            unsigned long long const bits = random();
            unsigned long long const size = random() >> (bits % 64);
            int const precision = static_cast<int>(bits >> 8) % 22 - 1;
            int const minUnit = static_cast<int>(bits >> 16 & 7);
            for (KiloSize const kilo : BothBases) {
                QString const difference = FileSizeDifference(size, qMax(precision, -1), minUnit, kilo);
                QVERIFY2(difference.isEmpty(), qPrintable(difference));
            }
        }
    }

    void roundsExactTiesLikeQt()
    {
        std::mt19937_64 random(1789);
        for (int i = 0; i < 20000; ++i) {
            unsigned long long const bits = random();
            int const unit = 1 + static_cast<int>(bits % 4);
            unsigned long long const part = 1ULL << (bits >> 8 & 7); // a power of two from 1 to 128
            for (KiloSize const kilo : BothBases) {
                auto divisor = static_cast<unsigned long long>(kilo);
                for (int step = 1; step < unit; ++step) {
                    divisor *= static_cast<unsigned long long>(kilo);
                }
                unsigned long long const size = (bits >> 16) % (1000 * part) * divisor / part;
                for (int precision = 0; precision <= 4; ++precision) {
                    QString const difference = FileSizeDifference(size, precision, unit, kilo);
                    QVERIFY2(difference.isEmpty(), qPrintable(difference));
                }
            }
        }
    }

    void insertsIntoTranslatedLabelsLikeQt_data()
    {
        QTest::addColumn<QString>("label");
        auto const row = [](char const* label) { QTest::newRow(label) << QString::fromUtf8(label); };
        row("%1 TB");
        row("%1");
        row("TB: %1");
        row("%2 %1");
        row("%2 TB");
        row("%1 of %1");
        row("%1%1");
        row("%1 of %2");
        row("%10 TB");
        row("%1\xC2\xA0TB");
        row("%01 TB");
        row("%012 TB");
        row("%1x TB");
        row("%99 TB");
        row("100% %1");
        row("%1 %");
        row("%1%");
        row("%%1");
        row("%1 of 100% used");
        row("%L1 TB");
        row("%L1 of %1");
        row("%1 of %L1");
        row("%l1 or %1");
        row("%1\xD9\xA1 TB");
        row("%1\xC2\xB2 TB");
        row("%1\xE2\x91\xA0 TB");
        row("%\xD9\xA1 TB");
        row("%1 \xD0\xA2\xD0\x91");
        row("%1 \xF0\x9F\x98\x80");
    }

    void insertsIntoTranslatedLabelsLikeQt()
    {
        QFETCH(QString, label);
        DefaultLocale const locale(QLocale(QLocale::German, QLocale::Germany));
        Translation const translation({{QStringLiteral("%1 TB"), label},
                                       {QStringLiteral("%1 GB"), label},
                                       {QStringLiteral("%1 MB"), label},
                                       {QStringLiteral("%1 KB"), label},
                                       {QStringLiteral("%1 B"), label}});
        for (unsigned long long const size :
             {0ULL, 999ULL, 1500ULL, 2500ULL, 1234567ULL, 1234567890ULL, 12345678901234ULL, LargestSize}) {
            for (int precision = -1; precision <= 5; ++precision) {
                QString const difference = FileSizeDifference(size, precision, B, Kilo1000);
                QVERIFY2(difference.isEmpty(), qPrintable(difference));
            }
        }
    }

    void returnsALabelWithoutPlaceMarkerUnchanged_data()
    {
        QTest::addColumn<unsigned long long>("size");
        QTest::addColumn<QString>("label");
        for (char const* const label : {"no place marker", "%", "100%", "%L", "% 1", "%x", ""}) {
            QTest::addRow("TB as \"%s\"", label) << 1500000000000ULL << QString::fromLatin1(label);
            QTest::addRow("B as \"%s\"", label) << 15ULL << QString::fromLatin1(label);
        }
    }

    void returnsALabelWithoutPlaceMarkerUnchanged()
    {
        QFETCH(unsigned long long, size);
        QFETCH(QString, label);
        Translation const translation({{QStringLiteral("%1 TB"), label}, {QStringLiteral("%1 B"), label}});
        ExpectQtWarning(QRegularExpression(QStringLiteral("^QString::arg: Argument missing: ")));
        QString const text = FormatFileSize(size, -1, B, Kilo1000);
        QCOMPARE(text, label);
    }

    void usesTheLabelOfTheSelectedUnit_data()
    {
        QTest::addColumn<unsigned long long>("size");
        QTest::addColumn<QString>("text");
        QTest::newRow("bytes") << 5ULL << QStringLiteral("5 Bytes");
        QTest::newRow("kilobytes") << 5000ULL << QStringLiteral("5 Kilo");
        QTest::newRow("megabytes") << 5000000ULL << QStringLiteral("Mega 5.0");
        QTest::newRow("gigabytes") << 5000000000ULL << QStringLiteral("(5.00) Giga");
        QTest::newRow("terabytes") << 5000000000000ULL << QStringLiteral("5.00");
    }

    void usesTheLabelOfTheSelectedUnit()
    {
        QFETCH(unsigned long long, size);
        QFETCH(QString, text);
        Translation const translation({{QStringLiteral("%1 TB"), QStringLiteral("%1")},
                                       {QStringLiteral("%1 GB"), QStringLiteral("(%1) Giga")},
                                       {QStringLiteral("%1 MB"), QStringLiteral("Mega %1")},
                                       {QStringLiteral("%1 KB"), QStringLiteral("%1 Kilo")},
                                       {QStringLiteral("%1 B"), QStringLiteral("%1 Bytes")}});
        QCOMPARE(FormatFileSize(size, -1, B, Kilo1000), text);
    }

    void translatesTheLabelsInOrder_data()
    {
        QTest::addColumn<unsigned long long>("size");
        QTest::addColumn<bool>("needsBytes");
        QTest::newRow("zero") << 0ULL << true;
        QTest::newRow("bytes") << 999ULL << true;
        QTest::newRow("kilobytes") << 1000ULL << false;
        QTest::newRow("megabytes") << 1000000ULL << false;
        QTest::newRow("gigabytes") << 1000000000ULL << false;
        QTest::newRow("terabytes") << 1000000000000ULL << false;
    }

    void translatesTheLabelsInOrder()
    {
        QFETCH(unsigned long long, size);
        QFETCH(bool, needsBytes);
        QStringList expected{QStringLiteral("%1 TB"), QStringLiteral("%1 GB"), QStringLiteral("%1 MB"),
                             QStringLiteral("%1 KB")};
        if (needsBytes) {
            expected += QStringLiteral("%1 B");
        }
        Translation const translation;
        FormatFileSize(size, -1, B, Kilo1000);
        QCOMPARE(translation.SourceTexts(), expected);
        QVERIFY(translation.UsesDefaultArguments());
    }

    void ignoresTheDefaultLocale()
    {
        DefaultLocale const locale(QLocale(QLocale::German, QLocale::Germany));
        QCOMPARE(FormatFileSize(1234567890, 2, MB, Kilo1000), QStringLiteral("1.23 GB"));
        QCOMPARE(FormatFileSize(LargestSize, 1, B, Kilo1000), QStringLiteral("18446744.1 TB"));
        QCOMPARE(FormatBitrate(1234567890), QStringLiteral("1234567 Kbps"));
        QCOMPARE(FormatSampleRate(1234567), QStringLiteral("1234567 Hz"));
    }

    void returnsTheMultiplierOfASuffix_data()
    {
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<unsigned long long>("multiplier");
        auto const row = [](char const* suffix, unsigned long long multiplier) {
            QTest::addRow("\"%s\"", suffix) << QString::fromUtf8(suffix) << multiplier;
        };
        row("TB", 1000000000000);
        row("GB", 1000000000);
        row("MB", 1000000);
        row("KB", 1000);
        row("tb", 1000000000000);
        row("gb", 1000000000);
        row("mB", 1000000);
        row("Kb", 1000);
        row("B", 1);
        row("b", 1);
        row("PB", 1);
        row("K", 1);
        row("KiB", 1);
        row(" KB", 1);
        row("KB ", 1);
        row("1 KB", 1);
        row("KBB", 1);
        row("", 1);
    }

    void returnsTheMultiplierOfASuffix()
    {
        QFETCH(QString, suffix);
        QFETCH(unsigned long long, multiplier);
        QCOMPARE(SizeSuffixToMultipler(suffix), multiplier);
    }

    void returnsOneForANullSuffix() { QCOMPARE(SizeSuffixToMultipler(QString()), 1ULL); }

    void recognizesTranslatedSuffixes_data()
    {
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<unsigned long long>("multiplier");
        QTest::newRow("translated text") << QStringLiteral(u"\u0422\u0431") << 1000000000000ULL;
        QTest::newRow("capitals") << QStringLiteral(u"\u0422\u0411") << 1000000000000ULL;
        QTest::newRow("small letters") << QStringLiteral(u"\u0442\u0431") << 1000000000000ULL;
        QTest::newRow("letter that folds to two") << QStringLiteral(u"gro\u00DF") << 1000000000ULL;
        QTest::newRow("two letters that match one") << QStringLiteral("GROSS") << 1000000000ULL;
        QTest::newRow("replaced source text") << QStringLiteral("TB") << 1ULL;
        QTest::newRow("text without translation") << QStringLiteral("mb") << 1000000ULL;
        QTest::newRow("suffix of bytes") << QStringLiteral("Byte") << 1ULL;
    }

    void recognizesTranslatedSuffixes()
    {
        QFETCH(QString, suffix);
        QFETCH(unsigned long long, multiplier);
        Translation const translation({{QStringLiteral("TB"), QStringLiteral(u"\u0422\u0431")},
                                       {QStringLiteral("GB"), QStringLiteral(u"gro\u00DF")},
                                       {QStringLiteral("B"), QStringLiteral("Byte")}});
        QCOMPARE(SizeSuffixToMultipler(suffix), multiplier);
        QVERIFY(translation.UsesDefaultArguments());
    }

    void prefersTheLargerUnitOfEqualSuffixes_data()
    {
        QTest::addColumn<QStringList>("sameText");
        QTest::addColumn<unsigned long long>("multiplier");
        QTest::newRow("TB before GB") << QStringList{QStringLiteral("TB"), QStringLiteral("GB")} << 1000000000000ULL;
        QTest::newRow("GB before MB") << QStringList{QStringLiteral("GB"), QStringLiteral("MB")} << 1000000000ULL;
        QTest::newRow("MB before KB") << QStringList{QStringLiteral("MB"), QStringLiteral("KB")} << 1000000ULL;
        QTest::newRow("TB before KB") << QStringList{QStringLiteral("KB"), QStringLiteral("TB")} << 1000000000000ULL;
    }

    void prefersTheLargerUnitOfEqualSuffixes()
    {
        QFETCH(QStringList, sameText);
        QFETCH(unsigned long long, multiplier);
        Texts texts;
        for (QString const& source : qAsConst(sameText)) {
            texts.insert(source, QStringLiteral("unit"));
        }
        Translation const translation(texts);
        QCOMPARE(SizeSuffixToMultipler(QStringLiteral("Unit")), multiplier);
    }

    void formatsBitrates_data()
    {
        QTest::addColumn<long long>("bitsPerSecond");
        QTest::addColumn<QString>("text");
        QTest::newRow("zero") << 0LL << QStringLiteral("0 Kbps");
        QTest::newRow("less than a kilobit") << 999LL << QStringLiteral("0 Kbps");
        QTest::newRow("a kilobit") << 1000LL << QStringLiteral("1 Kbps");
        QTest::newRow("truncated value") << 1999LL << QStringLiteral("1 Kbps");
        QTest::newRow("truncated negative value") << -1999LL << QStringLiteral("-1 Kbps");
        QTest::newRow("negative, less than a kilobit") << -999LL << QStringLiteral("0 Kbps");
        QTest::newRow("large number without digit groups") << 192000000LL << QStringLiteral("192000 Kbps");
        QTest::newRow("largest") << std::numeric_limits<long long>::max() << QStringLiteral("9223372036854775 Kbps");
        QTest::newRow("smallest") << std::numeric_limits<long long>::min() << QStringLiteral("-9223372036854775 Kbps");
    }

    void formatsBitrates()
    {
        QFETCH(long long, bitsPerSecond);
        QFETCH(QString, text);
        QCOMPARE(FormatBitrate(bitsPerSecond), text);
    }

    void formatsSampleRates_data()
    {
        QTest::addColumn<long long>("hertz");
        QTest::addColumn<QString>("text");
        QTest::newRow("zero") << 0LL << QStringLiteral("0 Hz");
        QTest::newRow("compact disc rate") << 44100LL << QStringLiteral("44100 Hz");
        QTest::newRow("negative") << -1LL << QStringLiteral("-1 Hz");
        QTest::newRow("largest") << std::numeric_limits<long long>::max() << QStringLiteral("9223372036854775807 Hz");
        QTest::newRow("smallest") << std::numeric_limits<long long>::min() << QStringLiteral("-9223372036854775808 Hz");
    }

    void formatsSampleRates()
    {
        QFETCH(long long, hertz);
        QFETCH(QString, text);
        QCOMPARE(FormatSampleRate(hertz), text);
    }

    void translatesRates()
    {
        Translation const translation({{QStringLiteral("%1 Kbps"), QStringLiteral("Kbit/s: %L1")},
                                       {QStringLiteral("%1 Hz"), QStringLiteral("Hertz: %1")}});
        DefaultLocale const locale(QLocale(QLocale::German, QLocale::Germany));
        QCOMPARE(FormatBitrate(1234567), QStringLiteral("Kbit/s: 1.234"));
        QCOMPARE(FormatSampleRate(48000), QStringLiteral("Hertz: 48000"));
        QCOMPARE(translation.SourceTexts(), (QStringList{QStringLiteral("%1 Kbps"), QStringLiteral("%1 Hz")}));
        QVERIFY(translation.UsesDefaultArguments());
    }

    void splitsDurations_data()
    {
        QTest::addColumn<long>("seconds");
        QTest::addColumn<int>("hours");
        QTest::addColumn<int>("minutes");
        QTest::addColumn<int>("secs");
        QTest::newRow("zero") << 0L << 0 << 0 << 0;
        QTest::newRow("just below a minute") << 59L << 0 << 0 << 59;
        QTest::newRow("a minute") << 60L << 0 << 1 << 0;
        QTest::newRow("just below an hour") << 3599L << 0 << 59 << 59;
        QTest::newRow("an hour") << 3600L << 1 << 0 << 0;
        QTest::newRow("all components") << 3725L << 1 << 2 << 5;
        QTest::newRow("a day") << 86400L << 24 << 0 << 0;
        QTest::newRow("a thousand hours") << 3600061L << 1000 << 1 << 1;
        QTest::newRow("largest int of hours") << 2147483647L * 3600 + 3599 << 2147483647 << 59 << 59;
        QTest::newRow("hours truncated to int") << 4294967297L * 3600 + 62 << 1 << 1 << 2;
        QTest::newRow("longest") << Longest << static_cast<int>(Longest / 3600) << static_cast<int>(Longest / 60 % 60)
                                 << static_cast<int>(Longest % 60);
    }

    void splitsDurations()
    {
        QFETCH(long, seconds);
        int hours = -7;
        int minutes = -7;
        int secs = -7;
        DurationInSecondsToTimeComponents(seconds, hours, minutes, secs);
        QTEST(hours, "hours");
        QTEST(minutes, "minutes");
        QTEST(secs, "secs");
    }

    void rejectsNegativeDurations_data()
    {
        QTest::addColumn<long>("seconds");
        QTest::newRow("-1") << -1L;
        QTest::newRow("-3600") << -3600L;
        QTest::newRow("smallest") << std::numeric_limits<long>::min();
    }

    void rejectsNegativeDurations()
    {
        QFETCH(long, seconds);
        int hours = 7;
        int minutes = 8;
        int secs = 9;
        verifyNegativeDuration(CatchProgrammingError<std::invalid_argument>(
            [&] { DurationInSecondsToTimeComponents(seconds, hours, minutes, secs); }));
        verifyNegativeDuration(
            CatchProgrammingError<std::invalid_argument>([&] { DurationInSecondsToQTime(seconds); }));
        verifyNegativeDuration(CatchProgrammingError<std::invalid_argument>(
            [&] { DurationInSecondsToString(seconds, QStringLiteral("hh:mm:ss")); }));
        QCOMPARE(hours, 7);
        QCOMPARE(minutes, 8);
        QCOMPARE(secs, 9);
    }

    void convertsDurationsToTimes_data()
    {
        QTest::addColumn<long>("seconds");
        QTest::addColumn<QTime>("time");
        QTest::newRow("zero") << 0L << QTime(0, 0, 0, 0);
        QTest::newRow("all components") << 3725L << QTime(1, 2, 5, 0);
        QTest::newRow("last second of a day") << 86399L << QTime(23, 59, 59, 0);
    }

    void convertsDurationsToTimes()
    {
        QFETCH(long, seconds);
        QFETCH(QTime, time);
        QTime const result = DurationInSecondsToQTime(seconds);
        QVERIFY(result.isValid());
        QCOMPARE(result, time);
    }

    void returnsAnInvalidTimeForADayOrMore_data()
    {
        QTest::addColumn<long>("seconds");
        QTest::newRow("a day") << 86400L;
        QTest::newRow("a day and a second") << 86401L;
        QTest::newRow("a year") << 365L * 86400;
        QTest::newRow("hours beyond the range of int") << 4294967296L * 3600;
        QTest::newRow("longest") << Longest;
    }

    void returnsAnInvalidTimeForADayOrMore()
    {
        QFETCH(long, seconds);
        QVERIFY(!DurationInSecondsToQTime(seconds).isValid());
        QVERIFY(DurationInSecondsToString(seconds, QStringLiteral("hh:mm:ss")).isEmpty());
    }

    void formatsDurationsWithAFormat_data()
    {
        QTest::addColumn<long>("seconds");
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("text");
        QTest::newRow("padded format") << 3725L << QStringLiteral("hh:mm:ss") << QStringLiteral("01:02:05");
        QTest::newRow("format without padding")
            << 3725L << QStringLiteral("h'h' m'm' s's'") << QStringLiteral("1h 2m 5s");
        QTest::newRow("afternoon") << 46800L << QStringLiteral("h:mm AP") << QStringLiteral("1:00 PM");
        QTest::newRow("format with milliseconds") << 1L << QStringLiteral("s.zzz") << QStringLiteral("1.000");
        QTest::newRow("empty format") << 3725L << QString() << QString();
    }

    void formatsDurationsWithAFormat()
    {
        QFETCH(long, seconds);
        QFETCH(QString, format);
        QFETCH(QString, text);
        QCOMPARE(DurationInSecondsToString(seconds, format), text);
    }

    void formatsDurations_data()
    {
        QTest::addColumn<long long>("microseconds");
        QTest::addColumn<bool>("alwaysShowHours");
        QTest::addColumn<QString>("text");
        auto const row = [](char const* name, long long microseconds, bool alwaysShowHours, char const* text) {
            QTest::newRow(name) << microseconds << alwaysShowHours << QString::fromLatin1(text);
        };
        row("zero", 0, false, "0.000");
        row("zero with hours", 0, true, "0:00:00.000");
        row("less than a millisecond", 999, false, "0.000");
        row("a millisecond", 1000, false, "0.001");
        row("truncated value", 1999999, false, "1.999");
        row("seconds without padding", 5000000, false, "5.000");
        row("just below a minute", 59999999, false, "59.999");
        row("a minute", 60000000, false, "1:00.000");
        row("minutes without padding", 61500000, false, "1:01.500");
        row("just below an hour", 3599999999, false, "59:59.999");
        row("an hour", 3600000000, false, "1:00:00.000");
        row("padded minutes after hours", 3661001000, false, "1:01:01.001");
        row("an hour with hours", 3600000000, true, "1:00:00.000");
        row("short duration with hours", 1500000, true, "0:00:01.500");
        row("minutes with hours", 61500000, true, "0:01:01.500");
        row("two days", 172800000000, false, "48:00:00.000");
        row("a thousand hours", 3600000000000, false, "1000:00:00.000");
        row("negative", -1500000, false, "-1.500");
        row("negative with hours", -1500000, true, "-0:00:01.500");
        row("negative minutes", -61500000, false, "-1:01.500");
        row("negative hours", -3600000000, false, "-1:00:00.000");
        row("truncated negative value", -1999, false, "-0.001");
        row("negative, less than a millisecond", -1, false, "-0.000");
        row("longest", std::numeric_limits<long long>::max(), false, "2562047788:00:54.775");
        row("most negative", std::numeric_limits<long long>::min(), false, "-2562047788:00:54.775");
        row("most negative with hours", std::numeric_limits<long long>::min(), true, "-2562047788:00:54.775");
    }

    void formatsDurations()
    {
        QFETCH(long long, microseconds);
        QFETCH(bool, alwaysShowHours);
        QFETCH(QString, text);
        QCOMPARE(FormatDuration(microseconds, alwaysShowHours), text);
        QCOMPARE(ExpectedDuration(microseconds, alwaysShowHours), text);
    }

    void formatsRandomDurationsLikeAStream()
    {
        std::mt19937_64 random(86400);
        for (int i = 0; i < 20000; ++i) {
            unsigned long long const bits = random();
            auto const magnitude = static_cast<long long>(random() >> (1 + bits % 63));
            long long const microseconds = (bits & 256) != 0 ? -magnitude : magnitude;
            for (bool const alwaysShowHours : {false, true}) {
                QCOMPARE(FormatDuration(microseconds, alwaysShowHours),
                         ExpectedDuration(microseconds, alwaysShowHours));
            }
        }
    }

    void formatsDurationsWithoutTranslation()
    {
        Translation const translation;
        DefaultLocale const locale(QLocale(QLocale::German, QLocale::Germany));
        QCOMPARE(FormatDuration(3661001000, false), QStringLiteral("1:01:01.001"));
        QVERIFY(translation.SourceTexts().isEmpty());
    }

private:
    static void verifyNegativeDuration(ProgrammingError const& error)
    {
        QCOMPARE(error.message, QStringLiteral("Negative duration"));
        QVERIFY2(error.callStack.contains(QStringLiteral("DurationInSecondsToTimeComponents")),
                 qPrintable(error.callStack));
        QCOMPARE(error.file, QStringLiteral("Util/UnitsAndMeasures.cpp"));
        QVERIFY(error.line > 0);
        // Compilers write function names differently: with "long" or "long int", and with spaces at different
        // positions.
        QString const function = QString(error.function).remove(QLatin1Char(' '));
        QCOMPARE(QString(function).replace(QLatin1String("longint"), QLatin1String("long")),
                 QStringLiteral("voidZelkor::Util::DurationInSecondsToTimeComponents(long,int&,int&,int&)"));
    }
};

ZQTUTIL_TEST_MAIN(UnitsAndMeasuresTest)
#include "UnitsAndMeasuresTest.moc"

#include <support/TestCase.h>

#include <Util/QTimeUtils.h>

#include <QtTest/QtTest>

#include <limits>
#include <type_traits>

using Zelkor::Util::AvTimeToQTime;
using Zelkor::Util::QTimeToAvTime;

static_assert(std::is_same_v<decltype(&AvTimeToQTime), QTime (*)(long long)>);
static_assert(std::is_same_v<decltype(&QTimeToAvTime), long long (*)(QTime)>);

namespace
{

constexpr long long Second = 1000000;
constexpr long long Day = 86400 * Second;

/// Returns the time of day for \a microseconds since midnight; negative values wrap to the previous day.
QTime TimeOfDay(long long microseconds)
{
    long long const millisecondsInDay = Day / 1000;
    long long const remainder = microseconds / 1000 % millisecondsInDay;
    return QTime::fromMSecsSinceStartOfDay(static_cast<int>((remainder + millisecondsInDay) % millisecondsInDay));
}

} // namespace

class QTimeUtilsTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void convertsAvTimeToQTime_data()
    {
        QTest::addColumn<long long>("microseconds");
        QTest::addColumn<QTime>("time");
        QTest::newRow("midnight") << 0LL << QTime(0, 0, 0, 0);
        QTest::newRow("less than a millisecond") << 999LL << QTime(0, 0, 0, 0);
        QTest::newRow("a millisecond") << 1000LL << QTime(0, 0, 0, 1);
        QTest::newRow("truncation of a positive value") << 1999LL << QTime(0, 0, 0, 1);
        QTest::newRow("all components") << 3723004000LL << QTime(1, 2, 3, 4);
        QTest::newRow("last millisecond of the day") << Day - 1 << QTime(23, 59, 59, 999);
        QTest::newRow("a day") << Day << QTime(0, 0, 0, 0);
        QTest::newRow("a day and an hour") << Day + 3600 * Second << QTime(1, 0, 0, 0);
        QTest::newRow("minus a microsecond") << -1LL << QTime(0, 0, 0, 0);
        QTest::newRow("truncation of a negative value") << -999LL << QTime(0, 0, 0, 0);
        QTest::newRow("minus a millisecond") << -1000LL << QTime(23, 59, 59, 999);
        QTest::newRow("truncation below a negative millisecond") << -1999LL << QTime(23, 59, 59, 999);
        QTest::newRow("minus an hour") << -3600 * Second << QTime(23, 0, 0, 0);
        QTest::newRow("minus a day") << -Day << QTime(0, 0, 0, 0);
        QTest::newRow("minus two days and a millisecond") << -2 * Day - 1000 << QTime(23, 59, 59, 999);
    }

    void convertsAvTimeToQTime()
    {
        QFETCH(long long, microseconds);
        QFETCH(QTime, time);
        QCOMPARE(AvTimeToQTime(microseconds), time);
    }

    // QTime stores milliseconds in an int, which overflows after 24 days. The conversion must return the correct time
    // of day for longer times too.
    void wrapsAtEveryMidnight_data()
    {
        QTest::addColumn<long long>("microseconds");
        QTest::newRow("24 days") << 24 * Day + 5 * Second;
        QTest::newRow("25 days") << 25 * Day + 5 * Second;
        QTest::newRow("minus 25 days") << -25 * Day - 5 * Second;
        QTest::newRow("50 days") << 50 * Day + 5 * Second;
        QTest::newRow("100 years") << 36525 * Day + 5 * Second;
        QTest::newRow("largest") << std::numeric_limits<long long>::max();
        QTest::newRow("smallest") << std::numeric_limits<long long>::min();
    }

    void wrapsAtEveryMidnight()
    {
        QFETCH(long long, microseconds);
        QCOMPARE(AvTimeToQTime(microseconds), TimeOfDay(microseconds));
    }

    void convertsQTimeToAvTime_data()
    {
        QTest::addColumn<QTime>("time");
        QTest::addColumn<long long>("microseconds");
        QTest::newRow("midnight") << QTime(0, 0, 0, 0) << 0LL;
        QTest::newRow("a millisecond") << QTime(0, 0, 0, 1) << 1000LL;
        QTest::newRow("a second") << QTime(0, 0, 1, 0) << Second;
        QTest::newRow("a minute") << QTime(0, 1, 0, 0) << 60 * Second;
        QTest::newRow("an hour") << QTime(1, 0, 0, 0) << 3600 * Second;
        QTest::newRow("all components") << QTime(1, 2, 3, 4) << 3723004000LL;
        QTest::newRow("last millisecond of the day") << QTime(23, 59, 59, 999) << Day - 1000;
        QTest::newRow("null time") << QTime() << -3661001000LL;
        QTest::newRow("invalid time") << QTime(24, 0, 0, 0) << -3661001000LL;
    }

    void convertsQTimeToAvTime()
    {
        QFETCH(QTime, time);
        QFETCH(long long, microseconds);
        QCOMPARE(QTimeToAvTime(time), microseconds);
    }

    void roundTripsThroughAvTime()
    {
        int const step = 7919; // in ms; a prime number, to vary the hours, minutes, seconds and milliseconds
        for (int milliseconds = 0; milliseconds < 86400000; milliseconds += step) {
            QTime const time = QTime::fromMSecsSinceStartOfDay(milliseconds);
            QCOMPARE(AvTimeToQTime(QTimeToAvTime(time)), time);
        }
    }
};

ZQTUTIL_TEST_MAIN(QTimeUtilsTest)
#include "QTimeUtilsTest.moc"

// What is available follows the version of the system, by each way to ask.

#include "NativeAvailability.h"

#include <TestBed.h>
#include <support/TestCase.h>

#include <Base/SystemVersion.h>

#include <QtTest/QtTest>

using namespace Zelkor::Testing;
using Zelkor::Core::GetSystemVersion;
using Zelkor::Core::Version;
namespace TestBed = Zelkor::TestBed;

namespace
{

/// The answers for 10.9, 10.15, 10.16 and 11, a letter each.
QString InObjectiveCpp()
{
    QString answers;
    for (bool const isAtLeast : {IsAtLeast10_9(), IsAtLeast10_15(), IsAtLeast10_16(), IsAtLeast11()}) {
        answers += isAtLeast ? QLatin1Char('y') : QLatin1Char('n');
    }
    return answers;
}

QString InCpp()
{
    QString answers;
    answers += __builtin_available(macOS 10.9, *) ? QLatin1Char('y') : QLatin1Char('n');
    answers += __builtin_available(macOS 10.15, *) ? QLatin1Char('y') : QLatin1Char('n');
    answers += __builtin_available(macOS 10.16, *) ? QLatin1Char('y') : QLatin1Char('n');
    answers += __builtin_available(macOS 11, iOS 14, *) ? QLatin1Char('y') : QLatin1Char('n');
    return answers;
}

} // namespace

class AvailabilityTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void followsTheSystemsVersion_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QString>("answers"); // for 10.9, 10.15, 10.16 and 11
        QTest::newRow("10.8.5") << QStringLiteral("10.8.5") << QStringLiteral("nnnn");
        QTest::newRow("10.9") << QStringLiteral("10.9") << QStringLiteral("ynnn");
        QTest::newRow("10.14.6") << QStringLiteral("10.14.6") << QStringLiteral("ynnn");
        QTest::newRow("10.15") << QStringLiteral("10.15") << QStringLiteral("yynn");
        QTest::newRow("10.15.7") << QStringLiteral("10.15.7") << QStringLiteral("yynn");
        QTest::newRow("10.16") << QStringLiteral("10.16") << QStringLiteral("yyyn");
        QTest::newRow("11.0") << QStringLiteral("11.0") << QStringLiteral("yyyy");
        QTest::newRow("14.2.1") << QStringLiteral("14.2.1") << QStringLiteral("yyyy");
    }

    void followsTheSystemsVersion()
    {
        QFETCH(QString, version);
        QFETCH(QString, answers);
        TestBed::SetSystemVersion(version);
        QCOMPARE(InObjectiveCpp(), answers);
        QCOMPARE(InCpp(), answers);
        QCOMPARE(IsNotAtLeast10_15(), answers[1] == QLatin1Char('n'));
        QCOMPARE(ProcessInfoIsAtLeast(10, 9, 0), answers[0] == QLatin1Char('y'));
        QCOMPARE(ProcessInfoIsAtLeast(10, 15, 0), answers[1] == QLatin1Char('y'));
        QCOMPARE(ProcessInfoIsAtLeast(11, 0, 0), answers[3] == QLatin1Char('y'));
    }

    void processInfoTellsThreeNumbers_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QString>("told");
        QTest::newRow("three") << QStringLiteral("10.14.6") << QStringLiteral("10.14.6");
        QTest::newRow("two") << QStringLiteral("11.2") << QStringLiteral("11.2.0");
        QTest::newRow("one") << QStringLiteral("12") << QStringLiteral("12.0.0");
    }

    void processInfoTellsThreeNumbers()
    {
        QFETCH(QString, version);
        QFETCH(QString, told);
        TestBed::SetSystemVersion(version);
        QCOMPARE(VersionOfProcessInfo(), told);
    }

    void patchesCount()
    {
        TestBed::SetSystemVersion(QStringLiteral("10.14.3"));
        QVERIFY(ProcessInfoIsAtLeast(10, 14, 3));
        QVERIFY(!ProcessInfoIsAtLeast(10, 14, 4));
    }

    void libraryReadsTheVersion()
    {
        TestBed::SetSystemVersion(QStringLiteral("10.14.6"));
        QVERIFY(GetSystemVersion() == Version(10, 14, 6));
        TestBed::SetSystemVersion(QStringLiteral("11.2"));
        QVERIFY(GetSystemVersion() == Version(11, 2));
        TestBed::SetSystemVersion(QString());
        QVERIFY(GetSystemVersion() == Version());
    }

protected:
    void SetUp() override { TestBed::Reset(); }
};

ZQTUTIL_TEST_MAIN(AvailabilityTest)

#include "AvailabilityTest.moc"

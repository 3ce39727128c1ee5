// Tests that @available, __builtin_available, NSProcessInfo and GetSystemVersion() all use the version that
// TestBed::SetSystemVersion() has set.

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

void AddVersionRows()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<bool>("atLeast10_9");
    QTest::addColumn<bool>("atLeast10_15");
    QTest::addColumn<bool>("atLeast10_16");
    QTest::addColumn<bool>("atLeast11");
    QTest::newRow("10.8.5") << QStringLiteral("10.8.5") << false << false << false << false;
    QTest::newRow("10.9") << QStringLiteral("10.9") << true << false << false << false;
    QTest::newRow("10.14.6") << QStringLiteral("10.14.6") << true << false << false << false;
    QTest::newRow("10.15") << QStringLiteral("10.15") << true << true << false << false;
    QTest::newRow("10.15.7") << QStringLiteral("10.15.7") << true << true << false << false;
    QTest::newRow("10.16") << QStringLiteral("10.16") << true << true << true << false;
    QTest::newRow("11.0") << QStringLiteral("11.0") << true << true << true << true;
    QTest::newRow("14.2.1") << QStringLiteral("14.2.1") << true << true << true << true;
}

} // namespace

class AvailabilityTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void objectiveCppFollowsTheSystemVersion_data() { AddVersionRows(); }

    void objectiveCppFollowsTheSystemVersion()
    {
        QFETCH(QString, version);
        TestBed::SetSystemVersion(version);
        QTEST(IsAtLeast10_9(), "atLeast10_9");
        QTEST(IsAtLeast10_15(), "atLeast10_15");
        QTEST(!IsNotAtLeast10_15(), "atLeast10_15");
        QTEST(IsAtLeast10_16(), "atLeast10_16");
        QTEST(IsAtLeast11(), "atLeast11");
    }

    void cppFollowsTheSystemVersion_data() { AddVersionRows(); }

    void cppFollowsTheSystemVersion()
    {
        QFETCH(QString, version);
        TestBed::SetSystemVersion(version);
        bool const isAtLeast10_9 = __builtin_available(macOS 10.9, *) ? true : false;
        bool const isAtLeast10_15 = __builtin_available(macOS 10.15, *) ? true : false;
        bool const isAtLeast10_16 = __builtin_available(macOS 10.16, *) ? true : false;
        bool const isAtLeast11 = __builtin_available(macOS 11, iOS 14, *) ? true : false;
        QTEST(isAtLeast10_9, "atLeast10_9");
        QTEST(isAtLeast10_15, "atLeast10_15");
        QTEST(isAtLeast10_16, "atLeast10_16");
        QTEST(isAtLeast11, "atLeast11");
    }

    void processInfoFollowsTheSystemVersion_data() { AddVersionRows(); }

    void processInfoFollowsTheSystemVersion()
    {
        QFETCH(QString, version);
        TestBed::SetSystemVersion(version);
        QTEST(ProcessInfoIsAtLeast(10, 9, 0), "atLeast10_9");
        QTEST(ProcessInfoIsAtLeast(10, 15, 0), "atLeast10_15");
        QTEST(ProcessInfoIsAtLeast(11, 0, 0), "atLeast11");
    }

    void processInfoReturnsThreeNumbers_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QString>("processInfoVersion");
        QTest::newRow("three numbers") << QStringLiteral("10.14.6") << QStringLiteral("10.14.6");
        QTest::newRow("two numbers") << QStringLiteral("11.2") << QStringLiteral("11.2.0");
        QTest::newRow("one number") << QStringLiteral("12") << QStringLiteral("12.0.0");
    }

    void processInfoReturnsThreeNumbers()
    {
        QFETCH(QString, version);
        QFETCH(QString, processInfoVersion);
        TestBed::SetSystemVersion(version);
        QCOMPARE(VersionOfProcessInfo(), processInfoVersion);
    }

    void processInfoComparesPatchVersions()
    {
        TestBed::SetSystemVersion(QStringLiteral("10.14.3"));
        QVERIFY(ProcessInfoIsAtLeast(10, 14, 3));
        QVERIFY(!ProcessInfoIsAtLeast(10, 14, 4));
    }

    void libraryReadsTheSystemVersion()
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

#include <support/TestCase.h>
#include <support/Versions.h>
#include <support/logs/LogCapture.h>

#include <Util/VersionUtils.h>

#include <QtTest/QtTest>

#include <type_traits>

using Zelkor::Core::Version;
using Zelkor::Core::Util::VersionToStringDetail;
using Zelkor::Testing::LogCapture;
using Zelkor::Util::GenerateApplicationVisibleVersion;
using Zelkor::Util::VersionFromString;
using Zelkor::Util::VersionToString;

static_assert(std::is_same_v<decltype(&VersionFromString), Version (*)(QString const&, QString const&)>);
static_assert(std::is_same_v<decltype(&Zelkor::Util::VersionToString),
                             QString (*)(Version const&, VersionToStringDetail, QString const&)>);
static_assert(std::is_same_v<decltype(&GenerateApplicationVisibleVersion), QString (*)(Version const&)>);

Q_DECLARE_METATYPE(Zelkor::Core::Version)
Q_DECLARE_METATYPE(Zelkor::Core::Util::VersionToStringDetail)

namespace
{

constexpr std::uint32_t NotGiven = Version::NotGiven;

QString const dot = QStringLiteral(".");

} // namespace

class VersionUtilsTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void readsText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("separator");
        QTest::addColumn<Version>("version");
        auto const row = [](char const* name, QString const& text, QString const& separator, Version const& version) {
            QTest::newRow(name) << text << separator << version;
        };
        row("four components", QStringLiteral("3.1.2.4567"), dot, Version(3, 1, 2, 4567));
        row("missing components", QStringLiteral("3.1"), dot, Version(3, 1, 0, 0));
        row("one component", QStringLiteral("12"), dot, Version(12));
        row("largest given component", QStringLiteral("4294967294.1"), dot, Version(NotGiven - 1, 1));
        row("other separator", QStringLiteral("3_1_2"), QStringLiteral("_"), Version(3, 1, 2));
        row("long separator", QStringLiteral("3 :: 1 :: 2"), QStringLiteral(" :: "), Version(3, 1, 2));
        row("non-ASCII separator", QStringLiteral("3\u20AC1\u20AC2"), QStringLiteral("\u20AC"), Version(3, 1, 2));
        row("separator outside the BMP", QStringLiteral("3\U0001D11E1"), QStringLiteral("\U0001D11E"), Version(3, 1));
        row("missing separator", QStringLiteral("3.1.2"), QStringLiteral("_"), Version(3));
        row("swapped separator and text", dot, QStringLiteral("3.1"), Version());
        row("digits of another script", QStringLiteral("3.\u0663"), dot, Version(3));
        row("text after the numbers", QStringLiteral("3.1.2-beta"), dot, Version(3, 1, 2));
        row("empty text", QString(QLatin1String("")), dot, Version());
        row("null text", QString(), dot, Version());
        row("null separator", QStringLiteral("3.1"), QString(), Version(3));
        row("NUL character in the text", QStringLiteral("3.1\0") + QStringLiteral("7.2"), dot, Version(3, 1));
        row("NUL character before a separator", QStringLiteral("3.1") + QChar(0) + QStringLiteral(".2"), dot,
            Version(3, 1));
        row("NUL character in the separator", QStringLiteral("3.1.2"), dot + QChar(0) + QLatin1Char('x'),
            Version(3, 1, 2));
        row("NUL separator", QStringLiteral("3") + QChar(0) + QLatin1Char('1'), QString(QChar(0)), Version(3));
    }

    void readsText()
    {
        QFETCH(QString, text);
        QFETCH(QString, separator);
        QFETCH(Version, version);
        LogCapture const log;
        QCOMPARE(VersionFromString(text, separator), version);
        QVERIFY(log.Lines().isEmpty());
    }

    void writesText_data()
    {
        QTest::addColumn<Version>("version");
        QTest::addColumn<VersionToStringDetail>("detail");
        QTest::addColumn<QString>("separator");
        QTest::addColumn<QString>("text");
        auto const row = [](char const* name, Version const& version, int detail, QString const& separator,
                            QString const& text) {
            QTest::newRow(name) << version << static_cast<VersionToStringDetail>(detail) << separator << text;
        };
        Version const version(3, 1, 2, 4);
        row("major", version, 1, dot, QStringLiteral("3"));
        row("major and minor", version, 2, dot, QStringLiteral("3.1"));
        row("without build", version, 3, dot, QStringLiteral("3.1.2"));
        row("full", version, 4, dot, QStringLiteral("3.1.2.4"));
        row("all zeros", Version(), 4, dot, QStringLiteral("0.0.0.0"));
        row("other separator", version, 3, QStringLiteral("_"), QStringLiteral("3_1_2"));
        row("non-ASCII separator", version, 3, QStringLiteral("\u20AC"), QStringLiteral("3\u20AC1\u20AC2"));
        row("separator outside the BMP", version, 2, QStringLiteral("\U0001D11E"), QStringLiteral("3\U0001D11E1"));
        row("separator with a place marker", version, 3, QStringLiteral("%1"), QStringLiteral("3%11%12"));
        row("empty separator", version, 3, QLatin1String(""), QStringLiteral("312"));
        row("null separator", version, 3, QString(), QStringLiteral("312"));
        row("NUL character in the separator", version, 3, dot + QChar(0) + QLatin1Char('x'), QStringLiteral("3.1.2"));
        row("component not given", Version(3, 1, NotGiven, 4), 4, dot, QStringLiteral("3.1"));
    }

    void writesText()
    {
        QFETCH(Version, version);
        QFETCH(VersionToStringDetail, detail);
        QFETCH(QString, separator);
        QFETCH(QString, text);
        LogCapture const log;
        QCOMPARE(VersionToString(version, detail, separator), text);
        QVERIFY(log.Lines().isEmpty());
    }

    void roundTripsThroughText()
    {
        Version const version(4, 0, 4294967294, 17);
        QString const separator = QStringLiteral(" \u00B7 ");
        QString const text = VersionToString(version, VersionToStringDetail::Full, separator);
        QCOMPARE(VersionFromString(text, separator), version);
    }

    void omitsAZeroOrMissingThirdFromTheVisibleVersion_data()
    {
        QTest::addColumn<Version>("version");
        QTest::addColumn<QString>("text");
        auto const row = [](char const* name, Version const& version, char const* text) {
            QTest::newRow(name) << version << QString::fromLatin1(text);
        };
        row("third 0", Version(3, 1, 0), "3.1");
        row("third 0, build given", Version(3, 1, 0, 4567), "3.1");
        row("third not given", Version(3, 1, NotGiven), "3.1");
        row("third and build not given", Version(3, 1, NotGiven, NotGiven), "3.1");
        row("third not given, build given", Version(3, 1, NotGiven, 4567), "3.1");
        row("third 1", Version(3, 1, 1), "3.1.1");
        row("third 2", Version(3, 1, 2), "3.1.2");
        row("third 2, build given", Version(3, 1, 2, 4567), "3.1.2");
        row("third 2, build not given", Version(3, 1, 2, NotGiven), "3.1.2");
        row("largest signed third", Version(3, 1, 0x7FFFFFFF), "3.1.2147483647");
        row("third outside the signed range", Version(3, 1, 0x80000000), "3.1.2147483648");
        row("largest given third", Version(3, 1, NotGiven - 1), "3.1.4294967294");
        row("second largest given third", Version(3, 1, NotGiven - 2), "3.1.4294967293");
        row("minor 0", Version(3), "3.0");
        row("minor 0, third given", Version(3, 0, 2), "3.0.2");
        row("all zeros", Version(), "0.0");
        row("only the third", Version(0, 0, 1), "0.0.1");
        row("only the build", Version(0, 0, 0, 1), "0.0");
        row("large numbers without digit groups", Version(1234567, 1234567, 1234567), "1234567.1234567.1234567");
        row("minor not given", Version(3, NotGiven), "3");
    }

    void omitsAZeroOrMissingThirdFromTheVisibleVersion()
    {
        QFETCH(Version, version);
        QFETCH(QString, text);
        LogCapture const log;
        QCOMPARE(GenerateApplicationVisibleVersion(version), text);
        QVERIFY(log.Lines().isEmpty());
    }
};

ZQTUTIL_TEST_MAIN(VersionUtilsTest)
#include "VersionUtilsTest.moc"

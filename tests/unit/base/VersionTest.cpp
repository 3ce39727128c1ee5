#include <support/TestCase.h>
#include <support/Versions.h>

#include <Base/Version.h>

#include <QtTest/QtTest>

#include <limits>
#include <string>
#include <type_traits>

using Zelkor::Core::Version;
using Zelkor::Core::Util::VersionFromString;
using Zelkor::Core::Util::VersionToString;
using Zelkor::Core::Util::VersionToStringDetail;

static_assert(std::is_trivially_copyable_v<Version> && std::is_standard_layout_v<Version>);
static_assert(std::is_nothrow_move_constructible_v<Version> && std::is_nothrow_move_assignable_v<Version>);
static_assert(!std::is_polymorphic_v<Version> && !std::is_final_v<Version>);
static_assert(sizeof(Version) == 4 * sizeof(std::uint32_t));
static_assert(std::is_same_v<std::underlying_type_t<VersionToStringDetail>, int>);
static_assert(!std::is_convertible_v<VersionToStringDetail, int>);
static_assert(static_cast<int>(VersionToStringDetail::Major) == 1);
static_assert(static_cast<int>(VersionToStringDetail::MajorMinor) == 2);
static_assert(static_cast<int>(VersionToStringDetail::MajorMinorThird) == 3);
static_assert(static_cast<int>(VersionToStringDetail::Full) == 4);
static_assert(Version::NotGiven == 0xFFFFFFFF);
static_assert(Version(1, 2, 3, 4).GetMajor() == 1 && Version(1, 2, 3, 4).GetMinor() == 2);
static_assert(Version(1, 2, 3, 4).GetThird() == 3 && Version(1, 2, 3, 4).GetBuild() == 4);

Q_DECLARE_METATYPE(std::string)
Q_DECLARE_METATYPE(Zelkor::Core::Version)
Q_DECLARE_METATYPE(Zelkor::Core::Util::VersionToStringDetail)

namespace
{

constexpr std::uint32_t NotGiven = Version::NotGiven;

} // namespace

class VersionTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void returnsItsComponents()
    {
        Version const version(3, 1, 2, 4567);
        QCOMPARE(version.GetMajor(), 3U);
        QCOMPARE(version.GetMinor(), 1U);
        QCOMPARE(version.GetThird(), 2U);
        QCOMPARE(version.GetBuild(), 4567U);
    }

    void defaultsMissingComponentsToZero()
    {
        QCOMPARE(Version(), Version(0, 0, 0, 0));
        QCOMPARE(Version(3), Version(3, 0, 0, 0));
        QCOMPARE(Version(3, 1), Version(3, 1, 0, 0));
        QCOMPARE(Version(3, 1, 2), Version(3, 1, 2, 0));
    }

    void comparesComponentsInOrder_data()
    {
        QTest::addColumn<Version>("smaller");
        QTest::addColumn<Version>("larger");
        QTest::newRow("build differs") << Version(1, 2, 3, 4) << Version(1, 2, 3, 5);
        QTest::newRow("third outranks build") << Version(1, 2, 3, 9) << Version(1, 2, 4, 0);
        QTest::newRow("minor outranks third") << Version(1, 2, 9, 9) << Version(1, 3, 0, 0);
        QTest::newRow("major outranks minor") << Version(1, 9, 9, 9) << Version(2, 0, 0, 0);
        QTest::newRow("numeric, not lexical order") << Version(10, 9) << Version(10, 10);
        QTest::newRow("beyond the signed range") << Version(0x7FFFFFFF) << Version(0x80000000);
        QTest::newRow("largest given component") << Version(NotGiven - 2) << Version(NotGiven - 1);
        QTest::newRow("major not given, less than 0") << Version(NotGiven) << Version(0);
        QTest::newRow("minor not given, less than 0") << Version(1, NotGiven) << Version(1, 0);
        QTest::newRow("third not given, less than 0") << Version(1, 2, NotGiven) << Version(1, 2, 0);
        QTest::newRow("build not given, less than 0") << Version(1, 2, 3, NotGiven) << Version(1, 2, 3, 0);
        QTest::newRow("not given, less than the largest") << Version(1, NotGiven) << Version(1, NotGiven - 1);
        QTest::newRow("not given outranks later components") << Version(1, NotGiven, 9) << Version(1, 0, 0);
    }

    void comparesComponentsInOrder()
    {
        QFETCH(Version, smaller);
        QFETCH(Version, larger);
        QVERIFY(smaller < larger);
        QVERIFY(smaller <= larger);
        QVERIFY(smaller != larger);
        QVERIFY(larger > smaller);
        QVERIFY(larger >= smaller);
        QVERIFY(!(smaller == larger));
        QVERIFY(!(smaller > larger));
        QVERIFY(!(smaller >= larger));
        QVERIFY(!(larger < smaller));
        QVERIFY(!(larger <= smaller));
    }

    void equalsAVersionWithTheSameComponents_data()
    {
        QTest::addColumn<Version>("version");
        QTest::newRow("all zeros") << Version();
        QTest::newRow("four components") << Version(1, 2, 3, 4);
        QTest::newRow("components not given") << Version(1, 2, NotGiven, NotGiven);
    }

    void equalsAVersionWithTheSameComponents()
    {
        QFETCH(Version, version);
        Version const same(version.GetMajor(), version.GetMinor(), version.GetThird(), version.GetBuild());
        QVERIFY(version == same);
        QVERIFY(version <= same);
        QVERIFY(version >= same);
        QVERIFY(!(version != same));
        QVERIFY(!(version < same));
        QVERIFY(!(version > same));
    }

    void readsText_data()
    {
        QTest::addColumn<std::string>("text");
        QTest::addColumn<std::string>("separator");
        QTest::addColumn<Version>("version");
        auto const row = [](char const* name, std::string const& text, std::string const& separator,
                            Version const& version) { QTest::newRow(name) << text << separator << version; };
        row("four components", "3.1.2.4567", ".", Version(3, 1, 2, 4567));
        row("third and build missing", "3.1", ".", Version(3, 1, 0, 0));
        row("one component", "12", ".", Version(12));
        row("empty text", "", ".", Version());
        row("fifth component", "1.2.3.4.5", ".", Version(1, 2, 3, 4));
        row("text after the fourth component", "1.2.3.4-beta", ".", Version(1, 2, 3, 4));
        row("text after the third component", "3.1.2-beta", ".", Version(3, 1, 2, 0));
        row("text after a middle component", "3.1beta.2", ".", Version(3, 1, 0, 0));
        row("text instead of a component", "3.x", ".", Version(3));
        row("text instead of a middle component", "3.x.4", ".", Version(3));
        row("text only", "beta", ".", Version());
        row("leading separator", ".3.1", ".", Version());
        row("trailing separator", "3.1.", ".", Version(3, 1));
        row("two consecutive separators", "3..1", ".", Version(3));
        row("leading space", " 3.1", ".", Version());
        row("space before a component", "3. 1", ".", Version(3));
        row("space after a component", "3 .1", ".", Version(3));
        row("plus sign", "3.+1.2", ".", Version(3));
        row("minus sign", "3.-1.2", ".", Version(3));
        row("decimal numbers with leading zeros", "010.009.0x8", ".", Version(10, 9, 0));
        row("largest component", "4294967295.4294967294", ".", Version(NotGiven, 4294967294));
        row("component beyond 32 bits", "3.4294967296.5", ".", Version(3));
        row("component beyond 64 bits", "3.99999999999999999999999.5", ".", Version(3));
        row("first component beyond 32 bits", "4294967296.1", ".", Version());
        row("NUL character", std::string("3\0.1", 4), ".", Version(3));
        row("other separator", "3_1_2_4", "_", Version(3, 1, 2, 4));
        row("missing separator", "3.1.2", "_", Version(3));
        row("long separator", "3 :: 1 :: 2", " :: ", Version(3, 1, 2));
        row("part of a long separator", "3::1:2", "::", Version(3, 1));
        row("separator longer than the rest", "3:", "::", Version(3));
        row("non-ASCII separator",
            "3\xC2\xB7"
            "1",
            "\xC2\xB7", Version(3, 1));
        row("NUL separator", std::string("3\0001", 3), std::string(1, '\0'), Version(3, 1));
        row("empty separator", "3.1", "", Version(3));
        row("empty separator, digits only", "31", "", Version(31));
    }

    void readsText()
    {
        QFETCH(std::string, text);
        QFETCH(std::string, separator);
        QFETCH(Version, version);
        QCOMPARE(VersionFromString(text, separator), version);
    }

    void writesText_data()
    {
        QTest::addColumn<Version>("version");
        QTest::addColumn<VersionToStringDetail>("detail");
        QTest::addColumn<std::string>("separator");
        QTest::addColumn<std::string>("text");
        auto const row = [](char const* name, Version const& version, int detail, std::string const& separator,
                            std::string const& text) {
            QTest::newRow(name) << version << static_cast<VersionToStringDetail>(detail) << separator << text;
        };
        row("major", Version(3, 1, 2, 4), 1, ".", "3");
        row("major and minor", Version(3, 1, 2, 4), 2, ".", "3.1");
        row("without build", Version(3, 1, 2, 4), 3, ".", "3.1.2");
        row("full", Version(3, 1, 2, 4), 4, ".", "3.1.2.4");
        row("all zeros", Version(), 4, ".", "0.0.0.0");
        row("zero minor", Version(3), 2, ".", "3.0");
        row("large numbers", Version(4294967294, 2147483648), 2, ".", "4294967294.2147483648");
        row("number without digit groups", Version(1234567), 1, ".", "1234567");
        row("minor not given", Version(3, NotGiven, 2, 4), 4, ".", "3");
        row("third not given", Version(3, 1, NotGiven, 4), 4, ".", "3.1");
        row("build not given", Version(3, 1, 2, NotGiven), 4, ".", "3.1.2");
        row("major not given", Version(NotGiven, 1, 2, 4), 4, ".", "");
        row("component not given beyond the detail", Version(3, 1, NotGiven, 4), 2, ".", "3.1");
        row("long separator", Version(3, 1, 2), 3, " - ", "3 - 1 - 2");
        row("empty separator", Version(3, 1, 2), 3, "", "312");
        row("detail below the enumeration", Version(3, 1, 2, 4), 0, ".", "");
        row("smallest detail", Version(3, 1, 2, 4), std::numeric_limits<int>::min(), ".", "");
        row("detail beyond the enumeration", Version(3, 1, 2, 4), 5, ".", "3.1.2.4");
        row("largest detail", Version(3, 1, 2, 4), std::numeric_limits<int>::max(), ".", "3.1.2.4");
    }

    void writesText()
    {
        QFETCH(Version, version);
        QFETCH(VersionToStringDetail, detail);
        QFETCH(std::string, separator);
        QFETCH(std::string, text);
        QCOMPARE(VersionToString(version, detail, separator), text);
    }

    void roundTripsThroughText()
    {
        Version const version(4, 0, 4294967294, 17);
        std::string const text = VersionToString(version, VersionToStringDetail::Full, "_");
        QCOMPARE(VersionFromString(text, "_"), version);
    }
};

ZQTUTIL_TEST_MAIN(VersionTest)
#include "VersionTest.moc"

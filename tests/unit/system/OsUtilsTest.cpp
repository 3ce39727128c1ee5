#include <support/TestCase.h>

#include <Util/OsUtils.h>

#include <QtTest/QtTest>

#include <string>
#include <type_traits>

static_assert(std::is_same_v<decltype(&Zelkor::Util::AppBits), std::string (*)()>);

class OsUtilsTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void appBitsAreSixtyFour() { QCOMPARE(Zelkor::Util::AppBits(), std::string("64")); }

    void appBitsMatchThePointerSize() { QCOMPARE(Zelkor::Util::AppBits(), std::to_string(sizeof(void*) * 8)); }
};

ZQTUTIL_TEST_MAIN(OsUtilsTest)
#include "OsUtilsTest.moc"

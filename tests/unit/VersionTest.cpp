#include <TestCase.h>

#include <Util/OsUtils.h>

#include <QtTest/QtTest>

class VersionTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void appBitsAreSixtyFour() { QCOMPARE(Zelkor::Util::AppBits(), std::string("64")); }
};

ZQTUTIL_TEST_MAIN(VersionTest)
#include "VersionTest.moc"

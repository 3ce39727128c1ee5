#include <TestCase.h>

#include <Util/OsUtils.h>

#include <QtTest/QtTest>

class LambdaQt4WithIntParameterTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void appBitsAreSixtyFour() { QCOMPARE(Zelkor::Util::AppBits(), std::string("64")); }
};

ZQTUTIL_TEST_MAIN(LambdaQt4WithIntParameterTest)
#include "LambdaQt4WithIntParameterTest.moc"

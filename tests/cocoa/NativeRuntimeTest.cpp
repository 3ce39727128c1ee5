// Blocks and exceptions of Objective-C++ on the test bed, which brings gcc's runtime to a Mac's behaviour.

#include "NativeRuntime.h"

#include <support/TestCase.h>

#include <QtTest/QtTest>

#include <exception>

using namespace Zelkor::Testing;

namespace
{

/// Whether what \a call throws passes a @finally on its way.
bool PassesFinally(void (*call)())
{
    bool wasFinal = false;
    try {
        PassFinally(call, wasFinal);
    } catch (...) {
        return wasFinal;
    }
    return false;
}

} // namespace

class NativeRuntimeTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void blocksAreObjects() { QCOMPARE(SumOfBlocks(10), 11 + 12 + 13); }

    void cppExceptionsAreCaught()
    {
        QCOMPARE(MeetsCppHandlers(ThrowCpp), QStringLiteral("C++"));
        QCOMPARE(MeetsObjectiveCHandlerOfAnything(ThrowCpp), QStringLiteral("any"));
        QVERIFY(PassesFinally(ThrowCpp));
    }

    void nativeExceptionsAreCaught()
    {
        QCOMPARE(MeetsCppHandlers(RaiseNSException), QStringLiteral("any"));
        QCOMPARE(MeetsObjectiveCHandlers(RaiseNSException), QStringLiteral("NSException"));
        QCOMPARE(MeetsObjectiveCHandlerOfAnything(RaiseNSException), QStringLiteral("any"));
        QVERIFY(PassesFinally(RaiseNSException));
    }

    void cppExceptionsPassHandlersOfNativeOnes()
    {
        bool isCaught = false;
        try {
            MeetsObjectiveCHandlers(ThrowCpp);
        } catch (std::exception const& exception) {
            isCaught = true;
            QCOMPARE(exception.what(), "thrown");
        }
        QVERIFY(isCaught);
    }
};

ZQTUTIL_TEST_MAIN(NativeRuntimeTest)

#include "NativeRuntimeTest.moc"

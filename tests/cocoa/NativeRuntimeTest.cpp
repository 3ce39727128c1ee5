// Tests of blocks and exceptions in Objective-C++. The test bed adapts GCC's Objective-C runtime so that it behaves
// like Apple's runtime.

#include "NativeRuntime.h"

#include <support/TestCase.h>

#include <QtTest/QtTest>

#include <exception>

using namespace Zelkor::Testing;

namespace
{

/// Returns true if \a call throws an exception and the @finally block around \a call runs.
bool RunsFinally(void (*call)())
{
    bool ranFinally = false;
    try {
        CallWithFinally(call, ranFinally);
    } catch (...) {
        return ranFinally;
    }
    return false;
}

} // namespace

class NativeRuntimeTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void blocksBehaveLikeObjects() { QCOMPARE(SumOfBlocks(10), 11 + 12 + 13); }

    void catchesCppExceptions()
    {
        QCOMPARE(CatchInCpp(ThrowCpp), Handler::StdException);
        QCOMPARE(CatchAnythingInObjectiveC(ThrowCpp), Handler::CatchAll);
        QVERIFY(RunsFinally(ThrowCpp));
    }

    void catchesNSExceptions()
    {
        QCOMPARE(CatchInCpp(RaiseNSException), Handler::CatchAll);
        QCOMPARE(CatchNSException(RaiseNSException), Handler::NSException);
        QCOMPARE(CatchAnythingInObjectiveC(RaiseNSException), Handler::CatchAll);
        QVERIFY(RunsFinally(RaiseNSException));
    }

    void doesNotCatchCppExceptionsAsNSException()
    {
        bool isCaught = false;
        try {
            CatchNSException(ThrowCpp);
        } catch (std::exception const& exception) {
            isCaught = true;
            QCOMPARE(exception.what(), "thrown");
        }
        QVERIFY(isCaught);
    }
};

ZQTUTIL_TEST_MAIN(NativeRuntimeTest)

#include "NativeRuntimeTest.moc"

#include <support/TestCase.h>

#include <Base/CallStack.h>

#include <QtTest/QtTest>

#include <future>
#include <string>
#include <thread>
#include <type_traits>

static_assert(std::is_same_v<decltype(&Zelkor::GetCallStack), std::string (*)()>);

// External linkage keeps the names of these functions in the symbol table. The empty asm statements in their
// definitions prevent tail calls, which would remove frames from the stack.
[[gnu::noinline]] std::string StackOfInnerFunction();
[[gnu::noinline]] std::string StackOfOuterFunction();
[[gnu::noinline]] std::string StackOfOutermostFunction();
[[gnu::noinline]] std::string StackOfRecursion(int depth);
[[gnu::noinline]] std::string StackOfThreadFunction();

std::string StackOfInnerFunction()
{
    std::string stack = Zelkor::GetCallStack();
    asm volatile("");
    return stack;
}

std::string StackOfOuterFunction()
{
    std::string stack = StackOfInnerFunction();
    asm volatile("");
    return stack;
}

std::string StackOfOutermostFunction()
{
    std::string stack = StackOfOuterFunction();
    asm volatile("");
    return stack;
}

std::string StackOfRecursion(int depth)
{
    std::string stack = depth > 0 ? StackOfRecursion(depth - 1) : Zelkor::GetCallStack();
    asm volatile("");
    return stack;
}

std::string StackOfThreadFunction()
{
    std::string stack = StackOfInnerFunction();
    asm volatile("");
    return stack;
}

namespace
{

QStringList LinesOf(std::string const& stack)
{
    QStringList lines = QString::fromStdString(stack).split(QLatin1Char('\n'));
    if (lines.last().isEmpty()) {
        lines.removeLast();
    }
    return lines;
}

} // namespace

class CallStackTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void startsWithTheCallingFunction()
    {
        QStringList const lines = LinesOf(StackOfInnerFunction());
        QVERIFY2(lines.first().contains(QStringLiteral("StackOfInnerFunction")), qPrintable(lines.first()));
    }

    void continuesWithTheOuterCallers()
    {
        QStringList const lines = LinesOf(StackOfOutermostFunction());
        QVERIFY(lines.size() > 3);
        QVERIFY2(lines.at(1).contains(QStringLiteral("StackOfOuterFunction")), qPrintable(lines.at(1)));
        QVERIFY2(lines.at(2).contains(QStringLiteral("StackOfOutermostFunction")), qPrintable(lines.at(2)));
    }

    void includesTheFunctionCalledByMain()
    {
        QString const stack = QString::fromStdString(StackOfInnerFunction());
        QVERIFY2(stack.contains(QStringLiteral("Zelkor::Testing::RunTests")), qPrintable(stack));
    }

    void hasOneNumberedLineForEachFrame()
    {
        QStringList const lines = LinesOf(StackOfOuterFunction());
        for (int i = 0; i < lines.size(); ++i) {
            QRegularExpression const frame(QStringLiteral("^ *%1# \\S").arg(i));
            QVERIFY2(frame.match(lines.at(i)).hasMatch(), qPrintable(lines.at(i)));
        }
    }

    void growsByOneLinePerCall()
    {
        QStringList const shallow = LinesOf(StackOfRecursion(0));
        QStringList const deep = LinesOf(StackOfRecursion(7));
        QCOMPARE(deep.size(), shallow.size() + 7);
        QCOMPARE(deep.filter(QStringLiteral("StackOfRecursion")).size(), 8);
    }

    void isNotTruncated()
    {
        QStringList const lines = LinesOf(StackOfRecursion(499));
        QCOMPARE(lines.filter(QStringLiteral("StackOfRecursion")).size(), 500);
        QVERIFY(!lines.filter(QStringLiteral("Zelkor::Testing::RunTests")).isEmpty());
    }

    void isPrintable()
    {
        std::string const stack = StackOfOuterFunction();
        for (char const character : stack) {
            QVERIFY(character == '\n' || static_cast<unsigned char>(character) >= ' ');
        }
    }

    void containsTheCallingThreadOnly()
    {
        std::packaged_task<std::string()> task(StackOfThreadFunction);
        std::future<std::string> result = task.get_future();
        std::thread(std::move(task)).join();
        QString const stack = QString::fromStdString(result.get());
        QVERIFY2(stack.contains(QStringLiteral("StackOfThreadFunction")), qPrintable(stack));
        QVERIFY2(!stack.contains(QStringLiteral("Zelkor::Testing::RunTests")), qPrintable(stack));
    }
};

ZQTUTIL_TEST_MAIN(CallStackTest)
#include "CallStackTest.moc"

#include <support/TestCase.h>

#include <Base/AddStack.h>

#include <QtTest/QtTest>

#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

namespace
{

template <class E>
constexpr bool KeepsItsType = std::is_same_v<decltype(Zelkor::AddStack(std::declval<E const&>())), E>;

class CustomLogicError : public std::invalid_argument
{
public:
    using std::invalid_argument::invalid_argument;
};

class CustomRuntimeError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

static_assert(KeepsItsType<std::logic_error> && KeepsItsType<std::invalid_argument>);
static_assert(KeepsItsType<std::runtime_error> && KeepsItsType<std::range_error>);
static_assert(KeepsItsType<CustomLogicError> && KeepsItsType<CustomRuntimeError>);
static_assert(!noexcept(Zelkor::AddStack(std::logic_error(std::string()))));

template <class E>
std::string TextWithStack(std::string const& message)
{
    E const extended = Zelkor::AddStack(E(message));
    return extended.what();
}

std::string TextOfThrown(std::string const& message)
{
    try {
        throw Zelkor::AddStack(CustomLogicError(message));
    } catch (CustomLogicError const& error) {
        return error.what();
    }
}

} // namespace

// External linkage keeps the names of these functions in the symbol table.
[[gnu::noinline]] std::logic_error ExtendInNamedFunction(std::logic_error const& error);
[[gnu::noinline]] std::pair<std::string, std::string> TextAndStackOfNamedFunction();

std::logic_error ExtendInNamedFunction(std::logic_error const& error)
{
    std::logic_error extended = Zelkor::AddStack(error);
    asm volatile(""); // prevents a tail call, which would remove the frame of this function from the stack
    return extended;
}

std::pair<std::string, std::string> TextAndStackOfNamedFunction()
{
    std::string text = Zelkor::AddStack(std::logic_error("message")).what();
    std::string stack = Zelkor::GetCallStack();
    return {std::move(text), std::move(stack)};
}

namespace
{

/// Returns the lines of the call stack \a text that follow the line for TextAndStackOfNamedFunction(). Removes the
/// frame numbers from these lines.
QStringList OuterFrames(std::string const& text)
{
    QStringList lines = QString::fromStdString(text).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QString const own = lines.filter(QStringLiteral("TextAndStackOfNamedFunction")).value(0);
    return lines.mid(lines.indexOf(own) + 1)
        .replaceInStrings(QRegularExpression(QStringLiteral("^ *\\d+#")), QString());
}

} // namespace

using MakeText = std::string (*)(std::string const& message);
Q_DECLARE_METATYPE(MakeText)
Q_DECLARE_METATYPE(std::string)

class AddStackTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void appendsTheCallStackToEveryType_data()
    {
        QTest::addColumn<MakeText>("makeText");
        QTest::newRow("std::logic_error") << &TextWithStack<std::logic_error>;
        QTest::newRow("std::invalid_argument") << &TextWithStack<std::invalid_argument>;
        QTest::newRow("std::domain_error") << &TextWithStack<std::domain_error>;
        QTest::newRow("std::length_error") << &TextWithStack<std::length_error>;
        QTest::newRow("std::out_of_range") << &TextWithStack<std::out_of_range>;
        QTest::newRow("std::runtime_error") << &TextWithStack<std::runtime_error>;
        QTest::newRow("std::range_error") << &TextWithStack<std::range_error>;
        QTest::newRow("std::overflow_error") << &TextWithStack<std::overflow_error>;
        QTest::newRow("std::underflow_error") << &TextWithStack<std::underflow_error>;
        QTest::newRow("derived from std::invalid_argument") << &TextWithStack<CustomLogicError>;
        QTest::newRow("derived from std::runtime_error") << &TextWithStack<CustomRuntimeError>;
        QTest::newRow("thrown and caught") << &TextOfThrown;
    }

    void appendsTheCallStackToEveryType()
    {
        QFETCH(MakeText, makeText);
        std::string const message = "Something failed";
        std::string const text = makeText(message);

        QCOMPARE(text.substr(0, message.size() + 1), message + "\n");
        std::string const stack = text.substr(message.size() + 1);
        QVERIFY(!stack.empty());
        QVERIFY2(stack.find("Zelkor::Testing::RunTests") != std::string::npos, text.c_str());
    }

    void appendsCallStackNamingTheCaller()
    {
        std::string const text = ExtendInNamedFunction(std::logic_error("message")).what();
        QVERIFY2(text.find("ExtendInNamedFunction") != std::string::npos, text.c_str());
    }

    void appendsTheResultOfGetCallStack()
    {
        auto const [text, stack] = TextAndStackOfNamedFunction();
        QStringList const frames = OuterFrames(text);
        QVERIFY2(frames.size() > 3, text.c_str());
        QCOMPARE(frames, OuterFrames(stack));
        QCOMPARE(text.back(), stack.back());
    }

    void keepsTheMessageUnchanged_data()
    {
        QTest::addColumn<std::string>("message");
        QTest::newRow("empty") << std::string();
        QTest::newRow("several lines") << std::string("first\nsecond\n");
        QTest::newRow("format characters") << std::string("100% %1 {0}");
        QTest::newRow("UTF-8") << std::string("\xC3\xA4\xE2\x82\xAC");
    }

    void keepsTheMessageUnchanged()
    {
        QFETCH(std::string, message);
        std::string const text = Zelkor::AddStack(std::runtime_error(message)).what();
        QVERIFY(text.size() > message.size() + 1);
        QCOMPARE(text.substr(0, message.size() + 1), message + "\n");
    }

    void doesNotModifyItsArgument()
    {
        std::invalid_argument const given("message");
        std::invalid_argument const extended = Zelkor::AddStack(given);
        QCOMPARE(given.what(), "message");
        QVERIFY(std::string(extended.what()) != given.what());
    }

    void appendsAnotherStackToAnExtendedException()
    {
        std::logic_error const once = Zelkor::AddStack(std::logic_error("message"));
        std::string const first = once.what();
        std::string const twice = Zelkor::AddStack(once).what();
        QCOMPARE(twice.substr(0, first.size() + 1), first + "\n");
        QVERIFY(twice.size() > first.size() + 1);
    }
};

ZQTUTIL_TEST_MAIN(AddStackTest)
#include "AddStackTest.moc"

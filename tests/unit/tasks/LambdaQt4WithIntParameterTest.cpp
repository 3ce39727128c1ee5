#include <support/ProgrammingError.h>
#include <support/TestCase.h>
#include <support/Timeouts.h>

#include <Util/LambdaQt4WithIntParameter.h>

#include <QtCore/QMetaMethod>
#include <QtCore/QPointer>
#include <QtTest/QtTest>

#include <functional>
#include <future>
#include <limits>
#include <memory>
#include <stdexcept>
#include <tuple>
#include <type_traits>
#include <vector>

using Zelkor::Testing::Timeout;
using Zelkor::Util::LambdaQt4WithIntParameter;

using Function = std::function<void(QObject*, int)>;

static_assert(std::is_base_of_v<QObject, LambdaQt4WithIntParameter>);
static_assert(std::has_virtual_destructor_v<LambdaQt4WithIntParameter> && !std::is_final_v<LambdaQt4WithIntParameter>);
static_assert(!std::is_copy_constructible_v<LambdaQt4WithIntParameter> &&
              !std::is_copy_assignable_v<LambdaQt4WithIntParameter>);
static_assert(!std::is_move_constructible_v<LambdaQt4WithIntParameter> &&
              !std::is_move_assignable_v<LambdaQt4WithIntParameter>);
static_assert(std::is_constructible_v<LambdaQt4WithIntParameter, Function> &&
              std::is_constructible_v<LambdaQt4WithIntParameter, Function, QObject*>);
static_assert(!std::is_default_constructible_v<LambdaQt4WithIntParameter> &&
              !std::is_convertible_v<Function, LambdaQt4WithIntParameter>);
static_assert(sizeof(LambdaQt4WithIntParameter) == sizeof(QObject) + sizeof(Function));
static_assert(std::is_same_v<decltype(&LambdaQt4WithIntParameter::execute), void (LambdaQt4WithIntParameter::*)(int)>);

/// Object with a signal that the tests emit.
class Sender : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void Changed(int);
};

namespace
{

struct FunctionError
{};

using Calls = std::vector<std::pair<QObject*, int>>;

Function AppendTo(Calls& calls)
{
    return [&calls](QObject* sender, int value) { calls.emplace_back(sender, value); };
}

bool Connect(Sender const& sender, LambdaQt4WithIntParameter const& lambda)
{
    return QObject::connect(&sender, SIGNAL(Changed(int)), &lambda, SLOT(execute(int)));
}

/// Checks that \a call throws the exception that LambdaQt4WithIntParameter::execute() throws for an empty function.
template <class Call>
void VerifyThrowsMissingFunction(Call const& call)
{
    auto const error = Zelkor::Testing::CatchProgrammingError<std::logic_error>(call);
    QCOMPARE(error.message, QStringLiteral("LambdaQt4WithIntParameter use without functor!"));
    QVERIFY2(error.callStack.contains(QStringLiteral("LambdaQt4WithIntParameter::execute")),
             qPrintable(error.callStack));
    QCOMPARE(error.file, QStringLiteral("Util/LambdaQt4WithIntParameter.cpp"));
    QCOMPARE(error.function, QStringLiteral("void Zelkor::Util::LambdaQt4WithIntParameter::execute(int)"));
    QVERIFY(error.line > 0);
}

} // namespace

class LambdaQt4WithIntParameterTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void hasItsNameAndBase()
    {
        QMetaObject const& metaObject = LambdaQt4WithIntParameter::staticMetaObject;
        QCOMPARE(metaObject.className(), "Zelkor::Util::LambdaQt4WithIntParameter");
        QVERIFY(metaObject.superClass() == &QObject::staticMetaObject);
        QCOMPARE(metaObject.propertyCount(), metaObject.propertyOffset());
    }

    void hasOnlyOnePublicSlot()
    {
        QMetaObject const& metaObject = LambdaQt4WithIntParameter::staticMetaObject;
        QCOMPARE(metaObject.methodCount(), metaObject.methodOffset() + 1);
        QMetaMethod const slot = metaObject.method(metaObject.methodOffset());
        QCOMPARE(slot.methodSignature(), QByteArray("execute(int)"));
        QCOMPARE(slot.parameterNames(), QList<QByteArray>{"inputParam"});
        QCOMPARE(slot.methodType(), QMetaMethod::Slot);
        QCOMPARE(slot.access(), QMetaMethod::Public);
        QCOMPARE(slot.returnType(), static_cast<int>(QMetaType::Void));
    }

    void callsTheFunctionWithTheSenderAndTheNumber_data()
    {
        QTest::addColumn<int>("value");
        QTest::newRow("0") << 0;
        QTest::newRow("1") << 1;
        QTest::newRow("-1") << -1;
        QTest::newRow("maximum") << std::numeric_limits<int>::max();
        QTest::newRow("minimum") << std::numeric_limits<int>::min();
    }

    void callsTheFunctionWithTheSenderAndTheNumber()
    {
        QFETCH(int, value);
        Sender sender;
        Calls calls;
        LambdaQt4WithIntParameter lambda(AppendTo(calls));
        QVERIFY(Connect(sender, lambda));
        QVERIFY(calls.empty());
        Q_EMIT sender.Changed(value);
        lambda.execute(value);
        QCOMPARE(calls, (Calls{{&sender, value}, {nullptr, value}}));
    }

    void passesTheSenderOfEachSignal()
    {
        Sender first;
        Sender second;
        Calls calls;
        LambdaQt4WithIntParameter const lambda(AppendTo(calls));
        QVERIFY(Connect(first, lambda));
        QVERIFY(Connect(second, lambda));
        Q_EMIT second.Changed(2);
        Q_EMIT first.Changed(1);
        QCOMPARE(calls, (Calls{{&second, 2}, {&first, 1}}));
    }

    void runsOnTheThreadOfTheObjectWhenQueued()
    {
        Sender sender;
        std::promise<std::tuple<QObject*, int, QThread*>> promise;
        auto result = promise.get_future();
        auto const lambda = std::make_unique<LambdaQt4WithIntParameter>([&promise](QObject* from, int value) {
            promise.set_value({from, value, QThread::currentThread()});
        });
        QVERIFY(Connect(sender, *lambda));
        QThread thread;
        lambda->moveToThread(&thread);
        thread.start();
        Q_EMIT sender.Changed(42);
        bool const isReady = result.wait_for(Timeout) == std::future_status::ready;
        thread.quit();
        QVERIFY(thread.wait(QDeadlineTimer(Timeout)));
        QVERIFY(isReady);
        QVERIFY(result.get() == std::tuple(&sender, 42, &thread));
    }

    void throwsWithoutFunction()
    {
        LambdaQt4WithIntParameter lambda{Function()};
        VerifyThrowsMissingFunction([&lambda] { lambda.execute(1); });
    }

    void throwsWithoutFunctionWhenASignalIsEmitted()
    {
        Sender sender;
        LambdaQt4WithIntParameter const lambda{Function()};
        QVERIFY(Connect(sender, lambda));
        VerifyThrowsMissingFunction([&sender] { Q_EMIT sender.Changed(1); });
    }

    void propagatesAnExceptionOfTheFunction()
    {
        LambdaQt4WithIntParameter lambda([](QObject*, int) { throw FunctionError(); });
        QVERIFY_EXCEPTION_THROWN(lambda.execute(1), FunctionError);
        QVERIFY_EXCEPTION_THROWN(lambda.execute(1), FunctionError);
    }

    void hasNoParentUnlessGiven()
    {
        QCOMPARE(LambdaQt4WithIntParameter([](QObject*, int) {}).parent(), nullptr);
    }

    void isOwnedByItsParent()
    {
        auto parent = std::make_unique<QObject>();
        QPointer<LambdaQt4WithIntParameter> const lambda(
            new LambdaQt4WithIntParameter([](QObject*, int) {}, parent.get()));
        QCOMPARE(lambda->parent(), parent.get());
        parent.reset();
        QVERIFY(lambda.isNull());
    }

    void doesNotCallTheFunctionWhenConstructedOrDestroyed()
    {
        Calls calls;
        {
            LambdaQt4WithIntParameter const lambda(AppendTo(calls));
        }
        QVERIFY(calls.empty());
    }

    void destroysTheFunctionBeforeTheObject()
    {
        auto resource = std::make_shared<int>(0);
        std::weak_ptr<int> const watched = resource;
        auto lambda = std::make_unique<LambdaQt4WithIntParameter>([resource](QObject*, int) {});
        bool isFunctionDestroyed = false;
        QObject::connect(lambda.get(), &QObject::destroyed, this, [&] { isFunctionDestroyed = watched.expired(); });
        resource.reset();
        QVERIFY(!watched.expired());
        lambda.reset();
        QVERIFY(isFunctionDestroyed);
    }
};

ZQTUTIL_TEST_MAIN(LambdaQt4WithIntParameterTest)
#include "LambdaQt4WithIntParameterTest.moc"

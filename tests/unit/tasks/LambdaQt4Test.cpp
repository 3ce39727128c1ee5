#include <support/ProgrammingError.h>
#include <support/TestCase.h>

#include <Util/LambdaQt4.h>

#include <QtCore/QMetaMethod>
#include <QtCore/QPointer>
#include <QtTest/QtTest>
#include <QtWidgets/QPushButton>

#include <chrono>
#include <cstddef>
#include <functional>
#include <future>
#include <memory>
#include <stdexcept>
#include <type_traits>
#include <utility>

using Zelkor::Util::LambdaQt4;
using Zelkor::Util::OneTimeExecutor;

using Function = std::function<void(QObject*)>;

template <class Lambda>
constexpr bool IsPlainQObjectClass =
    std::is_base_of_v<QObject, Lambda>&& std::is_polymorphic_v<Lambda>&& std::has_virtual_destructor_v<Lambda> &&
    !std::is_final_v<Lambda> && !std::is_copy_constructible_v<Lambda> && !std::is_copy_assignable_v<Lambda> &&
    !std::is_move_constructible_v<Lambda> && !std::is_move_assignable_v<Lambda>;

template <class Lambda>
constexpr bool IsMadeOfFunctionAndOptionalParent =
    std::is_constructible_v<Lambda, Function>&& std::is_constructible_v<Lambda, Function, QObject*> &&
    !std::is_default_constructible_v<Lambda> && !std::is_convertible_v<Function, Lambda>;

static_assert(IsPlainQObjectClass<LambdaQt4> && IsPlainQObjectClass<OneTimeExecutor>);
static_assert(IsMadeOfFunctionAndOptionalParent<LambdaQt4> && IsMadeOfFunctionAndOptionalParent<OneTimeExecutor>);
static_assert(std::is_convertible_v<OneTimeExecutor*, LambdaQt4*>);
static_assert(sizeof(LambdaQt4) == sizeof(QObject) + sizeof(Function));
static_assert(sizeof(OneTimeExecutor) == sizeof(LambdaQt4));
static_assert(std::is_same_v<decltype(&LambdaQt4::execute), void (LambdaQt4::*)()>);

Q_DECLARE_METATYPE(QMetaObject const*)

/// Sends the signals that the tests want.
class Sender : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void Happened();
};

namespace
{

constexpr auto Patience = std::chrono::seconds(10);

struct CannotRun
{};

/// Logs its end.
class Witness
{
public:
    Witness(QStringList& log, QString text)
        : log_(log)
        , text_(std::move(text))
    {}
    ~Witness() { log_ += text_; }
    Q_DISABLE_COPY_MOVE(Witness)

private:
    QStringList& log_;
    QString text_;
};

/// An executor that takes the place of the one before, and logs its end.
class PlacedExecutor : public OneTimeExecutor
{
public:
    PlacedExecutor(QStringList& log, QString text, Function function)
        : OneTimeExecutor(std::move(function))
        , end_(log, std::move(text))
    {}

    static void* operator new(std::size_t)
    {
        alignas(std::max_align_t) static unsigned char place[sizeof(PlacedExecutor)];
        return place;
    }
    static void operator delete(void*) {}

private:
    Witness end_;
};

bool ConnectToExecute(Sender const& sender, LambdaQt4 const& lambda)
{
    return QObject::connect(&sender, SIGNAL(Happened()), &lambda, SLOT(execute()));
}

bool ConnectToExecuteOnce(Sender const& sender, OneTimeExecutor const& executor)
{
    return QObject::connect(&sender, SIGNAL(Happened()), &executor, SLOT(executeOnce()));
}

/// What a program that has no signal at hand would do.
void ExecuteOnce(OneTimeExecutor* executor)
{
    QVERIFY(QMetaObject::invokeMethod(executor, "executeOnce", Qt::DirectConnection));
}

/// Checks what applications see of the complaint about a missing function.
template <class Call>
void VerifyComplaint(Call const& call)
{
    auto const error = Zelkor::Testing::CatchProgrammingError<std::logic_error>(call);
    QCOMPARE(error.message, QStringLiteral("LambdaQt4 use without functor!"));
    QVERIFY2(error.callStack.contains(QStringLiteral("LambdaQt4::execute")), qPrintable(error.callStack));
    QCOMPARE(error.file, QStringLiteral("Util/LambdaQt4.cpp"));
    QCOMPARE(error.function, QStringLiteral("void Zelkor::Util::LambdaQt4::execute()"));
    QVERIFY(error.line > 0);
}

} // namespace

class LambdaQt4Test : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void hasItsNameAndBase_data()
    {
        QTest::addColumn<QMetaObject const*>("metaObject");
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QMetaObject const*>("base");
        QTest::newRow("LambdaQt4") << &LambdaQt4::staticMetaObject << QByteArray("Zelkor::Util::LambdaQt4")
                                   << &QObject::staticMetaObject;
        QTest::newRow("OneTimeExecutor") << &OneTimeExecutor::staticMetaObject
                                         << QByteArray("Zelkor::Util::OneTimeExecutor") << &LambdaQt4::staticMetaObject;
    }

    void hasItsNameAndBase()
    {
        QFETCH(QMetaObject const*, metaObject);
        QFETCH(QByteArray, name);
        QFETCH(QMetaObject const*, base);
        QCOMPARE(QByteArray(metaObject->className()), name);
        QVERIFY(metaObject->superClass() == base);
        QCOMPARE(metaObject->propertyCount(), metaObject->propertyOffset());
    }

    void hasOneSlotOnly_data()
    {
        QTest::addColumn<QMetaObject const*>("metaObject");
        QTest::addColumn<QByteArray>("signature");
        QTest::addColumn<int>("access");
        QTest::newRow("LambdaQt4") << &LambdaQt4::staticMetaObject << QByteArray("execute()")
                                   << static_cast<int>(QMetaMethod::Public);
        QTest::newRow("OneTimeExecutor") << &OneTimeExecutor::staticMetaObject << QByteArray("executeOnce()")
                                         << static_cast<int>(QMetaMethod::Private);
    }

    void hasOneSlotOnly()
    {
        QFETCH(QMetaObject const*, metaObject);
        QFETCH(QByteArray, signature);
        QFETCH(int, access);
        QCOMPARE(metaObject->methodCount(), metaObject->methodOffset() + 1);
        QMetaMethod const slot = metaObject->method(metaObject->methodOffset());
        QCOMPARE(slot.methodSignature(), signature);
        QCOMPARE(slot.methodType(), QMetaMethod::Slot);
        QCOMPARE(static_cast<int>(slot.access()), access);
        QCOMPARE(slot.returnType(), static_cast<int>(QMetaType::Void));
    }

    void callsTheFunctionWithTheButtonThatWasClicked()
    {
        QPushButton button;
        QObjectList senders;
        LambdaQt4 const lambda([&senders](QObject* sender) { senders += sender; });
        QVERIFY(QObject::connect(&button, SIGNAL(clicked()), &lambda, SLOT(execute())));
        QVERIFY(senders.isEmpty());
        button.click();
        button.click();
        QCOMPARE(senders, (QObjectList{&button, &button}));
    }

    void tellsItsSendersApart()
    {
        Sender first;
        Sender second;
        QObjectList senders;
        LambdaQt4 const lambda([&senders](QObject* sender) { senders += sender; });
        QVERIFY(ConnectToExecute(first, lambda));
        QVERIFY(ConnectToExecute(second, lambda));
        Q_EMIT second.Happened();
        Q_EMIT first.Happened();
        QCOMPARE(senders, (QObjectList{&second, &first}));
    }

    void callsTheFunctionWithNullWhenCalledDirectly()
    {
        Sender other;
        QObjectList senders;
        LambdaQt4 lambda([&senders](QObject* sender) { senders += sender; });
        lambda.execute();
        // Inside somebody else's slot it is a direct call still.
        LambdaQt4 const outer([&lambda](QObject*) { lambda.execute(); });
        QVERIFY(ConnectToExecute(other, outer));
        Q_EMIT other.Happened();
        QCOMPARE(senders, (QObjectList{nullptr, nullptr}));
    }

    void runsInTheThreadOfTheObjectWhenQueued()
    {
        Sender sender;
        std::promise<std::pair<QObject*, QThread*>> promise;
        auto result = promise.get_future();
        auto const lambda = std::make_unique<LambdaQt4>([&promise](QObject* from) {
            promise.set_value({from, QThread::currentThread()});
        });
        QVERIFY(ConnectToExecute(sender, *lambda));
        QThread thread;
        lambda->moveToThread(&thread);
        thread.start();
        Q_EMIT sender.Happened();
        bool const isReady = result.wait_for(Patience) == std::future_status::ready;
        thread.quit();
        QVERIFY(thread.wait(QDeadlineTimer(Patience)));
        QVERIFY(isReady);
        auto const [from, ranIn] = result.get();
        QCOMPARE(from, &sender);
        QCOMPARE(ranIn, &thread);
    }

    void throwsWithoutFunction()
    {
        LambdaQt4 lambda{Function()};
        VerifyComplaint([&lambda] { lambda.execute(); });
    }

    void throwsWithoutFunctionThroughTheSignal()
    {
        Sender sender;
        LambdaQt4 const lambda{Function()};
        QVERIFY(ConnectToExecute(sender, lambda));
        VerifyComplaint([&sender] { Q_EMIT sender.Happened(); });
    }

    void passesOnWhatTheFunctionThrows()
    {
        LambdaQt4 lambda([](QObject*) { throw CannotRun(); });
        QVERIFY_EXCEPTION_THROWN(lambda.execute(), CannotRun);
        QVERIFY_EXCEPTION_THROWN(lambda.execute(), CannotRun);
    }

    void hasNoParentUnlessGiven()
    {
        QCOMPARE(LambdaQt4([](QObject*) {}).parent(), nullptr);
        QCOMPARE(OneTimeExecutor([](QObject*) {}).parent(), nullptr);
    }

    void isOwnedByItsParent()
    {
        auto parent = std::make_unique<QObject>();
        QPointer<LambdaQt4> const lambda(new LambdaQt4([](QObject*) {}, parent.get()));
        QPointer<OneTimeExecutor> const executor(new OneTimeExecutor([](QObject*) {}, parent.get()));
        QCOMPARE(lambda->parent(), parent.get());
        QCOMPARE(executor->parent(), parent.get());
        parent.reset();
        QVERIFY(lambda.isNull());
        QVERIFY(executor.isNull());
    }

    void doesNotRunWhenMadeOrDestroyed()
    {
        int runs = 0;
        {
            LambdaQt4 const lambda([&runs](QObject*) { ++runs; });
            OneTimeExecutor const executor([&runs](QObject*) { ++runs; });
        }
        QCOMPARE(runs, 0);
    }

    void destroysTheFunctionBeforeTheObject()
    {
        QStringList log;
        auto witness = std::make_shared<Witness>(log, QStringLiteral("function"));
        auto lambda = std::make_unique<LambdaQt4>([witness](QObject*) {});
        QObject::connect(lambda.get(), &QObject::destroyed, this, [&log] { log += QStringLiteral("object"); });
        witness.reset();
        QVERIFY(log.isEmpty());
        lambda.reset();
        QCOMPARE(log, (QStringList{QStringLiteral("function"), QStringLiteral("object")}));
    }

    void oneTimeExecutorRunsOnceAndIsGone()
    {
        Sender sender;
        QObjectList senders;
        QPointer<OneTimeExecutor> const executor(new OneTimeExecutor([&senders](QObject* from) { senders += from; }));
        QVERIFY(ConnectToExecuteOnce(sender, *executor));
        Q_EMIT sender.Happened();
        QVERIFY(executor.isNull());
        Q_EMIT sender.Happened();
        QCOMPARE(senders, (QObjectList{&sender}));
    }

    void oneTimeExecutorTakesItsConnectionsAlong()
    {
        Sender sender;
        auto* const executor = new OneTimeExecutor([](QObject*) {});
        QMetaObject::Connection const connection =
            QObject::connect(&sender, SIGNAL(Happened()), executor, SLOT(executeOnce()));
        QVERIFY(connection);
        Q_EMIT sender.Happened();
        QVERIFY(!connection);
        QVERIFY(!QObject::disconnect(connection));
    }

    void oneTimeExecutorIsConnectedToTheRepeatingTimerOnceOnly()
    {
        QTimer timer;
        int ticks = 0;
        int runs = 0;
        QObject::connect(&timer, &QTimer::timeout, this, [&ticks] { ++ticks; });
        QPointer<OneTimeExecutor> const executor(new OneTimeExecutor([&runs](QObject*) { ++runs; }));
        QVERIFY(QObject::connect(&timer, SIGNAL(timeout()), executor, SLOT(executeOnce())));
        timer.start(0);
        QTRY_VERIFY(ticks >= 5);
        QCOMPARE(runs, 1);
        QVERIFY(executor.isNull());
    }

    void oneTimeExecutorGivesNullWhenCalledDirectly()
    {
        QObjectList senders;
        QPointer<OneTimeExecutor> const executor(new OneTimeExecutor([&senders](QObject* from) { senders += from; }));
        ExecuteOnce(executor);
        QVERIFY(executor.isNull());
        QCOMPARE(senders, (QObjectList{nullptr}));
    }

    void oneTimeExecutorIsThereWhileTheFunctionRuns()
    {
        QPointer<OneTimeExecutor> executor;
        bool wasThere = false;
        executor = new OneTimeExecutor([&](QObject*) { wasThere = !executor.isNull(); });
        ExecuteOnce(executor);
        QVERIFY(wasThere);
        QVERIFY(executor.isNull());
    }

    void oneTimeExecutorDestroysItsFunction()
    {
        auto resource = std::make_shared<int>(0);
        std::weak_ptr<int> const watched = resource;
        ExecuteOnce(new OneTimeExecutor([resource = std::move(resource)](QObject*) {}));
        QVERIFY(watched.expired());
    }

    void oneTimeExecutorLeavesItsParent()
    {
        QObject parent;
        ExecuteOnce(new OneTimeExecutor([](QObject*) {}, &parent));
        QVERIFY(parent.children().isEmpty());
    }

    void oneTimeExecutorSurvivesTheInheritedSlot()
    {
        int runs = 0;
        Sender sender;
        QPointer<OneTimeExecutor> const executor(new OneTimeExecutor([&runs](QObject*) { ++runs; }));
        QVERIFY(ConnectToExecute(sender, *executor));
        Q_EMIT sender.Happened();
        Q_EMIT sender.Happened();
        QVERIFY(!executor.isNull());
        QCOMPARE(runs, 2);
        ExecuteOnce(executor);
        QVERIFY(executor.isNull());
        QCOMPARE(runs, 3);
    }

    void oneTimeExecutorSurvivesAMissingFunction()
    {
        Sender sender;
        auto const executor = std::make_unique<OneTimeExecutor>(Function());
        QPointer<OneTimeExecutor> const watched(executor.get());
        QVERIFY(ConnectToExecuteOnce(sender, *executor));
        VerifyComplaint([&sender] { Q_EMIT sender.Happened(); });
        QVERIFY(!watched.isNull());
        VerifyComplaint([&sender] { Q_EMIT sender.Happened(); });
        QVERIFY(!watched.isNull());
    }

    void oneTimeExecutorSurvivesAThrowAndRunsAgain()
    {
        Sender sender;
        int runs = 0;
        QPointer<OneTimeExecutor> const executor(new OneTimeExecutor([&runs](QObject*) {
            if (++runs < 3) {
                throw CannotRun();
            }
        }));
        QVERIFY(ConnectToExecuteOnce(sender, *executor));
        QVERIFY_EXCEPTION_THROWN(Q_EMIT sender.Happened(), CannotRun);
        QVERIFY(!executor.isNull());
        QVERIFY_EXCEPTION_THROWN(Q_EMIT sender.Happened(), CannotRun);
        QVERIFY(!executor.isNull());
        Q_EMIT sender.Happened();
        QVERIFY(executor.isNull());
        QCOMPARE(runs, 3);
    }

    void oneTimeExecutorIgnoresASignalWhileItRuns()
    {
        Sender sender;
        int runs = 0;
        QPointer<OneTimeExecutor> executor;
        bool wasThereAfterwards = false;
        executor = new OneTimeExecutor([&](QObject*) {
            if (++runs == 1) {
                Q_EMIT sender.Happened();
                wasThereAfterwards = !executor.isNull();
            }
        });
        QVERIFY(ConnectToExecuteOnce(sender, *executor));
        Q_EMIT sender.Happened();
        QCOMPARE(runs, 1);
        QVERIFY(wasThereAfterwards);
        QVERIFY(executor.isNull());
    }

    void oneTimeExecutorIgnoresASignalOfANestedEventLoop()
    {
        Sender sender;
        int runs = 0;
        QPointer<OneTimeExecutor> const executor(new OneTimeExecutor([&runs](QObject*) {
            ++runs;
            QCoreApplication::sendPostedEvents();
        }));
        QVERIFY(QObject::connect(&sender, SIGNAL(Happened()), executor, SLOT(executeOnce()), Qt::QueuedConnection));
        Q_EMIT sender.Happened();
        Q_EMIT sender.Happened();
        QCoreApplication::sendPostedEvents();
        QCOMPARE(runs, 1);
        QVERIFY(executor.isNull());
    }

    void oneTimeExecutorMayBeDestroyedByItsFunction()
    {
        Sender sender;
        QPointer<OneTimeExecutor> executor;
        int runs = 0;
        executor = new OneTimeExecutor([&executor, &runs](QObject*) {
            ++runs;
            delete executor.data();
        });
        QVERIFY(ConnectToExecuteOnce(sender, *executor));
        Q_EMIT sender.Happened();
        QVERIFY(executor.isNull());
        Q_EMIT sender.Happened();
        QCOMPARE(runs, 1);
    }

    void oneTimeExecutorMayBeDestroyedByAFunctionThatThrows()
    {
        QPointer<OneTimeExecutor> executor;
        executor = new OneTimeExecutor([&executor](QObject*) {
            delete executor.data();
            throw CannotRun();
        });
        QVERIFY_EXCEPTION_THROWN(ExecuteOnce(executor), CannotRun);
        QVERIFY(executor.isNull());
    }

    void oneTimeExecutorIsDestroyedAsTheClassThatItIs()
    {
        QStringList log;
        Sender sender;
        QPointer<OneTimeExecutor> const executor(
            new PlacedExecutor(log, QStringLiteral("destroyed"), [&log](QObject*) { log += QStringLiteral("run"); }));
        QVERIFY(ConnectToExecuteOnce(sender, *executor));
        Q_EMIT sender.Happened();
        QVERIFY(executor.isNull());
        QCOMPARE(log, (QStringList{QStringLiteral("run"), QStringLiteral("destroyed")}));
    }

    void oneTimeExecutorRunsInThePlaceOfOneWhoseFunctionRunsStill()
    {
        QStringList log;
        Sender toFirst;
        Sender toSecond;
        QPointer<OneTimeExecutor> first;
        QPointer<OneTimeExecutor> second;
        bool isAtTheSamePlace = false;
        bool isSecondGone = false;
        // Not the function itself, which goes with its executor.
        std::function<void()> const replaceFirst = [&] {
            void const* const place = first.data();
            delete first.data();
            second = new PlacedExecutor(log, QStringLiteral("second destroyed"), [&](QObject*) {
                log += QStringLiteral("second");
                Q_EMIT toSecond.Happened();
            });
            isAtTheSamePlace = second.data() == place;
            ConnectToExecuteOnce(toSecond, *second);
            Q_EMIT toFirst.Happened();
            Q_EMIT toSecond.Happened();
            isSecondGone = second.isNull();
            log += QStringLiteral("first ends");
        };
        first =
            new PlacedExecutor(log, QStringLiteral("first destroyed"), [&replaceFirst](QObject*) { replaceFirst(); });
        QVERIFY(ConnectToExecuteOnce(toFirst, *first));
        Q_EMIT toFirst.Happened();
        QVERIFY(isAtTheSamePlace);
        QVERIFY(isSecondGone);
        QCOMPARE(log, (QStringList{QStringLiteral("first destroyed"), QStringLiteral("second"),
                                   QStringLiteral("second destroyed"), QStringLiteral("first ends")}));
    }

    void oneTimeExecutorOutlivesTheOneInWhosePlaceItWasMade()
    {
        QStringList log;
        QPointer<OneTimeExecutor> first;
        QPointer<OneTimeExecutor> second;
        std::function<void()> const replaceFirst = [&] {
            delete first.data();
            second = new PlacedExecutor(log, QStringLiteral("second destroyed"),
                                        [&log](QObject*) { log += QStringLiteral("second"); });
        };
        first =
            new PlacedExecutor(log, QStringLiteral("first destroyed"), [&replaceFirst](QObject*) { replaceFirst(); });
        ExecuteOnce(first);
        QVERIFY(first.isNull());
        QVERIFY(!second.isNull());
        QCOMPARE(log, QStringList{QStringLiteral("first destroyed")});
        ExecuteOnce(second);
        QVERIFY(second.isNull());
        QCOMPARE(log, (QStringList{QStringLiteral("first destroyed"), QStringLiteral("second"),
                                   QStringLiteral("second destroyed")}));
    }

    void oneTimeExecutorRunsInsideTheFunctionOfAnother()
    {
        Sender toFirst;
        Sender toSecond;
        QStringList log;
        bool isFirstThere = false;
        bool isSecondGone = false;
        QPointer<OneTimeExecutor> const second(new OneTimeExecutor([&](QObject*) {
            log += QStringLiteral("second begins");
            Q_EMIT toFirst.Happened();
            Q_EMIT toSecond.Happened();
            log += QStringLiteral("second ends");
        }));
        QPointer<OneTimeExecutor> first;
        first = new OneTimeExecutor([&](QObject*) {
            log += QStringLiteral("first begins");
            Q_EMIT toSecond.Happened();
            isSecondGone = second.isNull();
            Q_EMIT toFirst.Happened();
            isFirstThere = !first.isNull();
            log += QStringLiteral("first ends");
        });
        QVERIFY(ConnectToExecuteOnce(toFirst, *first));
        QVERIFY(ConnectToExecuteOnce(toSecond, *second));
        Q_EMIT toFirst.Happened();
        QCOMPARE(log, (QStringList{QStringLiteral("first begins"), QStringLiteral("second begins"),
                                   QStringLiteral("second ends"), QStringLiteral("first ends")}));
        QVERIFY(isSecondGone);
        QVERIFY(isFirstThere);
        QVERIFY(first.isNull());
    }

    void oneTimeExecutorMayGoWithItsSender()
    {
        auto* const sender = new Sender;
        QPointer<OneTimeExecutor> const executor(new OneTimeExecutor([](QObject* from) { delete from; }, sender));
        QVERIFY(ConnectToExecuteOnce(*sender, *executor));
        Q_EMIT sender->Happened();
        QVERIFY(executor.isNull());
    }
};

ZQTUTIL_WIDGET_TEST_MAIN(LambdaQt4Test)
#include "LambdaQt4Test.moc"

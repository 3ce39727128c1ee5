#include <support/ProgrammingError.h>
#include <support/TestCase.h>
#include <support/Timeouts.h>

#include <Util/LambdaQt4.h>

#include <QtCore/QMetaMethod>
#include <QtCore/QPointer>
#include <QtTest/QtTest>
#include <QtWidgets/QPushButton>

#include <cstddef>
#include <functional>
#include <future>
#include <memory>
#include <stdexcept>
#include <type_traits>
#include <utility>

using Zelkor::Testing::Timeout;
using Zelkor::Util::LambdaQt4;
using Zelkor::Util::OneTimeExecutor;

using Function = std::function<void(QObject*)>;

template <class Lambda>
constexpr bool IsPlainQObjectClass =
    std::is_base_of_v<QObject, Lambda>&& std::is_polymorphic_v<Lambda>&& std::has_virtual_destructor_v<Lambda> &&
    !std::is_final_v<Lambda> && !std::is_copy_constructible_v<Lambda> && !std::is_copy_assignable_v<Lambda> &&
    !std::is_move_constructible_v<Lambda> && !std::is_move_assignable_v<Lambda>;

template <class Lambda>
constexpr bool HasConstructorWithFunctionAndOptionalParent =
    std::is_constructible_v<Lambda, Function>&& std::is_constructible_v<Lambda, Function, QObject*> &&
    !std::is_default_constructible_v<Lambda> && !std::is_convertible_v<Function, Lambda>;

static_assert(IsPlainQObjectClass<LambdaQt4> && IsPlainQObjectClass<OneTimeExecutor>);
static_assert(HasConstructorWithFunctionAndOptionalParent<LambdaQt4> &&
              HasConstructorWithFunctionAndOptionalParent<OneTimeExecutor>);
static_assert(std::is_convertible_v<OneTimeExecutor*, LambdaQt4*>);
static_assert(sizeof(LambdaQt4) == sizeof(QObject) + sizeof(Function));
static_assert(sizeof(OneTimeExecutor) == sizeof(LambdaQt4));
static_assert(std::is_same_v<decltype(&LambdaQt4::execute), void (LambdaQt4::*)()>);

Q_DECLARE_METATYPE(QMetaObject const*)

/// Object with a signal that the tests emit.
class Sender : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void Emitted();
};

namespace
{

struct FunctionError
{};

/// Object that appends a string to a log when the object is destroyed.
class DestructionLogger
{
public:
    DestructionLogger(QStringList& log, QString text)
        : log_(log)
        , text_(std::move(text))
    {}
    ~DestructionLogger() { log_ += text_; }
    Q_DISABLE_COPY_MOVE(DestructionLogger)

private:
    QStringList& log_;
    QString text_;
};

/// Executor that logs its destruction. All objects of this class have the same address, so at most one object may exist
/// at a time.
class SameAddressExecutor : public OneTimeExecutor
{
public:
    SameAddressExecutor(QStringList& log, QString text, Function function)
        : OneTimeExecutor(std::move(function))
        , destructionLogger_(log, std::move(text))
    {}

    static void* operator new(std::size_t)
    {
        alignas(std::max_align_t) static unsigned char storage[sizeof(SameAddressExecutor)];
        return storage;
    }
    static void operator delete(void*) {}

private:
    DestructionLogger destructionLogger_;
};

bool ConnectToExecute(Sender const& sender, LambdaQt4 const& lambda)
{
    return QObject::connect(&sender, SIGNAL(Emitted()), &lambda, SLOT(execute()));
}

bool ConnectToExecuteOnce(Sender const& sender, OneTimeExecutor const& executor)
{
    return QObject::connect(&sender, SIGNAL(Emitted()), &executor, SLOT(executeOnce()));
}

/// Calls the private slot executeOnce() of \a executor directly.
void ExecuteOnce(OneTimeExecutor* executor)
{
    QVERIFY(QMetaObject::invokeMethod(executor, "executeOnce", Qt::DirectConnection));
}

/// Checks that \a call throws the exception that LambdaQt4::execute() throws for an empty function.
template <class Call>
void VerifyThrowsMissingFunction(Call const& call)
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

    void hasOnlyOneSlot_data()
    {
        QTest::addColumn<QMetaObject const*>("metaObject");
        QTest::addColumn<QByteArray>("signature");
        QTest::addColumn<int>("access");
        QTest::newRow("LambdaQt4") << &LambdaQt4::staticMetaObject << QByteArray("execute()")
                                   << static_cast<int>(QMetaMethod::Public);
        QTest::newRow("OneTimeExecutor") << &OneTimeExecutor::staticMetaObject << QByteArray("executeOnce()")
                                         << static_cast<int>(QMetaMethod::Private);
    }

    void hasOnlyOneSlot()
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

    void callsTheFunctionWithTheClickedButton()
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

    void passesTheSenderOfEachSignal()
    {
        Sender first;
        Sender second;
        QObjectList senders;
        LambdaQt4 const lambda([&senders](QObject* sender) { senders += sender; });
        QVERIFY(ConnectToExecute(first, lambda));
        QVERIFY(ConnectToExecute(second, lambda));
        Q_EMIT second.Emitted();
        Q_EMIT first.Emitted();
        QCOMPARE(senders, (QObjectList{&second, &first}));
    }

    void callsTheFunctionWithNullWhenCalledDirectly()
    {
        Sender other;
        QObjectList senders;
        LambdaQt4 lambda([&senders](QObject* sender) { senders += sender; });
        lambda.execute();
        // A signal of `other` calls `outer`, whose function calls lambda.execute() directly. The function of `lambda`
        // must receive null, not `other`.
        LambdaQt4 const outer([&lambda](QObject*) { lambda.execute(); });
        QVERIFY(ConnectToExecute(other, outer));
        Q_EMIT other.Emitted();
        QCOMPARE(senders, (QObjectList{nullptr, nullptr}));
    }

    void runsOnTheThreadOfTheObjectWhenQueued()
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
        Q_EMIT sender.Emitted();
        bool const isReady = result.wait_for(Timeout) == std::future_status::ready;
        thread.quit();
        QVERIFY(thread.wait(QDeadlineTimer(Timeout)));
        QVERIFY(isReady);
        auto const [from, ranIn] = result.get();
        QCOMPARE(from, &sender);
        QCOMPARE(ranIn, &thread);
    }

    void throwsWithoutFunction()
    {
        LambdaQt4 lambda{Function()};
        VerifyThrowsMissingFunction([&lambda] { lambda.execute(); });
    }

    void throwsWithoutFunctionWhenASignalIsEmitted()
    {
        Sender sender;
        LambdaQt4 const lambda{Function()};
        QVERIFY(ConnectToExecute(sender, lambda));
        VerifyThrowsMissingFunction([&sender] { Q_EMIT sender.Emitted(); });
    }

    void propagatesAnExceptionOfTheFunction()
    {
        LambdaQt4 lambda([](QObject*) { throw FunctionError(); });
        QVERIFY_EXCEPTION_THROWN(lambda.execute(), FunctionError);
        QVERIFY_EXCEPTION_THROWN(lambda.execute(), FunctionError);
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

    void doesNotCallTheFunctionWhenConstructedOrDestroyed()
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
        auto logger = std::make_shared<DestructionLogger>(log, QStringLiteral("function"));
        auto lambda = std::make_unique<LambdaQt4>([logger](QObject*) {});
        QObject::connect(lambda.get(), &QObject::destroyed, this, [&log] { log += QStringLiteral("object"); });
        logger.reset();
        QVERIFY(log.isEmpty());
        lambda.reset();
        QCOMPARE(log, (QStringList{QStringLiteral("function"), QStringLiteral("object")}));
    }

    void oneTimeExecutorRunsOnceAndDeletesItself()
    {
        Sender sender;
        QObjectList senders;
        QPointer<OneTimeExecutor> const executor(new OneTimeExecutor([&senders](QObject* from) { senders += from; }));
        QVERIFY(ConnectToExecuteOnce(sender, *executor));
        Q_EMIT sender.Emitted();
        QVERIFY(executor.isNull());
        Q_EMIT sender.Emitted();
        QCOMPARE(senders, (QObjectList{&sender}));
    }

    void oneTimeExecutorRemovesItsConnections()
    {
        Sender sender;
        auto* const executor = new OneTimeExecutor([](QObject*) {});
        QMetaObject::Connection const connection =
            QObject::connect(&sender, SIGNAL(Emitted()), executor, SLOT(executeOnce()));
        QVERIFY(connection);
        Q_EMIT sender.Emitted();
        QVERIFY(!connection);
        QVERIFY(!QObject::disconnect(connection));
    }

    void oneTimeExecutorRunsOnceForARepeatingTimer()
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

    void oneTimeExecutorPassesNullWhenCalledDirectly()
    {
        QObjectList senders;
        QPointer<OneTimeExecutor> const executor(new OneTimeExecutor([&senders](QObject* from) { senders += from; }));
        ExecuteOnce(executor);
        QVERIFY(executor.isNull());
        QCOMPARE(senders, (QObjectList{nullptr}));
    }

    void oneTimeExecutorExistsWhileTheFunctionRuns()
    {
        QPointer<OneTimeExecutor> executor;
        bool didExist = false;
        executor = new OneTimeExecutor([&](QObject*) { didExist = !executor.isNull(); });
        ExecuteOnce(executor);
        QVERIFY(didExist);
        QVERIFY(executor.isNull());
    }

    void oneTimeExecutorDestroysItsFunction()
    {
        auto resource = std::make_shared<int>(0);
        std::weak_ptr<int> const watched = resource;
        ExecuteOnce(new OneTimeExecutor([resource = std::move(resource)](QObject*) {}));
        QVERIFY(watched.expired());
    }

    void oneTimeExecutorIsRemovedFromItsParent()
    {
        QObject parent;
        ExecuteOnce(new OneTimeExecutor([](QObject*) {}, &parent));
        QVERIFY(parent.children().isEmpty());
    }

    void oneTimeExecutorIsNotDeletedByTheInheritedSlot()
    {
        int runs = 0;
        Sender sender;
        QPointer<OneTimeExecutor> const executor(new OneTimeExecutor([&runs](QObject*) { ++runs; }));
        QVERIFY(ConnectToExecute(sender, *executor));
        Q_EMIT sender.Emitted();
        Q_EMIT sender.Emitted();
        QVERIFY(!executor.isNull());
        QCOMPARE(runs, 2);
        ExecuteOnce(executor);
        QVERIFY(executor.isNull());
        QCOMPARE(runs, 3);
    }

    void oneTimeExecutorIsNotDeletedWithoutFunction()
    {
        Sender sender;
        auto const executor = std::make_unique<OneTimeExecutor>(Function());
        QPointer<OneTimeExecutor> const watched(executor.get());
        QVERIFY(ConnectToExecuteOnce(sender, *executor));
        VerifyThrowsMissingFunction([&sender] { Q_EMIT sender.Emitted(); });
        QVERIFY(!watched.isNull());
        VerifyThrowsMissingFunction([&sender] { Q_EMIT sender.Emitted(); });
        QVERIFY(!watched.isNull());
    }

    void oneTimeExecutorRunsAgainAfterAnException()
    {
        Sender sender;
        int runs = 0;
        QPointer<OneTimeExecutor> const executor(new OneTimeExecutor([&runs](QObject*) {
            if (++runs < 3) {
                throw FunctionError();
            }
        }));
        QVERIFY(ConnectToExecuteOnce(sender, *executor));
        QVERIFY_EXCEPTION_THROWN(Q_EMIT sender.Emitted(), FunctionError);
        QVERIFY(!executor.isNull());
        QVERIFY_EXCEPTION_THROWN(Q_EMIT sender.Emitted(), FunctionError);
        QVERIFY(!executor.isNull());
        Q_EMIT sender.Emitted();
        QVERIFY(executor.isNull());
        QCOMPARE(runs, 3);
    }

    void oneTimeExecutorIgnoresASignalWhileItRuns()
    {
        Sender sender;
        int runs = 0;
        QPointer<OneTimeExecutor> executor;
        bool didExistAfterwards = false;
        executor = new OneTimeExecutor([&](QObject*) {
            if (++runs == 1) {
                Q_EMIT sender.Emitted();
                didExistAfterwards = !executor.isNull();
            }
        });
        QVERIFY(ConnectToExecuteOnce(sender, *executor));
        Q_EMIT sender.Emitted();
        QCOMPARE(runs, 1);
        QVERIFY(didExistAfterwards);
        QVERIFY(executor.isNull());
    }

    void oneTimeExecutorIgnoresASignalInANestedEventLoop()
    {
        Sender sender;
        int runs = 0;
        QPointer<OneTimeExecutor> const executor(new OneTimeExecutor([&runs](QObject*) {
            ++runs;
            QCoreApplication::sendPostedEvents();
        }));
        QVERIFY(QObject::connect(&sender, SIGNAL(Emitted()), executor, SLOT(executeOnce()), Qt::QueuedConnection));
        Q_EMIT sender.Emitted();
        Q_EMIT sender.Emitted();
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
        Q_EMIT sender.Emitted();
        QVERIFY(executor.isNull());
        Q_EMIT sender.Emitted();
        QCOMPARE(runs, 1);
    }

    void oneTimeExecutorMayBeDestroyedByAFunctionThatThrows()
    {
        QPointer<OneTimeExecutor> executor;
        executor = new OneTimeExecutor([&executor](QObject*) {
            delete executor.data();
            throw FunctionError();
        });
        QVERIFY_EXCEPTION_THROWN(ExecuteOnce(executor), FunctionError);
        QVERIFY(executor.isNull());
    }

    void oneTimeExecutorIsDestroyedThroughItsDerivedClass()
    {
        QStringList log;
        Sender sender;
        QPointer<OneTimeExecutor> const executor(new SameAddressExecutor(
            log, QStringLiteral("destroyed"), [&log](QObject*) { log += QStringLiteral("run"); }));
        QVERIFY(ConnectToExecuteOnce(sender, *executor));
        Q_EMIT sender.Emitted();
        QVERIFY(executor.isNull());
        QCOMPARE(log, (QStringList{QStringLiteral("run"), QStringLiteral("destroyed")}));
    }

    void oneTimeExecutorRunsAtTheAddressOfAnExecutorWhoseFunctionStillRuns()
    {
        QStringList log;
        Sender toFirst;
        Sender toSecond;
        QPointer<OneTimeExecutor> first;
        QPointer<OneTimeExecutor> second;
        bool hasSameAddress = false;
        bool isSecondDestroyed = false;
        // replaceFirst deletes the first executor and then continues to run. Therefore, the first executor must not own
        // replaceFirst. It owns only a small lambda that calls replaceFirst.
        std::function<void()> const replaceFirst = [&] {
            void const* const address = first.data();
            delete first.data();
            second = new SameAddressExecutor(log, QStringLiteral("second destroyed"), [&](QObject*) {
                log += QStringLiteral("second");
                Q_EMIT toSecond.Emitted();
            });
            hasSameAddress = second.data() == address;
            ConnectToExecuteOnce(toSecond, *second);
            Q_EMIT toFirst.Emitted();
            Q_EMIT toSecond.Emitted();
            isSecondDestroyed = second.isNull();
            log += QStringLiteral("first returns");
        };
        first = new SameAddressExecutor(log, QStringLiteral("first destroyed"),
                                        [&replaceFirst](QObject*) { replaceFirst(); });
        QVERIFY(ConnectToExecuteOnce(toFirst, *first));
        Q_EMIT toFirst.Emitted();
        QVERIFY(hasSameAddress);
        QVERIFY(isSecondDestroyed);
        QCOMPARE(log, (QStringList{QStringLiteral("first destroyed"), QStringLiteral("second"),
                                   QStringLiteral("second destroyed"), QStringLiteral("first returns")}));
    }

    void oneTimeExecutorIsNotDeletedInsteadOfAnExecutorAtTheSameAddress()
    {
        QStringList log;
        QPointer<OneTimeExecutor> first;
        QPointer<OneTimeExecutor> second;
        std::function<void()> const replaceFirst = [&] {
            delete first.data();
            second = new SameAddressExecutor(log, QStringLiteral("second destroyed"),
                                             [&log](QObject*) { log += QStringLiteral("second"); });
        };
        first = new SameAddressExecutor(log, QStringLiteral("first destroyed"),
                                        [&replaceFirst](QObject*) { replaceFirst(); });
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
        bool doesFirstExist = false;
        bool isSecondDestroyed = false;
        QPointer<OneTimeExecutor> const second(new OneTimeExecutor([&](QObject*) {
            log += QStringLiteral("second called");
            Q_EMIT toFirst.Emitted();
            Q_EMIT toSecond.Emitted();
            log += QStringLiteral("second returns");
        }));
        QPointer<OneTimeExecutor> first;
        first = new OneTimeExecutor([&](QObject*) {
            log += QStringLiteral("first called");
            Q_EMIT toSecond.Emitted();
            isSecondDestroyed = second.isNull();
            Q_EMIT toFirst.Emitted();
            doesFirstExist = !first.isNull();
            log += QStringLiteral("first returns");
        });
        QVERIFY(ConnectToExecuteOnce(toFirst, *first));
        QVERIFY(ConnectToExecuteOnce(toSecond, *second));
        Q_EMIT toFirst.Emitted();
        QCOMPARE(log, (QStringList{QStringLiteral("first called"), QStringLiteral("second called"),
                                   QStringLiteral("second returns"), QStringLiteral("first returns")}));
        QVERIFY(isSecondDestroyed);
        QVERIFY(doesFirstExist);
        QVERIFY(first.isNull());
    }

    void oneTimeExecutorMayBeDestroyedWithItsSender()
    {
        auto* const sender = new Sender;
        QPointer<OneTimeExecutor> const executor(new OneTimeExecutor([](QObject* from) { delete from; }, sender));
        QVERIFY(ConnectToExecuteOnce(*sender, *executor));
        Q_EMIT sender->Emitted();
        QVERIFY(executor.isNull());
    }
};

ZQTUTIL_WIDGET_TEST_MAIN(LambdaQt4Test)
#include "LambdaQt4Test.moc"

#include <support/ProgrammingError.h>
#include <support/TestCase.h>
#include <support/Timeouts.h>
#include <support/overrides/ConnectionRefusal.h>

#include <Util/FunctorExecutionForwarder.h>

#include <QtCore/QMetaMethod>
#include <QtTest/QtTest>

#include <algorithm>
#include <functional>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <vector>

using Zelkor::Testing::ConnectionRefusal;
using Zelkor::Testing::ConnectionRequest;
using Zelkor::Testing::Timeout;
using Zelkor::Testing::TimeoutMs;
using Zelkor::Util::FunctorExecutionForwarder;
using Zelkor::Util::FunctorType;

static_assert(std::is_same_v<FunctorType, std::function<void()>>);
static_assert(std::is_base_of_v<QObject, FunctorExecutionForwarder>);
static_assert(std::has_virtual_destructor_v<FunctorExecutionForwarder> && !std::is_final_v<FunctorExecutionForwarder>);
static_assert(!std::is_copy_constructible_v<FunctorExecutionForwarder> &&
              !std::is_copy_assignable_v<FunctorExecutionForwarder>);
static_assert(!std::is_move_constructible_v<FunctorExecutionForwarder> &&
              !std::is_move_assignable_v<FunctorExecutionForwarder>);
static_assert(std::is_default_constructible_v<FunctorExecutionForwarder> &&
              !std::is_constructible_v<FunctorExecutionForwarder, QObject*>);
static_assert(sizeof(FunctorExecutionForwarder) == sizeof(QObject));
static_assert(std::is_same_v<decltype(&FunctorExecutionForwarder::Forward),
                             void (FunctorExecutionForwarder::*)(std::function<void()>) const>);
static_assert(std::is_same_v<decltype(&FunctorExecutionForwarder::ExecuteFunctor),
                             void (FunctorExecutionForwarder::*)(FunctorType) const>);

namespace
{

struct FunctorError
{};

/// Functor that counts its copies and its calls. It also records the thread of the last call, and the thread on which
/// the called functor is destroyed. All copies share one Record.
class CopyCounter
{
public:
    struct Record
    {
        int copies = 0;
        int calls = 0;
        std::thread::id callThread;
        std::thread::id destructionThread;
    };

    explicit CopyCounter(Record& record)
        : record_(&record)
    {}
    CopyCounter(CopyCounter const& other)
        : record_(other.record_)
    {
        ++record_->copies;
    }
    CopyCounter(CopyCounter&& other) noexcept = default;
    CopyCounter& operator=(CopyCounter const&) = delete;
    ~CopyCounter()
    {
        if (wasCalled_) {
            record_->destructionThread = std::this_thread::get_id();
        }
    }

    void operator()()
    {
        ++record_->calls;
        record_->callThread = std::this_thread::get_id();
        wasCalled_ = true;
    }

private:
    Record* record_;
    bool wasCalled_ = false;
};

QMetaMethod FindMethod(char const* signature)
{
    QMetaObject const& metaObject = FunctorExecutionForwarder::staticMetaObject;
    return metaObject.method(metaObject.indexOfMethod(signature));
}

void DeliverQueuedEvents()
{
    QCoreApplication::sendPostedEvents();
}

} // namespace

class FunctorExecutionForwarderTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void hasItsNameAndBase()
    {
        QMetaObject const& metaObject = FunctorExecutionForwarder::staticMetaObject;
        QCOMPARE(metaObject.className(), "Zelkor::Util::FunctorExecutionForwarder");
        QVERIFY(metaObject.superClass() == &QObject::staticMetaObject);
        QCOMPARE(metaObject.methodCount(), metaObject.methodOffset() + 2);
        QCOMPARE(metaObject.propertyCount(), metaObject.propertyOffset());
    }

    void hasOnePublicSignal()
    {
        QMetaMethod const signal = FindMethod("ExecuteFunctor(FunctorType)");
        QVERIFY(signal.isValid());
        QCOMPARE(signal.methodType(), QMetaMethod::Signal);
        QCOMPARE(signal.access(), QMetaMethod::Public);
        QCOMPARE(signal.returnType(), static_cast<int>(QMetaType::Void));
        QCOMPARE(signal.parameterTypes(), QList<QByteArray>{"FunctorType"});
    }

    void hasOnePrivateSlot()
    {
        QMetaMethod const slot = FindMethod("OnExecuteFunctor(FunctorType)");
        QVERIFY(slot.isValid());
        QCOMPARE(slot.methodType(), QMetaMethod::Slot);
        QCOMPARE(slot.access(), QMetaMethod::Private);
        QCOMPARE(slot.returnType(), static_cast<int>(QMetaType::Void));
        QCOMPARE(slot.parameterTypes(), QList<QByteArray>{"FunctorType"});
    }

    void registersTheFunctorAsMetaType()
    {
        FunctorExecutionForwarder const forwarder;
        QMetaType const type(QMetaType::type("FunctorType"));
        QVERIFY(type.isRegistered());
        QCOMPARE(type.name(), QByteArray("FunctorType"));
        QCOMPARE(type.sizeOf(), static_cast<int>(sizeof(std::function<void()>)));
        QCOMPARE(type.flags(), QMetaType::TypeFlags(QMetaType::NeedsConstruction | QMetaType::NeedsDestruction));
    }

    void registersTheSameMetaTypeEveryTime()
    {
        FunctorExecutionForwarder const first;
        int const type = QMetaType::type("FunctorType");
        FunctorExecutionForwarder const second;
        QCOMPARE(QMetaType::type("FunctorType"), type);
        QCOMPARE(qRegisterMetaType<FunctorType>("FunctorType"), type);
    }

    void isCreatedWithoutParentOnTheCallingThread()
    {
        FunctorExecutionForwarder const forwarder;
        QCOMPARE(forwarder.parent(), nullptr);
        QCOMPARE(forwarder.thread(), QThread::currentThread());
    }

    void throwsIfItCannotConnectToItself()
    {
        ConnectionRefusal const refusal;
        auto const error =
            Zelkor::Testing::CatchProgrammingError<std::logic_error>([] { FunctorExecutionForwarder(); });
        QCOMPARE(error.message, QStringLiteral("Failed to connect signal and slot"));
        QVERIFY2(error.callStack.contains(QStringLiteral("FunctorExecutionForwarder::FunctorExecutionForwarder")),
                 qPrintable(error.callStack));
        QCOMPARE(error.file, QStringLiteral("Util/FunctorExecutionForwarder.cpp"));
        QCOMPARE(error.function,
                 QStringLiteral("Zelkor::Util::FunctorExecutionForwarder::FunctorExecutionForwarder()"));
        QVERIFY(error.line > 0);
    }

    void connectsItsSignalToItsSlotWithAQueuedConnection()
    {
        ConnectionRefusal const refusal;
        QVERIFY_EXCEPTION_THROWN(FunctorExecutionForwarder(), std::logic_error);
        QCOMPARE(refusal.requests.size(), std::size_t(1));
        ConnectionRequest const& request = refusal.requests.front();
        QVERIFY(request.sender == request.receiver);
        QCOMPARE(request.signal, QByteArray("2ExecuteFunctor(FunctorType)"));
        QCOMPARE(request.slot, QByteArray("1OnExecuteFunctor(FunctorType)"));
        QCOMPARE(request.type, Qt::QueuedConnection);
    }

    void defersTheCallOnItsOwnThread()
    {
        FunctorExecutionForwarder const forwarder;
        int calls = 0;
        forwarder.Forward([&calls] { ++calls; });
        QCOMPARE(calls, 0);
        DeliverQueuedEvents();
        QCOMPARE(calls, 1);
        DeliverQueuedEvents();
        QCOMPARE(calls, 1);
    }

    void callsTheFunctorInTheEventLoop()
    {
        FunctorExecutionForwarder const forwarder;
        QEventLoop loop;
        QTimer::singleShot(Timeout, &loop, [&loop] { loop.exit(1); });
        forwarder.Forward([&loop] { loop.quit(); });
        QCOMPARE(loop.exec(), 0);
    }

    void defersAFunctorThatAFunctorForwards()
    {
        FunctorExecutionForwarder const forwarder;
        QStringList log;
        forwarder.Forward([&] {
            forwarder.Forward([&log] { log += QStringLiteral("inner"); });
            log += QStringLiteral("outer");
        });
        DeliverQueuedEvents();
        QTRY_COMPARE(log, (QStringList{QStringLiteral("outer"), QStringLiteral("inner")}));
    }

    void callsFunctorsOfAnotherThreadInOrder()
    {
        FunctorExecutionForwarder const forwarder;
        std::vector<std::pair<int, std::thread::id>> calls;
        std::thread([&forwarder, &calls] {
            for (int number = 1; number <= 3; ++number) {
                forwarder.Forward([&calls, number] { calls.emplace_back(number, std::this_thread::get_id()); });
            }
        }).join();
        QVERIFY(calls.empty());
        QTRY_COMPARE(calls.size(), std::size_t(3));
        std::thread::id const thisThread = std::this_thread::get_id();
        QCOMPARE(calls,
                 (std::vector<std::pair<int, std::thread::id>>{{1, thisThread}, {2, thisThread}, {3, thisThread}}));
    }

    void keepsTheOrderOfFunctorsOfEachThread()
    {
        constexpr std::size_t threadCount = 4;
        constexpr int functorCount = 250;
        FunctorExecutionForwarder const forwarder;
        std::vector<std::vector<int>> numbers(threadCount);
        bool areAllOnThisThread = true;
        bool isRunning = false;
        bool didOverlap = false;

        std::promise<void> start;
        std::shared_future<void> const started = start.get_future().share();
        std::vector<std::thread> threads;
        std::thread::id const thisThread = std::this_thread::get_id();
        for (std::size_t thread = 0; thread < threadCount; ++thread) {
            threads.emplace_back([&, thread, started] {
                started.wait();
                for (int number = 0; number < functorCount; ++number) {
                    forwarder.Forward([&, thread, number] {
                        didOverlap = didOverlap || isRunning;
                        isRunning = true;
                        areAllOnThisThread = areAllOnThisThread && std::this_thread::get_id() == thisThread;
                        numbers[thread].push_back(number);
                        isRunning = false;
                    });
                }
            });
        }
        start.set_value();
        auto const areAllDone = [&numbers] {
            return std::all_of(numbers.begin(), numbers.end(),
                               [](std::vector<int> const& own) { return own.size() == std::size_t(functorCount); });
        };
        bool const inTime = QTest::qWaitFor(areAllDone, TimeoutMs);
        for (std::thread& thread : threads) {
            thread.join();
        }
        QVERIFY(inTime);
        QVERIFY(areAllOnThisThread);
        QVERIFY(!didOverlap);
        for (std::vector<int> const& own : numbers) {
            QVERIFY(std::is_sorted(own.begin(), own.end()));
        }
    }

    void callsFunctorsOnTheThreadThatItIsMovedTo()
    {
        FunctorExecutionForwarder forwarder;
        std::promise<QThread*> queuedBefore;
        std::promise<QThread*> queuedAfterwards;
        auto before = queuedBefore.get_future();
        auto afterwards = queuedAfterwards.get_future();
        QThread thread;

        forwarder.Forward([&queuedBefore] { queuedBefore.set_value(QThread::currentThread()); });
        forwarder.moveToThread(&thread);
        thread.start();
        forwarder.Forward([&queuedAfterwards] { queuedAfterwards.set_value(QThread::currentThread()); });
        bool const inTime = before.wait_for(Timeout) == std::future_status::ready &&
                            afterwards.wait_for(Timeout) == std::future_status::ready;
        thread.quit();
        QVERIFY(thread.wait(QDeadlineTimer(Timeout)));
        QVERIFY(inTime);
        QCOMPARE(before.get(), &thread);
        QCOMPARE(afterwards.get(), &thread);
    }

    void copiesAFunctorOnceIntoTheQueue()
    {
        FunctorExecutionForwarder const forwarder;
        CopyCounter::Record record;
        std::function<void()> functor{CopyCounter(record)};
        record.copies = 0;
        forwarder.Forward(std::move(functor));
        QCOMPARE(record.copies, 1);
        DeliverQueuedEvents();
        QCOMPARE(record.copies, 1);
        QCOMPARE(record.calls, 1);
    }

    void keepsTheFunctorOfTheCaller()
    {
        FunctorExecutionForwarder const forwarder;
        CopyCounter::Record record;
        std::function<void()> const functor{CopyCounter(record)};
        record.copies = 0;
        forwarder.Forward(functor);
        QCOMPARE(record.copies, 2);
        DeliverQueuedEvents();
        QCOMPARE(record.copies, 2);
        QVERIFY(functor);
    }

    void destroysAFunctorOnTheThreadThatCalledIt()
    {
        FunctorExecutionForwarder const forwarder;
        CopyCounter::Record record;
        std::thread([&] { forwarder.Forward(CopyCounter(record)); }).join();
        DeliverQueuedEvents();
        QCOMPARE(record.calls, 1);
        QVERIFY(record.callThread == std::this_thread::get_id());
        QVERIFY(record.destructionThread == std::this_thread::get_id());
    }

    void destroysAFunctorBeforeItCallsTheNext()
    {
        FunctorExecutionForwarder const forwarder;
        auto resource = std::make_shared<int>(0);
        std::weak_ptr<int> const watched = resource;
        bool didExist = false;
        bool isDestroyed = false;
        forwarder.Forward([resource, &watched, &didExist] { didExist = !watched.expired(); });
        forwarder.Forward([&watched, &isDestroyed] { isDestroyed = watched.expired(); });
        resource.reset();
        DeliverQueuedEvents();
        QVERIFY(didExist);
        QVERIFY(isDestroyed);
    }

    void dropsQueuedFunctorsWhenDestroyed()
    {
        auto resource = std::make_shared<int>(0);
        std::weak_ptr<int> const watched = resource;
        int calls = 0;
        {
            FunctorExecutionForwarder const forwarder;
            for (int i = 0; i < 3; ++i) {
                forwarder.Forward([resource, &calls] { ++calls; });
            }
            resource.reset();
            QVERIFY(!watched.expired());
        }
        QVERIFY(watched.expired());
        DeliverQueuedEvents();
        QCOMPARE(calls, 0);
    }

    void dropsTheFunctorsOfAnotherThreadWhenDestroyed()
    {
        CopyCounter::Record record;
        auto forwarder = std::make_unique<FunctorExecutionForwarder>();
        std::thread([&] { forwarder->Forward(CopyCounter(record)); }).join();
        forwarder.reset();
        DeliverQueuedEvents();
        QCOMPARE(record.calls, 0);
    }

    void mayBeDestroyedByAFunctor()
    {
        auto forwarder = std::make_unique<FunctorExecutionForwarder>();
        QStringList log;
        forwarder->Forward([&] {
            forwarder.reset();
            log += QStringLiteral("destroyed");
        });
        forwarder->Forward([&log] { log += QStringLiteral("called"); });
        DeliverQueuedEvents();
        QCOMPARE(log, QStringList{QStringLiteral("destroyed")});
    }

    void mayBeDestroyedWhenItsThreadHasFinished()
    {
        int calls = 0;
        auto forwarder = std::make_unique<FunctorExecutionForwarder>();
        QThread thread;
        forwarder->moveToThread(&thread);
        thread.start();
        thread.quit();
        QVERIFY(thread.wait(QDeadlineTimer(Timeout)));
        forwarder->Forward([&calls] { ++calls; });
        forwarder.reset();
        QCOMPARE(calls, 0);
    }

    void throwsOutOfTheEventLoopForAnEmptyFunctor()
    {
        FunctorExecutionForwarder const forwarder;
        forwarder.Forward(std::function<void()>());
        QVERIFY_EXCEPTION_THROWN(DeliverQueuedEvents(), std::bad_function_call);
    }

    void throwsForAnEmptyFunctorInItsSlot()
    {
        FunctorExecutionForwarder forwarder;
        QVERIFY_EXCEPTION_THROWN(QMetaObject::invokeMethod(&forwarder, "OnExecuteFunctor", Qt::DirectConnection,
                                                           Q_ARG(FunctorType, FunctorType())),
                                 std::bad_function_call);
    }

    void callsTheFunctorInItsSlot()
    {
        FunctorExecutionForwarder forwarder;
        int calls = 0;
        QVERIFY(QMetaObject::invokeMethod(&forwarder, "OnExecuteFunctor", Qt::DirectConnection,
                                          Q_ARG(FunctorType, [&calls] { ++calls; })));
        QCOMPARE(calls, 1);
    }

    void propagatesAnExceptionAndCallsTheOtherFunctors()
    {
        FunctorExecutionForwarder const forwarder;
        int calls = 0;
        forwarder.Forward([] { throw FunctorError(); });
        forwarder.Forward([&calls] { ++calls; });
        QVERIFY_EXCEPTION_THROWN(DeliverQueuedEvents(), FunctorError);
        DeliverQueuedEvents();
        QCOMPARE(calls, 1);
    }

    void emitsItsSignalWhenForwarding()
    {
        FunctorExecutionForwarder const forwarder;
        int calls = 0;
        FunctorType received;
        QObject::connect(&forwarder, &FunctorExecutionForwarder::ExecuteFunctor, this,
                         [&received](FunctorType const& functor) { received = functor; });
        forwarder.Forward([&calls] { ++calls; });
        QVERIFY(received);
        QCOMPARE(calls, 0);
        received();
        QCOMPARE(calls, 1);
        DeliverQueuedEvents();
        QCOMPARE(calls, 2);
    }

    void callsAFunctorThatIsEmittedThroughItsSignal()
    {
        FunctorExecutionForwarder const forwarder;
        int calls = 0;
        Q_EMIT forwarder.ExecuteFunctor([&calls] { ++calls; });
        QCOMPARE(calls, 0);
        DeliverQueuedEvents();
        QCOMPARE(calls, 1);
    }

    void callsOnlyItsOwnFunctors()
    {
        FunctorExecutionForwarder const first;
        auto second = std::make_unique<FunctorExecutionForwarder>();
        QStringList log;
        first.Forward([&log] { log += QStringLiteral("first"); });
        second->Forward([&log] { log += QStringLiteral("second"); });
        second.reset();
        DeliverQueuedEvents();
        QCOMPARE(log, QStringList{QStringLiteral("first")});
    }
};

ZQTUTIL_TEST_MAIN(FunctorExecutionForwarderTest)
#include "FunctorExecutionForwarderTest.moc"

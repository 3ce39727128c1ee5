#include <support/TestCase.h>

#include <Base/EventHandlerList.h>

#include <QtTest/QtTest>

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

using Zelkor::Core::EventHandlerList;
using Zelkor::Core::EventPublisher;
using Zelkor::Core::SyncExecutePolicy;

namespace
{

constexpr auto Patience = std::chrono::seconds(10);

/// Told of events by the tests.
class Handler
{
public:
    std::function<void()> onEvent = [] {};

    void Tell() { onEvent(); }
};

using List = EventHandlerList<Handler, SyncExecutePolicy>;

static_assert(std::is_base_of_v<EventPublisher<Handler>, List>);
static_assert(std::is_convertible_v<List*, EventPublisher<Handler>*>);
static_assert(std::is_abstract_v<EventPublisher<Handler>>);
static_assert(std::has_virtual_destructor_v<EventPublisher<Handler>> && std::has_virtual_destructor_v<List>);
static_assert(!std::is_copy_constructible_v<List> && !std::is_copy_assignable_v<List>);
static_assert(!std::is_move_constructible_v<List> && !std::is_move_assignable_v<List>);
static_assert(!std::is_final_v<List>);

/// Derives from the publisher twice; ambiguous if the base were not virtual.
struct AnotherPublisher : virtual EventPublisher<Handler>
{};

struct Joined : List, AnotherPublisher
{};

static_assert(std::is_convertible_v<Joined*, EventPublisher<Handler>*>);

/// Collects what it is to execute, for later.
struct Postpone
{
    static std::vector<std::function<void()>>& Calls()
    {
        static std::vector<std::function<void()>> calls;
        return calls;
    }

    template <class Call>
    static void Execute(Call&& call)
    {
        Calls().push_back(std::forward<Call>(call));
    }
};

} // namespace

class EventHandlerListTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void callsHandlersInTheOrderOfRegistration()
    {
        for (Handler& handler : handlers_) {
            list_.RegisterEventHandler(&handler);
        }
        QCOMPARE(Told(), Everyone());
    }

    void callsNobodyWhenNobodyIsRegistered() { QCOMPARE(Told(), Handlers()); }

    void callsAHandlerThatIsRegisteredTwiceOnce()
    {
        list_.RegisterEventHandler(&handlers_[0]);
        list_.RegisterEventHandler(&handlers_[1]);
        list_.RegisterEventHandler(&handlers_[0]);
        QCOMPARE(Told(), (Handlers{&handlers_[0], &handlers_[1]}));

        list_.UnregisterEventHandler(&handlers_[0]);
        QCOMPARE(Told(), Handlers{&handlers_[1]});
    }

    void keepsTheOrderOfTheRestWhenOneGoes()
    {
        for (Handler& handler : handlers_) {
            list_.RegisterEventHandler(&handler);
        }
        list_.UnregisterEventHandler(&handlers_[0]);
        QCOMPARE(Told(), (Handlers{&handlers_[1], &handlers_[2]}));

        list_.RegisterEventHandler(&handlers_[0]);
        QCOMPARE(Told(), (Handlers{&handlers_[1], &handlers_[2], &handlers_[0]}));

        list_.UnregisterEventHandler(&handlers_[2]);
        QCOMPARE(Told(), (Handlers{&handlers_[1], &handlers_[0]}));
    }

    void ignoresNull()
    {
        list_.RegisterEventHandler(nullptr);
        list_.UnregisterEventHandler(nullptr);
        QCOMPARE(Told(), Handlers());
    }

    void ignoresAHandlerThatIsNotRegistered()
    {
        list_.RegisterEventHandler(&handlers_[0]);
        list_.UnregisterEventHandler(&handlers_[1]);
        QCOMPARE(Told(), Handlers{&handlers_[0]});
    }

    void registersThroughItsInterface()
    {
        EventPublisher<Handler>& publisher = list_;
        publisher.RegisterEventHandler(&handlers_[0]);
        publisher.RegisterEventHandler(&handlers_[1]);
        publisher.UnregisterEventHandler(&handlers_[0]);
        QCOMPARE(Told(), Handlers{&handlers_[1]});
    }

    void callsMemberFunctions()
    {
        int calls = 0;
        handlers_[0].onEvent = [&] { ++calls; };
        list_.RegisterEventHandler(&handlers_[0]);
        list_.PerformForEachEventHandler(&Handler::Tell);
        QCOMPARE(calls, 1);
    }

    void callsMoreHandlersThanListsUsuallyHave_data()
    {
        QTest::addColumn<int>("count");
        QTest::newRow("as many as on the stack") << 32;
        QTest::newRow("one more") << 33;
        QTest::newRow("many") << 1000;
    }

    void callsMoreHandlersThanListsUsuallyHave()
    {
        QFETCH(int, count);
        std::vector<Handler> many(static_cast<std::size_t>(count));
        Handlers expected;
        for (Handler& handler : many) {
            list_.RegisterEventHandler(&handler);
            expected.push_back(&handler);
        }
        QCOMPARE(Told(), expected);
        for (Handler& handler : many) {
            list_.UnregisterEventHandler(&handler);
        }
    }

    void aHandlerThatIsRegisteredMeanwhileIsCalledNextTime()
    {
        handlers_[0].onEvent = [this] { list_.RegisterEventHandler(&handlers_[1]); };
        list_.RegisterEventHandler(&handlers_[0]);
        QCOMPARE(Told(), Handlers{&handlers_[0]});
        QCOMPARE(Told(), (Handlers{&handlers_[0], &handlers_[1]}));
    }

    void handlersThatAreUnregisteredMeanwhileAreCalledOnceMore_data()
    {
        QTest::addColumn<int>("count");
        QTest::newRow("few") << 3;
        QTest::newRow("many") << 100;
    }

    void handlersThatAreUnregisteredMeanwhileAreCalledOnceMore()
    {
        QFETCH(int, count);
        handlers_ = std::vector<Handler>(static_cast<std::size_t>(count));
        Handlers expected;
        for (Handler& handler : handlers_) {
            list_.RegisterEventHandler(&handler);
            expected.push_back(&handler);
        }
        handlers_[0].onEvent = [this] {
            for (std::size_t i = 1; i < handlers_.size(); ++i) {
                list_.UnregisterEventHandler(&handlers_[i]);
            }
        };
        QCOMPARE(Told(), expected);
        QCOMPARE(Told(), Handlers{&handlers_[0]});
    }

    void aHandlerMayPublishAgain()
    {
        list_.RegisterEventHandler(&handlers_[0]);
        list_.RegisterEventHandler(&handlers_[1]);
        bool inside = false;
        handlers_[0].onEvent = [this, &inside] {
            if (!std::exchange(inside, true)) {
                Publish();
            }
        };
        QCOMPARE(Told(), (Handlers{&handlers_[0], &handlers_[0], &handlers_[1], &handlers_[1]}));
    }

    void aThrowEndsTheWalkAndLeavesTheListUsable()
    {
        list_.RegisterEventHandler(&handlers_[0]);
        list_.RegisterEventHandler(&handlers_[1]);
        handlers_[0].onEvent = [] { throw std::runtime_error("no"); };
        QVERIFY_EXCEPTION_THROWN(Publish(), std::runtime_error);
        QCOMPARE(std::exchange(told_, {}), Handlers{&handlers_[0]});

        handlers_[0].onEvent = [] {};
        auto const elsewhere = std::async(std::launch::async, [this] { Publish(); });
        QVERIFY(elsewhere.wait_for(Patience) == std::future_status::ready);
        QCOMPARE(told_, (Handlers{&handlers_[0], &handlers_[1]}));
    }

    void leavesItToThePolicyWhenHandlersAreCalled()
    {
        EventHandlerList<Handler, Postpone> later;
        later.RegisterEventHandler(&handlers_[0]);
        later.RegisterEventHandler(&handlers_[1]);
        Handlers called;
        auto resource = std::make_shared<int>();
        std::weak_ptr<int> const watched = resource;
        later.PerformForEachEventHandler(
            [&called, resource = std::move(resource)](Handler* handler) { called.push_back(handler); });
        QCOMPARE(called, Handlers());
        QCOMPARE(watched.use_count(), 2L); // each call has what it needs

        auto const calls = std::exchange(Postpone::Calls(), {});
        for (auto const& call : calls) {
            call();
        }
        QCOMPARE(called, (Handlers{&handlers_[0], &handlers_[1]}));
    }

    void callsOnThePublishingThread()
    {
        std::thread::id thread;
        handlers_[0].onEvent = [&thread] { thread = std::this_thread::get_id(); };
        list_.RegisterEventHandler(&handlers_[0]);
        std::thread::id publisher;
        std::thread([&] {
            publisher = std::this_thread::get_id();
            Publish();
        }).join();
        QVERIFY(thread == publisher);
    }

    void otherThreadsMayRegisterDuringAPublication()
    {
        handlers_[0].onEvent = [this] {
            auto const elsewhere = std::async(std::launch::async, [this] {
                list_.RegisterEventHandler(&handlers_[1]);
                list_.UnregisterEventHandler(&handlers_[0]);
            });
            QVERIFY(elsewhere.wait_for(Patience) == std::future_status::ready);
        };
        list_.RegisterEventHandler(&handlers_[0]);
        QCOMPARE(Told(), Handlers{&handlers_[0]});
        QCOMPARE(Told(), Handlers{&handlers_[1]});
    }

    void publicationsOfSeveralThreadsNeverOverlap()
    {
        constexpr int Threads = 4;
        constexpr int Publications = 500;
        std::atomic<int> inside{0};
        std::atomic<bool> overlapped{false};
        int calls = 0; // guarded by what is tested
        handlers_[0].onEvent = [&] {
            overlapped = overlapped || inside.fetch_add(1) != 0;
            ++calls;
        };
        handlers_[1].onEvent = [&inside] {
            std::this_thread::yield();
            inside.fetch_sub(1);
        };
        list_.RegisterEventHandler(&handlers_[0]);
        list_.RegisterEventHandler(&handlers_[1]);

        std::vector<std::thread> threads;
        threads.reserve(Threads);
        for (int i = 0; i < Threads; ++i) {
            threads.emplace_back([this] {
                for (int publication = 0; publication < Publications; ++publication) {
                    list_.PerformForEachEventHandler(&Handler::Tell);
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        QVERIFY(!overlapped);
        QCOMPARE(calls, Threads * Publications);
    }

    void threadsChangeTheListWhileOthersPublish()
    {
        constexpr int Rounds = 500;
        std::atomic<int> calls{0};
        for (Handler& handler : handlers_) {
            handler.onEvent = [&calls] { ++calls; };
        }
        list_.RegisterEventHandler(&handlers_[0]);
        std::thread changer([this] {
            for (int round = 0; round < Rounds; ++round) {
                list_.RegisterEventHandler(&handlers_[1]);
                list_.RegisterEventHandler(&handlers_[2]);
                list_.UnregisterEventHandler(&handlers_[1]);
                list_.UnregisterEventHandler(&handlers_[2]);
            }
        });
        for (int round = 0; round < Rounds; ++round) {
            list_.PerformForEachEventHandler(&Handler::Tell);
        }
        changer.join();
        QVERIFY(calls >= Rounds);
        QCOMPARE(Told(), Handlers{&handlers_[0]});
    }

protected:
    void TearDown() override
    {
        for (Handler& handler : handlers_) {
            list_.UnregisterEventHandler(&handler);
        }
        handlers_ = std::vector<Handler>(3);
        told_.clear();
    }

private:
    using Handlers = std::vector<Handler*>;

    Handlers Everyone() { return {&handlers_[0], &handlers_[1], &handlers_[2]}; }

    void Publish()
    {
        list_.PerformForEachEventHandler([this](Handler* handler) {
            told_.push_back(handler);
            handler->Tell();
        });
    }

    Handlers Told()
    {
        told_.clear();
        Publish();
        return told_;
    }

    std::vector<Handler> handlers_ = std::vector<Handler>(3);
    List list_;
    Handlers told_;
};

ZQTUTIL_TEST_MAIN(EventHandlerListTest)

#include "EventHandlerListTest.moc"

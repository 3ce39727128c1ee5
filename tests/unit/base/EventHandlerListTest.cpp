#include <support/TestCase.h>
#include <support/Timeouts.h>

#include <Base/EventHandlerList.h>

#include <QtTest/QtTest>

#include <atomic>
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
using Zelkor::Testing::Timeout;

namespace
{

/// Event handler that calls onEvent, which a test can replace.
class Handler
{
public:
    std::function<void()> onEvent = [] {};

    void Notify() { onEvent(); }
};

using List = EventHandlerList<Handler, SyncExecutePolicy>;

static_assert(std::is_base_of_v<EventPublisher<Handler>, List>);
static_assert(std::is_convertible_v<List*, EventPublisher<Handler>*>);
static_assert(std::is_abstract_v<EventPublisher<Handler>>);
static_assert(std::has_virtual_destructor_v<EventPublisher<Handler>> && std::has_virtual_destructor_v<List>);
static_assert(!std::is_copy_constructible_v<List> && !std::is_copy_assignable_v<List>);
static_assert(!std::is_move_constructible_v<List> && !std::is_move_assignable_v<List>);
static_assert(!std::is_final_v<List>);

/// A class that inherits EventPublisher virtually. The static_assert below requires that List also inherits
/// EventPublisher virtually.
struct AnotherPublisher : virtual EventPublisher<Handler>
{};

struct ListAndPublisher : List, AnotherPublisher
{};

static_assert(std::is_convertible_v<ListAndPublisher*, EventPublisher<Handler>*>);

/// Execution policy for EventHandlerList that stores the calls to the handlers instead of executing them.
struct DeferredExecutePolicy
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
        QCOMPARE(PublishAndCollect(), (Handlers{&handlers_[0], &handlers_[1], &handlers_[2]}));
    }

    void callsNothingWithoutHandlers() { QCOMPARE(PublishAndCollect(), Handlers()); }

    void ignoresASecondRegistration()
    {
        list_.RegisterEventHandler(&handlers_[0]);
        list_.RegisterEventHandler(&handlers_[1]);
        list_.RegisterEventHandler(&handlers_[0]);
        QCOMPARE(PublishAndCollect(), (Handlers{&handlers_[0], &handlers_[1]}));

        list_.UnregisterEventHandler(&handlers_[0]);
        QCOMPARE(PublishAndCollect(), Handlers{&handlers_[1]});
    }

    void keepsTheOrderWhenAHandlerIsUnregistered()
    {
        for (Handler& handler : handlers_) {
            list_.RegisterEventHandler(&handler);
        }
        list_.UnregisterEventHandler(&handlers_[0]);
        QCOMPARE(PublishAndCollect(), (Handlers{&handlers_[1], &handlers_[2]}));

        list_.RegisterEventHandler(&handlers_[0]);
        QCOMPARE(PublishAndCollect(), (Handlers{&handlers_[1], &handlers_[2], &handlers_[0]}));

        list_.UnregisterEventHandler(&handlers_[2]);
        QCOMPARE(PublishAndCollect(), (Handlers{&handlers_[1], &handlers_[0]}));
    }

    void ignoresNull()
    {
        list_.RegisterEventHandler(nullptr);
        list_.UnregisterEventHandler(nullptr);
        QCOMPARE(PublishAndCollect(), Handlers());
    }

    void ignoresUnregisteringAnUnknownHandler()
    {
        list_.RegisterEventHandler(&handlers_[0]);
        list_.UnregisterEventHandler(&handlers_[1]);
        QCOMPARE(PublishAndCollect(), Handlers{&handlers_[0]});
    }

    void registersThroughItsInterface()
    {
        EventPublisher<Handler>& publisher = list_;
        publisher.RegisterEventHandler(&handlers_[0]);
        publisher.RegisterEventHandler(&handlers_[1]);
        publisher.UnregisterEventHandler(&handlers_[0]);
        QCOMPARE(PublishAndCollect(), Handlers{&handlers_[1]});
    }

    void callsMemberFunctions()
    {
        int calls = 0;
        handlers_[0].onEvent = [&] { ++calls; };
        list_.RegisterEventHandler(&handlers_[0]);
        list_.PerformForEachEventHandler(&Handler::Notify);
        QCOMPARE(calls, 1);
    }

    void callsManyHandlers_data()
    {
        QTest::addColumn<int>("count");
        QTest::newRow("32 handlers") << 32;
        QTest::newRow("33 handlers") << 33;
        QTest::newRow("1000 handlers") << 1000;
    }

    void callsManyHandlers()
    {
        QFETCH(int, count);
        std::vector<Handler> many(static_cast<std::size_t>(count));
        Handlers expected;
        for (Handler& handler : many) {
            list_.RegisterEventHandler(&handler);
            expected.push_back(&handler);
        }
        QCOMPARE(PublishAndCollect(), expected);
        for (Handler& handler : many) {
            list_.UnregisterEventHandler(&handler);
        }
    }

    void callsAHandlerRegisteredDuringAPublicationNextTime()
    {
        handlers_[0].onEvent = [this] { list_.RegisterEventHandler(&handlers_[1]); };
        list_.RegisterEventHandler(&handlers_[0]);
        QCOMPARE(PublishAndCollect(), Handlers{&handlers_[0]});
        QCOMPARE(PublishAndCollect(), (Handlers{&handlers_[0], &handlers_[1]}));
    }

    void callsHandlersUnregisteredDuringAPublicationOnceMore_data()
    {
        QTest::addColumn<int>("count");
        QTest::newRow("3 handlers") << 3;
        QTest::newRow("100 handlers") << 100;
    }

    void callsHandlersUnregisteredDuringAPublicationOnceMore()
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
        QCOMPARE(PublishAndCollect(), expected);
        QCOMPARE(PublishAndCollect(), Handlers{&handlers_[0]});
    }

    void allowsAHandlerToPublish()
    {
        list_.RegisterEventHandler(&handlers_[0]);
        list_.RegisterEventHandler(&handlers_[1]);
        bool inside = false;
        handlers_[0].onEvent = [this, &inside] {
            if (!std::exchange(inside, true)) {
                Publish();
            }
        };
        QCOMPARE(PublishAndCollect(), (Handlers{&handlers_[0], &handlers_[0], &handlers_[1], &handlers_[1]}));
    }

    void stopsAtAThrowingHandlerAndRemainsUsable()
    {
        list_.RegisterEventHandler(&handlers_[0]);
        list_.RegisterEventHandler(&handlers_[1]);
        handlers_[0].onEvent = [] { throw std::runtime_error("failure"); };
        QVERIFY_EXCEPTION_THROWN(Publish(), std::runtime_error);
        QCOMPARE(std::exchange(calledHandlers_, {}), Handlers{&handlers_[0]});

        handlers_[0].onEvent = [] {};
        auto const task = std::async(std::launch::async, [this] { Publish(); });
        QVERIFY(task.wait_for(Timeout) == std::future_status::ready);
        QCOMPARE(calledHandlers_, (Handlers{&handlers_[0], &handlers_[1]}));
    }

    void executesCallsThroughThePolicy()
    {
        EventHandlerList<Handler, DeferredExecutePolicy> deferred;
        deferred.RegisterEventHandler(&handlers_[0]);
        deferred.RegisterEventHandler(&handlers_[1]);
        Handlers called;
        auto resource = std::make_shared<int>();
        std::weak_ptr<int> const watched = resource;
        deferred.PerformForEachEventHandler(
            [&called, resource = std::move(resource)](Handler* handler) { called.push_back(handler); });
        QCOMPARE(called, Handlers());
        QCOMPARE(watched.use_count(), 2L); // each of the two stored calls contains a copy of the functor

        auto const calls = std::exchange(DeferredExecutePolicy::Calls(), {});
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

    void allowsOtherThreadsToRegisterDuringAPublication()
    {
        handlers_[0].onEvent = [this] {
            auto const task = std::async(std::launch::async, [this] {
                list_.RegisterEventHandler(&handlers_[1]);
                list_.UnregisterEventHandler(&handlers_[0]);
            });
            QVERIFY(task.wait_for(Timeout) == std::future_status::ready);
        };
        list_.RegisterEventHandler(&handlers_[0]);
        QCOMPARE(PublishAndCollect(), Handlers{&handlers_[0]});
        QCOMPARE(PublishAndCollect(), Handlers{&handlers_[1]});
    }

    void serialisesPublicationsOfSeveralThreads()
    {
        constexpr int Threads = 4;
        constexpr int Publications = 500;
        std::atomic<int> inside{0};
        std::atomic<bool> overlapped{false};
        int calls = 0; // not atomic: the list must never call a handler on two threads at the same time
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
                    list_.PerformForEachEventHandler(&Handler::Notify);
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        QVERIFY(!overlapped);
        QCOMPARE(calls, Threads * Publications);
    }

    void allowsChangesByAnotherThreadDuringPublications()
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
            list_.PerformForEachEventHandler(&Handler::Notify);
        }
        changer.join();
        QVERIFY(calls >= Rounds);
        QCOMPARE(PublishAndCollect(), Handlers{&handlers_[0]});
    }

protected:
    void TearDown() override
    {
        for (Handler& handler : handlers_) {
            list_.UnregisterEventHandler(&handler);
        }
        handlers_ = std::vector<Handler>(3);
        calledHandlers_.clear();
    }

private:
    using Handlers = std::vector<Handler*>;

    void Publish()
    {
        list_.PerformForEachEventHandler([this](Handler* handler) {
            calledHandlers_.push_back(handler);
            handler->Notify();
        });
    }

    /// Publishes one event. Returns the called handlers in the order of their calls.
    Handlers PublishAndCollect()
    {
        calledHandlers_.clear();
        Publish();
        return calledHandlers_;
    }

    std::vector<Handler> handlers_ = std::vector<Handler>(3);
    List list_;
    Handlers calledHandlers_;
};

ZQTUTIL_TEST_MAIN(EventHandlerListTest)

#include "EventHandlerListTest.moc"

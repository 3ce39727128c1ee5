// Threads register and unregister observers of one EventHandlerList and notify them at the same time. Each thread
// changes only the registrations of its own observers. Therefore, it knows which of them a notification must call.

#include <storms/Storm.h>

#include <Base/EventHandlerList.h>

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

using Zelkor::Testing::Random;
using Zelkor::Testing::Require;

namespace
{

struct Observer
{
    int owner; // the index of the thread that registers and unregisters the observer
};

using Observers = std::vector<Observer*>;
using List = Zelkor::Core::EventHandlerList<Observer, Zelkor::Core::SyncExecutePolicy>;

/// One thread of the storm.
class Participant
{
public:
    Participant(List& list, std::thread::id& notifier, int index)
        : list_(list)
        , notifier_(notifier)
        , index_(index)
    {
        for (auto& observer : observers_) {
            observer = std::make_unique<Observer>(Observer{index});
        }
    }

    /// Returns the registered observers of this participant, in the order of registration.
    Observers const& Registered() const { return registered_; }

    void Run(std::uint64_t seed)
    {
        Random random(seed);
        for (int operation = 0; operation < 100; ++operation) {
            Operate(random);
        }
    }

private:
    void Operate(Random& random)
    {
        switch (random.Below(3)) {
        case 0:
            return Register(random.Pick(observers_).get());
        case 1:
            return Unregister(random.Pick(observers_).get());
        default:
            return Notify(random);
        }
    }

    void Register(Observer* observer)
    {
        list_.RegisterEventHandler(observer);
        if (std::find(registered_.begin(), registered_.end(), observer) == registered_.end()) {
            registered_.push_back(observer);
        }
    }

    void Unregister(Observer* observer)
    {
        list_.UnregisterEventHandler(observer);
        registered_.erase(std::remove(registered_.begin(), registered_.end(), observer), registered_.end());
    }

    void Notify(Random& random)
    {
        Observers const expected = registered_;
        Observers called;
        list_.PerformForEachEventHandler([&](Observer* observer) {
            called.push_back(observer);
            CheckThatNotificationsDoNotOverlap(random);
        });

        Observers own;
        std::copy_if(called.begin(), called.end(), std::back_inserter(own),
                     [this](Observer const* observer) { return observer->owner == index_; });
        Require(own == expected, "a notification calls the registered observers in the order of registration");
        std::sort(called.begin(), called.end());
        Require(std::adjacent_find(called.begin(), called.end()) == called.end(),
                "a notification calls each observer once");
    }

    // The variable notifier_ is not protected by a lock, because the list must prevent simultaneous calls of this
    // function.
    void CheckThatNotificationsDoNotOverlap(Random& random)
    {
        std::thread::id const self = std::this_thread::get_id();
        std::thread::id const outer = notifier_;
        Require(outer == std::thread::id() || outer == self, "notifications of several threads do not overlap");
        notifier_ = self;
        if (depth_ < 2 && random.OneIn(4)) {
            ++depth_;
            Operate(random);
            --depth_;
        }
        Require(notifier_ == self, "no other thread notifies during a notification");
        notifier_ = outer;
    }

    List& list_;
    std::thread::id& notifier_;
    int const index_;
    int depth_ = 0;
    std::array<std::unique_ptr<Observer>, 8> observers_;
    Observers registered_;
};

class ObserverStorm
{
public:
    explicit ObserverStorm(Random& random)
        : random_(random)
    {
        for (int index = 0; index < 3; ++index) {
            participants_.push_back(std::make_unique<Participant>(list_, notifier_, index));
        }
    }

    /// Runs 100 operations on each thread.
    void Step()
    {
        std::vector<std::thread> threads;
        for (auto const& participant : participants_) {
            threads.emplace_back([&participant, seed = random_.Seed()] { participant->Run(seed); });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        CheckRegistered();
    }

    void Finish() {}

private:
    void CheckRegistered()
    {
        Observers called;
        list_.PerformForEachEventHandler([&](Observer* observer) { called.push_back(observer); });
        Observers expected;
        for (auto const& participant : participants_) {
            Observers const& registered = participant->Registered();
            expected.insert(expected.end(), registered.begin(), registered.end());
        }
        std::sort(called.begin(), called.end());
        std::sort(expected.begin(), expected.end());
        Require(called == expected, "the list contains the observers that the threads have registered");
    }

    Random& random_;
    List list_;
    std::thread::id notifier_; // the thread that calls an observer; modified without a lock
    std::vector<std::unique_ptr<Participant>> participants_;
};

} // namespace

int main(int argc, char** argv)
{
    return Zelkor::Testing::RunStorm<ObserverStorm>(argc, argv);
}

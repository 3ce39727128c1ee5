#pragma once

/// \file
/// A list of observers that are told of events, from any thread.

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <functional>
#include <mutex>
#include <utility>
#include <vector>

namespace Zelkor
{
namespace Core
{

/// Where handlers of events are registered and taken off again.
template <class T>
class EventPublisher
{
public:
    /// Registers \a handler, which is borrowed: it stays alive until it is unregistered.
    virtual void RegisterEventHandler(T* handler) = 0;

    /// Forgets \a handler.
    virtual void UnregisterEventHandler(T* handler) = 0;

    virtual ~EventPublisher() = default;
};

/// Calls a handler at once, on the thread that publishes. The policy of EventHandlerList: any type with such an
/// `Execute`, which may also keep the call for later.
struct SyncExecutePolicy
{
    /// Calls \a call, which takes no argument.
    template <class Call>
    static void Execute(Call&& call)
    {
        std::forward<Call>(call)();
    }
};

/// Handlers of type \a T, each at most once and in the order of registration, and the way to call them all.
///
/// \code
/// class Player : public EventHandlerList<IPlayerObserver, SyncExecutePolicy>
/// {
///     void Finish()
///     {
///         PerformForEachEventHandler([this](IPlayerObserver* observer) { observer->OnFinished(*this); });
///     }
/// };
/// \endcode
///
/// **Threads.** Everything may be called from any thread. Publications never overlap: a second one waits for the end of
/// the first, unless it comes from inside it, on the same thread. Handlers are called without the lock of the list, so
/// that other threads may register and unregister meanwhile.
///
/// **Changes during a publication** take effect from the next one. A handler that is unregistered meanwhile is
/// therefore still called, once by the publication under way and by each that waits for its end: it has to outlive them
/// all, and so has the list.
///
/// \a Policy says how a handler is called; `SyncExecutePolicy` calls it at once.
template <class T, class Policy>
class EventHandlerList : public virtual EventPublisher<T>
{
public:
    /// Appends \a handler, unless it is null or registered already.
    void RegisterEventHandler(T* handler) override
    {
        if (!handler) {
            return;
        }
        std::lock_guard<std::recursive_mutex> const lock(handlersMutex_);
        if (std::find(handlers_.begin(), handlers_.end(), handler) == handlers_.end()) {
            handlers_.push_back(handler);
        }
    }

    /// Takes \a handler off the list, if it is there; null is ignored.
    void UnregisterEventHandler(T* handler) override
    {
        if (!handler) {
            return;
        }
        std::lock_guard<std::recursive_mutex> const lock(handlersMutex_);
        auto const found = std::find(handlers_.begin(), handlers_.end(), handler);
        if (found != handlers_.end()) {
            handlers_.erase(found);
        }
    }

    /// Calls \a f with a pointer to each handler that is registered now, in the order of registration; the policy gets
    /// a copy of \a f for each of them. What a handler throws ends the walk and passes through.
    template <class F>
    void PerformForEachEventHandler(F f)
    {
        Snapshot registered;
        registered.Take(handlersMutex_, handlers_);
        std::lock_guard<std::recursive_mutex> const lock(executionMutex_);
        for (T* const handler : registered) {
            Policy::Execute(std::bind(f, handler));
        }
    }

private:
    /// The handlers as they were at one moment; on the stack, up to a number that few lists exceed.
    class Snapshot
    {
    public:
        Snapshot() = default;
        Snapshot(Snapshot const&) = delete;
        Snapshot& operator=(Snapshot const&) = delete;

        void Take(std::recursive_mutex& mutex, std::vector<T*> const& all)
        {
            std::lock_guard<std::recursive_mutex> const lock(mutex);
            count_ = all.size();
            if (count_ > few_.size()) {
                many_ = all;
                first_ = many_.data();
                return;
            }
            for (std::size_t i = 0; i < count_; ++i) {
                few_[i] = all[i];
                // One by one: for so few, the set-up of a block copy takes longer than the copy.
                std::atomic_signal_fence(std::memory_order_acq_rel);
            }
        }

        T* const* begin() const { return first_; }
        T* const* end() const { return first_ + count_; }

    private:
        std::array<T*, 32> few_; // set up to the count only: a publication need not clear the rest
        std::vector<T*> many_;
        T* const* first_ = few_.data();
        std::size_t count_ = 0;
    };

    std::vector<T*> handlers_;
    std::recursive_mutex handlersMutex_;
    std::recursive_mutex executionMutex_;
};

} // namespace Core
} // namespace Zelkor

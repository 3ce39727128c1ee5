#pragma once

/// \file
/// A thread-safe list of observers.

#include <boost/container/small_vector.hpp>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <mutex>
#include <utility>
#include <vector>

namespace Zelkor
{
namespace Core
{

/// The interface for registering event handlers of type \a T.
template <class T>
class EventPublisher
{
public:
    /// Registers \a handler. The caller keeps the ownership and unregisters the handler before destroying it.
    virtual void RegisterEventHandler(T* handler) = 0;

    /// Unregisters \a handler.
    virtual void UnregisterEventHandler(T* handler) = 0;

    virtual ~EventPublisher() = default;
};

/// Calls each handler immediately, on the publishing thread.
///
/// EventHandlerList accepts any type with such an `Execute` function as its policy. A policy may also store the calls
/// and make them later.
struct SyncExecutePolicy
{
    /// Calls \a call without arguments.
    template <class Call>
    static void Execute(Call&& call)
    {
        std::forward<Call>(call)();
    }
};

/// A list of handlers of type \a T that are called in the order of their registration.
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
/// **Threads.** All functions are thread-safe. Publications do not overlap: a second one waits until the first has
/// finished, unless a handler starts it on the same thread. The list is not locked while handlers are called, so other
/// threads can register and unregister handlers.
///
/// **Changes during a publication** take effect from the next publication. A handler that is unregistered during a
/// publication is still called by it, and by every publication that is already waiting. The handler and the list must
/// therefore outlive those publications.
///
/// \a Policy determines how a handler is called. SyncExecutePolicy calls it immediately.
template <class T, class Policy>
class EventHandlerList : public virtual EventPublisher<T>
{
public:
    /// Appends \a handler. Ignores null and a handler that is already registered.
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

    /// Removes \a handler. Ignores null and a handler that is not registered.
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

    /// Calls \a f with a pointer to each registered handler, in the order of registration.
    ///
    /// The policy receives a copy of \a f for each handler. An exception from a handler ends the publication and is
    /// passed on to the caller; the remaining handlers are not called.
    template <class F>
    void PerformForEachEventHandler(F f)
    {
        Handlers const registered = CopyHandlers();
        std::lock_guard<std::recursive_mutex> const lock(executionMutex_);
        for (T* const handler : registered) {
            Policy::Execute(std::bind(f, handler));
        }
    }

private:
    // Copied at each publication. Up to this number of handlers, the copy needs no heap allocation.
    static constexpr std::size_t HandlersOnStack = 32;
    using Handlers = boost::container::small_vector<T*, HandlersOnStack>;

    Handlers CopyHandlers()
    {
        std::lock_guard<std::recursive_mutex> const lock(handlersMutex_);
        return Handlers(handlers_.begin(), handlers_.end());
    }

    std::vector<T*> handlers_;
    std::recursive_mutex handlersMutex_;
    std::recursive_mutex executionMutex_;
};

} // namespace Core
} // namespace Zelkor

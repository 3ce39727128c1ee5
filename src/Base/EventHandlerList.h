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
    /// Registers \a handler. The caller keeps ownership of \a handler and must unregister it before destroying it.
    virtual void RegisterEventHandler(T* handler) = 0;

    /// Unregisters \a handler.
    virtual void UnregisterEventHandler(T* handler) = 0;

    virtual ~EventPublisher() = default;
};

/// A policy for EventHandlerList that calls each handler immediately, on the thread that publishes the event.
///
/// You can write other policies. A policy is a type with a static function `Execute` that accepts a function object.
/// For example, `Execute` can store the function object and invoke it later.
struct SyncExecutePolicy
{
    /// Invokes the function object \a call without arguments.
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
/// In this documentation, "publication" means a call of PerformForEachEventHandler().
///
/// **Threads.** All functions are thread-safe. Publications on different threads do not overlap: the second publication
/// waits until the first has finished. If a handler starts a nested publication on the same thread, the nested
/// publication does not wait. The list is not locked while handlers are called, so other threads can register and
/// unregister handlers.
///
/// **Changes during a publication.** A publication copies the list, waits for publications on other threads, and then
/// calls the handlers. If a handler is unregistered after the list was copied, the publication still calls this
/// handler. The handler and the list must therefore exist until all running and waiting publications have finished.
///
/// \tparam T       the type of the handlers
/// \tparam Policy  determines how a handler is called; SyncExecutePolicy calls the handler immediately
template <class T, class Policy>
class EventHandlerList : public virtual EventPublisher<T>
{
public:
    /// Appends \a handler. Does nothing if \a handler is null or already registered.
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

    /// Removes \a handler. Does nothing if \a handler is null or not registered.
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
    /// The policy receives a copy of \a f for each handler. If a handler throws, the exception is passed on to the
    /// caller and the remaining handlers are not called.
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
    // PerformForEachEventHandler() copies the list of handlers. The copy needs no heap allocation if the list contains
    // at most this number of handlers.
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

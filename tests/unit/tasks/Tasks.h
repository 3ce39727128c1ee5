#pragma once

#include <Util/AsyncService.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QStringList>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace Zelkor::Testing
{

using Util::AsyncService;
using Task = AsyncService::Task;
using Reporter = AsyncService::Reporter;
using Cancelled = AsyncService::Cancelled;
using Job = std::function<void(Reporter*)>;

constexpr int Patience = 60000; // ms; only a broken library takes so long

/// What one thread waits for and another one opens. Made of what the thread sanitizer sees through.
class Gate
{
public:
    /// The gate may go as soon as the other thread has passed.
    void Open()
    {
        std::shared_ptr<State> const state = state_;
        std::lock_guard<std::mutex> const lock(state->guard);
        state->open = true;
        state->opened.notify_all();
    }

    /// Waits for Open(). Throws when nobody opens it.
    void Pass()
    {
        std::unique_lock<std::mutex> lock(state_->guard);
        if (!state_->opened.wait_for(lock, std::chrono::milliseconds(Patience), [this] { return state_->open; })) {
            throw std::runtime_error("Nobody opened the gate");
        }
    }

private:
    struct State
    {
        std::mutex guard;
        std::condition_variable opened;
        bool open = false;
    };
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

/// Turns the event loop until \a service is empty.
bool TurnUntilEmpty(AsyncService const& service);

/// Turns the event loop until \a task has completed.
bool TurnUntilGone(AsyncService const& service, Task* task);

/// Delivers everything that is queued for this thread, and all that this queues in turn.
void DeliverQueued();

/// Returns when the worker thread has done all that was queued for it so far; the owner thread's events stay queued.
/// Returns the task that it took for that.
Task* LetWorkerFinish(AsyncService& service);

/// Made to die with a call-back: appends \a name to \a deaths when its last copy goes, and " on another thread" when
/// that is not the main thread.
std::shared_ptr<void> MakeWitness(QStringList& deaths, char const* name);

/// What leaves a call-back.
struct Escape
{};

/// Turns the event loop until an exception of type \a E leaves it, and returns whether one did.
template <class E>
bool TurnUntilThrown()
{
    QElapsedTimer timer;
    timer.start();
    while (!timer.hasExpired(Patience)) {
        try {
            QCoreApplication::sendPostedEvents();
        } catch (E const&) {
            return true;
        }
        std::this_thread::yield();
    }
    return false;
}

} // namespace Zelkor::Testing

#pragma once

#include <support/Timeouts.h>

#include <Util/AsyncService.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QStringList>

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

/// Blocks a thread until another thread opens the gate. QSemaphore is unsuitable: Qt is not built with the thread
/// sanitizer, which would report false data races.
class Gate
{
public:
    /// Opens the gate. Another thread that passes may destroy it before this function returns.
    void Open()
    {
        std::shared_ptr<State> const state = state_;
        std::lock_guard<std::mutex> const lock(state->guard);
        state->open = true;
        state->opened.notify_all();
    }

    /// Waits for Open(). Throws std::runtime_error after Timeout.
    void Pass()
    {
        std::unique_lock<std::mutex> lock(state_->guard);
        if (!state_->opened.wait_for(lock, Timeout, [this] { return state_->open; })) {
            throw std::runtime_error("The gate was not opened");
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

/// Runs the event loop until \a service is empty. Returns false after Timeout.
bool WaitUntilEmpty(AsyncService const& service);

/// Runs the event loop until \a task has completed. Returns false after Timeout.
bool WaitUntilCompleted(AsyncService const& service, Task* task);

/// Delivers the events that are queued for this thread, and the events that these queue.
void DeliverQueuedEvents();

/// Blocks until the worker thread has run all queued jobs. The completions stay queued for the owner thread.
/// Returns the additional task that it posts for this purpose.
Task* WaitForWorker(AsyncService& service);

/// Returns an object for a callback to capture. When its last copy is destroyed, it appends \a name to \a destroyed,
/// followed by " on another thread" if this is not the main thread.
std::shared_ptr<void> MakeDestructionLogger(QStringList& destroyed, char const* name);

/// Thrown by callbacks.
struct CallbackError
{};

/// Delivers events until an exception of type \a E is thrown. Returns false after Timeout.
template <class E>
bool WaitUntilThrown()
{
    QElapsedTimer timer;
    timer.start();
    while (!timer.hasExpired(TimeoutMs)) {
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

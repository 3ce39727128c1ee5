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
/// sanitizer, so the sanitizer would report false data races.
class Gate
{
public:
    /// Opens the gate. A thread that waits in Pass() may destroy the gate before Open() returns.
    void Open()
    {
        std::shared_ptr<State> const state = state_;
        std::lock_guard<std::mutex> const lock(state->guard);
        state->open = true;
        state->opened.notify_all();
    }

    /// Waits until the gate is open. Throws std::runtime_error if Timeout expires first.
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

/// Runs the event loop until \a service contains no task. Returns false if Timeout expires first.
bool WaitUntilEmpty(AsyncService const& service);

/// Runs the event loop until \a task has completed. Returns false if Timeout expires first.
bool WaitUntilCompleted(AsyncService const& service, Task* task);

/// Delivers the events that are queued for the calling thread, including events that are queued during the delivery.
void DeliverQueuedEvents();

/// Posts and runs an additional task. Waits until the worker thread runs the job of this task. All jobs that were
/// queued earlier have then finished, but the owner thread has not processed their completions yet. Returns the
/// additional task.
Task* WaitForWorker(AsyncService& service);

/// Returns a pointer that a callback can capture. When the last copy of the pointer is destroyed, \a name is appended
/// to \a destroyed. If this happens outside the main thread, " on another thread" is appended to the name.
std::shared_ptr<void> MakeDestructionLogger(QStringList& destroyed, char const* name);

/// Exception that the callbacks of the tests throw.
struct CallbackError
{};

/// Delivers events until the delivery throws an exception of type \a E. Returns false if Timeout expires first.
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

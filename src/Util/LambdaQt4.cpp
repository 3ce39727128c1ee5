#include <Util/LambdaQt4.h>

#include <Base/Throw.h>

#include <QtCore/QPointer>

#include <utility>

namespace Zelkor::Util
{

namespace
{

/// An executor whose function is on this thread's stack. The function may turn an event loop that brings the signal
/// again, and may destroy the executor.
class RunningExecutor
{
public:
    explicit RunningExecutor(OneTimeExecutor* executor)
        : executor_(executor)
        , outer_(std::exchange(innermost_, this))
    {}
    ~RunningExecutor() { innermost_ = outer_; }
    Q_DISABLE_COPY_MOVE(RunningExecutor)

    static bool Is(OneTimeExecutor const* executor)
    {
        for (RunningExecutor const* running = innermost_; running; running = running->outer_) {
            if (running->executor_ == executor) {
                return true;
            }
        }
        return false;
    }

    /// The executor, null when it is gone.
    OneTimeExecutor* Get() const { return executor_; }

private:
    QPointer<OneTimeExecutor> const executor_;
    RunningExecutor const* const outer_;
    static thread_local RunningExecutor const* innermost_;
};

thread_local RunningExecutor const* RunningExecutor::innermost_ = nullptr;

} // namespace

void LambdaQt4::execute()
{
    if (!functor_) {
        ZELKOR_THROW(std::logic_error("LambdaQt4 use without functor!"));
    }
    functor_(sender());
}

void OneTimeExecutor::executeOnce()
{
    if (RunningExecutor::Is(this)) {
        return;
    }
    RunningExecutor const running(this);
    execute();
    delete running.Get();
}

} // namespace Zelkor::Util

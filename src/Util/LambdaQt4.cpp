#include <Util/LambdaQt4.h>

#include <Base/StackLink.h>
#include <Base/Throw.h>

#include <QtCore/QPointer>

namespace Zelkor::Util
{

namespace
{

/// A running call of OneTimeExecutor::executeOnce(). The function may run an event loop that delivers the signal again,
/// and may destroy the executor.
struct RunningExecutor : StackLink<RunningExecutor>
{
    explicit RunningExecutor(OneTimeExecutor* runningExecutor)
        : StackLink(innermost)
        , executor(runningExecutor)
    {}

    static bool isRunning(OneTimeExecutor const* executor)
    {
        for (RunningExecutor const* running = innermost; running; running = running->Outer()) {
            if (running->executor == executor) {
                return true;
            }
        }
        return false;
    }

    static thread_local RunningExecutor* innermost;
    QPointer<OneTimeExecutor> const executor;
};

thread_local RunningExecutor* RunningExecutor::innermost = nullptr;

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
    if (RunningExecutor::isRunning(this)) {
        return;
    }
    RunningExecutor const running(this);
    execute();
    delete running.executor;
}

} // namespace Zelkor::Util

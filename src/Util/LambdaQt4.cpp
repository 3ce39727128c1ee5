#include <Util/LambdaQt4.h>

#include <Base/StackLink.h>
#include <Base/Throw.h>

#include <QtCore/QPointer>

namespace Zelkor::Util
{

namespace
{

struct RunningExecutor;
thread_local RunningExecutor* innermostExecutor = nullptr;

/// Represents one running call of OneTimeExecutor::executeOnce(). The function of the executor may run a nested event
/// loop that delivers the signal again. executeOnce() then finds the running call and ignores the signal. The pointer
/// `executor` becomes null if the function deletes the executor.
struct RunningExecutor : StackLink<RunningExecutor>
{
    explicit RunningExecutor(OneTimeExecutor* runningExecutor)
        : StackLink(innermostExecutor)
        , executor(runningExecutor)
    {}

    QPointer<OneTimeExecutor> const executor;
};

bool IsRunning(OneTimeExecutor const* executor)
{
    for (RunningExecutor const* running = innermostExecutor; running; running = running->Outer()) {
        if (running->executor == executor) {
            return true;
        }
    }
    return false;
}

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
    if (IsRunning(this)) {
        return;
    }
    RunningExecutor const running(this);
    execute();
    delete running.executor;
}

} // namespace Zelkor::Util

#include <Util/FunctorExecutionForwarder.h>

#include <Base/Throw.h>
#include <Util/RunningForwarder.h>

#include <QtCore/QScopeGuard>

#include <utility>

namespace Zelkor::Util
{
namespace
{

thread_local FunctorExecutionForwarder* g_running = nullptr;

} // namespace

FunctorExecutionForwarder* RunningForwarder()
{
    return g_running;
}

FunctorExecutionForwarder::FunctorExecutionForwarder()
{
    qRegisterMetaType<FunctorType>("FunctorType");
    if (!connect(this, SIGNAL(ExecuteFunctor(FunctorType)), this, SLOT(OnExecuteFunctor(FunctorType)),
                 Qt::QueuedConnection)) {
        ZELKOR_THROW(std::logic_error("Failed to connect signal and slot"));
    }
}

void FunctorExecutionForwarder::Forward(std::function<void()> functor) const
{
    Q_EMIT ExecuteFunctor(std::move(functor));
}

// By reference: the queue's own copy is the one that runs.
void FunctorExecutionForwarder::OnExecuteFunctor(FunctorType const& f)
{
    auto const restore = qScopeGuard([outer = std::exchange(g_running, this)] { g_running = outer; });
    f();
}

} // namespace Zelkor::Util

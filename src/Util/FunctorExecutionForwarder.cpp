#include <Util/FunctorExecutionForwarder.h>

#include <Base/Throw.h>

#include <utility>

namespace Zelkor::Util
{

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

// The parameter is a reference, so that the functor in the queued event is not copied again before the call.
void FunctorExecutionForwarder::OnExecuteFunctor(FunctorType const& f)
{
    f();
}

} // namespace Zelkor::Util

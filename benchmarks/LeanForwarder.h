#pragma once

/// \file
/// The smallest class that passes a std::function through a queued signal: the peer of FunctorExecutionForwarder.

#include <QtCore/QObject>

#include <functional>
#include <utility>

namespace Zelkor::Benchmarks
{

using LeanFunctor = std::function<void()>;

/// Calls functors on its own thread, through a queued signal connected to a slot of the same object.
class LeanForwarder : public QObject
{
    Q_OBJECT

public:
    LeanForwarder()
    {
        qRegisterMetaType<LeanFunctor>("LeanFunctor");
        connect(this, SIGNAL(Execute(LeanFunctor)), this, SLOT(OnExecute(LeanFunctor)), Qt::QueuedConnection);
    }

    void Forward(std::function<void()> functor) const { Q_EMIT Execute(std::move(functor)); }

Q_SIGNALS:
    void Execute(LeanFunctor functor) const;

private Q_SLOTS:
    void OnExecute(LeanFunctor const& functor) { functor(); }
};

} // namespace Zelkor::Benchmarks

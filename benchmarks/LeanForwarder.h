#pragma once

/// \file
/// LeanForwarder, the smallest class that passes a std::function through a queued signal. The benchmarks compare
/// FunctorExecutionForwarder with LeanForwarder.

#include <QtCore/QObject>

#include <functional>
#include <utility>

namespace Zelkor::Benchmarks
{

using LeanFunctor = std::function<void()>;

/// Calls functors on the thread of the LeanForwarder object. Each functor is the argument of a queued signal, which is
/// connected to a slot of the same object.
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

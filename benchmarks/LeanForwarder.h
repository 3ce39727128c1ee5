#pragma once

/// \file
/// The least that a functor needs to travel as a std::function in a queued signal.

#include <QtCore/QObject>

#include <functional>
#include <utility>

namespace Zelkor::Benchmarks
{

using LeanFunctor = std::function<void()>;

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

#pragma once

/// \file
/// Execution of functions on another thread.

#include <Util/Export.h>

#include <QtCore/QObject>

#include <functional>

namespace Zelkor
{
namespace Util
{

/// A function without parameters. The constructor of FunctorExecutionForwarder registers this type with Qt's meta-type
/// system under the name "FunctorType", so that queued signals can have parameters of this type.
using FunctorType = std::function<void()>;

/// Runs functions on the thread of the forwarder: the thread that created the forwarder, or the thread that the
/// forwarder was moved to.
///
/// \code
/// FunctorExecutionForwarder gui; // created on the GUI thread
/// std::thread worker([&] { gui.Forward([label] { label->setText(...); }); });
/// \endcode
///
/// The event loop of the forwarder's thread calls the functions one at a time, in the order in which they were
/// forwarded. Functions that are still queued when the forwarder is destroyed are discarded.
///
/// Destroy the forwarder on its own thread, or after that thread has finished.
class ZQTUTIL_EXPORT FunctorExecutionForwarder : public QObject
{
    Q_OBJECT

public:
    /// Creates a forwarder without a parent on the calling thread.
    ///
    /// Throws `std::logic_error` ("Failed to connect signal and slot") if the internal connection of a signal to a slot
    /// fails.
    FunctorExecutionForwarder();

    /// Queues \a functor for the forwarder's thread. Returns without waiting for the execution of \a functor, even if
    /// the forwarder's thread is the calling thread. Can be called from any thread.
    ///
    /// \a functor is copied once. The copy is called and destroyed on the forwarder's thread. \a functor itself is
    /// destroyed when this call returns, before or after the copy. Therefore, an object that \a functor captures in a
    /// `std::shared_ptr` can be destroyed on either thread.
    ///
    /// Exceptions that \a functor throws propagate through the event loop of the forwarder's thread. An empty
    /// \a functor throws `std::bad_function_call` when it is called.
    void Forward(std::function<void()> functor) const;

Q_SIGNALS:
    /// Forward() emits this signal to pass \a f to the thread of the forwarder.
    void ExecuteFunctor(FunctorType f) const;

private Q_SLOTS:
    void OnExecuteFunctor(FunctorType const& f);
};

} // namespace Util
} // namespace Zelkor

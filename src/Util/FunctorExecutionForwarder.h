#pragma once

/// \file
/// Functors run on another object's thread.

#include <Util/Export.h>

#include <QtCore/QObject>

#include <functional>

namespace Zelkor
{
namespace Util
{

/// A function without arguments. Qt's meta-type system knows it under this name once a forwarder was made, so that it
/// can travel inside a queued signal.
using FunctorType = std::function<void()>;

/// Runs functions on the thread that the forwarder belongs to: the thread that made it, or the one it was moved to.
///
/// \code
/// FunctorExecutionForwarder gui; // made on the GUI thread
/// std::thread worker([&] { gui.Forward([label] { label->setText(...); }); });
/// \endcode
///
/// The event loop of that thread calls them one at a time, in the order they were forwarded. What is still queued when
/// the forwarder is destroyed is dropped uncalled. A forwarder is destroyed on its own thread, or when that thread has
/// ended.
class ZQTUTIL_EXPORT FunctorExecutionForwarder : public QObject
{
    Q_OBJECT

public:
    /// A forwarder without a parent, on the calling thread.
    ///
    /// Throws `std::logic_error` ("Failed to connect signal and slot") when Qt does not connect it to itself.
    FunctorExecutionForwarder();

    /// Queues \a functor for the forwarder's thread and returns at once, also on that thread itself.
    ///
    /// Any thread. \a functor is copied once into the queue, and the copy is called and destroyed on the forwarder's
    /// thread. The argument itself goes with this call, perhaps later than the copy: what both share, such as a
    /// captured `std::shared_ptr`, may end on the calling thread. What the functor throws leaves through the event loop
    /// of the forwarder's thread; an empty one throws `std::bad_function_call` there.
    void Forward(std::function<void()> functor) const;

Q_SIGNALS:
    /// Carries \a f to the forwarder's own thread; Forward() emits it.
    void ExecuteFunctor(FunctorType f) const;

private Q_SLOTS:
    void OnExecuteFunctor(FunctorType const& f);
};

} // namespace Util
} // namespace Zelkor

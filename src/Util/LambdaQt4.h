#pragma once

/// \file
/// Objects with a slot that calls a function, for Qt's string-based connections.

#include <Util/Export.h>

#include <QtCore/QObject>

#include <functional>
#include <utility>

namespace Zelkor
{
namespace Util
{

/// An object with a slot that calls a function. Use it for Qt's string-based connections, which cannot connect a signal
/// to a function directly.
///
/// \code
/// auto* lambda = new LambdaQt4([](QObject* sender) { ... }, window);
/// QObject::connect(button, SIGNAL(clicked()), lambda, SLOT(execute()));
/// \endcode
class ZQTUTIL_EXPORT LambdaQt4 : public QObject
{
    Q_OBJECT

public:
    /// Creates an object whose slot calls \a function. \a parent owns the object and can be null.
    explicit LambdaQt4(std::function<void(QObject* sender)> function, QObject* parent = nullptr)
        : QObject(parent)
        , functor_(std::move(function))
    {}

public Q_SLOTS:
    /// Calls the function that was passed to the constructor. Passes the sender of the signal to the function, or null
    /// if this slot is called directly. Exceptions that the function throws are not caught.
    ///
    /// Throws `std::logic_error` ("LambdaQt4 use without functor!") if the function is empty.
    void execute();

private:
    std::function<void(QObject* sender)> functor_;
};

/// A LambdaQt4 that destroys itself after its first execution. Connect a signal to the private slot with
/// `SLOT(executeOnce())`.
///
/// Create the object with `new`, and do not use it after the slot has run. If the function is empty or throws an
/// exception, the object is not destroyed. The function itself may also delete the object.
///
/// If the function runs a nested event loop, the object ignores signals that it receives before the function returns.
///
/// \code
/// QObject::connect(timer, SIGNAL(timeout()), new OneTimeExecutor([](QObject*) { ... }), SLOT(executeOnce()));
/// \endcode
class ZQTUTIL_EXPORT OneTimeExecutor : public LambdaQt4
{
    Q_OBJECT

public:
    using LambdaQt4::LambdaQt4;

private Q_SLOTS:
    void executeOnce();
};

} // namespace Util
} // namespace Zelkor

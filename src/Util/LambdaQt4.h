#pragma once

/// \file
/// Function objects as slots that can be connected by name.

#include <Util/Export.h>

#include <QtCore/QObject>

#include <functional>
#include <utility>

namespace Zelkor
{
namespace Util
{

/// A function object behind a real slot, for connections in the string form.
///
/// \code
/// auto* lambda = new LambdaQt4([](QObject* sender) { ... }, window);
/// QObject::connect(button, SIGNAL(clicked()), lambda, SLOT(execute()));
/// \endcode
class ZQTUTIL_EXPORT LambdaQt4 : public QObject
{
    Q_OBJECT

public:
    /// A slot that calls \a function; owned by \a parent, if any.
    explicit LambdaQt4(std::function<void(QObject* sender)> function, QObject* parent = nullptr)
        : QObject(parent)
        , functor_(std::move(function))
    {}

public Q_SLOTS:
    /// Calls the function with the object that sent the signal; null when called directly. What the function throws
    /// passes through.
    ///
    /// Throws `std::logic_error` ("LambdaQt4 use without functor!") when there is no function.
    void execute();

private:
    std::function<void(QObject* sender)> functor_;
};

/// A LambdaQt4 that destroys itself after its first run; connect it to its slot `executeOnce()` by name.
///
/// It must have been made with `new`, and is not to be used once the slot has run. When there is no function, or the
/// function throws, the object survives. A signal that comes again while the function runs (because the function turns
/// an event loop) is ignored, and the function may itself destroy the object.
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

#pragma once

/// \file
/// An object with a slot that passes an `int` to a function, for Qt's string-based connections.

#include <Util/Export.h>

#include <QtCore/QObject>

#include <functional>
#include <utility>

namespace Zelkor
{
namespace Util
{

/// An object with a slot that passes an `int` to a function. Use it for Qt's string-based connections, which cannot
/// connect a signal to a function directly.
///
/// \code
/// auto* lambda = new LambdaQt4WithIntParameter([](QObject* sender, int value) { ... }, window);
/// QObject::connect(slider, SIGNAL(valueChanged(int)), lambda, SLOT(execute(int)));
/// \endcode
class ZQTUTIL_EXPORT LambdaQt4WithIntParameter : public QObject
{
    Q_OBJECT

public:
    /// Creates an object whose slot calls \a function. \a parent owns the object and can be null.
    explicit LambdaQt4WithIntParameter(std::function<void(QObject* sender, int value)> function,
                                       QObject* parent = nullptr)
        : QObject(parent)
        , functor_(std::move(function))
    {}

public Q_SLOTS:
    /// Calls the function that was passed to the constructor. Passes the sender of the signal and \a inputParam to the
    /// function. The sender is null if this slot is called directly. Exceptions that the function throws are not
    /// caught.
    ///
    /// Throws `std::logic_error` ("LambdaQt4WithIntParameter use without functor!") if the function is empty.
    void execute(int inputParam);

private:
    std::function<void(QObject* sender, int value)> functor_;
};

} // namespace Util
} // namespace Zelkor

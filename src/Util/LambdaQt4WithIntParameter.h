#pragma once

/// \file
/// Function objects as slots with a number, which can be connected by name.

#include <Util/Export.h>

#include <QtCore/QObject>

#include <functional>
#include <utility>

namespace Zelkor
{
namespace Util
{

/// A function object behind a real slot that takes an `int`, for connections in the string form.
///
/// \code
/// auto* lambda = new LambdaQt4WithIntParameter([](QObject* sender, int value) { ... }, window);
/// QObject::connect(slider, SIGNAL(valueChanged(int)), lambda, SLOT(execute(int)));
/// \endcode
class ZQTUTIL_EXPORT LambdaQt4WithIntParameter : public QObject
{
    Q_OBJECT

public:
    /// A slot that calls \a function; owned by \a parent, if any.
    explicit LambdaQt4WithIntParameter(std::function<void(QObject* sender, int value)> function,
                                       QObject* parent = nullptr)
        : QObject(parent)
        , functor_(std::move(function))
    {}

public Q_SLOTS:
    /// Calls the function with the object that sent the signal (null when called directly) and \a inputParam. What the
    /// function throws passes through.
    ///
    /// Throws `std::logic_error` ("LambdaQt4WithIntParameter use without functor!") when there is no function.
    void execute(int inputParam);

private:
    std::function<void(QObject* sender, int value)> functor_;
};

} // namespace Util
} // namespace Zelkor

#pragma once

/// \file
/// Interface for observers of SimpleModel.

#include <Util/Export.h>

#include <QtCore/QMetaType>
#include <QtCore/QString>

namespace Zelkor
{
namespace Util
{

/// Interface for objects that are notified of clicks on the items of a SimpleModel.
///
/// Register an observer with SimpleModel::setData(). The observer is passed to setData() as an `ISimpleModelObserver*`
/// in a `QVariant`. Therefore, the pointer type is declared as a Qt meta-type.
class ZQTUTIL_EXPORT ISimpleModelObserver
{
public:
    /// Before you destroy an observer, unregister it with the role SimpleModel::UnregisterObserver. The destructor does
    /// not unregister it.
    virtual ~ISimpleModelObserver();

    /// Called when the user clicks the item with the identifier \a uid. The model calls this function on the thread on
    /// which SimpleModel::setData() is called.
    ///
    /// This function may register and unregister observers, including the observer itself. Such a change takes effect
    /// from the next click. This function must not delete the model, but it may call `deleteLater()` of the model.
    virtual void OnItemClicked(QString const& uid) = 0;
};

} // namespace Util
} // namespace Zelkor

Q_DECLARE_METATYPE(Zelkor::Util::ISimpleModelObserver*)

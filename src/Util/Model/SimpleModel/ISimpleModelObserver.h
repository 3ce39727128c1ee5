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

/// Receives the clicks on the items of a SimpleModel. SimpleModel::setData() registers observers. The pointer type is a
/// Qt meta-type, because the pointer is passed in a `QVariant`.
class ZQTUTIL_EXPORT ISimpleModelObserver
{
public:
    /// Does not unregister the observer. Use SimpleModel::UnregisterObserver before the observer is destroyed.
    virtual ~ISimpleModelObserver();

    /// Called when the item with the identifier \a uid is clicked, on the thread that calls SimpleModel::setData().
    ///
    /// The callback can register and unregister observers, including itself. The change takes effect from the next
    /// click. The callback must not delete the model, but it can call `deleteLater()`.
    virtual void OnItemClicked(QString const& uid) = 0;
};

} // namespace Util
} // namespace Zelkor

Q_DECLARE_METATYPE(Zelkor::Util::ISimpleModelObserver*)

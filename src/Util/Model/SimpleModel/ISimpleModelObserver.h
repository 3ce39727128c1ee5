#pragma once

/// \file
/// What is told of clicks on the items of a SimpleModel.

#include <Util/Export.h>

#include <QtCore/QMetaType>
#include <QtCore/QString>

namespace Zelkor
{
namespace Util
{

/// An observer of a SimpleModel. A `QVariant` can carry the pointer: that is how it is handed to
/// SimpleModel::setData().
class ZQTUTIL_EXPORT ISimpleModelObserver
{
public:
    virtual ~ISimpleModelObserver();

    /// The item \a uid was clicked. Called on the thread that wrote the click, normally the GUI thread.
    ///
    /// The call-back may register and unregister observers, itself too, which counts from the next click; it must not
    /// delete the model (`deleteLater()` may).
    virtual void OnItemClicked(QString const& uid) = 0;
};

} // namespace Util
} // namespace Zelkor

Q_DECLARE_METATYPE(Zelkor::Util::ISimpleModelObserver*)

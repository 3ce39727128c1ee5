#pragma once

/// \file
/// A property that has another value during a range of time.

#include <Util/Export.h>

#include <QtCore/QByteArray>
#include <QtCore/QObject>
#include <QtCore/QVariant>

namespace Zelkor
{
namespace Util
{

/// Sets a property of its parent to one value while a time that it is told lies in a range, and to a default value
/// outside it. Times are in milliseconds.
///
/// \code
/// auto* const switcher = new PropertyTimeSwitcher("visible", false, subtitle);
/// switcher->setRange(1000, 4000, true);
/// QObject::connect(player, &Player::positionChanged, switcher, &PropertyTimeSwitcher::setCurrentTime);
/// \endcode
///
/// It is owned by its parent and used on the parent's thread. Without a parent nothing is written.
class ZQTUTIL_EXPORT PropertyTimeSwitcher : public QObject
{
    Q_OBJECT

public:
    /// Controls the property \a propertyName of \a parent, which is \a defaultValue outside the range. Nothing is
    /// written yet, and there is no range yet.
    ///
    /// A property that \a parent does not have is reported by qWarning(), and added when it is written.
    PropertyTimeSwitcher(QByteArray const& propertyName, QVariant const& defaultValue, QObject* parent);

    /// Sets the one range, from \a from on and before \a to, in which the property is \a value.
    void setRange(int from, int to, QVariant const& value);

    /// Writes the value of the current time, unless the property has it already.
    void updateValue();

public Q_SLOTS:
    /// Sets the current \a time, and updates the value, see updateValue().
    void setCurrentTime(int time);

private:
    QByteArray propertyName_;
    QVariant defaultValue_;
    QVariant rangeValue_;
    int rangeStart_ = 0;
    int rangeEnd_ = 0;
    int currentTime_ = 0;
};

} // namespace Util
} // namespace Zelkor

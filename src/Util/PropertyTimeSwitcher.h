#pragma once

/// \file
/// A class that sets a property of an object depending on the current time.

#include <Util/Export.h>

#include <QtCore/QByteArray>
#include <QtCore/QObject>
#include <QtCore/QVariant>

namespace Zelkor
{
namespace Util
{

/// Sets a property of the parent object to one value while the current time is in a range, and to a default value while
/// the current time is outside the range. The application supplies the current time with setCurrentTime(). All times
/// are in milliseconds.
///
/// \code
/// auto* const switcher = new PropertyTimeSwitcher("visible", false, subtitle);
/// switcher->setRange(1000, 4000, true);
/// QObject::connect(player, &Player::positionChanged, switcher, &PropertyTimeSwitcher::setCurrentTime);
/// \endcode
///
/// The parent owns the switcher. Use the switcher on the thread of the parent.
class ZQTUTIL_EXPORT PropertyTimeSwitcher : public QObject
{
    Q_OBJECT

public:
    /// Creates a switcher with an empty range. Does not write the property yet.
    ///
    /// \param propertyName  the name of the property to control. If \a parent does not have this property, the
    ///                      constructor logs a warning with qWarning(), and the first write adds a dynamic property.
    /// \param defaultValue  the value of the property while the current time is outside the range
    /// \param parent        the object that has the property; it owns the switcher. If \a parent is null, the switcher
    ///                      never writes a property, and the caller owns the switcher.
    PropertyTimeSwitcher(QByteArray const& propertyName, QVariant const& defaultValue, QObject* parent);

    /// Sets the range and calls updateValue(). Replaces the previous range.
    ///
    /// \param from   the start of the range in milliseconds (inclusive)
    /// \param to     the end of the range in milliseconds (exclusive)
    /// \param value  the value of the property while the current time is in the range
    void setRange(int from, int to, QVariant const& value);

    /// Writes the value for the current time to the property, unless the property already has this value.
    void updateValue();

public Q_SLOTS:
    /// Sets the current time to \a time milliseconds and calls updateValue(). The initial time is 0.
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

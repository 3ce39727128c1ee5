#pragma once

/// \file
/// Functions that read and set dynamic properties of widgets. Style sheets use these properties in selectors.

#include <Util/Export.h>

#include <QtCore/QObject>
#include <QtCore/QString>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Util
{

Q_NAMESPACE_EXPORT(ZQTUTIL_EXPORT)

/// The severity of the message that a widget shows. Style sheets can select the widget by this level, for
/// example with `[Level="Error"]`.
enum class MessageLevel {
    Question,
    Information,
    Warning,
    Error,
    NoMessage ///< the widget shows no message
};
Q_ENUM_NS(MessageLevel)

/// Sets a dynamic property of a widget and applies the style sheet to the widget again. Call this function on the GUI
/// thread.
///
/// \param widget    the widget to change; null is ignored
/// \param value     the new value
/// \param property  the name of the property
ZQTUTIL_EXPORT void ApplyWidgetStyle(QWidget* widget, QString const& value, char const* property);

/// Returns the value of the property \a property of \a widget as a string. Returns an empty string if \a widget is
/// null, or if \a widget does not have the property. Call this function on the GUI thread.
ZQTUTIL_EXPORT QString GetWidgetStyle(QWidget const* widget, char const* property);

/// Sets the property "Level" of \a widget to the name of \a level and applies the style sheet to the widget again. If
/// \a level is not an enumerator of MessageLevel, the property is set to an empty string. If \a widget is null, the
/// function does nothing. Call this function on the GUI thread.
ZQTUTIL_EXPORT void ApplyMessageLevel(QWidget* widget, MessageLevel level);

/// Returns the level that the property "Level" of \a widget contains. Returns NoMessage if \a widget is null, or if the
/// property is not set or does not contain the name of a level. Call this function on the GUI thread.
ZQTUTIL_EXPORT MessageLevel GetMessageLevel(QWidget const* widget);

} // namespace Util
} // namespace Zelkor

#pragma once

/// \file
/// Dynamic properties that style sheets use in selectors.

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

/// Sets a dynamic property of a widget and applies the style sheet to the widget again. GUI thread.
///
/// \param widget    the widget to change; null is ignored
/// \param value     the new value
/// \param property  the name of the property
ZQTUTIL_EXPORT void ApplyWidgetStyle(QWidget* widget, QString const& value, char const* property);

/// Returns the property named \a property of \a widget as text. Returns an empty text if \a widget is null, or if
/// \a widget does not have the property. GUI thread.
ZQTUTIL_EXPORT QString GetWidgetStyle(QWidget const* widget, char const* property);

/// Sets the property "Level" of \a widget to the name of \a level and applies the style sheet to the widget again. If
/// \a level is outside the enumeration, the property is set to an empty text. A null \a widget is ignored. GUI thread.
ZQTUTIL_EXPORT void ApplyMessageLevel(QWidget* widget, MessageLevel level);

/// Returns the level from the property "Level" of \a widget. Returns NoMessage if \a widget is null, or if the property
/// is not set or does not contain the name of a level. GUI thread.
ZQTUTIL_EXPORT MessageLevel GetMessageLevel(QWidget const* widget);

} // namespace Util
} // namespace Zelkor

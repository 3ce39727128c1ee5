#pragma once

/// \file
/// Dynamic properties that style sheets match, and the severity of a widget.

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

/// How serious what a widget says is; a style sheet matches it by `[Level="Error"]` and the like.
enum class MessageLevel {
    Question,
    Information,
    Warning,
    Error,
    NoMessage ///< nothing is said
};
Q_ENUM_NS(MessageLevel)

/// Sets the dynamic \a property of \a widget to \a value and applies the style sheet to the widget again. A null widget
/// is ignored. GUI thread.
ZQTUTIL_EXPORT void ApplyWidgetStyle(QWidget* widget, QString const& value, char const* property);

/// The \a property of \a widget as text; empty for a null widget and for a property that it does not have. GUI thread.
ZQTUTIL_EXPORT QString GetWidgetStyle(QWidget const* widget, char const* property);

/// Sets the property "Level" of \a widget to the name of \a level, as ApplyWidgetStyle(); to an empty text when it has
/// no name.
ZQTUTIL_EXPORT void ApplyMessageLevel(QWidget* widget, MessageLevel level);

/// The level that ApplyMessageLevel() gave to \a widget; NoMessage for a null widget, and when it has none or one that
/// is unknown.
ZQTUTIL_EXPORT MessageLevel GetMessageLevel(QWidget const* widget);

} // namespace Util
} // namespace Zelkor

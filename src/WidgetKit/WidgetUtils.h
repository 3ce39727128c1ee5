#pragma once

/// \file
/// Style hints, spacers, and layouts that follow the platform's style. Call these functions on the GUI thread.

#include <Base/Export.h>

#include <QtCore/QString>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Widget
{
namespace Util
{

/// Sets the dynamic property "styleHint" of \a widget to \a hint, then applies the style sheet to \a widget again.
///
/// Style sheets can select the widget with, for example, `[styleHint="activeButton"]`.
///
/// \param widget  the widget; null is ignored
/// \param hint    the value of the property
ZQTUTIL_EXPORT void applyStyleHint(QWidget* widget, QString const& hint);

/// Applies the style and the style sheet to \a widget again, but not to its children.
///
/// Call this function after a change of a property that a style sheet selector uses: Qt evaluates property selectors
/// only when it polishes a widget. A null \a widget is ignored.
ZQTUTIL_EXPORT void repolishWidget(QWidget* widget);

/// Creates an empty widget that reserves space in a layout.
///
/// The widget has no default size, so the caller must set its size. The widget is transparent for mouse events.
///
/// \param parent  the owner of the widget; if null, the caller owns it
/// \param name    the object name, for style sheets
/// \return the new widget
ZQTUTIL_EXPORT QWidget* createSpacer(QWidget* parent, QString const& name);

/// Installs an event filter that keeps the layout of \a container up to date.
///
/// The filter updates the layout when a child, for example a button, is added or removed, and when the font, style or
/// layout direction of \a container changes. Without the filter, Qt updates the layout in only some of these cases.
///
/// The filter does not set margins or spacings. If the caller has not set them, the layout uses the values of the
/// current style.
///
/// \a container owns the filter. A second call for the same container has no effect. A null \a container is ignored.
ZQTUTIL_EXPORT void installLayoutController(QWidget* container);

} // namespace Util
} // namespace Widget
} // namespace Zelkor

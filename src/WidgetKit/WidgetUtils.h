#pragma once

/// \file
/// Style hints, and layouts that follow the platform.

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

/// Sets the dynamic property "styleHint" of \a widget to \a hint, for selectors such as `[styleHint="activeButton"]`,
/// and applies the style sheet to it again. Null is ignored. GUI thread.
ZQTUTIL_EXPORT void applyStyleHint(QWidget* widget, QString const& hint);

/// Applies the style, and with it the style sheet, to \a widget again, alone: needed after a property that a selector
/// names has changed. Null is ignored. GUI thread.
ZQTUTIL_EXPORT void repolishWidget(QWidget* widget);

/// A new plain widget \a name without any size of its own, owned by \a parent: whoever adds it to a layout gives it the
/// size that it holds open. The mouse goes through it. GUI thread.
ZQTUTIL_EXPORT QWidget* createSpacer(QWidget* parent, QString const& name);

/// Keeps the layout of \a container current: margins and spacings that nobody has set follow the platform's style, and
/// the container is laid out again when a child comes or goes, such as a button, or when its font, style or direction
/// changes. It lasts as long as the container. A second call and null are ignored. GUI thread.
ZQTUTIL_EXPORT void installLayoutController(QWidget* container);

} // namespace Util
} // namespace Widget
} // namespace Zelkor

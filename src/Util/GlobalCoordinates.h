#pragma once

/// \file
/// Conversion of rectangles between widget coordinates and global screen coordinates.

#include <Util/Export.h>

#include <QtCore/QRect>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Util
{

/// Returns the rectangle of \a widget in global screen coordinates, without the window frame. Returns a null rectangle
/// if \a widget is null. GUI thread.
ZQTUTIL_EXPORT QRect GetGlobalWidgetRect(QWidget* widget);

/// Returns \a globalRect, which is in global screen coordinates, in the coordinates of \a widget. Returns a null
/// rectangle if \a widget is null. GUI thread.
ZQTUTIL_EXPORT QRect GetWidgetRect(QWidget* widget, QRect const& globalRect);

} // namespace Util
} // namespace Zelkor

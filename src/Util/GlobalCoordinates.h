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

/// Returns the rectangle of \a widget in global screen coordinates. The rectangle does not include the window frame.
/// Returns a null rectangle if \a widget is null. Call this function on the GUI thread.
ZQTUTIL_EXPORT QRect GetGlobalWidgetRect(QWidget* widget);

/// Converts \a globalRect from global screen coordinates to the coordinates of \a widget, and returns the result.
/// Returns a null rectangle if \a widget is null. Call this function on the GUI thread.
ZQTUTIL_EXPORT QRect GetWidgetRect(QWidget* widget, QRect const& globalRect);

} // namespace Util
} // namespace Zelkor

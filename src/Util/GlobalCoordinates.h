#pragma once

/// \file
/// Rectangles between widgets and the screen.

#include <Util/Export.h>

#include <QtCore/QRect>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Util
{

/// The rectangle of \a widget, without a frame, in the coordinates of the screen; a null one for a null widget.
/// GUI thread.
ZQTUTIL_EXPORT QRect GetGlobalWidgetRect(QWidget* widget);

/// \a globalRect, in coordinates of the screen, in those of \a widget; a null one for a null widget. GUI
/// thread.
ZQTUTIL_EXPORT QRect GetWidgetRect(QWidget* widget, QRect const& globalRect);

} // namespace Util
} // namespace Zelkor

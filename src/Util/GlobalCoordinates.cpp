#include <Util/GlobalCoordinates.h>

#include <QtWidgets/QWidget>

namespace Zelkor::Util
{

QRect GetGlobalWidgetRect(QWidget* widget)
{
    if (!widget) {
        return {};
    }
    return {widget->mapToGlobal(QPoint(0, 0)), widget->mapToGlobal(QPoint(widget->width() - 1, widget->height() - 1))};
}

QRect GetWidgetRect(QWidget* widget, QRect const& globalRect)
{
    if (!widget) {
        return {};
    }
    return {widget->mapFromGlobal(globalRect.topLeft()), widget->mapFromGlobal(globalRect.bottomRight())};
}

} // namespace Zelkor::Util

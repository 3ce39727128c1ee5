#include "Style.h"

#include <QtWidgets/QStyleOption>

namespace Zelkor::Gallery
{
namespace
{

constexpr int CellMargin = 5;
constexpr int ArrowShift = 3;

} // namespace

Style::Style()
    : QProxyStyle(QStringLiteral("Fusion"))
{}

int Style::pixelMetric(PixelMetric metric, QStyleOption const* option, QWidget const* widget) const
{
    switch (metric) {
    case PM_FocusFrameHMargin:
    case PM_HeaderMargin:
        return CellMargin;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

// The margin that we add to headers moves the sort arrow above the text's middle.
void Style::drawPrimitive(PrimitiveElement element, QStyleOption const* option, QPainter* painter,
                          QWidget const* widget) const
{
    auto const* const header = qstyleoption_cast<QStyleOptionHeader const*>(option);
    if (element != PE_IndicatorHeaderArrow || !header) {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        return;
    }
    QStyleOptionHeader moved = *header;
    moved.rect.translate(0, ArrowShift);
    QProxyStyle::drawPrimitive(element, &moved, painter, widget);
}

} // namespace Zelkor::Gallery

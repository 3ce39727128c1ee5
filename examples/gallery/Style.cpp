#include "Style.h"

#include "Palettes.h"

namespace Zelkor::Gallery
{
namespace
{

constexpr int CellMargin = 5;
constexpr int ArrowShift = 3;
constexpr int OutlineLightness = 400; // percent

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

QSize Style::sizeFromContents(ContentsType type, QStyleOption const* option, QSize const& contents,
                              QWidget const* widget) const
{
    QSize const size = QProxyStyle::sizeFromContents(type, option, contents, widget);
    return type == CT_PushButton ? size + QSize(2 * CellMargin, 0) : size;
}

void Style::drawPrimitive(PrimitiveElement element, QStyleOption const* option, QPainter* painter,
                          QWidget const* widget) const
{
    auto const* const header = qstyleoption_cast<QStyleOptionHeader const*>(option);
    auto const* const button = qstyleoption_cast<QStyleOptionButton const*>(option);
    if (element == PE_IndicatorHeaderArrow && header) {
        DrawHeaderArrow(*header, painter, widget);
    } else if (element == PE_IndicatorCheckBox && button) {
        DrawCheckBox(*button, painter, widget);
    } else {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

// Moves the sort arrow down to the vertical centre of the text. Without this function, the wide header margin of this
// style would place the arrow too high.
void Style::DrawHeaderArrow(QStyleOptionHeader header, QPainter* painter, QWidget const* widget) const
{
    header.rect.translate(0, ArrowShift);
    QProxyStyle::drawPrimitive(PE_IndicatorHeaderArrow, &header, painter, widget);
}

// Fusion draws the outline of a check box darker than the window colour. On a dark background, this outline would be
// invisible. Therefore, pass a lighter window colour to Fusion.
void Style::DrawCheckBox(QStyleOptionButton box, QPainter* painter, QWidget const* widget) const
{
    if (IsDark(box.palette)) {
        box.palette.setColor(QPalette::Window, box.palette.color(QPalette::Window).lighter(OutlineLightness));
    }
    QProxyStyle::drawPrimitive(PE_IndicatorCheckBox, &box, painter, widget);
}

} // namespace Zelkor::Gallery

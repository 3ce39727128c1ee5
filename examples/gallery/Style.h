#pragma once

/// \file
/// The widget style of the gallery.

#include <QtWidgets/QProxyStyle>
#include <QtWidgets/QStyleOption>

namespace Zelkor
{
namespace Gallery
{

/// The Fusion style with wider margins in tables, lists and push buttons, and with check boxes that are visible on a
/// dark background.
class Style : public QProxyStyle
{
    Q_OBJECT

public:
    Style();

    int pixelMetric(PixelMetric metric, QStyleOption const* option, QWidget const* widget) const override;
    QSize sizeFromContents(ContentsType type, QStyleOption const* option, QSize const& contents,
                           QWidget const* widget) const override;
    void drawPrimitive(PrimitiveElement element, QStyleOption const* option, QPainter* painter,
                       QWidget const* widget) const override;

private:
    void DrawHeaderArrow(QStyleOptionHeader header, QPainter* painter, QWidget const* widget) const;
    void DrawCheckBox(QStyleOptionButton box, QPainter* painter, QWidget const* widget) const;
};

} // namespace Gallery
} // namespace Zelkor

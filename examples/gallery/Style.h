#pragma once

/// \file
/// The widget style of the gallery.

#include <QtWidgets/QProxyStyle>

namespace Zelkor
{
namespace Gallery
{

/// Fusion with more air between the columns of tables and around the entries of lists.
class Style : public QProxyStyle
{
    Q_OBJECT

public:
    Style();

    int pixelMetric(PixelMetric metric, QStyleOption const* option, QWidget const* widget) const override;
    void drawPrimitive(PrimitiveElement element, QStyleOption const* option, QPainter* painter,
                       QWidget const* widget) const override;
};

} // namespace Gallery
} // namespace Zelkor

#include <Util/StyledPalette.h>

#include <QtGui/QBrush>
#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>
#include <QtWidgets/QApplication>

namespace Zelkor::Util
{

namespace
{

QColor ApplicationColor(QPalette::ColorRole role)
{
    return QGuiApplication::palette().brush(QPalette::Current, role).color();
}

void SetApplicationColor(QPalette::ColorRole role, QColor const& color)
{
    QPalette palette = QGuiApplication::palette();
    palette.setBrush(QPalette::All, role, QBrush(color));
    QApplication::setPalette(palette);
}

} // namespace

StyledPalette::StyledPalette(QWidget* parent)
    : QWidget(parent)
{}

QColor StyledPalette::GetLinksColor()
{
    return ApplicationColor(QPalette::Link);
}

void StyledPalette::SetLinksColor(QColor color)
{
    SetApplicationColor(QPalette::Link, color);
}

QColor StyledPalette::GetPalleteLight()
{
    return ApplicationColor(QPalette::Light);
}

void StyledPalette::SetPaletteLight(QColor color)
{
    // Unlike SetLinksColor(), this function converts the colour to RGB, because callers depend on an RGB colour.
    QColor rgb;
    rgb.setRgb(color.red(), color.green(), color.blue(), color.alpha());
    SetApplicationColor(QPalette::Light, rgb);
}

} // namespace Zelkor::Util

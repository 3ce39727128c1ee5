#include "Palettes.h"

namespace Zelkor::Gallery
{
namespace
{

struct Scheme
{
    QRgb window;
    QRgb base;
    QRgb alternateBase;
    QRgb button;
    QRgb text;
    QRgb dimmedText;
    QRgb highlight;
    QRgb highlightedText;
    QRgb toolTip;
    QRgb link;
};

constexpr Scheme Light{0xffefefef, 0xffffffff, 0xfff5f6f8, 0xfff6f6f6, 0xff1d1f21,
                       0xff85888c, 0xff2f6fc4, 0xffffffff, 0xfffdfbe6, 0xff1f5fb4};
constexpr Scheme Dark{0xff2b2d30, 0xff1f2123, 0xff26282b, 0xff3a3d41, 0xffe4e6e8,
                      0xff85898e, 0xff3d7fd6, 0xffffffff, 0xff3a3d41, 0xff7fb2f5};

constexpr int MiddleLightness = 128;

QPalette PaletteOf(Scheme const& scheme)
{
    // This constructor of QPalette computes the colours of bevels from the colour of the button.
    QPalette palette(QColor(scheme.button), QColor(scheme.window));
    palette.setColor(QPalette::WindowText, QColor(scheme.text));
    palette.setColor(QPalette::Base, QColor(scheme.base));
    palette.setColor(QPalette::AlternateBase, QColor(scheme.alternateBase));
    palette.setColor(QPalette::Text, QColor(scheme.text));
    palette.setColor(QPalette::ButtonText, QColor(scheme.text));
    palette.setColor(QPalette::PlaceholderText, QColor(scheme.dimmedText));
    palette.setColor(QPalette::Highlight, QColor(scheme.highlight));
    palette.setColor(QPalette::HighlightedText, QColor(scheme.highlightedText));
    palette.setColor(QPalette::ToolTipBase, QColor(scheme.toolTip));
    palette.setColor(QPalette::ToolTipText, QColor(scheme.text));
    palette.setColor(QPalette::Link, QColor(scheme.link));
    for (QPalette::ColorRole const role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, QColor(scheme.dimmedText));
    }
    return palette;
}

} // namespace

QPalette LightPalette()
{
    return PaletteOf(Light);
}

QPalette DarkPalette()
{
    return PaletteOf(Dark);
}

bool IsDark(QPalette const& palette)
{
    return palette.color(QPalette::Base).lightness() < MiddleLightness;
}

} // namespace Zelkor::Gallery

#include "Tone.h"

#include "Palettes.h"

namespace Zelkor::Gallery
{
namespace
{

struct Shades
{
    QRgb onLight;
    QRgb onDark;
};

constexpr Shades Good{0xff1a7034, 0xff63c97f};
constexpr Shades Caution{0xff8a5200, 0xffe3b04b};
constexpr Shades Bad{0xffbf2424, 0xffff8078};

QColor Shade(Shades const& shades, QPalette const& palette)
{
    return QColor(IsDark(palette) ? shades.onDark : shades.onLight);
}

} // namespace

QColor ToneColor(Tone tone, QPalette const& palette)
{
    switch (tone) {
    case Tone::Good:
        return Shade(Good, palette);
    case Tone::Caution:
        return Shade(Caution, palette);
    case Tone::Bad:
        return Shade(Bad, palette);
    case Tone::Neutral:
        break;
    }
    return palette.color(QPalette::Text);
}

} // namespace Zelkor::Gallery

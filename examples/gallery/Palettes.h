#pragma once

/// \file
/// Light and dark palettes.

#include <QtGui/QPalette>

namespace Zelkor
{
namespace Gallery
{

/// The palettes that the pictures are taken in.
QPalette LightPalette();
QPalette DarkPalette();

/// Whether \a palette has light text on dark ground, whoever made it.
bool IsDark(QPalette const& palette);

} // namespace Gallery
} // namespace Zelkor

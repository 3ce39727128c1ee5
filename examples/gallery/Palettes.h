#pragma once

/// \file
/// Light and dark palettes.

#include <QtGui/QPalette>

namespace Zelkor
{
namespace Gallery
{

/// Returns the light palette for the screenshots.
QPalette LightPalette();

/// Returns the dark palette for the screenshots.
QPalette DarkPalette();

/// Returns true if \a palette, which can be any palette, has a dark background.
bool IsDark(QPalette const& palette);

} // namespace Gallery
} // namespace Zelkor

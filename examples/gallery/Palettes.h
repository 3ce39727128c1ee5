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

/// Returns true if \a palette has a dark background. Works for any palette.
bool IsDark(QPalette const& palette);

} // namespace Gallery
} // namespace Zelkor

#pragma once

/// \file
/// The palettes that the pictures are taken in.

#include <QtGui/QPalette>

namespace Zelkor
{
namespace Gallery
{

QPalette LightPalette();
QPalette DarkPalette();

} // namespace Gallery
} // namespace Zelkor

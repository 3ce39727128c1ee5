#pragma once

/// \file
/// Text colours for good and bad values.

#include <QtGui/QColor>
#include <QtGui/QPalette>

namespace Zelkor
{
namespace Gallery
{

/// How good a value is. The tone sets the colour of its text.
enum class Tone { Neutral, Good, Caution, Bad };

/// Returns the colour for text of \a tone that is readable on the light or dark background of \a palette.
QColor ToneColor(Tone tone, QPalette const& palette);

} // namespace Gallery
} // namespace Zelkor

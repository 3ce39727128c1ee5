#pragma once

/// \file
/// Colours that tell good from bad.

#include <QtGui/QColor>
#include <QtGui/QPalette>

namespace Zelkor
{
namespace Gallery
{

enum class Tone { Neutral, Good, Caution, Bad };

/// The colour of text of \a tone on the light or dark background of \a palette.
QColor ToneColor(Tone tone, QPalette const& palette);

} // namespace Gallery
} // namespace Zelkor

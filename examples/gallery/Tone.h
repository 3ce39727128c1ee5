#pragma once

/// \file
/// Text colours that show whether a value is good or bad.

#include <QtGui/QColor>
#include <QtGui/QPalette>

namespace Zelkor
{
namespace Gallery
{

/// Rates a value. The tone of a value determines the colour of its text.
enum class Tone { Neutral, Good, Caution, Bad };

/// Returns the text colour for \a tone. The colour is readable on the background of \a palette, which may be light or
/// dark.
QColor ToneColor(Tone tone, QPalette const& palette);

} // namespace Gallery
} // namespace Zelkor

#pragma once

#include <QtCore/QRect>
#include <QtCore/QVector>

namespace Zelkor::Testing
{

/// Returns the geometries of all screens. The primary screen is the first. The offscreen platform has one screen;
/// the X server of the tests has several screens.
QVector<QRect> ScreenGeometries();

/// Adds the column "screen" of type QRect to the current test data. Adds one row for each screen. The row contains the
/// geometry of the screen.
void AddScreenRows();

} // namespace Zelkor::Testing

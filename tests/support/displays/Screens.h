#pragma once

#include <QtCore/QRect>
#include <QtCore/QVector>

namespace Zelkor::Testing
{

/// Returns the geometries of all screens. The first one is the primary screen. The offscreen platform has one screen;
/// the X server of the tests has several.
QVector<QRect> ScreenGeometries();

/// Adds the column "screen" of type QRect to the current test data, and one row with the geometry of each screen.
void AddScreenRows();

} // namespace Zelkor::Testing

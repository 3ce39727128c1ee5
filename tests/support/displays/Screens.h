#pragma once

#include <QtCore/QRect>
#include <QtCore/QVector>

namespace Zelkor::Testing
{

/// The geometries of the screens, the primary one first: one on the offscreen platform, several on a display.
QVector<QRect> Screens();

/// The data of a test function with a row for each screen, and its geometry in the column "screen".
void AddScreens();

} // namespace Zelkor::Testing

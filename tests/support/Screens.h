#pragma once

#include <QtCore/QRect>
#include <QtCore/QVector>

namespace Zelkor::Testing
{

/// The geometries of the screens, the primary one first: one on the offscreen platform, several on a display.
QVector<QRect> Screens();

/// The data of a test function with a row for each screen, and its geometry in the column "screen".
void AddScreens();

/// Waits until everything that was asked of the window manager so far has been done, and has been heard of; false when
/// that takes too long. It serves its clients in order, so a window that comes up now comes last.
bool WindowsSettle();

} // namespace Zelkor::Testing

#pragma once

/// \file
/// Pictures of the gallery's pages.

#include <Base/IoPath.h>

#include <QtCore/QString>

namespace Zelkor
{
namespace Gallery
{

/// Writes a picture of the window with every page at work on \a folder, light and dark, into the folder \a target,
/// which is made, and prints the name of each. Returns the exit code of the program. Turns the application's event
/// loop.
int TakeScreenshots(QString const& target, ioPath const& folder);

} // namespace Gallery
} // namespace Zelkor

#pragma once

/// \file
/// Takes screenshots of the gallery's pages.

#include <Base/IoPath.h>

#include <QtCore/QString>

namespace Zelkor
{
namespace Gallery
{

/// Writes screenshots of every page and its dialogs, in a light and a dark palette, and prints their file names.
///
/// Pages that use a folder show \a folder. The folder \a target is created if it does not exist. Runs nested event
/// loops. Returns the exit code of the program: 1 if a file cannot be written.
int TakeScreenshots(QString const& target, ioPath const& folder);

} // namespace Gallery
} // namespace Zelkor

#pragma once

/// \file
/// A function that takes screenshots of the gallery's pages.

#include <Base/IoPath.h>

#include <QtCore/QString>

namespace Zelkor
{
namespace Gallery
{

/// Writes screenshots of all pages and their dialogs into the folder \a target, with a light palette and with a dark
/// palette. Prints the file names of the screenshots.
///
/// Pages that use a folder show \a folder. Creates the folder \a target if it does not exist. Runs nested event loops.
/// Returns the exit code of the program, which is 1 if the folder cannot be created or a file cannot be written.
int TakeScreenshots(QString const& target, ioPath const& folder);

} // namespace Gallery
} // namespace Zelkor

#pragma once

/// \file
/// The sizes of a folder's entries on the terminal.

#include "FolderMeasurer.h"

namespace Zelkor
{
namespace Gallery
{

/// The table of \a entries, largest first, with their \a totals and what could not be measured.
QString ReportText(std::vector<FolderEntry> entries, FolderTotals const& totals);

/// Measures \a folder and prints its ReportText(), with progress on the standard error. Returns the exit code of the
/// program: 1 when the folder could not be read. Turns the application's event loop, and needs no display.
int PrintReport(ioPath const& folder);

} // namespace Gallery
} // namespace Zelkor

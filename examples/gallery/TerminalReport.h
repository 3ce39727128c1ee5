#pragma once

/// \file
/// Reports the sizes of a folder's entries in the terminal.

#include "FolderMeasurer.h"

namespace Zelkor
{
namespace Gallery
{

/// Returns a table of \a entries, sorted by size in descending order, with \a totals and a list of the paths that could
/// not be measured.
QString ReportText(std::vector<FolderEntry> entries, FolderTotals const& totals);

/// Measures \a folder and prints its ReportText(), with progress on the standard error. Runs the application's event
/// loop. Returns the exit code of the program: 1 if the folder cannot be read.
int PrintReport(ioPath const& folder);

} // namespace Gallery
} // namespace Zelkor

#pragma once

/// \file
/// Functions that report the sizes of a folder's entries on the terminal.

#include "FolderMeasurer.h"

namespace Zelkor
{
namespace Gallery
{

/// Returns the text of the report: a table of \a entries, sorted by size in descending order, with \a totals in the
/// last row. If some paths could not be measured, a list of these paths follows the table.
QString ReportText(std::vector<FolderEntry> entries, FolderTotals const& totals);

/// Measures \a folder and prints the result of ReportText() to the standard output. Shows progress on the standard
/// error. Runs the application's event loop. Returns the exit code of the program, which is 1 if the folder cannot be
/// read.
int PrintReport(ioPath const& folder);

} // namespace Gallery
} // namespace Zelkor

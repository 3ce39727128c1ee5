#pragma once

/// \file
/// Prints text to the terminal through the streams of QtStdStreamsInitializer, which must exist.

#include <QtCore/QString>

namespace Zelkor
{
namespace Gallery
{

/// Makes the streams write UTF-8 in every locale, because the names of files are UTF-8.
void UseUtf8OnTerminal();

/// Writes \a text and a line end to the standard output.
void Print(QString const& text);

/// Writes \a text and a line end to the standard error.
void PrintError(QString const& text);

/// Shows progress on the standard error. On a terminal, rewrites one line in place. Otherwise prints a new line for
/// each quarter of the work.
class ProgressLine
{
public:
    ProgressLine();

    /// Shows that \a done of \a total entries are measured. On a terminal, also shows \a name, the current entry.
    void Show(int done, int total, QString const& name);

    /// Clears the line on a terminal.
    void Clear();

private:
    bool const isTerminal_;
    int quarters_ = 0; // quarters printed so far
};

} // namespace Gallery
} // namespace Zelkor

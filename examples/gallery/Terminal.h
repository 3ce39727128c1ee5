#pragma once

/// \file
/// Functions that print text to the terminal. They use the streams of QtStdStreamsInitializer, so a
/// QtStdStreamsInitializer object must exist while they are called.

#include <QtCore/QString>

namespace Zelkor
{
namespace Gallery
{

/// Sets the encoding of the streams to UTF-8, independent of the locale, because the names of files are UTF-8.
void UseUtf8OnTerminal();

/// Writes \a text and a line end to the standard output.
void Print(QString const& text);

/// Writes \a text and a line end to the standard error.
void PrintError(QString const& text);

/// Shows progress on the standard error. If the standard error is a terminal, rewrites the same line for each change.
/// Otherwise prints a new line when 25 %, 50 %, 75 % and 100 % of the entries have been measured.
class ProgressLine
{
public:
    ProgressLine();

    /// Shows that \a done of \a total entries have been measured. On a terminal, also shows \a name, which is the name
    /// of the current entry.
    void Show(int done, int total, QString const& name);

    /// Clears the line if the standard error is a terminal. Otherwise does nothing.
    void Clear();

private:
    bool const isTerminal_;
    // The progress that was printed last: 1 for 25 %, 2 for 50 %, 3 for 75 %, 4 for 100 %; 0 if nothing has been
    // printed.
    int quarters_ = 0;
};

} // namespace Gallery
} // namespace Zelkor

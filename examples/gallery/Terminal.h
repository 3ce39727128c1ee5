#pragma once

/// \file
/// Lines of text on the terminal, through the streams of the application's QtStdStreamsInitializer.

#include <QtCore/QString>

namespace Zelkor
{
namespace Gallery
{

/// What is written is UTF-8 from now on, whatever the locale: so are the names of files.
void UseUtf8OnTerminal();

/// Writes \a text and an end of line to the standard output, or to the standard error.
void Print(QString const& text);
void PrintError(QString const& text);

/// How far something has come, on the standard error: one line that is rewritten in place where that is a terminal, and
/// else a line for each quarter.
class ProgressLine
{
public:
    ProgressLine();

    /// \a what is going on; \a done of \a total have ended.
    void Show(int done, int total, QString const& what);

    /// Takes the line away.
    void Clear();

private:
    bool const isTerminal_;
    int quarters_ = 0; // that have been shown
};

} // namespace Gallery
} // namespace Zelkor

#pragma once

// Plays: what a test program does when it is started anew as a process of its own.

#include <QtCore/QProcess>

#include <cstddef>

namespace Zelkor::Testing
{

struct Play
{
    char const* name;
    void (*run)();
};

/// The first argument of such a process.
constexpr char const* playArgument = "--play";

/// Whether a program's arguments make it such a process.
bool IsPlay(int argc, char** argv);

/// Runs the play that the arguments name, of those from \a first to before \a last, in a QCoreApplication. Returns what
/// the program is to return.
int RunPlay(int argc, char** argv, Play const* first, Play const* last);

template <std::size_t Count>
int RunPlay(int argc, char** argv, Play const (&plays)[Count])
{
    return RunPlay(argc, argv, plays, plays + Count);
}

/// Starts this program as a process of its own that runs a play.
void StartPlay(QProcess& process, char const* play);

} // namespace Zelkor::Testing

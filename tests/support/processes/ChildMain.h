#pragma once

#include <QtCore/QProcess>
#include <QtCore/QStringList>

#include <cstddef>

namespace Zelkor::Testing
{

/// An alternative main function of a test program, for a test that needs a process from its start to its exit: with
/// its own program file, standard streams or static objects. For all other tests RunInChild() is simpler.
struct ChildMain
{
    char const* name;
    void (*run)();
};

/// The first argument of a process that runs a ChildMain. The second one is its name.
constexpr char const* childMainArgument = "--child-main";

/// Returns true if the program was started to run a ChildMain instead of its tests.
bool IsChildMain(int argc, char** argv);

/// Runs the ChildMain that the arguments name, with a QCoreApplication. Searches from \a first to before \a last.
/// Returns the exit status of the process.
int RunChildMain(int argc, char** argv, ChildMain const* first, ChildMain const* last);

template <std::size_t Count>
int RunChildMain(int argc, char** argv, ChildMain const (&functions)[Count])
{
    return RunChildMain(argc, argv, functions, functions + Count);
}

/// Starts this program as \a process, which runs the ChildMain \a name. \a arguments are its further arguments.
void StartChildMain(QProcess& process, char const* name, QStringList const& arguments = {});

/// As above, with \a program, which is a copy of this program.
void StartChildMain(QProcess& process, QString const& program, char const* name, QStringList const& arguments);

} // namespace Zelkor::Testing

#pragma once

#include <QtCore/QProcess>
#include <QtCore/QStringList>

#include <cstddef>

namespace Zelkor::Testing
{

/// An alternative main function of a test program. A test that needs a new process starts the test program again. The
/// new process calls \c run and does not run the tests. RunInChild() is simpler, but it only forks the current process.
struct ChildMain
{
    char const* name;
    void (*run)();
};

/// The first command line argument of a process that runs a ChildMain. The second command line argument is the name of
/// the ChildMain.
constexpr char const* childMainArgument = "--child-main";

/// Returns true if the command line arguments request a ChildMain instead of the tests of the program.
bool IsChildMain(int argc, char** argv);

/// Creates a QCoreApplication and runs the ChildMain whose name is the second command line argument. The array of all
/// available ChildMain objects begins at \a first and ends before \a last. Returns the exit status for the process: 0,
/// or 1 if no ChildMain has this name.
int RunChildMain(int argc, char** argv, ChildMain const* first, ChildMain const* last);

template <std::size_t Count>
int RunChildMain(int argc, char** argv, ChildMain const (&functions)[Count])
{
    return RunChildMain(argc, argv, functions, functions + Count);
}

/// Uses \a process to start this program again. The new process runs the ChildMain with the name \a name. \a arguments
/// are additional command line arguments.
void StartChildMain(QProcess& process, char const* name, QStringList const& arguments = {});

/// Overload that starts a copy of this program. \a program is the path of the copy.
void StartChildMain(QProcess& process, QString const& program, char const* name, QStringList const& arguments);

} // namespace Zelkor::Testing

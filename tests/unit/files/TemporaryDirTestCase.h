#pragma once

#include <support/logs/LogCapture.h>
#include <support/sandbox/Environment.h>
#include <support/sandbox/FolderTestCase.h>

#include <Util/TemporaryDir.h>

#include <QtCore/QStringList>

#include <optional>
#include <string>

class QDataStream;

namespace Zelkor::Testing
{

/// The state of a TemporaryDir in a child process.
struct DirectoryState
{
    bool isValid = false;
    bool exists = false;
    std::string path;
    std::string file; // the result of filePath("file")
    std::string error;
    QStringList problems; // logged warnings and errors, for example "ERROR Util/TemporaryDir.cpp text"
};

QDataStream& operator<<(QDataStream& stream, DirectoryState const& state);
QDataStream& operator>>(QDataStream& stream, DirectoryState& state);

/// Returns the state of \a directory. The member DirectoryState::problems contains the warnings and errors in \a log.
DirectoryState StateOf(Util::TemporaryDir const& directory, LogCapture const& log);

/// Creates a TemporaryDir, destroys it, and returns the state that it had before its destruction.
DirectoryState CreateDirectory();

/// Sets the application's name and version in QCoreApplication.
void SetApplication(std::string const& name, std::string const& version);

/// Base class for tests that create TemporaryDir objects in child processes.
///
/// TemporaryDir chooses the application's folder only once per process. A forked child process inherits the choice of
/// its parent process. Therefore, the test program itself must never create a TemporaryDir.
///
/// The test's folder contains:
///   - "tmp", the temporary folder. The environment variable TMPDIR contains the path of "tmp".
///   - "outside", a folder with files that must not be changed.
///
/// The application's name is "Studio", and its version is 2.5.1. Child processes inherit the name, the version and
/// TMPDIR.
class TemporaryDirTestCase : public FolderTestCase
{
    Q_OBJECT

protected:
    void SetUp() override;
    void TearDown() override;

    /// Returns the file name of this program without its last suffix.
    static std::string ProgramName();

    std::string tmp_;       // the path of "tmp"
    std::string appFolder_; // the path of the application's folder, which is below "tmp"
    std::string outside_;   // the path of "outside"

private:
    std::optional<EnvironmentVariable> tmpdir_;
};

/// Creates a folder that contains folders, files, hidden entries and links. One link points to \a outside.
void MakeTree(std::string const& path, std::string const& outside);

} // namespace Zelkor::Testing

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
    std::string file; // filePath("file")
    std::string error;
    QStringList problems; // warnings and errors in the log: "ERROR Util/TemporaryDir.cpp text"
};

QDataStream& operator<<(QDataStream& stream, DirectoryState const& state);
QDataStream& operator>>(QDataStream& stream, DirectoryState& state);

/// Returns the state of \a directory, with the problems that \a log has captured.
DirectoryState StateOf(Util::TemporaryDir const& directory, LogCapture const& log);

/// Creates a temporary directory, which is removed before the function returns. Returns its state.
DirectoryState CreateDirectory();

/// Sets the name and version of the application.
void SetApplication(std::string const& name, std::string const& version);

/// A test that creates TemporaryDir objects in child processes.
///
/// TemporaryDir chooses its folder once per process. Each child process therefore chooses it again, provided that the
/// test program itself never creates a TemporaryDir.
///
/// The test's folder contains:
///   - "tmp", the temporary folder. TMPDIR contains its path.
///   - "outside", a folder with files that must not be changed.
///
/// The application is "Studio", version 2.5.1. The child processes inherit its name and version, and TMPDIR.
class TemporaryDirTestCase : public FolderTestCase
{
    Q_OBJECT

protected:
    void SetUp() override;
    void TearDown() override;

    /// The name of this program.
    static std::string ProgramName();

    std::string tmp_;       // the temporary folder
    std::string appFolder_; // the folder of the application in it
    std::string outside_;

private:
    std::optional<EnvironmentVariable> tmpdir_;
};

/// Creates a folder that contains folders, files, hidden entries and links. One link points to \a outside.
void MakeTree(std::string const& path, std::string const& outside);

} // namespace Zelkor::Testing

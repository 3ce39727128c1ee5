#include <unit/files/TemporaryDirTestCase.h>

#include <support/sandbox/Folders.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDataStream>
#include <QtCore/QFileInfo>

#include <glog/logging.h>

namespace Zelkor::Testing
{

QDataStream& operator<<(QDataStream& stream, DirectoryState const& state)
{
    return stream << state.isValid << state.exists << QByteArray::fromStdString(state.path)
                  << QByteArray::fromStdString(state.file) << QByteArray::fromStdString(state.error) << state.problems;
}

QDataStream& operator>>(QDataStream& stream, DirectoryState& state)
{
    QByteArray path;
    QByteArray file;
    QByteArray error;
    stream >> state.isValid >> state.exists >> path >> file >> error >> state.problems;
    state.path = path.toStdString();
    state.file = file.toStdString();
    state.error = error.toStdString();
    return stream;
}

DirectoryState StateOf(Util::TemporaryDir const& directory, LogCapture const& log)
{
    DirectoryState state;
    state.isValid = directory.isValid();
    state.path = directory.path().toStdString();
    state.file = directory.filePath(QStringLiteral("file")).toStdString();
    state.error = directory.errorString().toStdString();
    state.exists = !state.path.empty() && Exists(state.path);
    QVector<LogLine> const lines = log.Lines();
    for (LogLine const& line : lines) {
        if (line.severity != google::GLOG_INFO) {
            state.problems += QString::fromLatin1(google::GetLogSeverityName(line.severity)) + QLatin1Char(' ') +
                              line.file + QLatin1Char(' ') + line.text;
        }
    }
    return state;
}

DirectoryState CreateDirectory()
{
    LogCapture const log;
    Util::TemporaryDir const directory;
    return StateOf(directory, log);
}

void SetApplication(std::string const& name, std::string const& version)
{
    QCoreApplication::setApplicationName(QString::fromStdString(name));
    QCoreApplication::setApplicationVersion(QString::fromStdString(version));
}

void TemporaryDirTestCase::SetUp()
{
    FolderTestCase::SetUp();
    tmp_ = At("tmp");
    appFolder_ = tmp_ + "/Studio/2/" + ProgramName();
    outside_ = At("outside");
    MakeFolder(tmp_);
    MakeFolders(outside_ + "/folder");
    MakeFile(outside_ + "/canary");
    MakeFile(outside_ + "/folder/canary");
    tmpdir_.emplace("TMPDIR", QByteArray::fromStdString(tmp_));
    SetApplication("Studio", "2.5.1");
}

void TemporaryDirTestCase::TearDown()
{
    tmpdir_.reset();
    FolderTestCase::TearDown();
}

std::string TemporaryDirTestCase::ProgramName()
{
    return QFileInfo(QCoreApplication::applicationFilePath()).completeBaseName().toStdString();
}

void MakeTree(std::string const& path, std::string const& outside)
{
    MakeFolders(path + "/a/b/.c");
    MakeFile(path + "/file");
    MakeFile(path + "/.hidden");
    MakeFile(path + "/a/b/.c/file");
    MakeLink(path + "/a/link", outside);
    MakeLink(path + "/a/dangling", "nowhere");
}

} // namespace Zelkor::Testing

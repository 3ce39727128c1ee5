// The application's folder is inside the system's temporary folder, where other users can write too. Another user could
// therefore create the application's folder or one of its parents, either as a folder or as a symbolic link. For this
// reason, FindForeignFolder() checks all these folders. The check runs before the application's folder is created or
// emptied, and again before a directory is created in it. If the check fails, the TemporaryDir is invalid, and the
// rejected folder is logged.
//
// When the application's folder is emptied, symbolic links in it are not followed.

#include <Util/TemporaryDir.h>

#include <Base/Throw.h>
#include <Util/Platforms/FolderAccess.h>
#include <Util/VersionUtils.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

#include <mutex>
#include <utility>

#include <glog/logging.h>

namespace Zelkor::Util
{
namespace
{

// The path is determined only once. Otherwise, a change of the environment, for example of the variable TMPDIR, would
// change the path while the process is running.
QString const& SystemFolder()
{
    static QString const folder = QDir::tempPath();
    return folder;
}

QString ApplicationFolder(QString const& name, QString const& version)
{
    // All four values are passed in one call of arg(). The name may contain "%1", and a second call of arg() would
    // replace this "%1".
    return QStringLiteral("%1/%2/%3/%4")
        .arg(SystemFolder(), name, QString::number(VersionFromString(version, QStringLiteral(".")).GetMajor()),
             QFileInfo(QCoreApplication::applicationFilePath()).completeBaseName());
}

/// Checks \a folder and each of its parents below the system's temporary folder. Returns the path of the first folder
/// that fails the check, or an empty string if all folders pass. A folder fails the check in these cases:
/// - its name is "..";
/// - its path exists, but is a symbolic link, is not a folder, or is not owned by the effective user.
QString FindForeignFolder(QString const& folder)
{
    QString path = SystemFolder();
    QStringList const names = folder.mid(path.size()).split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (QString const& name : names) {
        path += QLatin1Char('/') + name;
        QFileInfo const info(path);
        bool const exists = info.exists() || info.isSymLink();
        if (name == QLatin1String("..") || (exists && !IsOwnFolder(path))) {
            return path;
        }
    }
    return QString();
}

void EmptyFolder(QString const& folder)
{
    QDirIterator entries(folder, QDir::Dirs | QDir::Files | QDir::NoDotAndDotDot);
    while (entries.hasNext()) {
        QString const path = entries.next();
        QFileInfo const info = entries.fileInfo();
        if (info.isDir() && !info.isSymLink()) {
            QDir(path).removeRecursively();
        } else {
            QFile::remove(path);
        }
    }
}

void PrepareTemporaryFolder(QString const& folder)
{
    static std::mutex readyGuard;
    static bool ready = false;

    std::lock_guard<std::mutex> const lock(readyGuard);
    if (std::exchange(ready, true)) {
        return;
    }
    if (!QDir(folder).exists()) {
        QDir(folder).mkpath(QStringLiteral("."));
    } else if (FindForeignFolder(folder).isEmpty()) {
        // Another user may have created the folder after the caller's check. The condition above repeats this check.
        EmptyFolder(folder);
    }
}

/// Returns an invalid QTemporaryDir. It is invalid because its path is inside a device file, where no directory can be
/// created.
std::unique_ptr<QTemporaryDir> MakeInvalidDirectory()
{
    return std::make_unique<QTemporaryDir>(QProcess::nullDevice() + QStringLiteral("/XXXXXX"));
}

/// Creates a directory at Qt's default location. If the system's temporary folder is missing, returns an invalid
/// object, because Qt would otherwise create the system's temporary folder.
std::unique_ptr<QTemporaryDir> MakeDefaultDirectory()
{
    return QFileInfo::exists(QDir::tempPath()) ? std::make_unique<QTemporaryDir>() : MakeInvalidDirectory();
}

/// Creates a directory in \a folder, which is below the system's temporary folder. Returns an invalid object if
/// FindForeignFolder() rejects \a folder, or if the directory cannot be created.
std::unique_ptr<QTemporaryDir> MakeDirectoryIn(QString const& folder)
{
    if (!QFileInfo::exists(SystemFolder())) {
        return MakeInvalidDirectory();
    }
    QString foreign = FindForeignFolder(folder);
    if (foreign.isEmpty()) {
        PrepareTemporaryFolder(folder);
        foreign = FindForeignFolder(folder);
    }
    if (foreign.isEmpty()) {
        return std::make_unique<QTemporaryDir>(folder + QStringLiteral("/XXXXXX"));
    }
    LOG(ERROR) << "The temporary folder is not used, since this is no folder of our own: " << foreign.toStdString();
    return MakeInvalidDirectory();
}

} // namespace

TemporaryDir::TemporaryDir()
{
    static std::mutex mutexDefTempDir;
    static bool defTempDir = false;

    QString const name = QCoreApplication::applicationName();
    QString const version = QCoreApplication::applicationVersion();
    {
        std::lock_guard<std::mutex> const lock(mutexDefTempDir);
        if (name.isEmpty() || version.isEmpty()) {
            dir_ = MakeDefaultDirectory();
            defTempDir = true;
            return;
        }
        if (defTempDir) {
            ZELKOR_THROW(
                std::logic_error("Using TemporaryDir before and after applicationName and applicationVersion are set"));
        }
    }
    static QString const tempPath = ApplicationFolder(name, version);
    dir_ = MakeDirectoryIn(tempPath);
}

TemporaryDir::~TemporaryDir() = default;

bool TemporaryDir::isValid() const
{
    return dir_->isValid();
}

QString TemporaryDir::errorString() const
{
    return dir_->errorString();
}

bool TemporaryDir::autoRemove() const
{
    return dir_->autoRemove();
}

void TemporaryDir::setAutoRemove(bool autoRemove)
{
    dir_->setAutoRemove(autoRemove);
}

bool TemporaryDir::remove()
{
    return dir_->remove();
}

QString TemporaryDir::path() const
{
    return dir_->path();
}

QString TemporaryDir::filePath(QString const& fileName) const
{
    return dir_->filePath(fileName);
}

} // namespace Zelkor::Util

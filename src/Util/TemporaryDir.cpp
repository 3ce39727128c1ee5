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

/// The system's temporary folder, as it is called when the application's is first needed.
QString const& SystemFolder()
{
    static QString const folder = QDir::tempPath();
    return folder;
}

QString ApplicationFolder(QString const& name, QString const& version)
{
    // One call for all four: the name may hold something that looks like a place marker.
    return QStringLiteral("%1/%2/%3/%4")
        .arg(SystemFolder(), name, QString::number(VersionFromString(version, QStringLiteral(".")).GetMajor()),
             QFileInfo(QCoreApplication::applicationFilePath()).completeBaseName());
}

/// The first folder between the system's and \a folder, which is below it, that is there and not ours, or leads back
/// out; empty when there is none.
QString FindForeignFolder(QString const& folder)
{
    QString path = SystemFolder();
    QStringList const names = folder.mid(path.size()).split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (QString const& name : names) {
        path += QLatin1Char('/') + name;
        QFileInfo const info(path);
        bool const isThere = info.exists() || info.isSymLink();
        if (name == QLatin1String("..") || (isThere && !IsOwnFolder(path))) {
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
    } else if (FindForeignFolder(folder).isEmpty()) { // it was not there a moment ago, perhaps
        EmptyFolder(folder);
    }
}

/// An object that is not valid: nothing can be made inside a device.
std::unique_ptr<QTemporaryDir> MakeNoDirectory()
{
    return std::make_unique<QTemporaryDir>(QProcess::nullDevice() + QStringLiteral("/XXXXXX"));
}

/// A directory where Qt puts it. Qt would make the system's temporary folder where that is missing.
std::unique_ptr<QTemporaryDir> MakeDefaultDirectory()
{
    return QFileInfo::exists(QDir::tempPath()) ? std::make_unique<QTemporaryDir>() : MakeNoDirectory();
}

/// A directory in \a folder, which is below the system's; an invalid one where that is not to be had.
std::unique_ptr<QTemporaryDir> MakeDirectoryIn(QString const& folder)
{
    if (!QFileInfo::exists(SystemFolder())) {
        return MakeNoDirectory();
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
    return MakeNoDirectory();
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

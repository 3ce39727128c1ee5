// The application's folder is inside the system's temporary folder, where other users can write too. Another user could
// therefore create the application's folder or one of its parents, or replace one of them at any time. OwnFolder
// protects the application's folder and its contents against this: it opens each folder relative to its parent, and
// accepts only folders of the current user.
//
// QTemporaryDir removes its directory by its path, and it changes the permissions of files that it cannot remove. In
// both cases it follows links. Therefore, CreatedFolder removes the directory instead of QTemporaryDir.

#include <Util/TemporaryDir.h>

#include <Base/Throw.h>
#include <Util/Platforms/OwnFolder.h>
#include <Util/VersionUtils.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
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

/// Opens \a folder, which is below the system's temporary folder.
OwnFolder OpenApplicationFolder(QString const& folder, OwnFolder::IfMissing ifMissing)
{
    QStringList const levels = folder.mid(SystemFolder().size()).split(QLatin1Char('/'), Qt::SkipEmptyParts);
    return OwnFolder(SystemFolder(), levels, ifMissing);
}

/// Creates \a folder, or removes its old contents. Only the first call in a process has an effect. If the first call
/// fails, it returns an error text. All other calls return an empty string.
QString PrepareTemporaryFolder(QString const& folder)
{
    static std::mutex readyGuard;
    static bool ready = false;

    std::lock_guard<std::mutex> const lock(readyGuard);
    if (std::exchange(ready, true)) {
        return QString();
    }
    OwnFolder const opened = OpenApplicationFolder(folder, OwnFolder::IfMissing::Create);
    if (opened.IsOpen()) {
        opened.RemoveVisibleEntries();
    }
    return opened.ErrorString();
}

/// Returns an invalid QTemporaryDir. It is invalid because its path is inside a device file, where no directory can be
/// created.
std::unique_ptr<QTemporaryDir> MakeInvalidDirectory()
{
    return std::make_unique<QTemporaryDir>(QProcess::nullDevice() + QStringLiteral("/XXXXXX"));
}

} // namespace

struct TemporaryDir::Impl
{
    explicit Impl(std::unique_ptr<QTemporaryDir> createdDirectory);

    static std::unique_ptr<Impl> Invalid(QString const& error);
    static std::unique_ptr<Impl> WithoutSystemFolder();
    static std::unique_ptr<Impl> AtDefaultLocation();
    static std::unique_ptr<Impl> In(QString const& folder);

    bool Remove();

    std::unique_ptr<QTemporaryDir> directory;
    CreatedFolder folder;
    QString error;
};

TemporaryDir::Impl::Impl(std::unique_ptr<QTemporaryDir> createdDirectory)
    : directory(std::move(createdDirectory))
    , error(directory->errorString())
{
    if (directory->isValid()) {
        folder = CreatedFolder(directory->path());
    }
}

std::unique_ptr<TemporaryDir::Impl> TemporaryDir::Impl::Invalid(QString const& error)
{
    auto impl = std::make_unique<Impl>(MakeInvalidDirectory());
    impl->error = error;
    return impl;
}

std::unique_ptr<TemporaryDir::Impl> TemporaryDir::Impl::WithoutSystemFolder()
{
    return Invalid(QObject::tr(
        "The temporary folder of the system is missing. The environment variable TMPDIR can contain its path."));
}

/// Creates a directory at Qt's default location. If the system's temporary folder is missing, returns an invalid
/// object, because QTemporaryDir would create the system's temporary folder.
std::unique_ptr<TemporaryDir::Impl> TemporaryDir::Impl::AtDefaultLocation()
{
    return QFileInfo::exists(QDir::tempPath()) ? std::make_unique<Impl>(std::make_unique<QTemporaryDir>())
                                               : WithoutSystemFolder();
}

/// Creates a directory in \a folder, which is below the system's temporary folder.
std::unique_ptr<TemporaryDir::Impl> TemporaryDir::Impl::In(QString const& folder)
{
    if (!QFileInfo::exists(SystemFolder())) {
        return WithoutSystemFolder();
    }
    QString const preparationError = PrepareTemporaryFolder(folder);
    OwnFolder const opened = OpenApplicationFolder(folder, OwnFolder::IfMissing::Fail);
    if (!opened.IsOpen()) {
        return Invalid(preparationError.isEmpty() ? opened.ErrorString() : preparationError);
    }
    auto impl = std::make_unique<Impl>(std::make_unique<QTemporaryDir>(folder + QStringLiteral("/XXXXXX")));
    // QTemporaryDir creates the directory by its path. If another user has replaced a folder on this path, the new
    // directory is in a different folder. If the new directory no longer exists, another instance of the application
    // has removed it. This is not an error.
    QFileInfo const created(impl->directory->path());
    if (impl->directory->isValid() && !opened.Contains(created.fileName()) && created.exists()) {
        impl->Remove();
        return Invalid(QObject::tr("Another user has replaced the folder \"%1\".").arg(folder));
    }
    return impl;
}

bool TemporaryDir::Impl::Remove()
{
    if (!directory->isValid()) {
        return false;
    }
    bool const isRemoved = folder.Remove();
    LOG_IF(WARNING, !isRemoved) << "Cannot remove the temporary directory " << directory->path().toStdString();
    return isRemoved;
}

TemporaryDir::TemporaryDir()
{
    static std::mutex mutexDefTempDir;
    static bool defTempDir = false;

    QString const name = QCoreApplication::applicationName();
    QString const version = QCoreApplication::applicationVersion();
    {
        std::lock_guard<std::mutex> const lock(mutexDefTempDir);
        if (name.isEmpty() || version.isEmpty()) {
            impl_ = Impl::AtDefaultLocation();
            defTempDir = true;
        } else if (defTempDir) {
            ZELKOR_THROW(
                std::logic_error("Using TemporaryDir before and after applicationName and applicationVersion are set"));
        }
    }
    if (!impl_) {
        static QString const tempPath = ApplicationFolder(name, version);
        impl_ = Impl::In(tempPath);
    }
    LOG_IF(ERROR, !isValid()) << "Cannot create a temporary directory: " << errorString().toStdString();
}

TemporaryDir::~TemporaryDir()
{
    if (isValid() && autoRemove()) {
        remove();
    }
    impl_->directory->setAutoRemove(false);
}

bool TemporaryDir::isValid() const
{
    return impl_->directory->isValid();
}

QString TemporaryDir::errorString() const
{
    return impl_->error;
}

bool TemporaryDir::autoRemove() const
{
    return impl_->directory->autoRemove();
}

void TemporaryDir::setAutoRemove(bool autoRemove)
{
    impl_->directory->setAutoRemove(autoRemove);
}

bool TemporaryDir::remove()
{
    return impl_->Remove();
}

QString TemporaryDir::path() const
{
    return impl_->directory->path();
}

QString TemporaryDir::filePath(QString const& fileName) const
{
    return impl_->directory->filePath(fileName);
}

} // namespace Zelkor::Util

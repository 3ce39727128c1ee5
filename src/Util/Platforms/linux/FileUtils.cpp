#include <Util/FileUtils.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>
#include <QtCore/QStringList>
#include <QtCore/QUrl>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusPendingReply>
#include <QtGui/QDesktopServices>

#include <boost/filesystem/operations.hpp>

#include <limits>
#include <string>

#include <sys/statvfs.h>

#include <glog/logging.h>

namespace Zelkor::Util
{
namespace
{

// Returns true if \a path contains a NUL byte. System calls read a path only up to the first NUL byte, so they would
// access a different file.
bool ContainsNul(ioPath const& path)
{
    return path.native().find('\0') != std::string::npos;
}

// Returns the file URI of \a path. The bytes of the path are percent-encoded (RFC 3986, section 2.1). They are not
// converted to Unicode, because a path may contain invalid UTF-8. A relative path is resolved against the current
// folder. If the current folder no longer exists, the path stays relative.
QString FileUri(ioPath const& path)
{
    boost::system::error_code error;
    boost::filesystem::path const start =
        path.is_absolute() ? boost::filesystem::path() : boost::filesystem::current_path(error);
    QByteArray const absolute = QByteArray::fromStdString((start / path).native());
    return QStringLiteral("file://") + QString::fromLatin1(absolute.toPercentEncoding("/"));
}

bool OpenFolder(ioPath const& folder)
{
    bool const isOpen = !ContainsNul(folder) && QDesktopServices::openUrl(QUrl(FileUri(folder), QUrl::StrictMode));
    LOG_IF(WARNING, !isOpen) << "Nothing opens the folder: " << folder.utf8string();
    return isOpen;
}

// Returns the D-Bus call that makes the file manager show \a files, or \a folder if \a files is empty. The interface is
// described at https://www.freedesktop.org/wiki/Specifications/file-manager-interface/
QDBusMessage FileManagerCall(ioPath const& folder, std::vector<ioPath> const& files)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"),
        files.empty() ? QStringLiteral("ShowFolders") : QStringLiteral("ShowItems"));
    QStringList uris;
    for (ioPath const& file : files) {
        uris += FileUri(file);
    }
    if (files.empty()) {
        uris += FileUri(folder);
    }
    QString const startupId;
    call << uris << startupId;
    return call;
}

} // namespace

bool CanReadFileIn(QString const& folder)
{
    QFileInfo const info(folder);
    return info.isDir() && info.isReadable() && info.isExecutable();
}

bool ExploreFile(ioPath const& folder, std::vector<ioPath> const& files)
{
    QDBusConnection const bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return OpenFolder(folder);
    }
    // The application object owns the watcher, so that the watcher is deleted even if the application quits before the
    // reply arrives.
    auto* const watcher =
        new QDBusPendingCallWatcher(bus.asyncCall(FileManagerCall(folder, files)), QCoreApplication::instance());
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, folder] {
        if (watcher->isError()) {
            OpenFolder(folder);
        }
        watcher->deleteLater();
    });
    return true;
}

long long GetAvailableDiskSpace(ioPath const& path)
{
    struct statvfs volume;
    if (ContainsNul(path) || statvfs(path.c_str(), &volume) != 0) {
        return 0;
    }
    long long space = 0;
    bool const overflows = __builtin_mul_overflow(volume.f_bavail, volume.f_frsize, &space);
    return overflows ? std::numeric_limits<long long>::max() : space;
}

} // namespace Zelkor::Util

#include <Util/FileUtils.h>

#include <Util/Platforms/AgedFiles.h>
#include <Util/Platforms/FolderAccess.h>
#include <Util/Platforms/TreeSize.h>
#include <Util/StringUtils.h>

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QObject>
#include <QtCore/QTemporaryFile>

#include <algorithm>
#include <exception>
#include <utility>

#include <glog/logging.h>

namespace Zelkor::Util
{
namespace
{

PathValidity CheckExistingFolder(QString const& path)
{
    // Both checks are required, because they use different rules: WriteUser uses the system's rule for the current
    // user; CanCreateFileIn() uses the rule that FileUtils.h documents.
    bool const isWritable = QFileInfo(path).permissions().testFlag(QFileDevice::WriteUser) && CanCreateFileIn(path);
    return isWritable ? PathValidity::Valid : PathValidity::NotWritable;
}

// Returns true if a component of \a path is "..". In such a path, Qt and the system disagree after a symbolic link: the
// system follows the link first, but rmpath() and QTemporaryFile resolve ".." as text.
bool HasParentComponent(QString const& path)
{
    return path.split(QLatin1Char('/')).contains(QLatin1String(".."));
}

// Creates each missing folder of \a path, and adds it at the beginning of \a created. Returns true if \a path is then a
// folder. QDir::mkpath() does not report which folders it has created.
bool MakeFolders(QString const& path, QStringList& created)
{
    for (int end = 0; end < path.size();) {
        end = path.indexOf(QLatin1Char('/'), end + 1);
        end = end < 0 ? path.size() : end;
        QString const folder = path.left(end);
        if (QDir().mkdir(folder)) {
            created.prepend(folder);
        } else if (!QFileInfo(folder).isDir()) {
            return false;
        }
    }
    return true;
}

PathValidity CheckMissingFolder(QString const& path)
{
    // Reject the path of a new folder if any component of the path ends with a space. Both '/' and '\' separate
    // components. Paths of existing folders do not reach this check.
    if (path.contains(QLatin1String(" /")) || path.contains(QLatin1String(" \\")) || path.endsWith(QLatin1Char(' '))) {
        return PathValidity::TrailingSpace;
    }
    QStringList created;
    bool const isFolder = MakeFolders(path, created);
    if (isFolder && created.isEmpty()) {
        return CheckExistingFolder(path); // The folder has appeared since the caller's check.
    }
    if (isFolder && !HasParentComponent(path)) {
        // Accepted side effect: rmpath() also removes parent folders that already existed and were empty.
        QDir().rmpath(path);
    } else {
        for (QString const& folder : qAsConst(created)) {
            QDir().rmdir(folder);
        }
    }
    return isFolder ? PathValidity::Valid : PathValidity::CannotCreate;
}

// Removes all "/" and "/." from the end of the path. With a "/" at the end, some systems follow a symbolic link in
// rmdir() and would remove its target. The rest of the path is not normalised, because only the system can resolve ".."
// after a link.
QString WithoutTrailingSeparators(QString path)
{
    while (path.size() > 1 && (path.endsWith(QLatin1Char('/')) || path.endsWith(QLatin1String("/.")))) {
        path.chop(1);
    }
    return path;
}

QString MessageOf(PathValidity validity)
{
    switch (validity) {
    case PathValidity::Empty:
        return QObject::tr("Destination folder path cannot be empty");
    case PathValidity::Relative:
        return QObject::tr("Destination folder path must be absolute");
    case PathValidity::NotWritable:
        return QObject::tr("Can't access the specified destination folder");
    case PathValidity::TrailingSpace:
        return QObject::tr("Last letter in folder name mustn't be space");
    case PathValidity::CannotCreate:
        return QObject::tr("The specified destination is not available");
    case PathValidity::Valid:
        break;
    }
    return QString();
}

} // namespace

PathValidity IsThisPathValid(QString const& path)
{
    if (path.isEmpty()) {
        return PathValidity::Empty;
    }
    if (QDir(path).isRelative()) {
        return PathValidity::Relative;
    }
    return QDir().exists(path) ? CheckExistingFolder(path) : CheckMissingFolder(path);
}

bool IsThisPathValid(QString const& path, QString* errorText)
{
    // Kept for compatibility with the first release: if the path is not valid, this function throws an Error and
    // catches it itself.
    class Error : public std::exception
    {
    public:
        explicit Error(QString text)
            : message(std::move(text))
        {}

        QString message;
    };

    PathValidity const validity = IsThisPathValid(path);
    if (validity == PathValidity::Valid) {
        return true;
    }
    try {
        throw Error(MessageOf(validity).trimmed());
    } catch (Error const& error) {
        if (errorText) {
            *errorText = error.message;
        }
    }
    return false;
}

bool CanCreateFileIn(QString const& folder)
{
    return MayCreateFileIn(folder) && TryCreateTmpFile(folder);
}

bool TryCreateTmpFile(QString const& folder)
{
    if (folder.contains(QChar::Null)) {
        return false; // QTemporaryFile would pass the text before the NUL character to the system
    }
    QString const path = HasParentComponent(folder) ? QDir(folder).canonicalPath() : QDir(folder).absolutePath();
    return !path.isEmpty() && QTemporaryFile(path + QDir::separator()).open();
}

void RemoveDir(QString const& folder, int days, bool removeFolderItself)
{
    QDateTime const threshold = QDateTime::currentDateTime().addDays(-static_cast<qint64>(days));
    QString const path = WithoutTrailingSeparators(folder);
    if (path.isEmpty() || !QDir(path).exists()) {
        return;
    }
    // RemoveAgedFiles() does not follow links. If \a folder is a link, append "/." to let the system follow it.
    QString const start = QFileInfo(path).isSymLink() ? path + QLatin1String("/.") : path;
    RemoveAgedFiles(QFile::encodeName(start).toStdString(), threshold.toMSecsSinceEpoch());
    if (removeFolderItself) {
        QDir().rmdir(path);
    }
}

bool RemoveFile(ioPath path)
{
    try {
        return path.remove();
    } catch (...) {
        return false;
    }
}

unsigned long long GetPathSize(ioPath const& path)
{
    // "Erorr" has been misspelt since the first release. It is kept because log searches depend on it.
    return TreeSize(path.utf8string(),
                    [](std::string const& sizeless) { LOG(ERROR) << "Erorr get size for: " << sizeless; });
}

QString GetStandardPath(QStandardPaths::StandardLocation location)
{
    QStringList const candidates = QStandardPaths::standardLocations(location) +
                                   QStandardPaths::standardLocations(QStandardPaths::DocumentsLocation);
    auto const found = std::find_if(candidates.cbegin(), candidates.cend(),
                                    [](QString const& candidate) { return !candidate.isEmpty(); });
    QFileInfo const folder(found != candidates.cend() ? *found : QDir::homePath());
    // Resolve only one link, as documented. The target may be another link, or may not exist.
    return QDir::toNativeSeparators(folder.isSymLink() ? folder.symLinkTarget() : folder.filePath());
}

QString GetZelkorLibraryPath(QString subPath)
{
    return GetStandardPath(QStandardPaths::MoviesLocation) + QDir::separator() + subPath;
}

bool ExploreFile(ioPath const& file)
{
    return ExploreFile(file.parent_path(), {file});
}

bool ExploreSingleFile(QString const& file)
{
    return ExploreFile(ioPath(QStringToUtf8(file)));
}

} // namespace Zelkor::Util

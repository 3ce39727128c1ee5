#include <Util/Platforms/OwnFolder.h>

#include <Util/Platforms/posix/Descriptor.h>
#include <Util/Platforms/posix/FolderRemoval.h>
#include <Util/Platforms/posix/FolderStream.h>

#include <QtCore/QFile>
#include <QtCore/QObject>

#include <cerrno>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <glog/logging.h>

namespace Zelkor::Util
{
namespace
{

// The flag for opening a folder in order to access its entries. With O_PATH and O_SEARCH, the current user does not
// need the permission to list the folder.
#if defined(O_PATH)
constexpr int SearchOnly = O_PATH;
#elif defined(O_SEARCH)
constexpr int SearchOnly = O_SEARCH;
#else
constexpr int SearchOnly = O_RDONLY;
#endif

constexpr int FolderFlags = O_DIRECTORY | O_CLOEXEC;

constexpr mode_t WritableForOthers = S_IWGRP | S_IWOTH;

/// Returns the system's description of the error number \a error.
QString Reason(int error)
{
    return qt_error_string(error);
}

timespec ChangeTime(struct stat const& status)
{
#ifdef __APPLE__
    return status.st_ctimespec;
#else
    return status.st_ctim;
#endif
}

/// Returns true if \a after is the status of the same entry as \a before, and the entry was not renamed in between.
bool IsUnchanged(struct stat const& before, struct stat const& after)
{
    timespec const changed[] = {ChangeTime(before), ChangeTime(after)};
    return before.st_dev == after.st_dev && before.st_ino == after.st_ino && changed[0].tv_sec == changed[1].tv_sec &&
           changed[0].tv_nsec == changed[1].tv_nsec;
}

/// Opens the folders of OwnFolder one after the other.
class Descent
{
public:
    explicit Descent(QString const& root)
        : path_(root)
        , folder_(open(QFile::encodeName(root).constData(), SearchOnly | FolderFlags))
    {
        if (!folder_.IsOpen()) {
            Fail(QObject::tr("The folder \"%1\" cannot be opened: %2").arg(path_, Reason(errno)));
        }
    }

    /// Opens the folder \a name in the current folder. Returns false if this fails.
    bool Enter(QString const& name, OwnFolder::IfMissing ifMissing)
    {
        path_ += QLatin1Char('/') + name;
        QByteArray const encodedName = QFile::encodeName(name);
        if (name == QLatin1String("..")) {
            return Fail(QObject::tr("The path \"%1\" must not contain \"..\".").arg(path_));
        }
        if (encodedName.contains('\0')) {
            // The system would read the name only up to the NUL character and open a different folder.
            return Fail(QObject::tr("The folder \"%1\" cannot be opened: %2").arg(path_, Reason(EINVAL)));
        }
        Descriptor next = OpenFolder(encodedName.constData());
        if (!next.IsOpen() && errno == ENOENT && ifMissing == OwnFolder::IfMissing::Create) {
            if (mkdirat(folder_.Number(), encodedName.constData(), S_IRWXU) != 0 && errno != EEXIST) {
                return Fail(QObject::tr("The folder \"%1\" cannot be created: %2").arg(path_, Reason(errno)));
            }
            next = OpenFolder(encodedName.constData());
        }
        if (!next.IsOpen() && IsLink(encodedName.constData())) {
            return EnterLink(encodedName.constData());
        }
        return Accept(std::move(next));
    }

    int Release() { return folder_.Release(); }
    QString const& ErrorString() const { return error_; }

private:
    bool Fail(QString const& error)
    {
        folder_ = Descriptor(-1);
        error_ = error;
        return false;
    }

    Descriptor OpenFolder(char const* name, int flags = O_NOFOLLOW) const
    {
        return Descriptor(openat(folder_.Number(), name, SearchOnly | FolderFlags | flags));
    }

    bool ReadStatus(char const* name, struct stat& status) const
    {
        return fstatat(folder_.Number(), name, &status, AT_SYMLINK_NOFOLLOW) == 0;
    }

    bool IsLink(char const* name) const
    {
        int const error = errno;
        struct stat status;
        bool const isLink = ReadStatus(name, status) && S_ISLNK(status.st_mode);
        errno = error;
        return isLink;
    }

    bool EnterLink(char const* name)
    {
        struct stat before;
        struct stat after;
        bool const wasOwn = ReadStatus(name, before) && S_ISLNK(before.st_mode) && before.st_uid == geteuid();
        Descriptor target = OpenFolder(name, 0);
        int const error = errno;
        // Another user may have replaced the link while it was followed. Check it again.
        if (!wasOwn || !ReadStatus(name, after) || !IsUnchanged(before, after)) {
            return Fail(QObject::tr("The link \"%1\" does not belong to the current user.").arg(path_));
        }
        errno = error;
        return Accept(std::move(target));
    }

    /// Makes \a next the current folder if it is open and belongs to the current user. Removes the write permission of
    /// other users. Returns false if this fails.
    bool Accept(Descriptor next)
    {
        if (!next.IsOpen()) {
            return Fail(errno == ENOENT
                            ? QObject::tr("The folder \"%1\" is missing.").arg(path_)
                            : QObject::tr("The folder \"%1\" cannot be opened: %2").arg(path_, Reason(errno)));
        }
        folder_ = std::move(next);
        struct stat status;
        if (fstat(folder_.Number(), &status) != 0) {
            return Fail(QObject::tr("The folder \"%1\" cannot be opened: %2").arg(path_, Reason(errno)));
        }
        if (status.st_uid != geteuid()) {
            return Fail(QObject::tr("The folder \"%1\" does not belong to the current user.").arg(path_));
        }
        return (status.st_mode & WritableForOthers) == 0 || DenyWritingToOthers(status.st_mode);
    }

    bool DenyWritingToOthers(mode_t mode)
    {
        // Changing the permissions needs a descriptor that was opened for reading.
        Descriptor const folder(openat(folder_.Number(), ".", O_RDONLY | FolderFlags));
        if (!folder.IsOpen() || fchmod(folder.Number(), mode & 07777U & ~WritableForOthers) != 0) {
            return Fail(
                QObject::tr("The permissions of the folder \"%1\" cannot be changed: %2").arg(path_, Reason(errno)));
        }
        LOG(WARNING) << "Removed the write permission of other users from the temporary folder " << path_.toStdString();
        return true;
    }

    QString path_;
    Descriptor folder_;
    QString error_;
};

/// Returns the names of all entries in \a folder, except hidden entries.
std::vector<std::string> VisibleNames(int folder)
{
    std::vector<std::string> names;
    FolderStream const stream = OpenFolderStream(folder, ".");
    if (stream) {
        while (dirent const* const entry = readdir(stream.get())) {
            if (entry->d_name[0] != '.') {
                names.emplace_back(entry->d_name);
            }
        }
    }
    return names;
}

/// Returns true if the entry has the system's attribute for hidden entries.
bool IsMarkedAsHidden([[maybe_unused]] struct stat const& status)
{
#ifdef __APPLE__
    return (status.st_flags & UF_HIDDEN) != 0;
#else
    return false;
#endif
}

} // namespace

OwnFolder::OwnFolder(QString const& root, QStringList const& levels, IfMissing ifMissing)
{
    Descent descent(root);
    for (auto level = levels.begin(); level != levels.end() && descent.ErrorString().isEmpty(); ++level) {
        descent.Enter(*level, ifMissing);
    }
    descriptor_ = descent.Release();
    error_ = descent.ErrorString();
}

OwnFolder::~OwnFolder()
{
    if (IsOpen()) {
        close(descriptor_);
    }
}

void OwnFolder::RemoveVisibleEntries() const
{
    // All names are read before the first entry is removed. On some file systems, readdir() skips entries otherwise.
    for (std::string const& name : VisibleNames(descriptor_)) {
        struct stat status;
        if (fstatat(descriptor_, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0 || IsMarkedAsHidden(status)) {
            continue;
        }
        struct stat target;
        if (S_ISDIR(status.st_mode)) {
            RemoveContents(descriptor_, name);
            unlinkat(descriptor_, name.c_str(), AT_REMOVEDIR);
        } else if (S_ISREG(status.st_mode) ||
                   (S_ISLNK(status.st_mode) && fstatat(descriptor_, name.c_str(), &target, 0) == 0)) {
            unlinkat(descriptor_, name.c_str(), 0);
        }
    }
}

bool OwnFolder::Contains(QString const& name) const
{
    struct stat status;
    return fstatat(descriptor_, QFile::encodeName(name).constData(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

CreatedFolder::CreatedFolder(QString const& path)
    : path_(path)
{
    struct stat status;
    if (lstat(QFile::encodeName(path).constData(), &status) == 0) {
        id_ = {status.st_dev, status.st_ino};
    }
}

bool CreatedFolder::Remove() const
{
    QByteArray const path = QFile::encodeName(path_);
    struct stat status;
    if (lstat(path.constData(), &status) != 0) {
        return !path.isEmpty() && (errno == ENOENT || errno == ENOTDIR);
    }
    if (id_ != FolderId(status.st_dev, status.st_ino)) {
        return false;
    }
    Descriptor const folder(open(path.constData(), SearchOnly | FolderFlags | O_NOFOLLOW));
    if (folder.IsOpen()) {
        // Another user may have replaced the folder since the check above.
        if (fstat(folder.Number(), &status) != 0 || id_ != FolderId(status.st_dev, status.st_ino)) {
            return false;
        }
        RemoveContents(folder.Number(), ".");
    }
    return rmdir(path.constData()) == 0;
}

} // namespace Zelkor::Util

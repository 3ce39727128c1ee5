// Fuzzes the checks of destination folders. An input is a path: a relative path, or a path in a small tree of files and
// folders.

#include <fuzz/Fuzzing.h>
#include <support/sandbox/Folders.h>

#include <Util/FileUtils.h>

#include <QtCore/QDir>
#include <QtCore/QStringList>

#include <climits>
#include <iterator>

#include <sys/stat.h>
#include <unistd.h>

using namespace Zelkor::Testing;
using Zelkor::Util::PathValidity;

namespace
{

/// Creates the tree. A check may remove empty folders, so that all folders except "empty" contain a file.
void MakeTree(std::string const& root)
{
    for (char const* const name : {"", "/open", "/open/sub", "/closed", "/hidden", "/write-only", "/for-others",
                                   "/for-group", "/space ", "/back\\slash"}) {
        MakeFolders(root + name);
        MakeFile(root + name + "/keep");
    }
    MakeFolders(root + "/empty/inner");
    MakeLink(root + "/link", "open");
    MakeLink(root + "/link-to-empty", "empty");
    MakeLink(root + "/link-to-file", "open/keep");
    MakeLink(root + "/dangling", "gone");
    MakeLink(root + "/ring", "ring");
    Chmod(root + "/closed", 0555);
    Chmod(root + "/hidden", 0000);
    Chmod(root + "/write-only", 0333);
    Chmod(root + "/for-others", 0557);
    Chmod(root + "/for-group", 0575);
}

/// The tree, which is removed when the program exits.
class Tree
{
public:
    Tree()
        : root(FuzzFolder() + "/root")
    {
        MakeTree(root);
        original = Entries();
    }

    ~Tree() { EmptyFolder(root); }

    Tree(Tree const&) = delete;
    Tree& operator=(Tree const&) = delete;

    /// Returns the sorted paths of all entries.
    QByteArrayList Entries() const
    {
        Chmod(root + "/hidden", 0755);
        Chmod(root + "/write-only", 0755);
        QByteArrayList const entries = ListTree(root);
        Chmod(root + "/hidden", 0000);
        Chmod(root + "/write-only", 0333);
        return entries;
    }

    /// Creates the removed empty folders, and removes the \a created folders.
    void Restore(QByteArrayList const& created) const
    {
        MakeFolders(root + "/empty/inner");
        std::for_each(created.rbegin(), created.rend(),
                      [this](QByteArray const& folder) { Check(rmdir((root + '/' + folder.toStdString()).c_str())); });
    }

    std::string const root;
    QByteArrayList original; // all entries
};

bool ExistsAsFolder(std::string const& path)
{
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool ExistsThroughLinks(std::string const& path)
{
    struct stat status;
    return stat(path.c_str(), &status) == 0;
}

bool MayCreateIn(std::string const& folder)
{
    return ExistsAsFolder(folder) && access(folder.c_str(), W_OK | X_OK) == 0;
}

/// Returns the result of the rule that is documented for CanCreateFileIn().
bool PermissionsAllowCreation(std::string const& folder)
{
    struct stat status;
    return stat(folder.c_str(), &status) == 0 &&
           ((status.st_mode & S_IWOTH) || ((status.st_mode & S_IWGRP) && status.st_gid == getegid()) ||
            ((status.st_mode & S_IWUSR) && status.st_uid == geteuid()));
}

bool HasTrailingSpace(QString const& path)
{
    QString const separated = QString(path).replace(QLatin1Char('\\'), QLatin1Char('/'));
    QStringList const names = separated.split(QLatin1Char('/'));
    return std::any_of(names.begin(), names.end(), [](QString const& name) { return name.endsWith(QLatin1Char(' ')); });
}

/// Returns true if the missing folder \a path and its missing parents can be created.
bool CanBeCreated(QString const& path)
{
    if (path.toUtf8().size() >= PATH_MAX) {
        return false;
    }
    std::string existing = "/";
    QStringList names = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    while (!names.isEmpty() && ExistsThroughLinks(existing + names.front().toStdString())) {
        existing += names.takeFirst().toStdString() + '/';
    }
    bool const areShort =
        std::all_of(names.begin(), names.end(), [](QString const& name) { return name.toUtf8().size() <= NAME_MAX; });
    bool const isDanglingLink = !names.isEmpty() && Exists(existing + names.front().toStdString());
    return MayCreateIn(existing) && areShort && !isDanglingLink;
}

PathValidity ExpectedValidity(QString const& path)
{
    if (path.isEmpty()) {
        return PathValidity::Empty;
    }
    if (!path.startsWith(QLatin1Char('/'))) {
        return PathValidity::Relative;
    }
    std::string const native = path.toStdString();
    if (ExistsThroughLinks(native)) {
        bool const isWritable =
            access(native.c_str(), W_OK) == 0 && PermissionsAllowCreation(native) && MayCreateIn(native);
        return isWritable ? PathValidity::Valid : PathValidity::NotWritable;
    }
    if (HasTrailingSpace(path)) {
        return PathValidity::TrailingSpace;
    }
    return CanBeCreated(path) ? PathValidity::Valid : PathValidity::CannotCreate;
}

QString ExpectedMessage(PathValidity validity)
{
    switch (validity) {
    case PathValidity::Valid:
        break;
    case PathValidity::Empty:
        return QStringLiteral("Destination folder path cannot be empty");
    case PathValidity::Relative:
        return QStringLiteral("Destination folder path must be absolute");
    case PathValidity::NotWritable:
        return QStringLiteral("Can't access the specified destination folder");
    case PathValidity::TrailingSpace:
        return QStringLiteral("Last letter in folder name mustn't be space");
    case PathValidity::CannotCreate:
        return QStringLiteral("The specified destination is not available");
    }
    return QStringLiteral("unchanged");
}

/// Returns true if the documentation defines the result for \a path. It does not define the result for the component
/// "..", for NUL characters, and for paths of Qt resources, which begin with a colon. In addition, a path with ".."
/// could leave the tree.
bool IsDefined(QString const& path)
{
    return !path.split(QLatin1Char('/')).contains(QStringLiteral("..")) && !path.contains(QChar::Null) &&
           !path.startsWith(QLatin1Char(':'));
}

void CheckAccess(QString const& path)
{
    std::string const native = path.toStdString();
    bool const mayCreate = MayCreateIn(native);
    RequireEqual(Zelkor::Util::TryCreateTmpFile(path), mayCreate, "test file can be created");
    RequireEqual(Zelkor::Util::CanCreateFileIn(path), mayCreate && PermissionsAllowCreation(native),
                 "file can be created");
    bool const mayRead = ExistsAsFolder(native) && access(native.c_str(), R_OK | X_OK) == 0;
    RequireEqual(Zelkor::Util::CanReadFileIn(path), mayRead, "file can be read");
}

/// Checks the changes of the tree after a check of \a path with the result \a validity, and restores the tree. If the
/// path is valid, its empty parents may be removed. If the folder cannot be created, some of its parents may be
/// created.
void CheckChanges(Tree const& tree, QString const& path, PathValidity validity)
{
    QByteArrayList created;
    QByteArrayList const entries = tree.Entries();
    if (entries == tree.original) {
        return;
    }
    std::set_difference(entries.begin(), entries.end(), tree.original.begin(), tree.original.end(),
                        std::back_inserter(created));
    if (validity != PathValidity::CannotCreate) {
        RequireEqual(created.join(", "), QByteArray(), "created entries");
    }
    QByteArrayList removed;
    std::set_difference(tree.original.begin(), tree.original.end(), entries.begin(), entries.end(),
                        std::back_inserter(removed));
    for (QByteArray const& entry : qAsConst(removed)) {
        QString const folder = QString::fromStdString(tree.root) + QLatin1Char('/') + QString::fromUtf8(entry);
        bool const mayBeRemoved = validity == PathValidity::Valid && entry.startsWith("empty") &&
                                  QDir::cleanPath(path).startsWith(folder + QLatin1Char('/'));
        RequireEqual(mayBeRemoved ? QByteArray() : entry, QByteArray(), "removed entry");
    }
    tree.Restore(created);
}

void CheckValidity(Tree const& tree, QString const& path)
{
    PathValidity const validity = ExpectedValidity(path);
    RequireEqual(static_cast<int>(Zelkor::Util::IsThisPathValid(path)), static_cast<int>(validity), "validity");
    CheckChanges(tree, path, validity);

    QString message = QStringLiteral("unchanged");
    RequireEqual(Zelkor::Util::IsThisPathValid(path, &message), validity == PathValidity::Valid, "path is valid");
    RequireEqual(message, ExpectedMessage(validity), "message");
    CheckChanges(tree, path, validity);
}

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    constexpr std::size_t LongestText = 600; // creating and removing the folders of long paths is slow

    static Tree const tree;
    QString const text = QString::fromStdString(FuzzInput(data, size).Rest());
    if (size > LongestText || !IsDefined(text)) {
        return -1; // do not add this input to the corpus
    }
    WorkingFolder const folder(tree.root); // for relative paths, so that even a wrong check stays in the tree
    if (text.startsWith(QLatin1Char('/'))) {
        QString const path = QString::fromStdString(tree.root) + text;
        CheckAccess(path);
        CheckValidity(tree, path);
    } else {
        CheckValidity(tree, text);
    }
    return 0;
}

// Fuzzes the checks of destination folders. An input is a path: a relative path, or a path in a small tree of files and
// folders.

#include <fuzz/Fuzzing.h>
#include <support/PathMessage.h>
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

constexpr int MaximumParents = 8;

/// Creates the tree in the folder \a root. All folders except "empty" contain a file, because checking a path may
/// remove empty folders.
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
        : root(FuzzFolder() + "/1/2/3/4/5/6/7/8/root")
    {
        MakeFolders(root);
        MakeTree(root);
        original = Entries();
    }

    ~Tree() { EmptyFolder(FuzzFolder()); }

    Tree(Tree const&) = delete;
    Tree& operator=(Tree const&) = delete;

    /// Returns the sorted paths of all entries.
    QByteArrayList Entries() const
    {
        Chmod(root + "/hidden", 0755);
        Chmod(root + "/write-only", 0755);
        QByteArrayList const entries = ListTree(FuzzFolder());
        Chmod(root + "/hidden", 0000);
        Chmod(root + "/write-only", 0333);
        return entries;
    }

    /// Creates the empty folders again, because checking a path may have removed them.
    void Restore() const { MakeFolders(root + "/empty/inner"); }

    std::string const root;  // MaximumParents folders are between it and FuzzFolder()
    QByteArrayList original; // the entries before the first check
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

/// Returns true if the permissions of \a folder fulfil the rule in the documentation of CanCreateFileIn().
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
    std::string existing = "/";
    int created = 0; // the number of missing folders at the end of the path so far
    for (QString const& component : path.split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
        std::string const name = component.toStdString();
        if (created > 0 && name == "..") {
            --created;
        } else if (created == 0 && ExistsThroughLinks(existing + name)) {
            existing += name + '/';
        } else if (name.size() > NAME_MAX || (created == 0 && (Exists(existing + name) || !MayCreateIn(existing)))) {
            return false; // a name that is too long, a dangling link, or a folder without write access
        } else if (name != ".") {
            ++created;
        }
    }
    return ExistsAsFolder(existing);
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

/// Returns the number of components ".." in \a path.
int CountParents(QString const& path)
{
    return path.split(QLatin1Char('/')).count(QStringLiteral(".."));
}

/// Returns true if the documentation of IsThisPathValid() defines the result for \a path. It does not define the result
/// for NUL characters and for paths of Qt resources, which begin with a colon.
bool IsDefined(QString const& path)
{
    return !path.contains(QChar::Null) && !path.startsWith(QLatin1Char(':'));
}

void CheckAccess(QString const& path)
{
    std::string const native = path.contains(QChar::Null) ? std::string() : path.toStdString();
    bool const mayCreate = MayCreateIn(native);
    RequireEqual(Zelkor::Util::TryCreateTmpFile(path), mayCreate, "test file can be created");
    RequireEqual(Zelkor::Util::CanCreateFileIn(path), mayCreate && PermissionsAllowCreation(native),
                 "file can be created");
    bool const mayRead = ExistsAsFolder(native) && access(native.c_str(), R_OK | X_OK) == 0;
    RequireEqual(Zelkor::Util::CanReadFileIn(path), mayRead, "file can be read");
}

/// Compares the tree with its original state after IsThisPathValid(\a path) has returned \a validity. Restores the
/// tree. If the path is valid and contains no "..", its empty parents may be missing.
void CheckChanges(Tree const& tree, QString const& path, PathValidity validity)
{
    QByteArrayList const entries = tree.Entries();
    if (entries == tree.original) {
        return;
    }
    QByteArrayList created;
    std::set_difference(entries.begin(), entries.end(), tree.original.begin(), tree.original.end(),
                        std::back_inserter(created));
    RequireEqual(created.join(", "), QByteArray(), "created entries");
    QByteArrayList removed;
    std::set_difference(tree.original.begin(), tree.original.end(), entries.begin(), entries.end(),
                        std::back_inserter(removed));
    for (QByteArray const& entry : qAsConst(removed)) {
        QString const folder = QString::fromStdString(FuzzFolder()) + QLatin1Char('/') + QString::fromUtf8(entry);
        bool const mayBeRemoved = validity == PathValidity::Valid && CountParents(path) == 0 &&
                                  folder.startsWith(QString::fromStdString(tree.root + "/empty")) &&
                                  QDir::cleanPath(path).startsWith(folder + QLatin1Char('/'));
        RequireEqual(mayBeRemoved ? QByteArray() : entry, QByteArray(), "removed entry");
    }
    tree.Restore();
}

void CheckValidity(Tree const& tree, QString const& path)
{
    PathValidity const validity = ExpectedValidity(path);
    RequireEqual(static_cast<int>(Zelkor::Util::IsThisPathValid(path)), static_cast<int>(validity), "validity");
    CheckChanges(tree, path, validity);

    bool const isValid = validity == PathValidity::Valid;
    QString message = QStringLiteral("unchanged");
    RequireEqual(Zelkor::Util::IsThisPathValid(path, &message), isValid, "path is valid");
    RequireEqual(message, isValid ? QStringLiteral("unchanged") : PathMessage(validity), "message");
    CheckChanges(tree, path, validity);
}

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    constexpr std::size_t LongestText = 600; // creating and removing the folders of long paths is slow

    static Tree const tree;
    QString const text = QString::fromStdString(FuzzInput(data, size).Rest());
    if (size > LongestText || CountParents(text) > MaximumParents) {
        return -1; // do not add this input to the corpus: it is too long, or its path could be outside the tree
    }
    bool const isAbsolute = text.startsWith(QLatin1Char('/'));
    QString const path = isAbsolute ? QString::fromStdString(tree.root) + text : text;
    WorkingFolder const folder(tree.root); // if a relative path is created by mistake, it is in the tree
    if (isAbsolute) {
        CheckAccess(path);
    }
    if (IsDefined(path)) {
        CheckValidity(tree, path);
    }
    return 0;
}

#include <support/sandbox/Folders.h>

#include <QtCore/QFile>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <memory>
#include <system_error>

#include <dirent.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

namespace Zelkor::Testing
{
namespace
{

struct CloseFolder
{
    void operator()(DIR* stream) const { closedir(stream); }
};

int MakeEmptyFileAt(int folder, char const* name)
{
    return openat(folder, name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
}

void WriteAt(int folder, char const* name, std::string const& content)
{
    Descriptor const file(MakeEmptyFileAt(folder, name));
    Check(static_cast<int>(write(file, content.data(), content.size())));
}

void ListTree(std::string const& path, std::string const& prefix, QByteArrayList& found)
{
    for (std::string const& name : NamesIn(AT_FDCWD, path.c_str())) {
        std::string const relative = prefix + name;
        std::string const entry = std::string(path).append(1, '/').append(name);
        char target[PATH_MAX];
        ssize_t const targetSize = readlink(entry.c_str(), target, sizeof target);
        found += QByteArray::fromStdString(relative);
        if (targetSize >= 0) {
            found.last() += " -> " + QByteArray(target, static_cast<int>(targetSize));
        } else if (IsFolderAt(AT_FDCWD, entry)) {
            ListTree(entry, relative + '/', found);
        }
    }
}

} // namespace

int Check(int result)
{
    if (result < 0) {
        throw std::system_error(errno, std::generic_category());
    }
    return result;
}

Descriptor::Descriptor(int number)
    : number_(Check(number))
{}

Descriptor::~Descriptor()
{
    close(number_);
}

void Descriptor::Reset(int number)
{
    close(number_);
    number_ = Check(number);
}

void MakeFileAt(int folder, char const* name)
{
    WriteAt(folder, name, "content");
}

void MakeFile(std::string const& path)
{
    MakeFileAt(AT_FDCWD, path.c_str());
}

void MakeFileAt(int folder, char const* name, off_t size)
{
    Descriptor const file(MakeEmptyFileAt(folder, name));
    Check(ftruncate(file, size));
}

void MakeFile(std::string const& path, off_t size)
{
    MakeFileAt(AT_FDCWD, path.c_str(), size);
}

void WriteFile(std::string const& path, std::string const& content)
{
    WriteAt(AT_FDCWD, path.c_str(), content);
}

QByteArray ReadFile(std::string const& path)
{
    QFile file(QFile::decodeName(path.c_str()));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be opened");
}

void MakeFolder(std::string const& path, mode_t mode)
{
    Check(mkdir(path.c_str(), 0700));
    Chmod(path, mode);
}

void MakeFolders(std::string const& path)
{
    if (!IsFolderAt(AT_FDCWD, path + "/.")) {
        MakeFolders(ParentOf(path));
        MakeFolder(path);
    }
}

void MakeLink(std::string const& path, std::string const& target)
{
    Check(symlink(target.c_str(), path.c_str()));
}

void MakeHardLink(std::string const& path, std::string const& file)
{
    Check(link(file.c_str(), path.c_str()));
}

void MakePipe(std::string const& path)
{
    Check(mkfifo(path.c_str(), 0644));
}

void MakeSocket(std::string const& path)
{
    // bind() rejects paths of more than about 100 bytes. Open the folder, and use the short path
    // "/proc/self/fd/<descriptor>" instead of the folder's own path.
    Descriptor const folder(open(path.substr(0, path.rfind('/')).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    std::string const name = "/proc/self/fd/" + std::to_string(folder) + path.substr(path.rfind('/'));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    name.copy(address.sun_path, sizeof address.sun_path - 1);
    Descriptor const server(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    Check(bind(server, reinterpret_cast<sockaddr*>(&address), sizeof address));
}

void MakeDevice(std::string const& path)
{
    Check(mknod(path.c_str(), S_IFCHR | 0644, makedev(1, 3)));
}

void Chmod(std::string const& path, mode_t mode)
{
    Check(chmod(path.c_str(), mode));
}

mode_t ModeOf(std::string const& path)
{
    struct stat status;
    Check(stat(path.c_str(), &status));
    return status.st_mode & 07777U;
}

void SetOwner(std::string const& path, uid_t user)
{
    SetOwner(path, user, static_cast<gid_t>(-1));
}

void SetOwner(std::string const& path, uid_t user, gid_t group)
{
    Check(lchown(path.c_str(), user, group));
}

bool Exists(std::string const& path)
{
    struct stat status;
    return lstat(path.c_str(), &status) == 0;
}

std::string ParentOf(std::string const& path)
{
    return path.substr(0, path.rfind('/'));
}

std::string NameOf(std::string const& path)
{
    return path.substr(path.rfind('/') + 1);
}

std::vector<std::string> NamesIn(int folder, char const* name)
{
    std::unique_ptr<DIR, CloseFolder> const stream(
        fdopendir(Check(openat(folder, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC))));
    std::vector<std::string> names;
    while (dirent const* const entry = readdir(stream.get())) {
        names.emplace_back(entry->d_name);
    }
    names.erase(std::remove_if(names.begin(), names.end(), [](auto const& n) { return n == "." || n == ".."; }),
                names.end());
    return names;
}

bool IsFolderAt(int folder, std::string const& name)
{
    struct stat status;
    return fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
}

// Before this function removes a folder, it moves the subfolders of that folder directly into the folder \a path.
// Therefore, this function never needs a path that is longer than the system accepts.
void EmptyFolder(std::string const& path)
{
    Descriptor const top(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    int moved = 0;
    for (std::vector<std::string> names = NamesIn(top, "."); !names.empty(); names = NamesIn(top, ".")) {
        for (std::string const& name : names) {
            if (!IsFolderAt(top, name)) {
                Check(unlinkat(top, name.c_str(), 0));
                continue;
            }
            Check(fchmodat(top, name.c_str(), 0700, 0));
            Descriptor const folder(openat(top, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
            for (std::string const& below : NamesIn(folder, ".")) {
                if (IsFolderAt(folder, below)) {
                    Check(fchmodat(folder, below.c_str(), 0700, 0));
                    Check(renameat(folder, below.c_str(), top, ("\x01moved" + std::to_string(moved++)).c_str()));
                } else {
                    Check(unlinkat(folder, below.c_str(), 0));
                }
            }
            Check(unlinkat(top, name.c_str(), AT_REMOVEDIR));
        }
    }
}

QByteArrayList ListTree(std::string const& path)
{
    QByteArrayList found;
    ListTree(path, "", found);
    std::sort(found.begin(), found.end());
    return found;
}

int CountOpenDescriptors()
{
    return static_cast<int>(NamesIn(AT_FDCWD, "/proc/self/fd").size());
}

QByteArray CurrentFolder()
{
    char path[PATH_MAX];
    return getcwd(path, sizeof path);
}

WorkingFolder::WorkingFolder(std::string const& path)
    : previous_(open(".", O_PATH | O_DIRECTORY | O_CLOEXEC))
{
    Check(chdir(path.c_str()));
}

WorkingFolder::~WorkingFolder()
{
    if (fchdir(previous_) != 0) {
        qFatal("The current folder is lost");
    }
}

} // namespace Zelkor::Testing

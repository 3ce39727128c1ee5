#pragma once

// Functions that create and list files, folders and links with system calls. All functions throw std::system_error on
// failure unless stated otherwise. Paths are in the encoding of the file system.

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayList>
#include <QtCore/QMetaType>

#include <string>
#include <vector>

#include <sys/types.h>

namespace Zelkor::Testing
{

/// Checks \a result, the return value of a function that sets errno on failure. Throws std::system_error with the value
/// of errno if \a result is negative. Otherwise, returns \a result.
int Check(int result);

/// Owns an open file descriptor. The destructor closes the descriptor.
class Descriptor
{
public:
    explicit Descriptor(int number);
    ~Descriptor();
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;

    operator int() const { return number_; }

    /// Closes the current descriptor and takes ownership of \a number.
    void Reset(int number);

private:
    int number_;
};

/// Creates a file with the content "content". In MakeFileAt(), \a folder is a file descriptor of a folder, and \a name
/// is a path relative to this folder.
void MakeFileAt(int folder, char const* name);
void MakeFile(std::string const& path);

/// Creates a sparse file of \a size bytes.
void MakeFileAt(int folder, char const* name, off_t size);
void MakeFile(std::string const& path, off_t size);

/// Creates a file with \a content.
void WriteFile(std::string const& path, std::string const& content);

/// Returns the content of a file. Returns the string "cannot be opened" if the file cannot be opened.
QByteArray ReadFile(std::string const& path);

void MakeFolder(std::string const& path, mode_t mode = 0755);

/// Creates a folder and its missing parents. Does nothing if the folder already exists.
void MakeFolders(std::string const& path);

void MakeLink(std::string const& path, std::string const& target);
void MakeHardLink(std::string const& path, std::string const& file);
void MakePipe(std::string const& path);
void MakeSocket(std::string const& path);

/// Creates a character device with the same device number as /dev/null. Requires root.
void MakeDevice(std::string const& path);

/// A function that creates an entry at \a path, for example a file or a folder with files.
using Maker = void (*)(std::string const& path);

void Chmod(std::string const& path, mode_t mode);

/// Returns the permissions of \a path, including the sticky bit. Follows links.
mode_t ModeOf(std::string const& path);

/// Changes the owner of \a path; the group is unchanged. If \a path is a link, changes the link itself and not its
/// target. Requires root.
void SetOwner(std::string const& path, uid_t user);

/// Changes the owner and the group of \a path. If \a path is a link, changes the link itself and not its target.
/// Requires root.
void SetOwner(std::string const& path, uid_t user, gid_t group);

/// Returns true if an entry exists at \a path, even if the entry is a dangling link.
bool Exists(std::string const& path);

/// Returns \a path without its last component and the slash before this component.
std::string ParentOf(std::string const& path);

/// Returns the last component of \a path.
std::string NameOf(std::string const& path);

/// Returns the names of the entries in a folder, without "." and "..". The names are not sorted; they are in the order
/// in which readdir() returns the entries. \a folder is a file descriptor of a folder, and \a name is a path relative
/// to this folder.
std::vector<std::string> NamesIn(int folder, char const* name);

/// Returns true if the entry \a name is a folder. Returns false if the entry does not exist or is a link to a folder.
/// \a folder is a file descriptor of a folder, and \a name is a path relative to this folder.
bool IsFolderAt(int folder, std::string const& name);

/// Removes all entries of a folder. The tree may be deeper than the longest path that the system accepts.
void EmptyFolder(std::string const& path);

/// Returns the sorted paths of all entries below \a path, relative to \a path. Does not follow links. A link is listed
/// as "path -> target".
QByteArrayList ListTree(std::string const& path);

int CountOpenDescriptors();

QByteArray CurrentFolder();

/// Changes the current folder of this process to \a path. The destructor restores the previous current folder.
class WorkingFolder
{
public:
    explicit WorkingFolder(std::string const& path);
    ~WorkingFolder();
    WorkingFolder(WorkingFolder const&) = delete;
    WorkingFolder& operator=(WorkingFolder const&) = delete;

private:
    Descriptor previous_;
};

} // namespace Zelkor::Testing

Q_DECLARE_METATYPE(Zelkor::Testing::Maker)

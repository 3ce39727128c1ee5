#pragma once

// Creates and lists files, folders and links with system calls. All functions throw std::system_error on failure unless
// stated otherwise. Paths are in the encoding of the file system.

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayList>
#include <QtCore/QMetaType>

#include <string>
#include <vector>

#include <sys/types.h>

namespace Zelkor::Testing
{

/// Throws std::system_error if \a result, of a function that sets errno, is negative. Otherwise returns it.
int Check(int result);

/// Owns an open file descriptor.
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

/// Creates a file with the content "content". \a name is relative to the descriptor \a folder.
void MakeFileAt(int folder, char const* name);
void MakeFile(std::string const& path);

/// Creates a sparse file of \a size bytes.
void MakeFileAt(int folder, char const* name, off_t size);
void MakeFile(std::string const& path, off_t size);

/// Creates a file with \a content.
void WriteFile(std::string const& path, std::string const& content);

/// Returns the content of a file, or "cannot be opened".
QByteArray ReadFile(std::string const& path);

void MakeFolder(std::string const& path, mode_t mode = 0755);

/// Creates a folder and its missing parents. An existing folder is no error.
void MakeFolders(std::string const& path);

void MakeLink(std::string const& path, std::string const& target);
void MakeHardLink(std::string const& path, std::string const& file);
void MakePipe(std::string const& path);
void MakeSocket(std::string const& path);

/// Creates a character device that equals /dev/null. Requires root.
void MakeDevice(std::string const& path);

/// Creates an entry at a path, with or without entries below it.
using Maker = void (*)(std::string const& path);

void Chmod(std::string const& path, mode_t mode);

/// Changes the owner of \a path and leaves its group. Requires root.
void SetOwner(std::string const& path, uid_t user);
void SetOwner(std::string const& path, uid_t user, gid_t group);

/// Returns true if there is an entry, which may be a dangling link.
bool Exists(std::string const& path);

/// Returns \a path without its last name.
std::string ParentOf(std::string const& path);

/// Returns the last name of \a path.
std::string NameOf(std::string const& path);

/// Returns the names in a folder, in the order of the file system, without "." and "..".
std::vector<std::string> NamesIn(int folder, char const* name);

/// Returns true for a folder, false for a link to a folder.
bool IsFolderAt(int folder, std::string const& name);

/// Removes all entries of a folder. The tree may be deeper than the longest path that the system accepts.
void EmptyFolder(std::string const& path);

/// Returns the paths of all entries below \a path, sorted, without entering links. A link is "path -> target".
QByteArrayList ListTree(std::string const& path);

int CountOpenDescriptors();

QByteArray CurrentFolder();

/// Changes the current folder. The destructor restores it.
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

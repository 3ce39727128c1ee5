#pragma once

// Folders and what is in them, made and looked at by the system's own calls.

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayList>
#include <QtCore/QMetaType>

#include <ctime>
#include <string>
#include <vector>

#include <sys/types.h>

namespace Zelkor::Testing
{

/// Throws a std::system_error when \a result, of a function that sets errno, is negative; otherwise returns it.
int Check(int result);

/// Owns an open descriptor.
class Descriptor
{
public:
    explicit Descriptor(int number);
    ~Descriptor();
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;

    operator int() const { return number_; }

    /// Closes its own and owns \a number from now on.
    void Become(int number);

private:
    int number_;
};

/// Makes a file that has the content "content".
void MakeFileAt(int folder, char const* name);
void MakeFile(std::string const& path);

/// Makes a file of so many bytes, all of them a hole.
void MakeFileAt(int folder, char const* name, off_t size);
void MakeFile(std::string const& path, off_t size);

/// Makes a file that has this content.
void Write(std::string const& path, std::string const& content);

QByteArray Content(std::string const& path);

void MakeFolder(std::string const& path, mode_t mode = 0755);
void MakeLink(std::string const& path, std::string const& target);
void MakeSocket(std::string const& path);

/// Makes something at a path, or other things below it.
using Maker = void (*)(std::string const& path);

void Chmod(std::string const& path, mode_t mode);

/// Whether there is anything, be it a link that leads nowhere.
bool Exists(std::string const& path);

std::vector<std::string> NamesIn(int folder, char const* name);
bool IsFolderAt(int folder, std::string const& name);

/// Removes everything below; trees may be deeper than a path can tell.
void Empty(std::string const& path);

/// The paths of everything below, sorted, without entering links.
QByteArrayList TreeOf(std::string const& path);

int OpenDescriptors();

QByteArray CurrentFolder();

/// Makes a folder the current one while it lives.
class AtFolder
{
public:
    explicit AtFolder(std::string const& path);
    ~AtFolder();
    AtFolder(AtFolder const&) = delete;
    AtFolder& operator=(AtFolder const&) = delete;

private:
    Descriptor before_;
};

using Milliseconds = long long; // since 1970, or between two moments

constexpr Milliseconds Second = 1000;
constexpr Milliseconds Hour = 3600 * Second;
constexpr Milliseconds Day = 24 * Hour;

Milliseconds Now();

timespec TimeOf(Milliseconds moment, long nanoseconds);

/// Dates the file, the folder or the link itself.
void Date(int folder, char const* name, Milliseconds moment, long nanoseconds = 0);
void Date(std::string const& path, Milliseconds moment, long nanoseconds = 0);

/// What a tree is made of: "file", "folder/", "pipe|", "socket=", "device%", "link@target"; and how old it is.
struct Entry
{
    char const* description;
    Milliseconds age;
};

constexpr Milliseconds Old = 100 * Day;
constexpr Milliseconds New = 0;

/// Makes it and returns its path.
std::string MakeEntry(std::string const& description);

/// Makes all, then dates all, since making an entry changes its folder's date.
void MakeTree(std::string const& root, std::vector<Entry> const& entries);

} // namespace Zelkor::Testing

Q_DECLARE_METATYPE(Zelkor::Testing::Maker)

#pragma once

/// \file
/// A file system path, and a function that tests if a path exists.

#include <Base/Export.h>

#include <boost/filesystem/path.hpp>

#include <string>

namespace Zelkor
{

/// A `boost::filesystem::path` whose text is UTF-8 on every platform.
///
/// An ioPath can be passed to every function of Boost.Filesystem. Bytes that are not valid UTF-8 are kept unchanged,
/// because POSIX file systems accept these bytes in names.
class ZQTUTIL_EXPORT ioPath : public boost::filesystem::path
{
public:
    /// Creates an empty path.
    ioPath() = default;

    /// Creates a path from the UTF-8 text \a utf8.
    ioPath(std::string const& utf8);

    /// Creates a path from the UTF-8 text \a utf8. Throws `std::invalid_argument` if \a utf8 is null.
    ioPath(char const* utf8);

    /// Creates a path with the same text as \a other.
    ioPath(boost::filesystem::path other);

    /// Assigns the UTF-8 text \a utf8 to this path. If \a utf8 is null, throws `std::invalid_argument` and leaves this
    /// path unchanged.
    ioPath& operator=(char const* utf8);

    /// Returns the text of the path in UTF-8.
    std::string utf8string() const;

    /// Returns this path without its last component. Returns an empty path if this path has no parent.
    ioPath parent_path() const;

    /// Removes the file, the symbolic link (not its target) or the empty folder at this path.
    ///
    /// Throws `boost::filesystem::filesystem_error` if the system reports an error, or if the path contains a NUL byte.
    ///
    /// \return true if something was removed; false if nothing exists at this path
    bool remove() const;
};

namespace Core
{

/// Returns true if a file, a folder or another type of file system entry exists at \a path.
///
/// Symbolic links are followed. Returns false if \a path is a dangling link or leads to a loop of links, if access to a
/// parent folder is denied, or if \a path contains a NUL byte.
///
/// May be called on any thread. Does not throw or log.
ZQTUTIL_EXPORT bool FileExists(ioPath const& path);

} // namespace Core
} // namespace Zelkor

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
/// It can be passed to every function of Boost.Filesystem. Bytes that are not valid UTF-8 are kept unchanged, because
/// POSIX file systems accept them in names.
class ZQTUTIL_EXPORT ioPath : public boost::filesystem::path
{
public:
    /// Creates an empty path.
    ioPath() = default;

    /// Creates the path \a utf8.
    ioPath(std::string const& utf8);

    /// Creates the path \a utf8. Throws `std::invalid_argument` if \a utf8 is null.
    ioPath(char const* utf8);

    /// Creates the same path as \a other.
    ioPath(boost::filesystem::path other);

    /// Assigns the path \a utf8. Throws `std::invalid_argument` if \a utf8 is null; this path is then unchanged.
    ioPath& operator=(char const* utf8);

    /// Returns the text of the path in UTF-8.
    std::string utf8string() const;

    /// Returns the path without its last component, or an empty path if there is no parent.
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

/// Returns true if \a path exists: a file, a folder, or an entry of another type.
///
/// Symbolic links are followed. Returns false for a dangling link, for a link loop, if access to a parent folder is
/// denied, and if \a path contains a NUL byte.
///
/// May be called on any thread. Throws and logs nothing.
ZQTUTIL_EXPORT bool FileExists(ioPath const& path);

} // namespace Core
} // namespace Zelkor

#pragma once

/// \file
/// A path in the file system, and whether something is there.

#include <Base/Export.h>

#include <boost/filesystem/path.hpp>

#include <string>

namespace Zelkor
{

/// A `boost::filesystem::path` whose text is UTF-8 on every platform.
///
/// It is handed directly to Boost.Filesystem. Bytes that are no UTF-8 are kept as they are, as the file systems of
/// POSIX keep them.
class ZQTUTIL_EXPORT ioPath : public boost::filesystem::path
{
public:
    /// The empty path, which names nothing.
    ioPath() = default;

    /// The path \a utf8.
    ioPath(std::string const& utf8);

    /// The path \a utf8. Throws `std::invalid_argument` for a null pointer.
    ioPath(char const* utf8);

    /// The same path as \a other.
    ioPath(boost::filesystem::path other);

    /// Becomes the path \a utf8. Throws `std::invalid_argument` for a null pointer, and is unchanged then.
    ioPath& operator=(char const* utf8);

    /// The path's text in UTF-8.
    std::string utf8string() const;

    /// The path without its last name; empty where there is no parent.
    ioPath parent_path() const;

    /// Removes the file, the link (not its target) or the empty folder of this path.
    ///
    /// \return whether something was removed; false where nothing was there.
    /// Throws `boost::filesystem::filesystem_error` when the system refuses, and for a path that holds a NUL byte.
    bool remove() const;
};

namespace Core
{

/// Whether \a path leads to something: a file, a folder, or anything else. A link counts by its target, so a dangling
/// link does not exist; neither does what cannot be looked at (a link loop, a folder that is closed to us).
/// Any thread; throws and logs nothing.
ZQTUTIL_EXPORT bool FileExists(ioPath const& path);

} // namespace Core
} // namespace Zelkor

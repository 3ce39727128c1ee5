#include <Base/IoPath.h>

#include <Base/Throw.h>

#include <boost/filesystem/operations.hpp>
#include <boost/throw_exception.hpp>

#include <cerrno>
#include <cstdio>
#include <utility>

namespace Zelkor
{
namespace
{

char const* RequireNotNull(char const* utf8)
{
    if (!utf8) {
        ZELKOR_THROW(std::invalid_argument("A path cannot be made from a null pointer"));
    }
    return utf8;
}

// Returns true if \a path contains a NUL byte. System calls read a path only up to the first NUL byte, and would access
// a different file. Callers must therefore reject such a path.
bool ContainsNul(ioPath const& path)
{
    return path.native().find(ioPath::value_type()) != ioPath::string_type::npos;
}

} // namespace

ioPath::ioPath(std::string const& utf8)
    : path(utf8)
{}

ioPath::ioPath(char const* utf8)
    : path(RequireNotNull(utf8))
{}

ioPath::ioPath(boost::filesystem::path other)
    : path(std::move(other))
{}

ioPath& ioPath::operator=(char const* utf8)
{
    path::operator=(std::string(RequireNotNull(utf8)));
    return *this;
}

std::string ioPath::utf8string() const
{
    return string();
}

ioPath ioPath::parent_path() const
{
    return path::parent_path();
}

bool ioPath::remove() const
{
    if (ContainsNul(*this)) {
        boost::throw_exception(boost::filesystem::filesystem_error(
            "The path holds a NUL byte", *this,
            boost::system::errc::make_error_code(boost::system::errc::invalid_argument)));
    }
    // boost::filesystem::remove() is not suitable. It returns true if the entry disappears during the call, and if the
    // path is a link to a folder and ends with a slash.
    if (std::remove(c_str()) == 0) {
        return true;
    }
    int const error = errno;
    if (error == ENOENT || error == ENOTDIR) {
        return false;
    }
    boost::throw_exception(boost::filesystem::filesystem_error(
        "The path cannot be removed", *this, boost::system::error_code(error, boost::system::system_category())));
}

bool Core::FileExists(ioPath const& path)
{
    boost::system::error_code error;
    return !ContainsNul(path) && boost::filesystem::exists(path, error);
}

} // namespace Zelkor

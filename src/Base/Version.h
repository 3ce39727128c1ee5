#pragma once

/// \file
/// Versions of up to four numbers, and their conversion from and to text.

#include <Base/Export.h>

#include <cstdint>
#include <string>

namespace Zelkor
{
namespace Core
{

/// A version of four components: major, minor, third (patch) and build number. It is a plain value type.
///
/// A missing component is stored as 0 or as #NotGiven. In comparisons, #NotGiven is less than every other value,
/// including 0.
class ZQTUTIL_EXPORT Version
{
public:
    /// Marks a component as missing. All bits are set.
    static constexpr std::uint32_t NotGiven = 0xFFFFFFFF;

    /// Creates the version \a major.\a minor.\a third.\a build.
    constexpr Version(std::uint32_t major = 0, std::uint32_t minor = 0, std::uint32_t third = 0,
                      std::uint32_t build = 0)
        : components_{major, minor, third, build}
    {}

    /// Returns the first component.
    constexpr std::uint32_t GetMajor() const { return components_[0]; }
    /// Returns the second component.
    constexpr std::uint32_t GetMinor() const { return components_[1]; }
    /// Returns the third component, the patch number.
    constexpr std::uint32_t GetThird() const { return components_[2]; }
    /// Returns the fourth component, the build number.
    constexpr std::uint32_t GetBuild() const { return components_[3]; }

private:
    std::uint32_t components_[4];
};

/// Returns true if all components are equal. 0 and Version::NotGiven are not equal.
ZQTUTIL_EXPORT bool operator==(Version const& left, Version const& right);
/// Returns true if at least one component differs.
ZQTUTIL_EXPORT bool operator!=(Version const& left, Version const& right);
/// Returns true if \a left is less than \a right. Compares the major, minor, third and build number, in this order.
ZQTUTIL_EXPORT bool operator<(Version const& left, Version const& right);
/// Returns true if \a left is less than or equal to \a right.
ZQTUTIL_EXPORT bool operator<=(Version const& left, Version const& right);
/// Returns true if \a left is greater than \a right.
ZQTUTIL_EXPORT bool operator>(Version const& left, Version const& right);
/// Returns true if \a left is greater than or equal to \a right.
ZQTUTIL_EXPORT bool operator>=(Version const& left, Version const& right);

namespace Util
{

/// The maximum number of components that VersionToString() writes.
enum class VersionToStringDetail : int { Major = 1, MajorMinor = 2, MajorMinorThird = 3, Full = 4 };

/// Reads a version from \a text, which contains decimal numbers with separators between them. The first number is the
/// major number.
///
/// Reading stops at a component that does not begin with a digit or does not fit into 32 bits. Reading also stops after
/// a number that is not followed by \a separator. Missing components are 0. Text after the fourth component is ignored.
/// For example, the text "3.1.2-beta" gives the version 3.1.2.0, and "3.x" gives 3.0.0.0.
///
/// May be called on any thread. Does not throw or log.
///
/// \param text       the text to read
/// \param separator  the separator between two components; if it is empty, only the major number is read
ZQTUTIL_EXPORT Version VersionFromString(std::string const& text, std::string const& separator);

/// Returns the first components of \a version as decimal numbers, joined by \a separator.
///
/// May be called on any thread. Does not throw or log.
///
/// \param version    the version to convert
/// \param detail     the maximum number of components; the first component that is Version::NotGiven and all components
///                   after it are omitted. If the value of \a detail is 0 or negative, the result is empty. A value
///                   above 4 has the same effect as VersionToStringDetail::Full.
/// \param separator  the text between two components
ZQTUTIL_EXPORT std::string VersionToString(Version const& version, VersionToStringDetail detail,
                                           std::string const& separator);

} // namespace Util
} // namespace Core
} // namespace Zelkor

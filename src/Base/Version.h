#pragma once

/// \file
/// Versions of up to four numbers, and their text.

#include <Base/Export.h>

#include <cstdint>
#include <string>

namespace Zelkor
{
namespace Core
{

/// A version: major, minor, third (patch) and build number, a plain value.
///
/// A component that is not given holds 0 or #NotGiven; #NotGiven orders below every given component, 0 included.
class ZQTUTIL_EXPORT Version
{
public:
    /// The value of a component that nobody gave: all ones.
    static constexpr std::uint32_t NotGiven = 0xFFFFFFFF;

    /// The version \a major.\a minor.\a third.\a build.
    constexpr Version(std::uint32_t major = 0, std::uint32_t minor = 0, std::uint32_t third = 0,
                      std::uint32_t build = 0)
        : components_{major, minor, third, build}
    {}

    /// The first component.
    constexpr std::uint32_t GetMajor() const { return components_[0]; }
    /// The second component.
    constexpr std::uint32_t GetMinor() const { return components_[1]; }
    /// The third component, also known as the patch.
    constexpr std::uint32_t GetThird() const { return components_[2]; }
    /// The fourth component.
    constexpr std::uint32_t GetBuild() const { return components_[3]; }

private:
    std::uint32_t components_[4];
};

/// Whether all components are the same; 0 and Version::NotGiven are not.
ZQTUTIL_EXPORT bool operator==(Version const& left, Version const& right);
/// Whether any component differs.
ZQTUTIL_EXPORT bool operator!=(Version const& left, Version const& right);
/// Whether \a left comes before \a right: by major, then minor, then third, then build number.
ZQTUTIL_EXPORT bool operator<(Version const& left, Version const& right);
/// Whether \a left is \a right or comes before it.
ZQTUTIL_EXPORT bool operator<=(Version const& left, Version const& right);
/// Whether \a left comes after \a right.
ZQTUTIL_EXPORT bool operator>(Version const& left, Version const& right);
/// Whether \a left is \a right or comes after it.
ZQTUTIL_EXPORT bool operator>=(Version const& left, Version const& right);

namespace Util
{

/// How many components a version's text shows.
enum class VersionToStringDetail : int { Major = 1, MajorMinor = 2, MajorMinorThird = 3, Full = 4 };

/// Reads a version from \a text: decimal numbers between separators, major first.
///
/// Components that are missing are 0, whatever follows the fourth is ignored. Reading ends at the first component that
/// does not begin with a digit or does not fit 32 bits, and behind the digits of one that goes on with something else:
/// "3.1.2-beta" is 3.1.2.0, "3.x" is 3.0.0.0. With an empty \a separator the text is one component.
/// Any thread; throws and logs nothing.
ZQTUTIL_EXPORT Version VersionFromString(std::string const& text, std::string const& separator);

/// Writes the first components of \a version in decimal, joined by \a separator: as many as \a detail says, ending
/// before the first one that is not given (Version::NotGiven).
ZQTUTIL_EXPORT std::string VersionToString(Version const& version, VersionToStringDetail detail,
                                           std::string const& separator);

} // namespace Util
} // namespace Core
} // namespace Zelkor

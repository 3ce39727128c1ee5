#include <Base/Version.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

namespace Zelkor::Core
{
namespace
{

using Components = std::array<std::uint32_t, 4>;

Components ComponentsOf(Version const& version)
{
    return {version.GetMajor(), version.GetMinor(), version.GetThird(), version.GetBuild()};
}

// Increments each component of \a version by one, and returns the results for comparisons. The value NotGiven (all bits
// set) becomes 0, and the value 0 becomes 1. In a comparison, NotGiven is therefore less than every other value.
Components Ranks(Version const& version)
{
    Components ranks = ComponentsOf(version);
    std::for_each(ranks.begin(), ranks.end(), [](std::uint32_t& component) { ++component; });
    return ranks;
}

} // namespace

bool operator==(Version const& left, Version const& right)
{
    return ComponentsOf(left) == ComponentsOf(right);
}

bool operator!=(Version const& left, Version const& right)
{
    return !(left == right);
}

bool operator<(Version const& left, Version const& right)
{
    return Ranks(left) < Ranks(right);
}

bool operator<=(Version const& left, Version const& right)
{
    return !(right < left);
}

bool operator>(Version const& left, Version const& right)
{
    return right < left;
}

bool operator>=(Version const& left, Version const& right)
{
    return !(left < right);
}

Version Util::VersionFromString(std::string const& text, std::string const& separator)
{
    Components components{};
    char const* position = text.data();
    char const* const end = position + text.size();
    for (std::uint32_t& component : components) {
        auto const number = std::from_chars(position, end, component);
        if (number.ec != std::errc()) {
            break;
        }
        std::string_view const rest(number.ptr, static_cast<std::size_t>(end - number.ptr));
        if (separator.empty() || rest.substr(0, separator.size()) != separator) {
            break;
        }
        position = number.ptr + separator.size();
    }
    return Version(components[0], components[1], components[2], components[3]);
}

std::string Util::VersionToString(Version const& version, VersionToStringDetail detail, std::string const& separator)
{
    std::string text;
    int written = 0;
    for (std::uint32_t const component : ComponentsOf(version)) {
        if (written >= static_cast<int>(detail) || component == Version::NotGiven) {
            break;
        }
        ++written;
        text += (text.empty() ? std::string() : separator) + std::to_string(component);
    }
    return text;
}

} // namespace Zelkor::Core

// Fuzzes the conversions and comparisons of versions.

#include <fuzz/Fuzzing.h>
#include <support/Versions.h>

#include <Util/VersionUtils.h>

#include <array>
#include <climits>
#include <iterator>

using Zelkor::Core::Version;
using Zelkor::Core::Util::VersionToStringDetail;
using Zelkor::Testing::FuzzInput;
using Zelkor::Testing::RequireEqual;

namespace
{

std::string UpToNul(std::string const& text)
{
    return text.substr(0, text.find('\0'));
}

/// Reads the decimal number at the beginning of \a text and removes it from \a text. Returns false and removes nothing
/// if there is no number or if it does not fit into 32 bits.
bool ReadNumber(std::string& text, std::uint32_t& number)
{
    std::size_t const digits = std::min(text.find_first_not_of("0123456789"), text.size());
    std::string const significant = text.substr(0, digits).erase(0, text.find_first_not_of('0'));
    if (digits == 0 || significant.size() > 10) {
        return false;
    }
    unsigned long long const value = significant.empty() ? 0 : std::stoull(significant);
    if (value > 0xFFFFFFFF) {
        return false;
    }
    number = static_cast<std::uint32_t>(value);
    text.erase(0, digits);
    return true;
}

Version ExpectedVersion(std::string text, std::string const& separator)
{
    std::array<std::uint32_t, 4> numbers{};
    for (std::size_t i = 0; i < numbers.size() && ReadNumber(text, numbers[i]); ++i) {
        if (separator.empty() || text.compare(0, separator.size(), separator) != 0) {
            break;
        }
        text.erase(0, separator.size());
    }
    return Version(numbers[0], numbers[1], numbers[2], numbers[3]);
}

std::string ExpectedText(Version const& version, int detail, std::string const& separator)
{
    std::uint32_t const numbers[] = {version.GetMajor(), version.GetMinor(), version.GetThird(), version.GetBuild()};
    std::string text;
    for (int i = 0; i < std::min(detail, 4) && numbers[i] != Version::NotGiven; ++i) {
        if (i > 0) {
            text += separator;
        }
        text += QByteArray::number(numbers[i]).toStdString();
    }
    return text;
}

/// Returns a negative number, 0 or a positive number if \a left is less than, equal to or greater than \a right.
int ExpectedOrder(Version const& left, Version const& right)
{
    auto const rank = [](std::uint32_t number) { return number == Version::NotGiven ? -1LL : number; };
    long long const differences[] = {
        rank(left.GetMajor()) - rank(right.GetMajor()), rank(left.GetMinor()) - rank(right.GetMinor()),
        rank(left.GetThird()) - rank(right.GetThird()), rank(left.GetBuild()) - rank(right.GetBuild())};
    for (long long const difference : differences) {
        if (difference != 0) {
            return difference < 0 ? -1 : 1;
        }
    }
    return 0;
}

Version TakeVersion(FuzzInput& input)
{
    auto const major = input.Number<std::uint32_t>();
    auto const minor = input.Number<std::uint32_t>();
    auto const third = input.Number<std::uint32_t>();
    auto const build = input.Number<std::uint32_t>();
    return Version(major, minor, third, build);
}

void CheckParsing(std::string const& text, std::string const& separator)
{
    RequireEqual(Zelkor::Core::Util::VersionFromString(text, separator), ExpectedVersion(text, separator),
                 "version of standard strings");
    QString const qtText = QString::fromStdString(text);
    QString const qtSeparator = QString::fromStdString(separator);
    RequireEqual(Zelkor::Util::VersionFromString(qtText, qtSeparator),
                 ExpectedVersion(UpToNul(qtText.toStdString()), UpToNul(qtSeparator.toStdString())),
                 "version of Qt strings");
}

void CheckFormatting(Version const& version, int detail, std::string const& separator)
{
    auto const detailValue = static_cast<VersionToStringDetail>(detail);
    RequireEqual(Zelkor::Core::Util::VersionToString(version, detailValue, separator),
                 ExpectedText(version, detail, separator), "standard string of a version");
    QString const qtSeparator = QString::fromStdString(separator);
    QString const expected = QString::fromStdString(ExpectedText(version, detail, UpToNul(qtSeparator.toStdString())));
    RequireEqual(Zelkor::Util::VersionToString(version, detailValue, qtSeparator), expected, "Qt string of a version");

    bool const showsThird = version.GetThird() != 0 && version.GetThird() != Version::NotGiven;
    RequireEqual(Zelkor::Util::GenerateApplicationVisibleVersion(version),
                 QString::fromStdString(ExpectedText(version, showsThird ? 3 : 2, ".")), "visible version");
}

void CheckRoundTrip(Version const& version)
{
    std::string const text = Zelkor::Core::Util::VersionToString(version, VersionToStringDetail::Full, ".");
    bool const isComplete = version.GetMajor() != Version::NotGiven && version.GetMinor() != Version::NotGiven &&
                            version.GetThird() != Version::NotGiven && version.GetBuild() != Version::NotGiven;
    if (isComplete) {
        RequireEqual(Zelkor::Core::Util::VersionFromString(text, "."), version, "version of its own text");
    }
}

void CheckComparisons(Version const& left, Version const& right)
{
    int const order = ExpectedOrder(left, right);
    RequireEqual(left == right, order == 0, "==");
    RequireEqual(left != right, order != 0, "!=");
    RequireEqual(left < right, order < 0, "<");
    RequireEqual(left <= right, order <= 0, "<=");
    RequireEqual(left > right, order > 0, ">");
    RequireEqual(left >= right, order >= 0, ">=");
}

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    constexpr int Details[] = {1, 2, 3, 4, 0, 5, -1, INT_MAX, INT_MIN};

    FuzzInput input(data, size);
    std::string const text = input.Line();
    std::string const separator = input.Line();
    int const detail = Details[input.Byte() % std::size(Details)];
    Version const version = TakeVersion(input);
    Version const other = TakeVersion(input);
    CheckParsing(text, separator);
    CheckFormatting(version, detail, separator);
    CheckRoundTrip(version);
    CheckComparisons(version, other);
    CheckComparisons(version, version);
    return 0;
}

// Fuzzes the names and paths of launch agents and login items.

#include <fuzz/Fuzzing.h>

#include <Util/Platforms/mac/LaunchAgent.h>
#include <Util/Platforms/mac/LoginItem.h>

#include <vector>

using namespace Zelkor::Util;
using Zelkor::Testing::FuzzInput;
using Zelkor::Testing::RequireEqual;

namespace
{

QString const LabelCharacters = QStringLiteral("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-.");

/// Returns the parts of \a text between the characters \a separator. Empty parts are included.
std::vector<QString> Parts(QString const& text, QChar separator)
{
    std::vector<QString> parts(1);
    for (QChar const character : text) {
        if (character == separator) {
            parts.emplace_back();
        } else {
            parts.back() += character;
        }
    }
    return parts;
}

QString Without(QString text, QString const& removed)
{
    for (int i = text.indexOf(removed); i >= 0; i = text.indexOf(removed, i)) {
        text = text.left(i) + text.mid(i + removed.size());
    }
    return text;
}

void CheckLaunchAgentFileName(QString const& identifier)
{
    auto const parts = Parts(identifier, QLatin1Char('_'));
    QString const actual = LaunchAgentFileName(identifier);
    RequireEqual(actual.isNull(), parts.size() != 4, "file name is null");
    if (parts.size() == 4) {
        QString const expected = QStringLiteral("com.") + parts[0].toLower() + QLatin1Char('.') + parts[1].toLower() +
                                 Parts(parts[2], QLatin1Char('.'))[0] + QLatin1Char('.') + parts[3].toLower() +
                                 QStringLiteral(".startup.plist");
        RequireEqual(actual, expected, "file name of a launch agent");
    }
}

/// Returns true if \a line ends with \a label. A dot in the label matches any character.
bool EndsWithLabel(QString const& line, QString const& label)
{
    return line.size() >= label.size() &&
           std::equal(label.begin(), label.end(), line.end() - label.size(),
                      [](QChar expected, QChar actual) { return expected == QLatin1Char('.') || expected == actual; });
}

void CheckLoadedJobPattern(QString const& label, QString const& listing)
{
    QRegularExpression const pattern = LoadedJobPattern(label);
    bool const isPlain =
        std::all_of(label.begin(), label.end(), [](QChar character) { return LabelCharacters.contains(character); });
    // Skip all other texts: EndsWithLabel() handles no special characters of patterns except the dot, and no characters
    // that consist of several UTF-16 units.
    bool const isAscii = std::all_of(listing.begin(), listing.end(), [](QChar character) { return character < 0x80; });
    if (!isPlain || !isAscii) {
        return;
    }
    auto const lines = Parts(listing, QLatin1Char('\n'));
    bool const isLoaded =
        std::any_of(lines.begin(), lines.end(), [&label](QString const& line) { return EndsWithLabel(line, label); });
    RequireEqual(listing.contains(pattern), isLoaded, "job is loaded");
}

QString ExpectedBundlePath(QString const& executablePath)
{
    QString const contents = QStringLiteral("/Contents");
    int const last = executablePath.lastIndexOf(contents);
    if (last < 0) {
        return executablePath.left(executablePath.size() - 1);
    }
    // Remove the last match of the pattern "/Contents.*" and the text after it. A match begins at the first "/Contents"
    // of a line.
    int const line = executablePath.lastIndexOf(QLatin1Char('\n'), last) + 1;
    return executablePath.left(executablePath.indexOf(contents, line));
}

void CheckBundleIdentifierPart(QString const& identifier, int index)
{
    auto const parts = Parts(identifier, QLatin1Char('.'));
    bool const hasPart = parts.size() >= 3 && index >= 0 && static_cast<std::size_t>(index) < parts.size();
    RequireEqual(BundleIdentifierPart(identifier, index), hasPart ? parts[static_cast<std::size_t>(index)] : QString(),
                 "part of a bundle identifier");
}

void CheckCompletedBundleVersion(QString const& version)
{
    bool const isShort = Parts(version, QLatin1Char('.')).size() < 3;
    RequireEqual(CompletedBundleVersion(version), isShort ? version + QStringLiteral(".0") : version,
                 "completed version");
}

void CheckProduct(QString const& product, QString const& version)
{
    QString const majorVersion = Parts(version, QLatin1Char('.'))[0];
    bool const isRemoved = !majorVersion.isEmpty() && product.right(majorVersion.size()) == majorVersion;
    RequireEqual(ProductWithoutMajorVersion(product, version), isRemoved ? Without(product, majorVersion) : product,
                 "product without the major version");
}

void CheckMainBundlePath(QString const& itemPath)
{
    auto const parts = Parts(itemPath, QLatin1Char('/'));
    QString expected;
    for (std::size_t i = 0; i + 5 < parts.size(); ++i) {
        expected += parts[i] + QLatin1Char('/');
    }
    RequireEqual(MainBundlePathOf(itemPath), expected, "path of the main bundle");
}

void CheckHelperProduct(QString const& identifier)
{
    auto const parts = Parts(identifier, QLatin1Char('_'));
    RequireEqual(HelperProductOf(identifier), parts.size() > 3 ? parts[3] : QString(), "helper product");
}

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    FuzzInput input(data, size);
    auto const index = input.Number<std::int8_t>();
    QString const first = QString::fromStdString(input.Line());
    QString const second = QString::fromStdString(input.Rest());

    for (QString const& text : {first, second}) {
        CheckLaunchAgentFileName(text);
        RequireEqual(BundlePathOf(text), ExpectedBundlePath(text), "path of a bundle");
        CheckBundleIdentifierPart(text, index);
        CheckCompletedBundleVersion(text);
        CheckMainBundlePath(text);
        CheckHelperProduct(text);
        RequireEqual(PathOfUrlText(text, false), Without(text, QStringLiteral("file://")), "path of a URL");
        RequireEqual(PathOfUrlText(text, true), Without(text, QStringLiteral("file://localhost")),
                     "path of a URL with a host");
    }
    CheckLoadedJobPattern(first, second);
    CheckProduct(first, second);
    return 0;
}

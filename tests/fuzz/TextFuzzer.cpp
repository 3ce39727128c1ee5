// Fuzzes the conversions of strings and byte arrays, and the replacement of the scheme of links.

#include <fuzz/Fuzzing.h>

#include <Util/ByteArrayUtils.h>
#include <Util/LinksUtils.h>
#include <Util/StringUtils.h>

#include <optional>
#include <vector>

using namespace Zelkor::Util;
using Zelkor::Testing::FuzzInput;
using Zelkor::Testing::RequireEqual;

namespace
{

bool IsSurrogate(char32_t character)
{
    return character >= 0xD800 && character <= 0xDFFF;
}

/// Returns the code points of \a utf8, or nothing if \a utf8 is not valid.
std::optional<std::u32string> DecodeUtf8(std::string const& utf8)
{
    std::u32string text;
    for (std::size_t i = 0; i < utf8.size();) {
        auto const first = static_cast<unsigned char>(utf8[i++]);
        if (first < 0x80) {
            text += first;
            continue;
        }
        int const following = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
        char32_t const smallest[] = {0, 0x80, 0x800, 0x10000};
        char32_t character = first & (0x3Fu >> following);
        for (int k = 0; k < following; ++k) {
            if (i == utf8.size() || (static_cast<unsigned char>(utf8[i]) & 0xC0) != 0x80) {
                return std::nullopt;
            }
            character = character << 6 | (static_cast<unsigned char>(utf8[i++]) & 0x3Fu);
        }
        bool const startsSequence = first >= 0xC0 && first < 0xF8;
        if (!startsSequence || character < smallest[following] || character > 0x10FFFF || IsSurrogate(character)) {
            return std::nullopt;
        }
        text += character;
    }
    return text;
}

std::string EncodeUtf8(std::u32string const& text)
{
    std::string utf8;
    auto const append = [&utf8](char32_t byte) { utf8 += static_cast<char>(byte); };
    for (char32_t const character : text) {
        if (character < 0x80) {
            append(character);
        } else if (character < 0x800) {
            append(0xC0 | character >> 6);
            append(0x80 | (character & 0x3F));
        } else if (character < 0x10000) {
            append(0xE0 | character >> 12);
            append(0x80 | (character >> 6 & 0x3F));
            append(0x80 | (character & 0x3F));
        } else {
            append(0xF0 | character >> 18);
            append(0x80 | (character >> 12 & 0x3F));
            append(0x80 | (character >> 6 & 0x3F));
            append(0x80 | (character & 0x3F));
        }
    }
    return utf8;
}

std::u32string CodePoints(QString const& text)
{
    std::u32string codePoints;
    for (uint const character : text.toUcs4()) {
        codePoints += static_cast<char32_t>(character);
    }
    return codePoints;
}

bool HasLoneSurrogate(QString const& text)
{
    for (int i = 0; i < text.size(); ++i) {
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            ++i;
        } else if (text[i].isSurrogate()) {
            return true;
        }
    }
    return false;
}

void CheckFromUtf8(std::string const& bytes)
{
    QString const actual = Utf8ToQString(bytes);
    std::string utf8 = bytes.substr(0, bytes.find('\0'));
    if (utf8.compare(0, 3, "\xEF\xBB\xBF") == 0) {
        utf8.erase(0, 3); // QString::fromUtf8() skips a byte order mark
    }
    auto const expected = DecodeUtf8(utf8);
    RequireEqual(HasLoneSurrogate(actual), false, "lone surrogate in a converted string");
    if (expected) {
        RequireEqual(CodePoints(actual) == *expected, true, "code points of a converted string are equal");
    } else {
        RequireEqual(actual.contains(QChar::ReplacementCharacter), true, "replacement of invalid UTF-8");
    }
}

void CheckToUtf8(QString const& text)
{
    std::string const actual = QStringToUtf8(text);
    QString const converted = text.left(text.indexOf(QChar::Null)); // all of the text if it contains no U+0000
    RequireEqual(DecodeUtf8(actual).has_value(), true, "result is valid UTF-8");
    if (!HasLoneSurrogate(converted)) {
        RequireEqual(actual, EncodeUtf8(CodePoints(converted)), "UTF-8 of a string");
    }
}

void CheckByteArrays(std::string const& bytes)
{
    std::vector<unsigned char> const vector(bytes.begin(), bytes.end());
    QByteArray const array(bytes.data(), static_cast<int>(bytes.size()));
    RequireEqual(VectorByteToQByteArray(vector), array, "byte array of a vector");
    RequireEqual(VectorByteToQByteArray(vector).isNull(), vector.empty(), "array of an empty vector is null");
    RequireEqual(QByteArrayToVectorByte(array) == vector, true, "vectors of a byte array are equal");
}

/// Returns \a character in lower case. The long s (U+017F) is equal to "s" in case-insensitive comparisons.
QChar Folded(QChar character)
{
    return character == QChar(0x017F) ? QLatin1Char('s') : character.toLower();
}

bool HasAt(QString const& text, int position, QString const& wanted)
{
    if (text.size() - position < wanted.size()) {
        return false;
    }
    return std::equal(wanted.begin(), wanted.end(), text.begin() + position,
                      [](QChar left, QChar right) { return left == Folded(right); });
}

QString ExpectedUrl(QString const& url, QString const& before, QString const& after)
{
    QString result;
    for (int i = 0; i < url.size();) {
        bool const isFound = HasAt(url, i, before);
        result += isFound ? after : QString(url[i]);
        i += isFound ? before.size() : 1;
    }
    return result;
}

void CheckUrl(QString const& url)
{
    QString const plain = QStringLiteral("http://");
    QString const secure = QStringLiteral("https://");
    SetDefaultSslUsage(true);
    RequireEqual(GetDefaultSslUsage(), true, "use of TLS");
    RequireEqual(ReplaceUrlProtocol(url), ExpectedUrl(url, plain, secure), "link with TLS");
    SetDefaultSslUsage(false);
    RequireEqual(GetDefaultSslUsage(), false, "use of TLS");
    RequireEqual(ReplaceUrlProtocol(url), ExpectedUrl(url, secure, plain), "link without TLS");
}

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    std::string const bytes = FuzzInput(data, size).Rest();
    QString utf16(static_cast<int>(size / sizeof(QChar)), Qt::Uninitialized);
    std::memcpy(utf16.data(), bytes.data(), size / sizeof(QChar) * sizeof(QChar));

    CheckFromUtf8(bytes);
    CheckToUtf8(utf16);
    CheckToUtf8(QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size())));
    CheckByteArrays(bytes);
    CheckUrl(QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size())));
    CheckUrl(utf16);
    return 0;
}

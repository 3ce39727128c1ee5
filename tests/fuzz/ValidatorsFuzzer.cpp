// Fuzzes the validators for e-mail addresses and file names.

#include <fuzz/Fuzzing.h>

#include <Util/ValidatorFactory.h>

#include <QtGui/QValidator>

#include <memory>

using Zelkor::Testing::FuzzInput;
using Zelkor::Testing::RequireEqual;

namespace
{

QString const Digits = QStringLiteral("0123456789");
QString const LowerCase = QStringLiteral("abcdefghijklmnopqrstuvwxyz");
QString const UpperCase = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZ");
QString const LetterOrDigit = LowerCase + UpperCase + Digits;
QString const LocalPart = LetterOrDigit + QStringLiteral("!#$%&'*+/=?^_`{|}~-");
QString const FirstInInnerLabel = LowerCase + Digits + QStringLiteral("_AZ");
QString const InLabel = LetterOrDigit + QLatin1Char('-');

bool ConsistsOf(QString const& text, QString const& characters)
{
    return std::all_of(text.begin(), text.end(), [&](QChar character) { return characters.contains(character); });
}

bool IsLabel(QString const& label, QString const& firstCharacters)
{
    return !label.isEmpty() && firstCharacters.contains(label.front()) && ConsistsOf(label.mid(1), InLabel) &&
           (label.size() == 1 || LetterOrDigit.contains(label.back()));
}

bool IsAddress(QString const& text)
{
    QStringList const sides = text.split(QLatin1Char('@'));
    if (sides.size() != 2) {
        return false;
    }
    QStringList const atoms = sides[0].split(QLatin1Char('.'));
    bool const hasLocalPart = std::all_of(
        atoms.begin(), atoms.end(), [](QString const& atom) { return !atom.isEmpty() && ConsistsOf(atom, LocalPart); });
    QStringList const labels = sides[1].split(QLatin1Char('.'));
    bool const hasInnerLabels = labels.size() >= 2 && std::all_of(labels.begin(), labels.end() - 1, [](auto& label) {
                                    return IsLabel(label, FirstInInnerLabel);
                                });
    return hasLocalPart && hasInnerLabels && IsLabel(labels.back(), LetterOrDigit);
}

bool IsFileName(QString const& text)
{
    return !text.isEmpty() && !text.front().isSpace() && !text.contains(QLatin1Char('/')) &&
           !text.contains(QLatin1Char(':'));
}

QValidator::State StateOf(QValidator const& validator, QString text)
{
    int cursor = text.size();
    return validator.validate(text, cursor);
}

void CheckText(QValidator const& validator, QString const& text, bool isAcceptable)
{
    RequireEqual(StateOf(validator, text) == QValidator::Acceptable, isAcceptable, "text is acceptable");
    if (!isAcceptable) {
        return;
    }
    for (int length = 0; length < text.size(); ++length) {
        RequireEqual(StateOf(validator, text.left(length)) != QValidator::Invalid, true, "text can be typed");
    }
}

QString TakeCharacters(FuzzInput& input, int count, QString const& characters)
{
    QString text;
    for (int i = 0; i < count; ++i) {
        text += characters[input.Byte() % characters.size()];
    }
    return text;
}

/// Returns a domain label whose first character is one of \a firstCharacters.
QString TakeLabel(FuzzInput& input, QString const& firstCharacters)
{
    QString label = TakeCharacters(input, 1, firstCharacters);
    if (input.Flag()) {
        label += TakeCharacters(input, input.Byte() % 4, InLabel) + TakeCharacters(input, 1, LetterOrDigit);
    }
    return label;
}

QString TakeAddress(FuzzInput& input)
{
    QString address = TakeCharacters(input, 1 + input.Byte() % 4, LocalPart);
    while (input.Flag()) {
        address += QLatin1Char('.') + TakeCharacters(input, 1 + input.Byte() % 4, LocalPart);
    }
    address += QLatin1Char('@');
    do {
        address += TakeLabel(input, FirstInInnerLabel) + QLatin1Char('.');
    } while (input.Flag());
    return address + TakeLabel(input, LetterOrDigit);
}

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static std::unique_ptr<QValidator> const emailValidator(Zelkor::Util::GetEmailValidator(nullptr));
    static std::unique_ptr<QValidator> const fileNameValidator(Zelkor::Util::GetFilenameValidator(nullptr));
    constexpr std::size_t LongestText = 256; // each prefix is validated, so that long texts are slow

    FuzzInput input(data, std::min(size, LongestText));
    switch (input.Byte()) {
    case 'a': { // an address that the validator must accept
        QString const address = TakeAddress(input);
        RequireEqual(IsAddress(address), true, "invented text is an address");
        CheckText(*emailValidator, address, true);
        break;
    }
    case 'e': {
        QString const text = QString::fromStdString(input.Rest());
        CheckText(*emailValidator, text, IsAddress(text));
        break;
    }
    default: {
        QString const text = QString::fromStdString(input.Rest());
        CheckText(*fileNameValidator, text, IsFileName(text));
        break;
    }
    }
    return 0;
}

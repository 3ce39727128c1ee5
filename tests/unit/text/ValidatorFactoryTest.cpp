#include <support/TestCase.h>

#include <Util/ValidatorFactory.h>

#include <QtCore/QPointer>
#include <QtCore/QRegExp>
#include <QtGui/QRegExpValidator>
#include <QtTest/QtTest>
#include <QtWidgets/QLineEdit>

#include <algorithm>
#include <iterator>
#include <memory>
#include <type_traits>

using Zelkor::Util::GetEmailValidator;
using Zelkor::Util::GetFilenameValidator;

static_assert(std::is_same_v<decltype(&GetEmailValidator), QValidator* (*)(QObject*)>);
static_assert(std::is_same_v<decltype(&GetFilenameValidator), QValidator* (*)(QObject*)>);

using Factory = QValidator* (*)(QObject* parent);
Q_DECLARE_METATYPE(Factory)
Q_DECLARE_METATYPE(QValidator::State)

namespace
{

constexpr QValidator::State Invalid = QValidator::Invalid;
constexpr QValidator::State Intermediate = QValidator::Intermediate;
constexpr QValidator::State Acceptable = QValidator::Acceptable;

// "[A_Za-z0-9]" is intended, not a misspelling of "[A-Za-z0-9]". Each domain label before the last one must begin with
// a lower-case letter, a digit, "A", "Z" or "_". Other upper-case letters are rejected there.
QString const emailPattern = QStringLiteral(
    R"([A-Za-z0-9!#$%&'*+/=?^_`{|}~-]+(?:\.[A-Za-z0-9!#$%&'*+/=?^_`{|}~-]+)*@(?:[A_Za-z0-9](?:[A-Za-z0-9-]*[A-Za-z0-9])?\.)+[A-Za-z0-9](?:[A-Za-z0-9-]*[A-Za-z0-9])?)");

QString const filenamePattern = QStringLiteral(R"([^\s/:][^/:]*)");

QValidator::State StateOf(QValidator const& validator, QString text)
{
    int position = text.size();
    return validator.validate(text, position);
}

/// Returns all prefixes of \a text that \a validator rejects. Does not check the complete text.
QStringList InvalidPrefixes(QValidator const& validator, QString const& text)
{
    QStringList prefixes;
    for (int length = 0; length < text.size(); ++length) {
        if (StateOf(validator, text.left(length)) == Invalid) {
            prefixes += text.left(length);
        }
    }
    return prefixes;
}

/// Returns the expected state of \a text according to QRegularExpression. The validators under test use QRegExp, which
/// is a different implementation.
QValidator::State ExpectedState(QRegularExpression const& pattern, QString const& text)
{
    QRegularExpressionMatch const match = pattern.match(text, 0, QRegularExpression::PartialPreferCompleteMatch);
    if (match.hasMatch()) {
        return Acceptable;
    }
    return text.isEmpty() || match.hasPartialMatch() ? Intermediate : Invalid;
}

/// Returns all strings that consist of \a prefix followed by zero to \a length characters from \a letters.
QStringList AllTexts(QString const& prefix, QString const& letters, int length)
{
    QStringList all(prefix);
    int index = 0;
    for (int i = 0; i < length; ++i) {
        int const end = all.size();
        for (; index < end; ++index) {
            for (QChar const letter : letters) {
                all += all.at(index) + letter;
            }
        }
    }
    return all;
}

/// Compares the state that \a validator returns for each string in \a texts with the state that ExpectedState() returns
/// for the regular expression \a pattern. Returns the strings for which the two states differ.
QStringList TextsWithWrongState(QValidator const& validator, QString const& pattern, QStringList const& texts)
{
    QRegularExpression const expected(QStringLiteral("\\A(?:") + pattern + QStringLiteral(")\\z"));
    QStringList wrong;
    std::copy_if(texts.begin(), texts.end(), std::back_inserter(wrong),
                 [&](QString const& text) { return StateOf(validator, text) != ExpectedState(expected, text); });
    return wrong;
}

void AddFactoryRows()
{
    QTest::addColumn<Factory>("create");
    QTest::newRow("e-mail") << &GetEmailValidator;
    QTest::newRow("file name") << &GetFilenameValidator;
}

void AddStateColumns()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QValidator::State>("state");
}

void AddStateRow(char const* name, QString const& text, QValidator::State state)
{
    QTest::newRow(name) << text << state;
}

void AddStateRow(char const* name, char const* text, QValidator::State state)
{
    AddStateRow(name, QString::fromUtf8(text), state);
}

void AddEmailRows()
{
    QTest::addColumn<QString>("text");
    for (char const* const text : {"a@b.c",
                                   "john@example.org",
                                   "john.doe@mail.example.org",
                                   "a.b.c.d@e.f.g.h",
                                   "A.B.C@example.ORG",
                                   "1@2.3",
                                   "!#$%&'*+/=?^_`{|}~-@example.org",
                                   "!.#.$.%.&.'@a.b",
                                   "-@a.b",
                                   "--a--@a.b",
                                   "john+tag@sub-domain.example.org",
                                   "john@a-b.c-d.e-f",
                                   "john@a--b.c",
                                   "john@1.2.3.4",
                                   "john@_dmarc.example.org",
                                   "john@_.example.org",
                                   "john@Alpha.example.org",
                                   "john@A.A.A",
                                   "john@aBCDE.fGHI.JKL",
                                   "john@example.Museum",
                                   "john@example.Z",
                                   "john@xn--bcher-kva.example",
                                   "a@0a.a0",
                                   "a@a0-0a.org"}) {
        QTest::newRow(text) << QString::fromUtf8(text);
    }
}

void AddFilenameRows()
{
    QTest::addColumn<QString>("text");
    for (char const* const text :
         {"a", "report.txt", ".hidden", "..", "two words.txt", "trailing space ", "a \t b", "-", "~", "\\", "*?<>|\"'",
          "%1", "100%", "\xC3\xA4\xE2\x82\xAC.txt", "\xF0\x9D\x84\x9E", "\xE3\x83\x95\xE3\x82\xA1", "a\nb"}) {
        QTest::newRow(QByteArray(text).toPercentEncoding(" *?<>|\"'\\%").constData()) << QString::fromUtf8(text);
    }
}

} // namespace

class ValidatorFactoryTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void isARegExpValidator_data() { AddFactoryRows(); }

    void isARegExpValidator()
    {
        QFETCH(Factory, create);
        std::unique_ptr<QValidator> const validator(create(nullptr));
        QCOMPARE(validator->metaObject()->className(), "QRegExpValidator");
    }

    void usesTheExpectedPattern_data()
    {
        QTest::addColumn<Factory>("create");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<int>("length");
        QTest::newRow("e-mail") << &GetEmailValidator << emailPattern << 157;
        QTest::newRow("file name") << &GetFilenameValidator << filenamePattern << 13;
    }

    void usesTheExpectedPattern()
    {
        QFETCH(Factory, create);
        QFETCH(QString, pattern);
        QFETCH(int, length);
        std::unique_ptr<QValidator> const validator(create(nullptr));
        auto const* const regExpValidator = qobject_cast<QRegExpValidator const*>(validator.get());
        QVERIFY(regExpValidator);
        QRegExp const& regExp = regExpValidator->regExp();
        QCOMPARE(regExp.pattern(), pattern);
        QCOMPARE(regExp.pattern().size(), length);
        QCOMPARE(regExp.caseSensitivity(), Qt::CaseSensitive);
        QCOMPARE(regExp.patternSyntax(), QRegExp::RegExp);
        QVERIFY(!regExp.isMinimal());
        QVERIFY(regExp.isValid());
    }

    void belongsToItsParent_data() { AddFactoryRows(); }

    void belongsToItsParent()
    {
        QFETCH(Factory, create);
        auto parent = std::make_unique<QObject>();
        QPointer<QValidator> const validator(create(parent.get()));
        QCOMPARE(validator->parent(), parent.get());
        parent.reset();
        QVERIFY(validator.isNull());
    }

    void belongsToTheCallerWithoutAParent_data() { AddFactoryRows(); }

    void belongsToTheCallerWithoutAParent()
    {
        QFETCH(Factory, create);
        std::unique_ptr<QValidator> const validator(create(nullptr));
        QVERIFY(!validator->parent());
    }

    void returnsANewValidatorEachTime_data() { AddFactoryRows(); }

    void returnsANewValidatorEachTime()
    {
        QFETCH(Factory, create);
        QObject parent;
        QValidator const* const first = create(&parent);
        QVERIFY(create(&parent) != first);
        QCOMPARE(parent.children().size(), 2);
    }

    void doesNotModifyTheText_data() { AddFactoryRows(); }

    void doesNotModifyTheText()
    {
        QFETCH(Factory, create);
        std::unique_ptr<QValidator> const validator(create(nullptr));
        for (QString const& text : {QStringLiteral("john@example.org"), QStringLiteral(" :/ "), QStringLiteral("john@"),
                                    QString(QLatin1String(""))}) {
            QString given = text;
            validator->fixup(given);
            int position = 0;
            validator->validate(given, position);
            QCOMPARE(given, text);
        }
    }

    void validatesAnEmailAddress_data()
    {
        AddStateColumns();
        AddStateRow("dots in the local part, lower-case labels", "john.w.doe@mail.example.org", Acceptable);
        AddStateRow("label begins with a capital M", "john.w.doe@Mail.example.org", Invalid);
        AddStateRow("middle label begins with a capital M", "john.w.doe@mail.Mxample.org", Invalid);
        AddStateRow("label begins with an underscore", "john.w.doe@_mail.example.org", Acceptable);
        AddStateRow("middle label begins with an underscore", "john.w.doe@mail._example.org", Acceptable);
        AddStateRow("label begins with a capital A", "john.w.doe@Amail.example.org", Acceptable);
        AddStateRow("label begins with a capital B", "john@B.org", Invalid);
        AddStateRow("label begins with a capital Y", "john@Y.org", Invalid);
        AddStateRow("label begins with a capital Z", "john@Z.org",
                    Acceptable); // "[A_Za-z0-9]" in emailPattern accepts "Z"
        AddStateRow("label begins with a lower-case a", "john@a.org", Acceptable);
        AddStateRow("label begins with a lower-case z", "john@z.org", Acceptable);
        AddStateRow("label begins with a digit", "john@0.org", Acceptable);
        AddStateRow("last label begins with a capital M", "john@example.Museum", Acceptable);
        AddStateRow("last label begins with an underscore", "john@example._org", Intermediate);
        AddStateRow("last label is an underscore", "john@example._", Intermediate);
        AddStateRow("capitals inside a label", "john@eXAMPLE.oRG", Acceptable);
        AddStateRow("label ends with a capital", "john@eM.org", Acceptable);
        AddStateRow("underscore inside a label", "john@ex_ample.org", Invalid);
        AddStateRow("label begins with a hyphen", "john@-example.org", Invalid);
        AddStateRow("last label begins with a hyphen", "john@example.-org", Invalid);
        AddStateRow("label ends with a hyphen", "john@example-.org", Invalid);
        AddStateRow("last label ends with a hyphen", "john@example.org-", Intermediate);
        AddStateRow("hyphens inside a label", "john@ex--ample.o-rg", Acceptable);
        AddStateRow("one label", "john@localhost", Intermediate);
        AddStateRow("trailing dot", "john@example.org.", Intermediate);
        AddStateRow("trailing dot after a capital", "john@example.Org.", Invalid);
        AddStateRow("leading dot", ".john@example.org", Invalid);
        AddStateRow("dot before the at sign", "john.@example.org", Invalid);
        AddStateRow("two dots in the local part", "john..doe@example.org", Invalid);
        AddStateRow("two dots in the domain", "john@example..org", Invalid);
        AddStateRow("dot after the at sign", "john@.example.org", Invalid);
        AddStateRow("empty local part", "@example.org", Invalid);
        AddStateRow("two at signs", "john@doe@example.org", Invalid);
        AddStateRow("all characters of the local part", "azAZ09!#$%&'*+/=?^_`{|}~-@example.org", Acceptable);
        AddStateRow("empty text", "", Intermediate);
        AddStateRow("local part only", "john", Intermediate);
        AddStateRow("empty domain", "john@", Intermediate);
        AddStateRow("leading space", " john@example.org", Invalid);
        AddStateRow("trailing space", "john@example.org ", Invalid);
        AddStateRow("inner space", "john doe@example.org", Invalid);
        AddStateRow("trailing line feed", "john@example.org\n", Invalid);
        AddStateRow("quoted local part", "\"john\"@example.org", Invalid);
        AddStateRow("comma", "john,doe@example.org", Invalid);
        AddStateRow("colon", "mailto:john@example.org", Invalid);
        AddStateRow("bracket", "john@[127.0.0.1]", Invalid);
        AddStateRow("non-ASCII local part", "j\xC3\xB6hn@example.org", Invalid);
        AddStateRow("non-ASCII domain", "john@ex\xC3\xA4mple.org", Invalid);
        AddStateRow("full-width letter", "\xEF\xBD\x8A@example.org", Invalid);
        AddStateRow("trailing NUL", QStringLiteral("john@example.org") + QChar(0), Invalid);
    }

    void validatesAnEmailAddress()
    {
        QFETCH(QString, text);
        QFETCH(QValidator::State, state);
        std::unique_ptr<QValidator> const validator(GetEmailValidator(nullptr));
        QCOMPARE(StateOf(*validator, text), state);
    }

    void acceptsAnEmailAddress_data() { AddEmailRows(); }

    void acceptsAnEmailAddress()
    {
        QFETCH(QString, text);
        std::unique_ptr<QValidator> const validator(GetEmailValidator(nullptr));
        QCOMPARE(StateOf(*validator, text), Acceptable);
        QCOMPARE(InvalidPrefixes(*validator, text), QStringList());
    }

    void allowsTypingAnEmailAddress_data() { AddEmailRows(); }

    void allowsTypingAnEmailAddress()
    {
        QFETCH(QString, text);
        QLineEdit edit;
        edit.setValidator(GetEmailValidator(&edit));
        QTest::keyClicks(&edit, text);
        QCOMPARE(edit.text(), text);
        QVERIFY(edit.hasAcceptableInput());
    }

    void validatesAFilename_data()
    {
        AddStateColumns();
        AddStateRow("plain name", "report.txt", Acceptable);
        AddStateRow("one character", "x", Acceptable);
        AddStateRow("empty text", "", Intermediate);
        AddStateRow("leading space", " report.txt", Invalid);
        AddStateRow("leading tab", "\treport.txt", Invalid);
        AddStateRow("leading line feed", "\nreport.txt", Invalid);
        AddStateRow("leading vertical tab", "\vreport.txt", Invalid);
        AddStateRow("leading no-break space", "\xC2\xA0report.txt", Invalid);
        AddStateRow("leading ideographic space", "\xE3\x80\x80report.txt", Invalid);
        AddStateRow("leading line separator", "\xE2\x80\xA8report.txt", Invalid);
        AddStateRow("leading zero-width space", "\xE2\x80\x8Breport.txt", Acceptable);
        AddStateRow("single space", " ", Invalid);
        AddStateRow("inner spaces", "my  last report.txt", Acceptable);
        AddStateRow("trailing spaces", "report.txt  ", Acceptable);
        AddStateRow("inner and trailing tab", "my\treport\t", Acceptable);
        AddStateRow("inner and trailing line feed", "my\nreport\n", Acceptable);
        AddStateRow("slash only", "/", Invalid);
        AddStateRow("leading slash", "/report.txt", Invalid);
        AddStateRow("inner slash", "my/report.txt", Invalid);
        AddStateRow("trailing slash", "reports/", Invalid);
        AddStateRow("colon only", ":", Invalid);
        AddStateRow("leading colon", ":report.txt", Invalid);
        AddStateRow("inner colon", "my:report.txt", Invalid);
        AddStateRow("trailing colon", "report:", Invalid);
        AddStateRow("backslash", "my\\report.txt", Acceptable);
        AddStateRow("letter s", "s", Acceptable);
        AddStateRow("leading dot", ".report", Acceptable);
        AddStateRow("non-ASCII characters", "\xC3\xA4\xE2\x82\xAC\xF0\x9D\x84\x9E", Acceptable);
        AddStateRow("full-width slash and colon", "a\xEF\xBC\x8F\xEF\xBC\x9A", Acceptable);
    }

    void validatesAFilename()
    {
        QFETCH(QString, text);
        QFETCH(QValidator::State, state);
        std::unique_ptr<QValidator> const validator(GetFilenameValidator(nullptr));
        QCOMPARE(StateOf(*validator, text), state);
    }

    void acceptsAFilename_data() { AddFilenameRows(); }

    void acceptsAFilename()
    {
        QFETCH(QString, text);
        std::unique_ptr<QValidator> const validator(GetFilenameValidator(nullptr));
        QCOMPARE(StateOf(*validator, text), Acceptable);
        QCOMPARE(InvalidPrefixes(*validator, text), QStringList());
    }

    void allowsTypingAFilename()
    {
        QLineEdit edit;
        edit.setValidator(GetFilenameValidator(&edit));
        QTest::keyClicks(&edit, QStringLiteral(" /:my la/st:report.txt "));
        QCOMPARE(edit.text(), QStringLiteral("my lastreport.txt "));
        QVERIFY(edit.hasAcceptableInput());
    }

    void validatesEveryShortTextLikeThePattern_data()
    {
        QTest::addColumn<Factory>("create");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QStringList>("texts");
        QTest::newRow("e-mail") << &GetEmailValidator << emailPattern
                                << AllTexts(QString(), QStringLiteral("aB_-.@ "), 5);
        QTest::newRow("domain") << &GetEmailValidator << emailPattern
                                << AllTexts(QStringLiteral("a@"), QStringLiteral("aAZB_-."), 5);
        QTest::newRow("domain after a label")
            << &GetEmailValidator << emailPattern << AllTexts(QStringLiteral("a.b@c-d."), QStringLiteral("aAB_-.@"), 4);
        QTest::newRow("file name") << &GetFilenameValidator << filenamePattern
                                   << AllTexts(QString(), QStringLiteral("aZ. \n/:"), 4);
    }

    void validatesEveryShortTextLikeThePattern()
    {
        QFETCH(Factory, create);
        QFETCH(QString, pattern);
        QFETCH(QStringList, texts);
        std::unique_ptr<QValidator> const validator(create(nullptr));
        QCOMPARE(TextsWithWrongState(*validator, pattern, texts), QStringList());
    }
};

ZQTUTIL_WIDGET_TEST_MAIN(ValidatorFactoryTest)
#include "ValidatorFactoryTest.moc"

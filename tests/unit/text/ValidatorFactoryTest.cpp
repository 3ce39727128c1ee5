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

QString const emailPattern = QStringLiteral(
    R"([A-Za-z0-9!#$%&'*+/=?^_`{|}~-]+(?:\.[A-Za-z0-9!#$%&'*+/=?^_`{|}~-]+)*@(?:[A_Za-z0-9](?:[A-Za-z0-9-]*[A-Za-z0-9])?\.)+[A-Za-z0-9](?:[A-Za-z0-9-]*[A-Za-z0-9])?)");

QString const filenamePattern = QStringLiteral(R"([^\s/:][^/:]*)");

QValidator::State StateOf(QValidator const& validator, QString text)
{
    int position = text.size();
    return validator.validate(text, position);
}

/// The texts that begin \a text and cannot be typed on.
QStringList DeadEnds(QValidator const& validator, QString const& text)
{
    QStringList deadEnds;
    for (int length = 0; length < text.size(); ++length) {
        if (StateOf(validator, text.left(length)) == Invalid) {
            deadEnds += text.left(length);
        }
    }
    return deadEnds;
}

/// What a matcher of another make says.
QValidator::State ExpectedState(QRegularExpression const& pattern, QString const& text)
{
    QRegularExpressionMatch const match = pattern.match(text, 0, QRegularExpression::PartialPreferCompleteMatch);
    if (match.hasMatch()) {
        return Acceptable;
    }
    return text.isEmpty() || match.hasPartialMatch() ? Intermediate : Invalid;
}

/// Every text of up to \a length of the \a letters, each behind \a beginning.
QStringList AllTexts(QString const& beginning, QString const& letters, int length)
{
    QStringList all(beginning);
    int shorter = 0;
    for (int i = 0; i < length; ++i) {
        int const end = all.size();
        for (; shorter < end; ++shorter) {
            for (QChar const letter : letters) {
                all += all.at(shorter) + letter;
            }
        }
    }
    return all;
}

/// Those of \a texts that are judged otherwise than \a pattern says.
QStringList Misjudged(QValidator const& validator, QString const& pattern, QStringList const& texts)
{
    QRegularExpression const expected(QStringLiteral("\\A(?:") + pattern + QStringLiteral(")\\z"));
    QStringList misjudged;
    std::copy_if(texts.begin(), texts.end(), std::back_inserter(misjudged),
                 [&](QString const& text) { return StateOf(validator, text) != ExpectedState(expected, text); });
    return misjudged;
}

void AddFactories()
{
    QTest::addColumn<Factory>("create");
    QTest::newRow("e-mail") << &GetEmailValidator;
    QTest::newRow("file name") << &GetFilenameValidator;
}

void AddStates()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QValidator::State>("state");
}

void AddState(char const* name, QString const& text, QValidator::State state)
{
    QTest::newRow(name) << text << state;
}

void AddState(char const* name, char const* text, QValidator::State state)
{
    AddState(name, QString::fromUtf8(text), state);
}

void AddEmails()
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

void AddFilenames()
{
    QTest::addColumn<QString>("text");
    for (char const* const text :
         {"a", "report.txt", ".hidden", "..", "two words.txt", "ends in a blank ", "a \t b", "-", "~", "\\", "*?<>|\"'",
          "%1", "100%", "\xC3\xA4\xE2\x82\xAC.txt", "\xF0\x9D\x84\x9E", "\xE3\x83\x95\xE3\x82\xA1", "a\nb"}) {
        QTest::newRow(QByteArray(text).toPercentEncoding(" *?<>|\"'\\%").constData()) << QString::fromUtf8(text);
    }
}

} // namespace

class ValidatorFactoryTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void isARegExpValidator_data() { AddFactories(); }

    void isARegExpValidator()
    {
        QFETCH(Factory, create);
        std::unique_ptr<QValidator> const validator(create(nullptr));
        QCOMPARE(validator->metaObject()->className(), "QRegExpValidator");
    }

    void matchesByThePattern_data()
    {
        QTest::addColumn<Factory>("create");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<int>("length");
        QTest::newRow("e-mail") << &GetEmailValidator << emailPattern << 157;
        QTest::newRow("file name") << &GetFilenameValidator << filenamePattern << 13;
    }

    void matchesByThePattern()
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

    void belongsToItsParent_data() { AddFactories(); }

    void belongsToItsParent()
    {
        QFETCH(Factory, create);
        auto parent = std::make_unique<QObject>();
        QPointer<QValidator> const validator(create(parent.get()));
        QCOMPARE(validator->parent(), parent.get());
        parent.reset();
        QVERIFY(validator.isNull());
    }

    void belongsToTheCallerWithoutAParent_data() { AddFactories(); }

    void belongsToTheCallerWithoutAParent()
    {
        QFETCH(Factory, create);
        std::unique_ptr<QValidator> const validator(create(nullptr));
        QVERIFY(!validator->parent());
    }

    void isNewEachTime_data() { AddFactories(); }

    void isNewEachTime()
    {
        QFETCH(Factory, create);
        QObject parent;
        QValidator const* const first = create(&parent);
        QVERIFY(create(&parent) != first);
        QCOMPARE(parent.children().size(), 2);
    }

    void leavesTheTextAlone_data() { AddFactories(); }

    void leavesTheTextAlone()
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

    void judgesAnEmailAddress_data()
    {
        AddStates();
        AddState("dots before, lower-case labels behind", "john.w.doe@mail.example.org", Acceptable);
        AddState("label begins with a capital M", "john.w.doe@Mail.example.org", Invalid);
        AddState("middle label begins with a capital M", "john.w.doe@mail.Mxample.org", Invalid);
        AddState("label begins with an underscore", "john.w.doe@_mail.example.org", Acceptable);
        AddState("middle label begins with an underscore", "john.w.doe@mail._example.org", Acceptable);
        AddState("label begins with a capital A", "john.w.doe@Amail.example.org", Acceptable);
        AddState("label begins with a capital B", "john@B.org", Invalid);
        AddState("label begins with a capital Y", "john@Y.org", Invalid);
        AddState("label begins with a capital Z", "john@Z.org", Acceptable); // the class names it
        AddState("label begins with a lower-case a", "john@a.org", Acceptable);
        AddState("label begins with a lower-case z", "john@z.org", Acceptable);
        AddState("label begins with a digit", "john@0.org", Acceptable);
        AddState("last label begins with a capital M", "john@example.Museum", Acceptable);
        AddState("last label begins with an underscore", "john@example._org", Intermediate);
        AddState("last label is an underscore", "john@example._", Intermediate);
        AddState("capitals inside a label", "john@eXAMPLE.oRG", Acceptable);
        AddState("label ends in a capital", "john@eM.org", Acceptable);
        AddState("underscore inside a label", "john@ex_ample.org", Invalid);
        AddState("label begins with a hyphen", "john@-example.org", Invalid);
        AddState("last label begins with a hyphen", "john@example.-org", Invalid);
        AddState("label ends in a hyphen", "john@example-.org", Invalid);
        AddState("last label ends in a hyphen", "john@example.org-", Intermediate);
        AddState("hyphens inside a label", "john@ex--ample.o-rg", Acceptable);
        AddState("one label", "john@localhost", Intermediate);
        AddState("trailing dot", "john@example.org.", Intermediate);
        AddState("trailing dot behind a capital", "john@example.Org.", Invalid);
        AddState("leading dot", ".john@example.org", Invalid);
        AddState("dot before the at sign", "john.@example.org", Invalid);
        AddState("two dots before", "john..doe@example.org", Invalid);
        AddState("two dots behind", "john@example..org", Invalid);
        AddState("dot behind the at sign", "john@.example.org", Invalid);
        AddState("nothing before the at sign", "@example.org", Invalid);
        AddState("two at signs", "john@doe@example.org", Invalid);
        AddState("all characters of the local part", "azAZ09!#$%&'*+/=?^_`{|}~-@example.org", Acceptable);
        AddState("nothing", "", Intermediate);
        AddState("local part only", "john", Intermediate);
        AddState("nothing behind the at sign", "john@", Intermediate);
        AddState("blank before", " john@example.org", Invalid);
        AddState("blank behind", "john@example.org ", Invalid);
        AddState("blank inside", "john doe@example.org", Invalid);
        AddState("line feed behind", "john@example.org\n", Invalid);
        AddState("quoted local part", "\"john\"@example.org", Invalid);
        AddState("comma", "john,doe@example.org", Invalid);
        AddState("colon", "mailto:john@example.org", Invalid);
        AddState("bracket", "john@[127.0.0.1]", Invalid);
        AddState("beyond ASCII before", "j\xC3\xB6hn@example.org", Invalid);
        AddState("beyond ASCII behind", "john@ex\xC3\xA4mple.org", Invalid);
        AddState("full-width letter", "\xEF\xBD\x8A@example.org", Invalid);
        AddState("NUL behind", QStringLiteral("john@example.org") + QChar(0), Invalid);
    }

    void judgesAnEmailAddress()
    {
        QFETCH(QString, text);
        QFETCH(QValidator::State, state);
        std::unique_ptr<QValidator> const validator(GetEmailValidator(nullptr));
        QCOMPARE(StateOf(*validator, text), state);
    }

    void acceptsAnEmailAddress_data() { AddEmails(); }

    void acceptsAnEmailAddress()
    {
        QFETCH(QString, text);
        std::unique_ptr<QValidator> const validator(GetEmailValidator(nullptr));
        QCOMPARE(StateOf(*validator, text), Acceptable);
        QCOMPARE(DeadEnds(*validator, text), QStringList());
    }

    void letsAnEmailAddressBeTyped_data() { AddEmails(); }

    void letsAnEmailAddressBeTyped()
    {
        QFETCH(QString, text);
        QLineEdit edit;
        edit.setValidator(GetEmailValidator(&edit));
        QTest::keyClicks(&edit, text);
        QCOMPARE(edit.text(), text);
        QVERIFY(edit.hasAcceptableInput());
    }

    void judgesAFilename_data()
    {
        AddStates();
        AddState("plain", "report.txt", Acceptable);
        AddState("one character", "x", Acceptable);
        AddState("nothing", "", Intermediate);
        AddState("leading blank", " report.txt", Invalid);
        AddState("leading tab", "\treport.txt", Invalid);
        AddState("leading line feed", "\nreport.txt", Invalid);
        AddState("leading vertical tab", "\vreport.txt", Invalid);
        AddState("leading no-break space", "\xC2\xA0report.txt", Invalid);
        AddState("leading ideographic space", "\xE3\x80\x80report.txt", Invalid);
        AddState("leading line separator", "\xE2\x80\xA8report.txt", Invalid);
        AddState("leading zero-width space is none", "\xE2\x80\x8Breport.txt", Acceptable);
        AddState("only a blank", " ", Invalid);
        AddState("inner blanks", "my  last report.txt", Acceptable);
        AddState("trailing blanks", "report.txt  ", Acceptable);
        AddState("inner and trailing tab", "my\treport\t", Acceptable);
        AddState("inner and trailing line feed", "my\nreport\n", Acceptable);
        AddState("slash only", "/", Invalid);
        AddState("leading slash", "/report.txt", Invalid);
        AddState("inner slash", "my/report.txt", Invalid);
        AddState("trailing slash", "reports/", Invalid);
        AddState("colon only", ":", Invalid);
        AddState("leading colon", ":report.txt", Invalid);
        AddState("inner colon", "my:report.txt", Invalid);
        AddState("trailing colon", "report:", Invalid);
        AddState("backslash", "my\\report.txt", Acceptable);
        AddState("letter s", "s", Acceptable);
        AddState("leading dot", ".report", Acceptable);
        AddState("beyond ASCII", "\xC3\xA4\xE2\x82\xAC\xF0\x9D\x84\x9E", Acceptable);
        AddState("full-width slash and colon", "a\xEF\xBC\x8F\xEF\xBC\x9A", Acceptable);
    }

    void judgesAFilename()
    {
        QFETCH(QString, text);
        QFETCH(QValidator::State, state);
        std::unique_ptr<QValidator> const validator(GetFilenameValidator(nullptr));
        QCOMPARE(StateOf(*validator, text), state);
    }

    void acceptsAFilename_data() { AddFilenames(); }

    void acceptsAFilename()
    {
        QFETCH(QString, text);
        std::unique_ptr<QValidator> const validator(GetFilenameValidator(nullptr));
        QCOMPARE(StateOf(*validator, text), Acceptable);
        QCOMPARE(DeadEnds(*validator, text), QStringList());
    }

    void letsAFilenameBeTyped()
    {
        QLineEdit edit;
        edit.setValidator(GetFilenameValidator(&edit));
        QTest::keyClicks(&edit, QStringLiteral(" /:my la/st:report.txt "));
        QCOMPARE(edit.text(), QStringLiteral("my lastreport.txt "));
        QVERIFY(edit.hasAcceptableInput());
    }

    void judgesEveryShortTextByThePattern_data()
    {
        QTest::addColumn<Factory>("create");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QStringList>("texts");
        QTest::newRow("e-mail") << &GetEmailValidator << emailPattern
                                << AllTexts(QString(), QStringLiteral("aB_-.@ "), 5);
        QTest::newRow("domain") << &GetEmailValidator << emailPattern
                                << AllTexts(QStringLiteral("a@"), QStringLiteral("aAZB_-."), 5);
        QTest::newRow("domain behind a label")
            << &GetEmailValidator << emailPattern << AllTexts(QStringLiteral("a.b@c-d."), QStringLiteral("aAB_-.@"), 4);
        QTest::newRow("file name") << &GetFilenameValidator << filenamePattern
                                   << AllTexts(QString(), QStringLiteral("aZ. \n/:"), 4);
    }

    void judgesEveryShortTextByThePattern()
    {
        QFETCH(Factory, create);
        QFETCH(QString, pattern);
        QFETCH(QStringList, texts);
        std::unique_ptr<QValidator> const validator(create(nullptr));
        QCOMPARE(Misjudged(*validator, pattern, texts), QStringList());
    }
};

ZQTUTIL_WIDGET_TEST_MAIN(ValidatorFactoryTest)
#include "ValidatorFactoryTest.moc"

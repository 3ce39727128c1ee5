#include <support/TestCase.h>

#include <Util/StringUtils.h>

#include <QtTest/QtTest>

#include <string>
#include <type_traits>

using Zelkor::Util::QStringToUtf8;
using Zelkor::Util::Utf8ToQString;

static_assert(std::is_same_v<decltype(&Utf8ToQString), QString (*)(std::string const&)>);
static_assert(std::is_same_v<decltype(&QStringToUtf8), std::string (*)(QString const&)>);

Q_DECLARE_METATYPE(std::string)

class StringUtilsTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void convertsBothWays_data()
    {
        QTest::addColumn<std::string>("utf8");
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << std::string() << QString();
        QTest::newRow("ASCII") << std::string("Hello, world") << QStringLiteral("Hello, world");
        QTest::newRow("two bytes") << std::string("\xC3\xBC") << QString(QChar(0xFC));
        QTest::newRow("three bytes") << std::string("\xE2\x82\xAC") << QString(QChar(0x20AC));
        QTest::newRow("four bytes") << std::string("\xF0\x9F\x98\x80") << QString::fromUcs4(U"\U0001F600", 1);
        QTest::newRow("decomposed character") << std::string("u\xCC\x88") << QStringLiteral(u"u\u0308");
        QTest::newRow("last code point") << std::string("\xF4\x8F\xBF\xBF") << QString::fromUcs4(U"\U0010FFFF", 1);
        QTest::newRow("white space only") << std::string(" \t\r\n") << QStringLiteral(" \t\r\n");
        QTest::newRow("long text") << std::string(100000, 'x') << QString(100000, QLatin1Char('x'));
    }

    void convertsBothWays()
    {
        QFETCH(std::string, utf8);
        QFETCH(QString, text);
        QCOMPARE(Utf8ToQString(utf8), text);
        QCOMPARE(QStringToUtf8(text), utf8);
    }

    void stopsAtTheFirstNulByte_data()
    {
        QTest::addColumn<std::string>("utf8");
        QTest::addColumn<QString>("text");
        QTest::newRow("inside") << std::string("ab\0cd", 5) << QStringLiteral("ab");
        QTest::newRow("at the end") << std::string("ab\0", 3) << QStringLiteral("ab");
        QTest::newRow("at the start") << std::string("\0ab", 3) << QString();
        QTest::newRow("NUL bytes only") << std::string(3, '\0') << QString();
        QTest::newRow("inside a character") << std::string("a\xC3\0\xBC", 4) << QStringLiteral(u"a\uFFFD");
    }

    void stopsAtTheFirstNulByte()
    {
        QFETCH(std::string, utf8);
        QFETCH(QString, text);
        QCOMPARE(Utf8ToQString(utf8), text);
    }

    void stopsAtTheFirstNulCharacter_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<std::string>("utf8");
        QTest::newRow("inside") << QString::fromUtf16(u"\u00E4b\0cd", 5)
                                << std::string("\xC3\xA4"
                                               "b");
        QTest::newRow("at the end") << QString::fromUtf16(u"ab\0", 3) << std::string("ab");
        QTest::newRow("at the start") << QString::fromUtf16(u"\0ab", 3) << std::string();
        QTest::newRow("NUL as low byte of a character") << QString(QChar(0x0100)) << std::string("\xC4\x80");
    }

    void stopsAtTheFirstNulCharacter()
    {
        QFETCH(QString, text);
        QFETCH(std::string, utf8);
        QCOMPARE(QStringToUtf8(text), utf8);
    }

    void replacesInvalidUtf8_data()
    {
        QTest::addColumn<std::string>("bytes");
        QTest::newRow("byte not used in UTF-8") << std::string("a\xFFz");
        QTest::newRow("lone continuation byte") << std::string("a\x80z");
        QTest::newRow("truncated sequence") << std::string("a\xE2\x82");
        QTest::newRow("overlong sequence") << std::string("a\xC0\x80z");
        QTest::newRow("encoded surrogate") << std::string("a\xED\xA0\x80z");
    }

    void replacesInvalidUtf8()
    {
        QFETCH(std::string, bytes);
        QString const text = Utf8ToQString(bytes);
        QCOMPARE(text, QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size())));
        QVERIFY(text.startsWith(QStringLiteral(u"a\uFFFD")));
    }

    void dropsTheByteOrderMarkLikeQt()
    {
        QCOMPARE(Utf8ToQString("\xEF\xBB\xBF"
                               "a"),
                 QStringLiteral("a"));
    }

    void convertsLoneSurrogatesLikeQt()
    {
        QString const text = QLatin1Char('a') + QString(QChar(0xD800)) + QLatin1Char('z');
        QCOMPARE(QStringToUtf8(text), text.toUtf8().toStdString());
    }

    void returnsAnEmptyTextThatIsNotNull() { QVERIFY(!Utf8ToQString(std::string()).isNull()); }

    void convertsANullTextToAnEmptyString() { QVERIFY(QStringToUtf8(QString()).empty()); }
};

ZQTUTIL_TEST_MAIN(StringUtilsTest)
#include "StringUtilsTest.moc"

#include <support/TestCase.h>

#include <Util/FontDatabase.h>

#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtGui/QFontDatabase>
#include <QtTest/QtTest>

#include <type_traits>

using Zelkor::Util::FontDatabase;

static_assert(!std::is_default_constructible_v<FontDatabase>);
static_assert(std::is_empty_v<FontDatabase>);

namespace
{

QString FindFontFile(QString const& name)
{
    QDirIterator fonts(QStringLiteral("/usr/share/fonts"), {name}, QDir::Files, QDirIterator::Subdirectories);
    return fonts.hasNext() ? fonts.next() : QString();
}

QString SansFile()
{
    return FindFontFile(QStringLiteral("DejaVuSans.ttf"));
}

QString MonoFile()
{
    return FindFontFile(QStringLiteral("DejaVuSansMono.ttf"));
}

/// Creates a bitmap font in \a folder and returns the path of its file. The font has the family name \a family,
/// contains only the letter A, and is not scalable.
QString CreateBitmapFont(QTemporaryDir const& folder, QByteArray const& family)
{
    QFile file(folder.filePath(QString::fromLatin1(family) + QLatin1String(".bdf")));
    file.open(QIODevice::WriteOnly);
    file.write("STARTFONT 2.1\n"
               "FONT -Test-" +
               family +
               "-Medium-R-Normal--8-80-75-75-C-80-ISO10646-1\n"
               "SIZE 8 75 75\n"
               "FONTBOUNDINGBOX 8 8 0 0\n"
               "STARTPROPERTIES 6\n"
               "FAMILY_NAME \"" +
               family +
               "\"\n"
               "FONT_ASCENT 8\n"
               "FONT_DESCENT 0\n"
               "PIXEL_SIZE 8\n"
               "CHARSET_REGISTRY \"ISO10646\"\n"
               "CHARSET_ENCODING \"1\"\n"
               "ENDPROPERTIES\n"
               "CHARS 1\n"
               "STARTCHAR A\n"
               "ENCODING 65\n"
               "SWIDTH 1000 0\n"
               "DWIDTH 8 0\n"
               "BBX 8 8 0 0\n"
               "BITMAP\n"
               "18\n3C\n66\n66\n7E\n66\n66\n00\n"
               "ENDCHAR\n"
               "ENDFONT\n");
    return file.fileName();
}

QString const SansFamily = QStringLiteral("DejaVu Sans");
QString const MonoFamily = QStringLiteral("DejaVu Sans Mono");

} // namespace

class FontDatabaseTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void isInitiallyEmpty()
    {
        QCOMPARE(FontDatabase::addedFontFamilies(), QStringList());
        QCOMPARE(FontDatabase::systemFontFamilies(), QFontDatabase().families());
    }

    void addsAFont()
    {
        int const id = Add(SansFile());
        QVERIFY(id >= 0);
        QCOMPARE(FontDatabase::applicationFontFamilies(id), QStringList{SansFamily});
        QCOMPARE(FontDatabase::applicationFontFamilies(id), QFontDatabase::applicationFontFamilies(id));
        QCOMPARE(FontDatabase::addedFontFamilies(), QStringList{SansFamily});
    }

    void listsAFamilyOnce()
    {
        int const first = Add(SansFile());
        int const second = Add(SansFile());
        QVERIFY(first != second);
        QCOMPARE(FontDatabase::addedFontFamilies(), QStringList{SansFamily});
        Remove(first);
        QCOMPARE(FontDatabase::addedFontFamilies(), QStringList{SansFamily});
        Remove(second);
        QCOMPARE(FontDatabase::addedFontFamilies(), QStringList());
    }

    void sortsTheFamilies()
    {
        Add(MonoFile());
        Add(SansFile());
        QCOMPARE(FontDatabase::addedFontFamilies(), (QStringList{SansFamily, MonoFamily}));
    }

    void sortsCapitalsFirst()
    {
        Add(CreateBitmapFont(folder_, "beta"));
        Add(CreateBitmapFont(folder_, "Gamma"));
        Add(CreateBitmapFont(folder_, "alpha"));
        Add(CreateBitmapFont(folder_, "Delta"));
        QCOMPARE(FontDatabase::addedFontFamilies(), (QStringList{QStringLiteral("Delta"), QStringLiteral("Gamma"),
                                                                 QStringLiteral("alpha"), QStringLiteral("beta")}));
    }

    void excludesAddedFamiliesFromTheSystemFamilies()
    {
        int const id = Add(SansFile());
        QStringList const system = FontDatabase::systemFontFamilies();
        QVERIFY(!system.contains(SansFamily));
        QStringList expected = QFontDatabase().families();
        expected.removeAll(SansFamily);
        QCOMPARE(system, expected);

        Remove(id);
        QCOMPARE(FontDatabase::systemFontFamilies(), QFontDatabase().families());
    }

    void comparesFamilyNamesCaseSensitively()
    {
        // Add the font with QFontDatabase, not with FontDatabase, so that FontDatabase treats it as a system font.
        int const id = QFontDatabase::addApplicationFont(CreateBitmapFont(folder_, "Dots"));
        QStringList const before = FontDatabase::systemFontFamilies();
        QVERIFY(before.contains(QStringLiteral("Dots")));
        Add(CreateBitmapFont(folder_, "dOTS"));
        QCOMPARE(FontDatabase::addedFontFamilies(), QStringList{QStringLiteral("dOTS")});
        QCOMPARE(FontDatabase::systemFontFamilies(), before);
        Add(CreateBitmapFont(folder_, "Dot"));
        QCOMPARE(FontDatabase::systemFontFamilies(), before);
        QVERIFY(QFontDatabase::removeApplicationFont(id));
    }

    void excludesBitmapFontsFromTheScalableFamilies()
    {
        QString const family = QStringLiteral("Dots");
        Add(CreateBitmapFont(folder_, family.toLatin1()));
        QVERIFY(QFontDatabase().families().contains(family));
        QStringList const scalable = FontDatabase::scalableFontFamilies();
        QVERIFY(!scalable.contains(family));
        Add(SansFile());
        QVERIFY(FontDatabase::scalableFontFamilies().contains(SansFamily));
    }

    void listsAllScalableFamilies()
    {
        Add(SansFile());
        QStringList expected;
        auto const families = QFontDatabase().families();
        for (QString const& family : families) {
            if (QFontDatabase().isScalable(family)) {
                expected += family;
            }
        }
        QVERIFY(expected.contains(SansFamily));
        QCOMPARE(FontDatabase::scalableFontFamilies(), expected);
    }

    void keepsItsListsAfterAFailure()
    {
        int const sans = Add(SansFile());
        QCOMPARE(FontDatabase::addApplicationFont(QStringLiteral("/no/such/font.ttf")), -1);
        QCOMPARE(FontDatabase::applicationFontFamilies(-1), QStringList());
        QCOMPARE(FontDatabase::addedFontFamilies(), QStringList{SansFamily});
        Remove(sans);
        QCOMPARE(FontDatabase::addedFontFamilies(), QStringList());
    }

    void rejectsAnUnknownIdOnRemoval()
    {
        Add(SansFile());
        QVERIFY(!FontDatabase::removeApplicationFont(12345));
        QCOMPARE(FontDatabase::addedFontFamilies(), QStringList{SansFamily});
    }

    void supportsThreadedFontRendering()
    {
        QT_WARNING_PUSH
        QT_WARNING_DISABLE_DEPRECATED
        QVERIFY(FontDatabase::supportsThreadedFontRendering());
        QT_WARNING_POP
    }

protected:
    void TearDown() override
    {
        for (int const id : qAsConst(added_)) {
            FontDatabase::removeApplicationFont(id);
        }
        added_.clear();
    }

private:
    int Add(QString const& file)
    {
        int const id = FontDatabase::addApplicationFont(file);
        added_ += id;
        return id;
    }

    void Remove(int id)
    {
        QVERIFY(FontDatabase::removeApplicationFont(id));
        added_.removeAll(id);
    }

    QTemporaryDir folder_;
    QList<int> added_;
};

ZQTUTIL_WIDGET_TEST_MAIN(FontDatabaseTest)

#include "FontDatabaseTest.moc"

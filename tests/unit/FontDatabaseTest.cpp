#include <TestCase.h>

#include <Util/FontDatabase.h>

#include <QtCore/QDirIterator>
#include <QtGui/QFontDatabase>
#include <QtTest/QtTest>

#include <type_traits>

using Zelkor::Util::FontDatabase;

static_assert(!std::is_default_constructible_v<FontDatabase>);
static_assert(std::is_empty_v<FontDatabase>);

namespace
{

QString FontFile(QString const& name)
{
    QDirIterator fonts(QStringLiteral("/usr/share/fonts"), {name}, QDir::Files, QDirIterator::Subdirectories);
    return fonts.hasNext() ? fonts.next() : QString();
}

QString Sans()
{
    return FontFile(QStringLiteral("DejaVuSans.ttf"));
}

QString Mono()
{
    return FontFile(QStringLiteral("DejaVuSansMono.ttf"));
}

QString const SansFamily = QStringLiteral("DejaVu Sans");
QString const MonoFamily = QStringLiteral("DejaVu Sans Mono");

} // namespace

class FontDatabaseTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void knowsNoAddedFontAtFirst()
    {
        QCOMPARE(FontDatabase::addedFontFamilies(), QStringList());
        QCOMPARE(FontDatabase::systemFontFamilies(), QFontDatabase().families());
    }

    void addsAFont()
    {
        int const id = Add(Sans());
        QVERIFY(id >= 0);
        QCOMPARE(FontDatabase::applicationFontFamilies(id), QStringList{SansFamily});
        QCOMPARE(FontDatabase::applicationFontFamilies(id), QFontDatabase::applicationFontFamilies(id));
        QCOMPARE(FontDatabase::addedFontFamilies(), QStringList{SansFamily});
    }

    void listsAFamilyOnce()
    {
        int const first = Add(Sans());
        int const second = Add(Sans());
        QVERIFY(first != second);
        QCOMPARE(FontDatabase::addedFontFamilies(), QStringList{SansFamily});
        Remove(first);
        QCOMPARE(FontDatabase::addedFontFamilies(), QStringList{SansFamily});
        Remove(second);
        QCOMPARE(FontDatabase::addedFontFamilies(), QStringList());
    }

    void sortsTheFamilies()
    {
        Add(Mono());
        Add(Sans());
        QCOMPARE(FontDatabase::addedFontFamilies(), (QStringList{SansFamily, MonoFamily}));
    }

    void keepsAddedFamiliesFromTheSystems()
    {
        int const id = Add(Sans());
        QStringList const system = FontDatabase::systemFontFamilies();
        QVERIFY(!system.contains(SansFamily));
        QStringList expected = QFontDatabase().families();
        expected.removeAll(SansFamily);
        QCOMPARE(system, expected);

        Remove(id);
        QCOMPARE(FontDatabase::systemFontFamilies(), QFontDatabase().families());
    }

    void keepsScalableFamilies()
    {
        Add(Sans());
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

    void aFailureChangesNoList()
    {
        int const sans = Add(Sans());
        QCOMPARE(FontDatabase::addApplicationFont(QStringLiteral("/no/such/font.ttf")), -1);
        QCOMPARE(FontDatabase::applicationFontFamilies(-1), QStringList());
        QCOMPARE(FontDatabase::addedFontFamilies(), QStringList{SansFamily});
        Remove(sans);
        QCOMPARE(FontDatabase::addedFontFamilies(), QStringList());
    }

    void removesNothingUnknown()
    {
        Add(Sans());
        QVERIFY(!FontDatabase::removeApplicationFont(12345));
        QCOMPARE(FontDatabase::addedFontFamilies(), QStringList{SansFamily});
    }

    void tellsOfThreads()
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

    QList<int> added_;
};

ZQTUTIL_WIDGET_TEST_MAIN(FontDatabaseTest)

#include "FontDatabaseTest.moc"

#include <support/TestCase.h>

#include <Util/TimeUpdater.h>

#include <QtCore/QMetaProperty>
#include <QtCore/QPointer>
#include <QtGui/QTextDocument>
#include <QtTest/QtTest>

#include <limits>
#include <memory>
#include <type_traits>

using Zelkor::Util::TimeUpdater;

static_assert(std::is_base_of_v<QObject, TimeUpdater>);
static_assert(!std::is_copy_constructible_v<TimeUpdater> && !std::is_final_v<TimeUpdater>);

namespace
{

constexpr int Smallest = std::numeric_limits<int>::min();
constexpr int Largest = std::numeric_limits<int>::max();

QString const Format = QStringLiteral("mm:ss.zzz");

} // namespace

class TimeUpdaterTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void declaresOneProperty()
    {
        QMetaObject const& meta = TimeUpdater::staticMetaObject;
        QCOMPARE(meta.className(), "Zelkor::Util::TimeUpdater");
        QCOMPARE(meta.methodCount(), meta.methodOffset());
        QCOMPARE(meta.propertyCount() - meta.propertyOffset(), 1);
        QMetaProperty const property = meta.property(meta.propertyOffset());
        QCOMPARE(property.name(), "currentTime");
        QCOMPARE(property.userType(), int(QMetaType::Int));
        QVERIFY(property.isReadable() && property.isWritable() && !property.hasNotifySignal());
    }

    void isDestroyedWithItsDocument()
    {
        auto document = std::make_unique<QTextDocument>();
        QPointer<TimeUpdater> const updater = new TimeUpdater(0, 1000, 5000, Format, document.get(), false);
        QCOMPARE(updater->parent(), document.get());
        document.reset();
        QVERIFY(!updater);
    }

    void startsAtTheInputStartAndDoesNotWrite()
    {
        QTextDocument document(QStringLiteral("text"));
        TimeUpdater const updater(0, 1000, 5000, Format, &document, false);
        QCOMPARE(updater.currentTime(), 1000);
        QCOMPARE(document.toPlainText(), QStringLiteral("text"));
    }

    void calculatesTheOutputTime_data()
    {
        QTest::addColumn<int>("outputStart");
        QTest::addColumn<int>("inputStart");
        QTest::addColumn<int>("inputEnd");
        QTest::addColumn<bool>("reverse");
        QTest::addColumn<int>("time");
        QTest::addColumn<int>("output");

        QTest::newRow("start") << 0 << 1000 << 5000 << false << 1000 << 0;
        QTest::newRow("middle") << 0 << 1000 << 5000 << false << 3000 << 2000;
        QTest::newRow("end") << 0 << 1000 << 5000 << false << 5000 << 4000;
        QTest::newRow("after the end") << 0 << 1000 << 5000 << false << 6000 << 4000;
        QTest::newRow("before the start") << 0 << 1000 << 5000 << false << 0 << 0;
        QTest::newRow("output offset") << 500 << 1000 << 5000 << false << 3000 << 2500;
        QTest::newRow("output offset, before the start") << 500 << 1000 << 5000 << false << 0 << 500;
        QTest::newRow("reverse, start") << 0 << 1000 << 5000 << true << 1000 << 4000;
        QTest::newRow("reverse, middle") << 0 << 1000 << 5000 << true << 2000 << 3000;
        QTest::newRow("reverse, end") << 0 << 1000 << 5000 << true << 5000 << 0;
        QTest::newRow("reverse, before the start") << 0 << 1000 << 5000 << true << 0 << 4000;
        QTest::newRow("reverse, after the end") << 0 << 1000 << 5000 << true << 6000 << 0;
        QTest::newRow("reverse, output offset") << 500 << 1000 << 5000 << true << 2000 << 3500;
        QTest::newRow("negative output offset, negative sum") << -3000 << 1000 << 5000 << false << 2000 << 0;
        QTest::newRow("negative output offset, positive sum") << -3000 << 1000 << 5000 << false << 4500 << 500;
        QTest::newRow("reversed input range") << 100 << 5000 << 1000 << false << 3000 << 100;
        QTest::newRow("empty input range") << 100 << 1000 << 1000 << false << 3000 << 100;
        QTest::newRow("full int range, end") << 0 << Smallest << Largest << false << Largest << Largest;
        QTest::newRow("full int range, start") << 0 << Smallest << Largest << false << Smallest << 0;
        QTest::newRow("output offset of the largest int, reverse")
            << Largest << 0 << Largest << true << Smallest << Largest;
    }

    void calculatesTheOutputTime()
    {
        QFETCH(int, outputStart);
        QFETCH(int, inputStart);
        QFETCH(int, inputEnd);
        QFETCH(bool, reverse);
        QFETCH(int, time);
        QFETCH(int, output);
        QTextDocument document;
        TimeUpdater const updater(outputStart, inputStart, inputEnd, Format, &document, reverse);
        QCOMPARE(updater.calculateOutputTime(time), output);
        QCOMPARE(updater.currentTime(), inputStart);
    }

    void writesTheFormattedTime()
    {
        QTextDocument document(QStringLiteral("text\nof two lines"));
        TimeUpdater updater(0, 1000, 5000, Format, &document, false);
        updater.setCurrentTime(3500);
        QCOMPARE(document.toPlainText(), QStringLiteral("00:02.500"));
        QCOMPARE(updater.currentTime(), 3500);

        QVERIFY(updater.setProperty("currentTime", 99999));
        QCOMPARE(updater.property("currentTime").toInt(), 99999); // the property is not limited to the input range
        QCOMPARE(document.toPlainText(), QStringLiteral("00:04.000"));
    }

    void wrapsAfterTwentyFourHours()
    {
        QTextDocument document;
        TimeUpdater updater(0, 0, Largest, QStringLiteral("hh:mm:ss"), &document, false);
        updater.setCurrentTime(25 * 60 * 60 * 1000);
        QCOMPARE(document.toPlainText(), QStringLiteral("01:00:00"));
    }

    void doesNotWriteAnUnchangedText()
    {
        QTextDocument document;
        TimeUpdater updater(0, 0, 60000, QStringLiteral("mm:ss"), &document, false);
        QSignalSpy const changes(&document, &QTextDocument::contentsChanged);
        updater.setCurrentTime(3000);
        QCOMPARE(changes.count(), 1);
        updater.setCurrentTime(3000);
        updater.setCurrentTime(3400); // 3400 ms is still formatted as 00:03
        QCOMPARE(changes.count(), 1);
        QCOMPARE(updater.currentTime(), 3400);
        updater.setCurrentTime(4000);
        QCOMPARE(changes.count(), 2);
    }

    void addsNoUndoStepForAnUnchangedText()
    {
        QTextDocument document(QStringLiteral("00:03"));
        document.clearUndoRedoStacks();
        TimeUpdater updater(0, 0, 60000, QStringLiteral("mm:ss"), &document, false);
        updater.setCurrentTime(3000);
        QVERIFY(!document.isUndoAvailable());
        updater.setCurrentTime(4000);
        QVERIFY(document.isUndoAvailable());
    }

    void replacesTheTextInOneUndoStep()
    {
        QString const before = QStringLiteral("text\nof two lines");
        QTextDocument document(before);
        document.clearUndoRedoStacks();
        TimeUpdater updater(0, 0, 60000, QStringLiteral("mm:ss"), &document, false);
        updater.setCurrentTime(3000);
        QCOMPARE(document.toPlainText(), QStringLiteral("00:03"));
        document.undo();
        QCOMPARE(document.toPlainText(), before);
        QVERIFY(!document.isUndoAvailable());
    }

    void calculatesWithoutADocument()
    {
        TimeUpdater updater(100, 0, 1000, Format, nullptr, false);
        QCOMPARE(updater.parent(), nullptr);
        QCOMPARE(updater.calculateOutputTime(300), 400);
        updater.setCurrentTime(300);
        QCOMPARE(updater.currentTime(), 300);
    }
};

ZQTUTIL_WIDGET_TEST_MAIN(TimeUpdaterTest)

#include "TimeUpdaterTest.moc"

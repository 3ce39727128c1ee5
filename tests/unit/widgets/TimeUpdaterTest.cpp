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

constexpr int Least = std::numeric_limits<int>::min();
constexpr int Most = std::numeric_limits<int>::max();

QString const Format = QStringLiteral("mm:ss.zzz");

} // namespace

class TimeUpdaterTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void hasItsNameAndOneProperty()
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

    void isOwnedByItsDocument()
    {
        auto document = std::make_unique<QTextDocument>();
        QPointer<TimeUpdater> const updater = new TimeUpdater(0, 1000, 5000, Format, document.get(), false);
        QCOMPARE(updater->parent(), document.get());
        document.reset();
        QVERIFY(!updater);
    }

    void startsAtTheStartOfTheInputAndWritesNothing()
    {
        QTextDocument document(QStringLiteral("text"));
        TimeUpdater const updater(0, 1000, 5000, Format, &document, false);
        QCOMPARE(updater.currentTime(), 1000);
        QCOMPARE(document.toPlainText(), QStringLiteral("text"));
    }

    void calculates_data()
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
        QTest::newRow("after") << 0 << 1000 << 5000 << false << 6000 << 4000;
        QTest::newRow("before") << 0 << 1000 << 5000 << false << 0 << 0;
        QTest::newRow("later output") << 500 << 1000 << 5000 << false << 3000 << 2500;
        QTest::newRow("later output, before") << 500 << 1000 << 5000 << false << 0 << 500;
        QTest::newRow("reverse, start") << 0 << 1000 << 5000 << true << 1000 << 4000;
        QTest::newRow("reverse, middle") << 0 << 1000 << 5000 << true << 2000 << 3000;
        QTest::newRow("reverse, end") << 0 << 1000 << 5000 << true << 5000 << 0;
        QTest::newRow("reverse, before") << 0 << 1000 << 5000 << true << 0 << 4000;
        QTest::newRow("reverse, after") << 0 << 1000 << 5000 << true << 6000 << 0;
        QTest::newRow("reverse, later output") << 500 << 1000 << 5000 << true << 2000 << 3500;
        QTest::newRow("negative") << -3000 << 1000 << 5000 << false << 2000 << 0;
        QTest::newRow("negative start, positive now") << -3000 << 1000 << 5000 << false << 4500 << 500;
        QTest::newRow("input backwards") << 100 << 5000 << 1000 << false << 3000 << 100;
        QTest::newRow("no input") << 100 << 1000 << 1000 << false << 3000 << 100;
        QTest::newRow("extremes") << 0 << Least << Most << false << Most << Most;
        QTest::newRow("extremes, start") << 0 << Least << Most << false << Least << 0;
        QTest::newRow("extremes, reverse") << Most << 0 << Most << true << Least << Most;
    }

    void calculates()
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

    void writesTheTime()
    {
        QTextDocument document(QStringLiteral("text\nof two lines"));
        TimeUpdater updater(0, 1000, 5000, Format, &document, false);
        updater.setCurrentTime(3500);
        QCOMPARE(document.toPlainText(), QStringLiteral("00:02.500"));
        QCOMPARE(updater.currentTime(), 3500);

        QVERIFY(updater.setProperty("currentTime", 99999));
        QCOMPARE(updater.property("currentTime").toInt(), 99999); // as it was given, not as it is shown
        QCOMPARE(document.toPlainText(), QStringLiteral("00:04.000"));
    }

    void wrapsAtMidnight()
    {
        QTextDocument document;
        TimeUpdater updater(0, 0, Most, QStringLiteral("hh:mm:ss"), &document, false);
        updater.setCurrentTime(25 * 60 * 60 * 1000);
        QCOMPARE(document.toPlainText(), QStringLiteral("01:00:00"));
    }

    void writesEqualTextsOnce()
    {
        QTextDocument document;
        TimeUpdater updater(0, 0, 60000, QStringLiteral("mm:ss"), &document, false);
        QSignalSpy const changes(&document, &QTextDocument::contentsChanged);
        updater.setCurrentTime(3000);
        QCOMPARE(changes.count(), 1);
        updater.setCurrentTime(3000);
        updater.setCurrentTime(3400); // the same second
        QCOMPARE(changes.count(), 1);
        QCOMPARE(updater.currentTime(), 3400);
        updater.setCurrentTime(4000);
        QCOMPARE(changes.count(), 2);
    }

    void leavesTheHistoryAloneWhenNothingChanges()
    {
        QTextDocument document(QStringLiteral("00:03"));
        document.clearUndoRedoStacks();
        TimeUpdater updater(0, 0, 60000, QStringLiteral("mm:ss"), &document, false);
        updater.setCurrentTime(3000);
        QVERIFY(!document.isUndoAvailable());
        updater.setCurrentTime(4000);
        QVERIFY(document.isUndoAvailable());
    }

    void writesInOneEdit()
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

    void onlyComputesWithoutADocument()
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

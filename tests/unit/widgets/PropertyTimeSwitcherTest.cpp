#include <support/TestCase.h>

#include <Util/PropertyTimeSwitcher.h>

#include <QtCore/QMetaMethod>
#include <QtTest/QtTest>

#include <limits>
#include <type_traits>

using Zelkor::Util::PropertyTimeSwitcher;

static_assert(std::is_base_of_v<QObject, PropertyTimeSwitcher>);
static_assert(!std::is_copy_constructible_v<PropertyTimeSwitcher> && !std::is_final_v<PropertyTimeSwitcher>);

/// Has a property, and counts how often it is written.
class Controlled : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int level READ Level WRITE SetLevel)

public:
    int Level() const { return level_; }

    void SetLevel(int level)
    {
        level_ = level;
        ++writes;
    }

    int writes = 0;

private:
    int level_ = 7;
};

class PropertyTimeSwitcherTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void hasItsNameAndOneSlot()
    {
        QMetaObject const& meta = PropertyTimeSwitcher::staticMetaObject;
        QCOMPARE(meta.className(), "Zelkor::Util::PropertyTimeSwitcher");
        QCOMPARE(meta.methodCount() - meta.methodOffset(), 1);
        QMetaMethod const slot = meta.method(meta.methodOffset());
        QCOMPARE(slot.methodSignature(), QByteArray("setCurrentTime(int)"));
        QCOMPARE(slot.methodType(), QMetaMethod::Slot);
        QCOMPARE(slot.access(), QMetaMethod::Public);
        QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    }

    void writesNothingAtFirst()
    {
        Controlled controlled;
        auto const* const switcher = new PropertyTimeSwitcher("level", 1, &controlled);
        QCOMPARE(switcher->parent(), &controlled);
        QCOMPARE(controlled.writes, 0);
        QCOMPARE(controlled.Level(), 7);
    }

    void switchesInTheRange_data()
    {
        QTest::addColumn<int>("time");
        QTest::addColumn<int>("level");
        QTest::newRow("before") << 99 << 1;
        QTest::newRow("start") << 100 << 5;
        QTest::newRow("last") << 199 << 5;
        QTest::newRow("end") << 200 << 1;
        QTest::newRow("negative") << -1 << 1;
        QTest::newRow("least") << std::numeric_limits<int>::min() << 1;
        QTest::newRow("most") << std::numeric_limits<int>::max() << 1;
    }

    void switchesInTheRange()
    {
        QFETCH(int, time);
        QFETCH(int, level);
        Controlled controlled;
        PropertyTimeSwitcher switcher("level", 1, &controlled);
        switcher.setRange(100, 200, 5);
        switcher.setCurrentTime(time);
        QCOMPARE(controlled.Level(), level);
    }

    void hasNoRangeAtFirst_data()
    {
        QTest::addColumn<int>("time");
        QTest::newRow("start") << 0;
        QTest::newRow("later") << 1;
        QTest::newRow("before") << -1;
    }

    void hasNoRangeAtFirst()
    {
        QFETCH(int, time);
        Controlled controlled;
        PropertyTimeSwitcher switcher("level", 1, &controlled);
        switcher.setCurrentTime(time);
        QCOMPARE(controlled.Level(), 1);
    }

    void aRangeTakesEffectAtOnce()
    {
        Controlled controlled;
        PropertyTimeSwitcher switcher("level", 1, &controlled);
        switcher.setRange(0, 10, 5);
        QCOMPARE(controlled.Level(), 5);
        switcher.setRange(5, 10, 6);
        QCOMPARE(controlled.Level(), 1);
        switcher.setCurrentTime(5);
        QCOMPARE(controlled.Level(), 6);
    }

    void aRangeBackwardsHoldsNoTime()
    {
        Controlled controlled;
        PropertyTimeSwitcher switcher("level", 1, &controlled);
        switcher.setRange(10, 0, 5);
        switcher.setCurrentTime(5);
        QCOMPARE(controlled.Level(), 1);
    }

    void writesOnlyWhatDiffers()
    {
        Controlled controlled;
        PropertyTimeSwitcher switcher("level", 1, &controlled);
        switcher.setRange(0, 10, 5);
        switcher.setCurrentTime(1);
        switcher.setCurrentTime(2);
        switcher.updateValue();
        QCOMPARE(controlled.writes, 1);

        controlled.SetLevel(9);
        switcher.updateValue();
        QCOMPARE(controlled.Level(), 5);
    }

    void doesNotWriteWhatIsEqualInAnotherType_data()
    {
        QTest::addColumn<QVariant>("wanted");
        QTest::newRow("text") << QVariant(QStringLiteral("7"));
        QTest::newRow("bytes") << QVariant(QByteArray("7"));
        QTest::newRow("real number") << QVariant(7.0);
        QTest::newRow("unsigned") << QVariant(7U);
    }

    void doesNotWriteWhatIsEqualInAnotherType()
    {
        QFETCH(QVariant, wanted);
        Controlled controlled;
        QCOMPARE(controlled.property("level") == wanted, true);
        PropertyTimeSwitcher switcher("level", wanted, &controlled);
        switcher.setCurrentTime(0);
        QCOMPARE(controlled.writes, 0);
    }

    void warnsOfAPropertyThatIsNotThere()
    {
        ExpectQtWarning(QRegularExpression(QStringLiteral(
            "^PropertyTimeSwitcher: you're trying to control a non-existing property absent of your QObject$")));
        QObject controlled;
        PropertyTimeSwitcher switcher("absent", 1, &controlled);
        QCOMPARE(controlled.dynamicPropertyNames(), QList<QByteArray>());
        switcher.setCurrentTime(0);
        QCOMPARE(controlled.property("absent"), QVariant(1));
    }

    void warnsInTheDefaultCategory()
    {
        static QByteArray category;
        static QtMessageHandler previous = nullptr;
        previous = qInstallMessageHandler([](QtMsgType type, QMessageLogContext const& context, QString const& text) {
            category = type == QtWarningMsg ? context.category : "no warning";
            previous(type, context, text);
        });
        ExpectQtWarning(QRegularExpression(QStringLiteral("non-existing property")));
        QObject controlled;
        PropertyTimeSwitcher const switcher("absent", 1, &controlled);
        qInstallMessageHandler(previous);
        QCOMPARE(category, QByteArray("default"));
    }

    void takesADynamicProperty()
    {
        QObject controlled;
        controlled.setProperty("level", 3);
        PropertyTimeSwitcher switcher("level", 1, &controlled);
        switcher.setCurrentTime(0);
        QCOMPARE(controlled.property("level"), QVariant(1));
    }

    void worksWithoutParent()
    {
        PropertyTimeSwitcher switcher("level", 1, nullptr);
        switcher.setRange(0, 10, 5);
        switcher.setCurrentTime(5);
        QCOMPARE(switcher.parent(), nullptr);
    }

    void followsItsParent()
    {
        Controlled first;
        Controlled second;
        PropertyTimeSwitcher switcher("level", 1, &first);
        switcher.setParent(&second);
        switcher.setCurrentTime(0);
        QCOMPARE(first.Level(), 7);
        QCOMPARE(second.Level(), 1);
    }
};

ZQTUTIL_TEST_MAIN(PropertyTimeSwitcherTest)

#include "PropertyTimeSwitcherTest.moc"

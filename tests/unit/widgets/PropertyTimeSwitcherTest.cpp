#include <support/TestCase.h>

#include <Util/PropertyTimeSwitcher.h>

#include <QtCore/QMetaMethod>
#include <QtTest/QtTest>

#include <limits>
#include <type_traits>

using Zelkor::Util::PropertyTimeSwitcher;

static_assert(std::is_base_of_v<QObject, PropertyTimeSwitcher>);
static_assert(!std::is_copy_constructible_v<PropertyTimeSwitcher> && !std::is_final_v<PropertyTimeSwitcher>);

/// An object with one property. Counts how often the property is written.
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
    void declaresOneSlotAndNoProperty()
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

    void doesNotWriteOnConstruction()
    {
        Controlled controlled;
        auto const* const switcher = new PropertyTimeSwitcher("level", 1, &controlled);
        QCOMPARE(switcher->parent(), &controlled);
        QCOMPARE(controlled.writes, 0);
        QCOMPARE(controlled.Level(), 7);
    }

    void writesTheRangeValueInsideTheRange_data()
    {
        QTest::addColumn<int>("time");
        QTest::addColumn<int>("level");
        QTest::newRow("one before the start") << 99 << 1;
        QTest::newRow("start") << 100 << 5;
        QTest::newRow("last time inside") << 199 << 5;
        QTest::newRow("end") << 200 << 1;
        QTest::newRow("negative") << -1 << 1;
        QTest::newRow("smallest int") << std::numeric_limits<int>::min() << 1;
        QTest::newRow("largest int") << std::numeric_limits<int>::max() << 1;
    }

    void writesTheRangeValueInsideTheRange()
    {
        QFETCH(int, time);
        QFETCH(int, level);
        Controlled controlled;
        PropertyTimeSwitcher switcher("level", 1, &controlled);
        switcher.setRange(100, 200, 5);
        switcher.setCurrentTime(time);
        QCOMPARE(controlled.Level(), level);
    }

    void hasNoInitialRange_data()
    {
        QTest::addColumn<int>("time");
        QTest::newRow("zero") << 0;
        QTest::newRow("positive") << 1;
        QTest::newRow("negative") << -1;
    }

    void hasNoInitialRange()
    {
        QFETCH(int, time);
        Controlled controlled;
        PropertyTimeSwitcher switcher("level", 1, &controlled);
        switcher.setCurrentTime(time);
        QCOMPARE(controlled.Level(), 1);
    }

    void setRangeUpdatesTheProperty()
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

    void aReversedRangeContainsNoTime()
    {
        Controlled controlled;
        PropertyTimeSwitcher switcher("level", 1, &controlled);
        switcher.setRange(10, 0, 5);
        switcher.setCurrentTime(5);
        QCOMPARE(controlled.Level(), 1);
    }

    void writesOnlyChangedValues()
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

    void doesNotWriteAnEqualValueOfAnotherType_data()
    {
        QTest::addColumn<QVariant>("wanted");
        QTest::newRow("text") << QVariant(QStringLiteral("7"));
        QTest::newRow("byte array") << QVariant(QByteArray("7"));
        QTest::newRow("floating point") << QVariant(7.0);
        QTest::newRow("unsigned") << QVariant(7U);
    }

    void doesNotWriteAnEqualValueOfAnotherType()
    {
        QFETCH(QVariant, wanted);
        Controlled controlled;
        QCOMPARE(controlled.property("level") == wanted, true);
        PropertyTimeSwitcher switcher("level", wanted, &controlled);
        switcher.setCurrentTime(0);
        QCOMPARE(controlled.writes, 0);
    }

    void warnsAboutAMissingProperty()
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

    void writesADynamicProperty()
    {
        QObject controlled;
        controlled.setProperty("level", 3);
        PropertyTimeSwitcher switcher("level", 1, &controlled);
        switcher.setCurrentTime(0);
        QCOMPARE(controlled.property("level"), QVariant(1));
    }

    void acceptsANullParent()
    {
        PropertyTimeSwitcher switcher("level", 1, nullptr);
        switcher.setRange(0, 10, 5);
        switcher.setCurrentTime(5);
        QCOMPARE(switcher.parent(), nullptr);
    }

    void writesToTheCurrentParent()
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

#include <support/TestCase.h>
#include <support/displays/RecordingStyle.h>

#include <Util/StyleUtils.h>

#include <QtCore/QMetaEnum>
#include <QtTest/QtTest>
#include <QtWidgets/QLabel>

#include <type_traits>

using Zelkor::Testing::RecordingStyle;
using Zelkor::Testing::Repolishing;
using Zelkor::Util::ApplyMessageLevel;
using Zelkor::Util::ApplyWidgetStyle;
using Zelkor::Util::GetMessageLevel;
using Zelkor::Util::GetWidgetStyle;
using Zelkor::Util::MessageLevel;

static_assert(std::is_enum_v<MessageLevel> && !std::is_convertible_v<MessageLevel, int>);
static_assert(static_cast<int>(MessageLevel::Question) == 0 && static_cast<int>(MessageLevel::Information) == 1);
static_assert(static_cast<int>(MessageLevel::Warning) == 2 && static_cast<int>(MessageLevel::Error) == 3);
static_assert(static_cast<int>(MessageLevel::NoMessage) == 4);
static_assert(std::is_same_v<decltype(&ApplyWidgetStyle), void (*)(QWidget*, QString const&, char const*)>);
static_assert(std::is_same_v<decltype(&GetWidgetStyle), QString (*)(QWidget const*, char const*)>);
static_assert(std::is_same_v<decltype(&ApplyMessageLevel), void (*)(QWidget*, MessageLevel)>);
static_assert(std::is_same_v<decltype(&GetMessageLevel), MessageLevel (*)(QWidget const*)>);

namespace
{

constexpr char Property[] = "SubStyle";

} // namespace

class StyleUtilsTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void registersTheLevelsInTheMetaObjectOfTheNamespace()
    {
        QMetaObject const& metaObject = Zelkor::Util::staticMetaObject;
        QCOMPARE(metaObject.className(), "Zelkor::Util");
        QVERIFY(metaObject.indexOfEnumerator("MessageLevel") >= 0);
        QMetaEnum const levels = metaObject.enumerator(metaObject.indexOfEnumerator("MessageLevel"));
        QVERIFY(levels.isScoped());
        QVERIFY(!levels.isFlag());
        QCOMPARE(levels.keyCount(), 5);
        QCOMPARE(QMetaEnum::fromType<MessageLevel>().enclosingMetaObject(), &metaObject);
        QCOMPARE(QMetaEnum::fromType<MessageLevel>().name(), "MessageLevel");
    }

    void registersAMetaTypeForLevels()
    {
        QCOMPARE(QMetaType::typeName(qMetaTypeId<MessageLevel>()), "Zelkor::Util::MessageLevel");
    }

    void storesALevelAsItsKey_data()
    {
        QTest::addColumn<int>("value");
        QTest::newRow("Question") << 0;
        QTest::newRow("Information") << 1;
        QTest::newRow("Warning") << 2;
        QTest::newRow("Error") << 3;
        QTest::newRow("NoMessage") << 4;
    }

    void storesALevelAsItsKey()
    {
        QFETCH(int, value);
        auto const level = static_cast<MessageLevel>(value);
        auto const levels = QMetaEnum::fromType<MessageLevel>();
        QCOMPARE(levels.key(value), QTest::currentDataTag());
        QCOMPARE(levels.value(value), value);

        QWidget widget;
        ApplyMessageLevel(&widget, level);
        QCOMPARE(widget.property("Level"), QVariant(QString::fromLatin1(QTest::currentDataTag())));
        QCOMPARE(GetMessageLevel(&widget), level);
    }

    void storesAnUnknownLevelAsEmptyText()
    {
        QWidget widget;
        ApplyMessageLevel(&widget, MessageLevel::Error);
        ApplyMessageLevel(&widget, static_cast<MessageLevel>(5));
        QVERIFY(widget.property("Level").isValid());
        QCOMPARE(widget.property("Level").userType(), static_cast<int>(QMetaType::QString));
        QCOMPARE(widget.property("Level").toString(), QString());
        QCOMPARE(GetMessageLevel(&widget), MessageLevel::NoMessage);
        ApplyMessageLevel(&widget, static_cast<MessageLevel>(-1));
        QCOMPARE(widget.property("Level").toString(), QString());
    }

    void readsTheLevelFromTheProperty_data()
    {
        QTest::addColumn<QVariant>("property");
        QTest::addColumn<int>("level");
        auto const addRow = [](char const* name, QVariant const& property, MessageLevel level) {
            QTest::newRow(name) << property << static_cast<int>(level);
        };
        addRow("unset", QVariant(), MessageLevel::NoMessage);
        addRow("empty", QLatin1String(""), MessageLevel::NoMessage);
        addRow("key", QStringLiteral("Warning"), MessageLevel::Warning);
        addRow("first key", QStringLiteral("Question"), MessageLevel::Question);
        addRow("byte array", QByteArray("Error"), MessageLevel::Error);
        addRow("unknown word", QStringLiteral("Disaster"), MessageLevel::NoMessage);
        addRow("prefix of a key", QStringLiteral("Err"), MessageLevel::NoMessage);
        addRow("lower case", QStringLiteral("error"), MessageLevel::NoMessage);
        addRow("trailing space", QStringLiteral("Error "), MessageLevel::NoMessage);
        addRow("Cyrillic letter", QStringLiteral("Erro\u0440"), MessageLevel::NoMessage);
        addRow("number", 3, MessageLevel::NoMessage);
        addRow("type without conversion to text", QSize(1, 1), MessageLevel::NoMessage);
    }

    void readsTheLevelFromTheProperty()
    {
        QFETCH(QVariant, property);
        QFETCH(int, level);
        QWidget widget;
        widget.setProperty("Level", property);
        QCOMPARE(static_cast<int>(GetMessageLevel(&widget)), level);
    }

    void ignoresNullWidgets()
    {
        ApplyWidgetStyle(nullptr, QStringLiteral("value"), Property);
        ApplyMessageLevel(nullptr, MessageLevel::Error);
        QCOMPARE(GetWidgetStyle(nullptr, Property), QString());
        QCOMPARE(GetMessageLevel(nullptr), MessageLevel::NoMessage);
    }

    void storesTheStyleInADynamicProperty()
    {
        QWidget widget;
        ApplyWidgetStyle(&widget, QStringLiteral("value"), Property);
        QCOMPARE(widget.dynamicPropertyNames(), QByteArrayList{Property});
        QCOMPARE(widget.property(Property).userType(), static_cast<int>(QMetaType::QString));
        QCOMPARE(widget.property(Property).toString(), QStringLiteral("value"));
        QCOMPARE(GetWidgetStyle(&widget, Property), QStringLiteral("value"));
        ApplyWidgetStyle(&widget, QStringLiteral("other"), Property);
        QCOMPARE(GetWidgetStyle(&widget, Property), QStringLiteral("other"));
    }

    void storesAnEmptyStyle()
    {
        QWidget widget;
        ApplyWidgetStyle(&widget, QString(), Property);
        QVERIFY(widget.property(Property).isValid());
        QCOMPARE(GetWidgetStyle(&widget, Property), QString());
    }

    void acceptsAStaticProperty()
    {
        QWidget widget;
        ApplyWidgetStyle(&widget, QStringLiteral("value"), "windowTitle");
        QCOMPARE(widget.windowTitle(), QStringLiteral("value"));
        QVERIFY(widget.dynamicPropertyNames().isEmpty());
        QCOMPARE(GetWidgetStyle(&widget, "windowTitle"), QStringLiteral("value"));
    }

    void convertsTheStyleToText_data()
    {
        QTest::addColumn<QVariant>("property");
        QTest::addColumn<QString>("style");
        QTest::newRow("unset") << QVariant() << QString();
        QTest::newRow("number") << QVariant(42) << QStringLiteral("42");
        QTest::newRow("bool") << QVariant(true) << QStringLiteral("true");
        QTest::newRow("byte array") << QVariant(QByteArray("text")) << QStringLiteral("text");
        QTest::newRow("type without conversion to text") << QVariant(QSize(1, 1)) << QString();
    }

    void convertsTheStyleToText()
    {
        QFETCH(QVariant, property);
        QFETCH(QString, style);
        QWidget widget;
        widget.setProperty(Property, property);
        QCOMPARE(GetWidgetStyle(&widget, Property), style);
    }

    void repolishesOnceWithTheStyleOfTheWidgetAfterTheChange()
    {
        RecordingStyle style({Property, "Level"});
        RecordingStyle parentStyle;
        QWidget parent;
        parent.setStyle(&parentStyle);
        QLabel widget(&parent);
        QLabel child(&widget);
        widget.setStyle(&style);
        style.calls.clear();
        parentStyle.calls.clear();
        ApplyWidgetStyle(&widget, QStringLiteral("value"), Property);
        QCOMPARE(style.calls, Repolishing(&widget, {QStringLiteral("value"), QString()}));
        QVERIFY(parentStyle.calls.isEmpty());
    }

    void repolishesForAnUnchangedValue()
    {
        RecordingStyle style({Property, "Level"});
        QWidget widget;
        widget.setStyle(&style);
        ApplyWidgetStyle(&widget, QStringLiteral("value"), Property);
        style.calls.clear();
        ApplyWidgetStyle(&widget, QStringLiteral("value"), Property);
        QCOMPARE(style.calls, Repolishing(&widget, {QStringLiteral("value"), QString()}));
    }

    void repolishesOnceForALevel()
    {
        RecordingStyle style({Property, "Level"});
        QWidget widget;
        widget.setStyle(&style);
        style.calls.clear();
        ApplyMessageLevel(&widget, MessageLevel::Warning);
        QCOMPARE(style.calls, Repolishing(&widget, {QString(), QStringLiteral("Warning")}));
    }

    void readingDoesNotRepolish()
    {
        RecordingStyle style({Property, "Level"});
        QWidget widget;
        widget.setStyle(&style);
        ApplyMessageLevel(&widget, MessageLevel::Warning);
        style.calls.clear();
        GetMessageLevel(&widget);
        GetWidgetStyle(&widget, "Level");
        QVERIFY(style.calls.isEmpty());
    }

    void appliesStyleSheetRules()
    {
        QLabel label;
        label.setStyleSheet(QStringLiteral("QLabel[SubStyle=\"wide\"] { min-width: 234px } "
                                           "QLabel[Level=\"Error\"] { min-height: 56px }"));
        label.ensurePolished();
        QCOMPARE(label.minimumSize(), QSize(0, 0));
        ApplyWidgetStyle(&label, QStringLiteral("wide"), Property);
        QCOMPARE(label.minimumWidth(), 234);
        ApplyMessageLevel(&label, MessageLevel::Error);
        QCOMPARE(label.minimumHeight(), 56);
        ApplyWidgetStyle(&label, QStringLiteral("narrow"), Property);
        QCOMPARE(label.minimumWidth(), 0);
    }
};

ZQTUTIL_WIDGET_TEST_MAIN(StyleUtilsTest)
#include "StyleUtilsTest.moc"

#include <support/TestCase.h>
#include <support/displays/LayoutRequests.h>

#include <Util/AlertBox.h>

#include <QtCore/QMetaProperty>
#include <QtCore/QTranslator>
#include <QtTest/QtTest>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLayout>
#include <QtWidgets/QPushButton>

#include <cstring>
#include <type_traits>

using Zelkor::Testing::RequestsLayoutForNewChild;
using Zelkor::Util::AlertBox;

static_assert(std::is_base_of_v<QMessageBox, AlertBox> && std::is_convertible_v<AlertBox*, QMessageBox*>);
static_assert(std::has_virtual_destructor_v<AlertBox> && !std::is_final_v<AlertBox>);
static_assert(!std::is_copy_constructible_v<AlertBox> && !std::is_copy_assignable_v<AlertBox>);
static_assert(!std::is_move_constructible_v<AlertBox> && !std::is_move_assignable_v<AlertBox>);
static_assert(std::is_default_constructible_v<AlertBox>);
static_assert(std::is_constructible_v<AlertBox, AlertBox::Level, QString, QString>);
static_assert(!std::is_constructible_v<AlertBox, QWidget*> && !std::is_constructible_v<AlertBox, AlertBox::Level>);
static_assert(std::is_enum_v<AlertBox::Level> && std::is_convertible_v<AlertBox::Level, int>);
static_assert(AlertBox::Information == 0 && AlertBox::Error == 1 && AlertBox::Question == 2);

Q_DECLARE_METATYPE(Zelkor::Util::AlertBox::Level)

namespace
{

constexpr auto NoLevel = static_cast<AlertBox::Level>(3);

/// Translates the strings of AlertBox by enclosing them in brackets. Does not translate strings of other classes.
class Translator : public QTranslator
{
public:
    bool isEmpty() const override { return false; }

    QString translate(char const* context, char const* sourceText, char const* /*disambiguation*/,
                      int /*n*/) const override
    {
        return std::strcmp(context, "Zelkor::Util::AlertBox") == 0
                   ? QStringLiteral("[%1]").arg(QString::fromUtf8(sourceText))
                   : QString();
    }
};

/// Returns the first word of a pointer to a virtual member function. In the Itanium C++ ABI, this word grows with the
/// position of the function in the virtual table. The words of two consecutive functions differ by the size of a
/// pointer.
template <class Function>
std::ptrdiff_t VirtualSlot(Function function)
{
    static_assert(std::is_member_function_pointer_v<Function>);
    std::ptrdiff_t slot = 0;
    std::memcpy(&slot, &function, sizeof(slot));
    return slot;
}

} // namespace

class AlertBoxTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void hasAMetaObject()
    {
        QMetaObject const& metaObject = AlertBox::staticMetaObject;
        QCOMPARE(metaObject.className(), "Zelkor::Util::AlertBox");
        QCOMPARE(metaObject.superClass(), &QMessageBox::staticMetaObject);
        QCOMPARE(AlertBox().metaObject(), &metaObject);
    }

    void declaresNoMethodsAndNoEnumerators()
    {
        QMetaObject const& metaObject = AlertBox::staticMetaObject;
        QCOMPARE(metaObject.methodCount(), metaObject.methodOffset());
        QCOMPARE(metaObject.enumeratorCount(), metaObject.enumeratorOffset());
    }

    void declaresThreeProperties_data()
    {
        QTest::addColumn<int>("position");
        QTest::addColumn<int>("type");
        QTest::addColumn<QVariant>("initial");
        QTest::addColumn<QVariant>("next");
        QTest::newRow("minimumDialogWidth") << 0 << static_cast<int>(QMetaType::Int) << QVariant(-1) << QVariant(210);
        QTest::newRow("spacing") << 1 << static_cast<int>(QMetaType::Int) << QVariant(0) << QVariant(17);
        QTest::newRow("useDefaultLevelIcon")
            << 2 << static_cast<int>(QMetaType::Bool) << QVariant(true) << QVariant(false);
    }

    void declaresThreeProperties()
    {
        QFETCH(int, position);
        QFETCH(int, type);
        QFETCH(QVariant, initial);
        QFETCH(QVariant, next);
        QMetaObject const& metaObject = AlertBox::staticMetaObject;
        QCOMPARE(metaObject.propertyCount(), metaObject.propertyOffset() + 3);
        QMetaProperty const property = metaObject.property(metaObject.propertyOffset() + position);
        QCOMPARE(property.name(), QTest::currentDataTag());
        QCOMPARE(property.userType(), type);
        QVERIFY(property.isReadable() && property.isWritable());
        QVERIFY(property.isStored() && property.isDesignable());
        QVERIFY(!property.hasNotifySignal() && !property.isResettable());

        AlertBox box;
        box.addButton(QMessageBox::Ok);
        QCOMPARE(property.read(&box), initial);
        QVERIFY(property.write(&box, next));
        QCOMPARE(property.read(&box), next);
    }

    void propertiesCallTheAccessors()
    {
        AlertBox box;
        box.addButton(QMessageBox::Ok);
        QVERIFY(box.setProperty("minimumDialogWidth", 123));
        QVERIFY(box.setProperty("spacing", 45));
        QVERIFY(box.setProperty("useDefaultLevelIcon", false));
        QCOMPARE(box.GetWidth(), 123);
        QCOMPARE(box.GetSpacing(), 45);
        QVERIFY(!box.GetUseDefaultLevelIcon());
    }

    void appendsExecAndShowToTheVirtualTable()
    {
        auto const exec = VirtualSlot(static_cast<int (AlertBox::*)()>(&AlertBox::Exec));
        auto const show = VirtualSlot(&AlertBox::Show);
        QCOMPARE(show - exec, static_cast<std::ptrdiff_t>(sizeof(void*)));
        QVERIFY(exec > VirtualSlot(&QDialog::exec));
        QVERIFY(exec > VirtualSlot(&QDialog::reject));
    }

    void defaultConstructedBoxIsEmpty()
    {
        AlertBox box;
        QCOMPARE(box.parent(), nullptr);
        QCOMPARE(box.windowTitle(), QString());
        QCOMPARE(box.text(), QString());
        QCOMPARE(box.styleSheet(), QString());
        QCOMPARE(box.icon(), QMessageBox::NoIcon);
        QVERIFY(box.iconPixmap().isNull());
        QVERIFY(box.buttons().isEmpty());
        QVERIFY(!box.property("Level").isValid());
        QCOMPARE(box.GetWidth(), -1);
        QCOMPARE(box.GetSpacing(), 0);
        QVERIFY(box.GetUseDefaultLevelIcon());
        QVERIFY(!box.findChild<QWidget*>(QStringLiteral("widthSpacer")));
    }

    void defaultConstructedBoxDoesNotChangeItsButtons()
    {
        AlertBox box;
        QPushButton const* const button = box.addButton(QMessageBox::Ok);
        QCOMPARE(button->objectName(), QString());
        QVERIFY(button->dynamicPropertyNames().isEmpty());
    }

    void defaultConstructedBoxHasNoLayoutController()
    {
        AlertBox box;
        QVERIFY(!RequestsLayoutForNewChild(box));
        QVERIFY(!RequestsLayoutForNewChild(*box.findChild<QDialogButtonBox*>()));
    }

    void appliesItsArguments()
    {
        QWidget parent;
        AlertBox box(AlertBox::Error, QStringLiteral("title"), QStringLiteral("the text"),
                     QMessageBox::Ok | QMessageBox::Help, &parent, Qt::Dialog | Qt::WindowStaysOnTopHint);
        QCOMPARE(box.windowTitle(), QStringLiteral("title"));
        QCOMPARE(box.text(), QStringLiteral("the text"));
        QCOMPARE(box.standardButtons(), QMessageBox::Ok | QMessageBox::Help);
        QCOMPARE(box.parentWidget(), &parent);
        QVERIFY(box.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
        QVERIFY(box.isWindow());
    }

    void hasNoInitialIcon()
    {
        AlertBox const box(AlertBox::Error, QStringLiteral("title"), QStringLiteral("text"), QMessageBox::Ok);
        QCOMPARE(box.icon(), QMessageBox::NoIcon);
        QVERIFY(box.iconPixmap().isNull());
    }

    void hasTheInitialValuesOfADefaultConstructedBox()
    {
        AlertBox const box(AlertBox::Information, QString(), QStringLiteral("text"));
        QCOMPARE(box.GetSpacing(), 0);
        QVERIFY(box.GetUseDefaultLevelIcon());
        QCOMPARE(box.GetWidth(), -1);
    }

    void hasTheDefaultArgumentsOfQMessageBox()
    {
        AlertBox const box(AlertBox::Information, QStringLiteral("title"), QStringLiteral("text"));
        QMessageBox const plain(QMessageBox::NoIcon, QStringLiteral("title"), QStringLiteral("text"));
        QVERIFY(box.buttons().isEmpty());
        QCOMPARE(box.parent(), nullptr);
        QCOMPARE(box.windowFlags(), plain.windowFlags());
    }

    void titleDependsOnTheLevel_data()
    {
        QTest::addColumn<AlertBox::Level>("level");
        QTest::addColumn<QString>("given");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("translated");
        QTest::addColumn<int>("width");
        QString const null;
        QString const empty = QLatin1String("");
        QString const custom = QStringLiteral("Custom");
        QString const error = QStringLiteral("Error");
        QTest::newRow("information, empty title")
            << AlertBox::Information << empty << QStringLiteral("Information") << QStringLiteral("[Information]") << -1;
        QTest::newRow("information, null title")
            << AlertBox::Information << null << QStringLiteral("Information") << QStringLiteral("[Information]") << -1;
        QTest::newRow("error, empty title") << AlertBox::Error << empty << error << QStringLiteral("[Error]") << -1;
        QTest::newRow("question, empty title") << AlertBox::Question << empty << empty << empty << 300;
        QTest::newRow("question, null title") << AlertBox::Question << null << empty << empty << 300;
        QTest::newRow("no level, empty title") << NoLevel << empty << empty << empty << -1;
        QTest::newRow("information, custom title") << AlertBox::Information << custom << custom << custom << -1;
        QTest::newRow("error, custom title") << AlertBox::Error << custom << custom << custom << -1;
        QTest::newRow("question, custom title") << AlertBox::Question << custom << custom << custom << -1;
        QTest::newRow("no level, custom title") << NoLevel << custom << custom << custom << -1;
        QTest::newRow("information, custom title that has a translation")
            << AlertBox::Information << error << error << error << -1;
    }

    void titleDependsOnTheLevel()
    {
        QFETCH(AlertBox::Level, level);
        QFETCH(QString, given);
        QFETCH(QString, title);
        QFETCH(QString, translated);
        QFETCH(int, width);
        AlertBox const box(level, given, QStringLiteral("text"));
        QCOMPARE(box.windowTitle(), title);
        QCOMPARE(box.GetWidth(), width);

        Translator translator;
        QVERIFY(QCoreApplication::installTranslator(&translator));
        AlertBox const translatedBox(level, given, QStringLiteral("text"));
        QCoreApplication::removeTranslator(&translator);
        QCOMPARE(translatedBox.windowTitle(), translated);
        QCOMPARE(translatedBox.GetWidth(), width);
    }

    void setsTheTextToNormalWeight()
    {
        AlertBox const box(AlertBox::Information, QStringLiteral("title"), QStringLiteral("text"));
        QCOMPARE(box.styleSheet(), QStringLiteral("QLabel#qt_msgbox_label { font : normal }"));
        QVERIFY(box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label")));
    }

    void messageLevelDependsOnTheLevel_data()
    {
        QTest::addColumn<AlertBox::Level>("level");
        QTest::addColumn<QVariant>("messageLevel");
        QTest::newRow("information") << AlertBox::Information << QVariant(QStringLiteral("Information"));
        QTest::newRow("error") << AlertBox::Error << QVariant(QStringLiteral("Error"));
        QTest::newRow("question") << AlertBox::Question << QVariant(QStringLiteral("Question"));
        QTest::newRow("no level") << NoLevel << QVariant();
    }

    void messageLevelDependsOnTheLevel()
    {
        QFETCH(AlertBox::Level, level);
        QFETCH(QVariant, messageLevel);
        AlertBox const box(level, QStringLiteral("title"), QStringLiteral("text"));
        QCOMPARE(box.property("Level"), messageLevel);
    }

    void dialogSubStyleDependsOnTheLevel_data() { messageLevelDependsOnTheLevel_data(); }

    void dialogSubStyleDependsOnTheLevel()
    {
        QFETCH(AlertBox::Level, level);
        QFETCH(QVariant, messageLevel);
        AlertBox box;
        box.SetDialogSubStyle(level);
        QCOMPARE(box.property("Level"), messageLevel);
    }

    void dialogSubStyleChangesNothingElse()
    {
        AlertBox box(AlertBox::Information, QString(), QStringLiteral("text"), QMessageBox::Ok);
        box.SetDialogSubStyle(AlertBox::Question);
        QCOMPARE(box.property("Level").toString(), QStringLiteral("Question"));
        QCOMPARE(box.windowTitle(), QStringLiteral("Information"));
        QCOMPARE(box.GetWidth(), -1);
        QVERIFY(box.iconPixmap().isNull());
    }

    void dialogSubStyleIsUnchangedForAnUnknownLevel()
    {
        AlertBox box(AlertBox::Error, QString(), QStringLiteral("text"));
        box.SetDialogSubStyle(NoLevel);
        QCOMPARE(box.property("Level").toString(), QStringLiteral("Error"));
    }

    void dialogSubStyleAppliesTheStyleSheet()
    {
        AlertBox box(AlertBox::Information, QString(), QStringLiteral("text"));
        box.setStyleSheet(QStringLiteral("QMessageBox { min-width: 211px } QMessageBox[Level=\"Error\"] { min-width: "
                                         "233px }"));
        box.ensurePolished();
        QCOMPARE(box.minimumWidth(), 211);
        box.SetDialogSubStyle(AlertBox::Error);
        QCOMPARE(box.minimumWidth(), 233);
    }

    void installsLayoutControllers()
    {
        AlertBox box(AlertBox::Information, QString(), QStringLiteral("text"), QMessageBox::Ok);
        QVERIFY(RequestsLayoutForNewChild(box));
        QVERIFY(RequestsLayoutForNewChild(*box.findChild<QDialogButtonBox*>()));
    }

    void namesButtonsAndSetsNoProperties()
    {
        AlertBox const box(AlertBox::Information, QString(), QStringLiteral("text"), QMessageBox::Ok);
        QAbstractButton const* const button = box.button(QMessageBox::Ok);
        QCOMPARE(button->objectName(), QStringLiteral("buttonOk"));
        for (char const* const property : {"SubStyle", "styleHint", "buttonRole"}) {
            QVERIFY2(!button->property(property).isValid(), property);
        }
    }

    void learnMoreLinkIsTheInformativeText()
    {
        QString const link = QStringLiteral("<a href=\"https://example.org/\">Learn more</a>");
        AlertBox box(AlertBox::Information, QStringLiteral("title"), QStringLiteral("text"), QMessageBox::Ok);
        box.SetLearnMoreLink(link);
        QCOMPARE(box.informativeText(), link);
        QCOMPARE(box.text(), QStringLiteral("text"));
        QCOMPARE(box.windowTitle(), QStringLiteral("title"));
        QCOMPARE(box.detailedText(), QString());
        box.SetLearnMoreLink(QString());
        QCOMPARE(box.informativeText(), QString());
    }

    void isDestroyedWithItsParent()
    {
        auto parent = std::make_unique<QWidget>();
        QPointer<AlertBox> const box(
            new AlertBox(AlertBox::Question, QString(), QStringLiteral("text"), QMessageBox::Yes, parent.get()));
        parent.reset();
        QVERIFY(box.isNull());
    }
};

ZQTUTIL_WIDGET_TEST_MAIN(AlertBoxTest)
#include "AlertBoxTest.moc"

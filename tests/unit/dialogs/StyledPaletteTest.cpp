#include <support/TestCase.h>

#include <Util/StyledPalette.h>

#include <QtCore/QMetaMethod>
#include <QtCore/QMetaProperty>
#include <QtGui/QPalette>
#include <QtTest/QtTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>

#include <memory>
#include <type_traits>

using Zelkor::Util::StyledPalette;

static_assert(std::is_base_of_v<QWidget, StyledPalette> && sizeof(StyledPalette) == sizeof(QWidget));
static_assert(!std::is_final_v<StyledPalette> && std::has_virtual_destructor_v<StyledPalette>);
static_assert(!std::is_copy_constructible_v<StyledPalette> && !std::is_copy_assignable_v<StyledPalette>);
static_assert(!std::is_move_constructible_v<StyledPalette> && !std::is_move_assignable_v<StyledPalette>);
static_assert(std::is_default_constructible_v<StyledPalette>);
static_assert(!std::is_convertible_v<QWidget*, StyledPalette>);
static_assert(std::is_same_v<decltype(&StyledPalette::GetLinksColor), QColor (StyledPalette::*)()>);
static_assert(std::is_same_v<decltype(&StyledPalette::SetLinksColor), void (StyledPalette::*)(QColor)>);
static_assert(std::is_same_v<decltype(&StyledPalette::GetPalleteLight), QColor (StyledPalette::*)()>);
static_assert(std::is_same_v<decltype(&StyledPalette::SetPaletteLight), void (StyledPalette::*)(QColor)>);

namespace
{

QColor const TestColor(12, 34, 56, 78);

void Set(StyledPalette& styledPalette, QPalette::ColorRole role, QColor const& color)
{
    role == QPalette::Link ? styledPalette.SetLinksColor(color) : styledPalette.SetPaletteLight(color);
}

QColor Get(StyledPalette& styledPalette, QPalette::ColorRole role)
{
    return role == QPalette::Link ? styledPalette.GetLinksColor() : styledPalette.GetPalleteLight();
}

} // namespace

class StyledPaletteTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

protected:
    void SetUp() override { palette_ = QGuiApplication::palette(); }
    void TearDown() override { QApplication::setPalette(palette_); }

private Q_SLOTS:
    void hasAMetaObject()
    {
        QMetaObject const& metaObject = StyledPalette::staticMetaObject;
        QCOMPARE(metaObject.className(), "Zelkor::Util::StyledPalette");
        QCOMPARE(metaObject.superClass(), &QWidget::staticMetaObject);
    }

    void declaresFourSlotsInOrder_data()
    {
        QTest::addColumn<int>("position");
        QTest::addColumn<int>("returnType");
        QTest::addColumn<QByteArrayList>("parameters");
        int const color = QMetaType::QColor;
        int const none = QMetaType::Void;
        QTest::newRow("GetLinksColor()") << 0 << color << QByteArrayList{};
        QTest::newRow("SetLinksColor(QColor)") << 1 << none << QByteArrayList{"color"};
        QTest::newRow("GetPalleteLight()") << 2 << color << QByteArrayList{};
        QTest::newRow("SetPaletteLight(QColor)") << 3 << none << QByteArrayList{"color"};
    }

    void declaresFourSlotsInOrder()
    {
        QFETCH(int, position);
        QFETCH(int, returnType);
        QFETCH(QByteArrayList, parameters);
        QMetaObject const& metaObject = StyledPalette::staticMetaObject;
        QCOMPARE(metaObject.methodCount(), metaObject.methodOffset() + 4);
        QMetaMethod const method = metaObject.method(metaObject.methodOffset() + position);
        QCOMPARE(method.methodSignature(), QByteArray(QTest::currentDataTag()));
        QCOMPARE(method.methodType(), QMetaMethod::Slot);
        QCOMPARE(method.access(), QMetaMethod::Public);
        QCOMPARE(method.returnType(), returnType);
        QCOMPARE(method.parameterNames(), parameters);
    }

    void declaresTwoProperties_data()
    {
        QTest::addColumn<int>("position");
        QTest::addColumn<int>("role");
        QTest::newRow("linksColor") << 0 << static_cast<int>(QPalette::Link);
        QTest::newRow("paletteLight") << 1 << static_cast<int>(QPalette::Light);
    }

    void declaresTwoProperties()
    {
        QFETCH(int, position);
        QFETCH(int, role);
        QMetaObject const& metaObject = StyledPalette::staticMetaObject;
        QCOMPARE(metaObject.propertyCount(), metaObject.propertyOffset() + 2);
        QMetaProperty const property = metaObject.property(metaObject.propertyOffset() + position);
        QCOMPARE(property.name(), QTest::currentDataTag());
        QCOMPARE(property.userType(), static_cast<int>(QMetaType::QColor));
        QVERIFY(property.isReadable() && property.isWritable());
        QVERIFY(property.isStored() && property.isDesignable());
        QVERIFY(!property.hasNotifySignal() && !property.isResettable());

        StyledPalette styledPalette;
        QVERIFY(property.write(&styledPalette, TestColor));
        QCOMPARE(QGuiApplication::palette().color(static_cast<QPalette::ColorRole>(role)), TestColor);
        QCOMPARE(property.read(&styledPalette).value<QColor>(), TestColor);
    }

    void readsTheActiveColorsOfTheApplicationPalette()
    {
        QPalette palette;
        palette.setColor(QPalette::Active, QPalette::Link, QColor(1, 2, 3));
        palette.setColor(QPalette::Inactive, QPalette::Link, QColor(4, 5, 6));
        palette.setColor(QPalette::Active, QPalette::Light, QColor(7, 8, 9));
        palette.setColor(QPalette::Disabled, QPalette::Light, QColor(10, 11, 12));
        QApplication::setPalette(palette);
        StyledPalette styledPalette;
        QPalette widgetPalette;
        widgetPalette.setColor(QPalette::Link, Qt::red);
        widgetPalette.setColor(QPalette::Light, Qt::red);
        styledPalette.setPalette(widgetPalette);
        styledPalette.setEnabled(false);
        QCOMPARE(styledPalette.GetLinksColor(), QColor(1, 2, 3));
        QCOMPARE(styledPalette.GetPalleteLight(), QColor(7, 8, 9));
    }

    void setsAllColorGroupsOfOneRole_data()
    {
        QTest::addColumn<int>("role");
        QTest::newRow("link role") << static_cast<int>(QPalette::Link);
        QTest::newRow("light role") << static_cast<int>(QPalette::Light);
    }

    void setsAllColorGroupsOfOneRole()
    {
        QFETCH(int, role);
        auto const colorRole = static_cast<QPalette::ColorRole>(role);
        QPalette before = QGuiApplication::palette();
        before.setBrush(QPalette::Disabled, colorRole, QBrush(Qt::red, Qt::Dense4Pattern));
        QApplication::setPalette(before);
        StyledPalette styledPalette;
        Set(styledPalette, colorRole, TestColor);
        QPalette const after = QGuiApplication::palette();
        for (auto const group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
            QCOMPARE(after.brush(group, colorRole), QBrush(TestColor, Qt::SolidPattern));
            for (int other = 0; other < QPalette::NColorRoles; ++other) {
                if (other != role && other != QPalette::NoRole) {
                    auto const otherRole = static_cast<QPalette::ColorRole>(other);
                    QCOMPARE(after.brush(group, otherRole), before.brush(group, otherRole));
                }
            }
        }
        QCOMPARE(Get(styledPalette, colorRole), TestColor);
    }

    void changesThePaletteOfAllWidgets_data() { setsAllColorGroupsOfOneRole_data(); }

    void changesThePaletteOfAllWidgets()
    {
        QFETCH(int, role);
        auto const colorRole = static_cast<QPalette::ColorRole>(role);
        QLabel const label;
        StyledPalette styledPalette;
        Set(styledPalette, colorRole, TestColor);
        QCOMPARE(label.palette().color(colorRole), TestColor);
        QCOMPARE(QWidget().palette().color(colorRole), TestColor);
        QCOMPARE(Get(*std::make_unique<StyledPalette>(), colorRole), TestColor);
    }

    void keepsTheColorAfterTheWidgetIsDestroyed()
    {
        std::make_unique<StyledPalette>()->SetLinksColor(TestColor);
        QCOMPARE(QGuiApplication::palette().color(QPalette::Link), TestColor);
    }

    void keepsTheColorModelForLinksAndConvertsLightToRgb_data()
    {
        QTest::addColumn<QColor>("color");
        QTest::newRow("RGB") << QColor(10, 200, 30);
        QTest::newRow("RGB, translucent") << QColor(10, 200, 30, 40);
        QTest::newRow("HSV") << QColor::fromHsv(120, 200, 150, 90);
        QTest::newRow("HSL") << QColor::fromHsl(200, 100, 150);
        QTest::newRow("CMYK") << QColor::fromCmyk(10, 20, 30, 40, 50);
        QTest::newRow("16 bits per channel") << QColor::fromRgba64(0x1234, 0x5678, 0x9abc, 0xdef0);
        QTest::newRow("extended RGB") << QColor::fromRgbF(0.25, 0.5, 0.75).convertTo(QColor::ExtendedRgb);
        QTest::newRow("invalid") << QColor();
    }

    void keepsTheColorModelForLinksAndConvertsLightToRgb()
    {
        QFETCH(QColor, color);
        StyledPalette styledPalette;
        styledPalette.SetLinksColor(color);
        styledPalette.SetPaletteLight(color);
        QCOMPARE(styledPalette.GetLinksColor(), color);
        QCOMPARE(styledPalette.GetLinksColor().spec(), color.spec());
        QCOMPARE(styledPalette.GetPalleteLight().spec(), QColor::Rgb);
        QCOMPARE(styledPalette.GetPalleteLight(), QColor(color.red(), color.green(), color.blue(), color.alpha()));
    }

    void readsColorsFromAStyleSheet()
    {
        StyledPalette styledPalette;
        styledPalette.setStyleSheet(QStringLiteral(
            "Zelkor--Util--StyledPalette { qproperty-linksColor: #2a6fdb; qproperty-paletteLight: #abcdef }"));
        styledPalette.ensurePolished();
        QCOMPARE(QGuiApplication::palette().color(QPalette::Link), QColor(0x2a, 0x6f, 0xdb));
        QCOMPARE(QGuiApplication::palette().color(QPalette::Light), QColor(0xab, 0xcd, 0xef));
    }

    void isDestroyedWithItsParent()
    {
        auto parent = std::make_unique<QWidget>();
        QPointer<StyledPalette> const styledPalette(new StyledPalette(parent.get()));
        QCOMPARE(styledPalette->parentWidget(), parent.get());
        QCOMPARE(StyledPalette().parent(), nullptr);
        parent.reset();
        QVERIFY(styledPalette.isNull());
    }

private:
    QPalette palette_;
};

ZQTUTIL_WIDGET_TEST_MAIN(StyledPaletteTest)
#include "StyledPaletteTest.moc"

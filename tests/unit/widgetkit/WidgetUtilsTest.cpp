#include <support/TestCase.h>
#include <support/displays/RecordingStyle.h>

#include <WidgetKit/WidgetUtils.h>

#include <QtTest/QtTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

#include <memory>
#include <type_traits>

using Zelkor::Testing::RecordingStyle;
using Zelkor::Testing::Repolishing;
using Zelkor::Widget::Util::applyStyleHint;
using Zelkor::Widget::Util::createSpacer;
using Zelkor::Widget::Util::installLayoutController;
using Zelkor::Widget::Util::repolishWidget;

static_assert(std::is_same_v<decltype(&applyStyleHint), void (*)(QWidget*, QString const&)>);
static_assert(std::is_same_v<decltype(&repolishWidget), void (*)(QWidget*)>);
static_assert(std::is_same_v<decltype(&createSpacer), QWidget* (*)(QWidget*, QString const&)>);
static_assert(std::is_same_v<decltype(&installLayoutController), void (*)(QWidget*)>);

namespace
{

/// A style with a fixed left margin of 43 pixels and a fixed vertical spacing of 71 pixels.
class CustomMetricsStyle : public QProxyStyle
{
public:
    int pixelMetric(PixelMetric metric, QStyleOption const* option, QWidget const* widget) const override
    {
        switch (metric) {
        case PM_LayoutLeftMargin:
            return 43;
        case PM_LayoutVerticalSpacing:
            return 71;
        default:
            return QProxyStyle::pixelMetric(metric, option, widget);
        }
    }
};

/// A layout that counts the calls to invalidate().
class CountingLayout : public QVBoxLayout
{
public:
    using QVBoxLayout::QVBoxLayout;

    int invalidations = 0;

    void invalidate() override
    {
        ++invalidations;
        QVBoxLayout::invalidate();
    }
};

QWidget* AddChild(QLayout& layout)
{
    auto* const child = new QLabel(QStringLiteral("text"), layout.parentWidget());
    layout.addWidget(child);
    return child;
}

} // namespace

class WidgetUtilsTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void ignoresNull()
    {
        applyStyleHint(nullptr, QStringLiteral("activeButton"));
        repolishWidget(nullptr);
        installLayoutController(nullptr);
    }

    void storesTheStyleHintInADynamicProperty()
    {
        QWidget widget;
        applyStyleHint(&widget, QStringLiteral("activeButton"));
        QCOMPARE(widget.dynamicPropertyNames(), QByteArrayList{"styleHint"});
        QCOMPARE(widget.property("styleHint"), QVariant(QStringLiteral("activeButton")));
        applyStyleHint(&widget, QString());
        QCOMPARE(widget.property("styleHint"), QVariant(QString()));
    }

    void repolishesOnceWithTheStyleOfTheWidgetForAStyleHint()
    {
        RecordingStyle parentStyle;
        RecordingStyle style({"styleHint"});
        QWidget parent;
        parent.setStyle(&parentStyle);
        QWidget widget(&parent);
        widget.setStyle(&style);
        QWidget child(&widget);
        child.setStyle(&style);
        parentStyle.calls.clear();
        style.calls.clear();
        applyStyleHint(&widget, QStringLiteral("error"));
        QCOMPARE(style.calls, Repolishing(&widget, {QStringLiteral("error")}));
        QVERIFY(parentStyle.calls.isEmpty());
    }

    void appliesStyleSheetRulesForAStyleHint()
    {
        QLabel label;
        label.setStyleSheet(QStringLiteral("QLabel[styleHint=\"wide\"] { min-width: 234px }"));
        label.ensurePolished();
        QCOMPARE(label.minimumWidth(), 0);
        applyStyleHint(&label, QStringLiteral("wide"));
        QCOMPARE(label.minimumWidth(), 234);
        applyStyleHint(&label, QStringLiteral("normal"));
        QCOMPARE(label.minimumWidth(), 0);
    }

    void repolishesOnlyTheWidget()
    {
        RecordingStyle style;
        QWidget parent;
        parent.setStyle(&style);
        QWidget widget(&parent);
        widget.setStyle(&style);
        QWidget child(&widget);
        child.setStyle(&style);
        style.calls.clear();
        repolishWidget(&widget);
        QCOMPARE(style.calls, Repolishing(&widget));
        QVERIFY(widget.dynamicPropertyNames().isEmpty());
    }

    void repolishingAppliesStyleSheetRulesForProperties()
    {
        QLabel label;
        label.setStyleSheet(QStringLiteral("QLabel[custom=\"yes\"] { min-width: 123px }"));
        label.ensurePolished();
        label.setProperty("custom", QStringLiteral("yes"));
        QCOMPARE(label.minimumWidth(), 0);
        repolishWidget(&label);
        QCOMPARE(label.minimumWidth(), 123);
    }

    void createsASpacerAsPlainWidgetWithoutSize()
    {
        QWidget parent;
        QWidget const* const spacer = createSpacer(&parent, QStringLiteral("gap"));
        QCOMPARE(spacer->metaObject(), &QWidget::staticMetaObject);
        QCOMPARE(spacer->objectName(), QStringLiteral("gap"));
        QCOMPARE(spacer->parentWidget(), &parent);
        QVERIFY(!spacer->isWindow());
        QVERIFY(!spacer->sizeHint().isValid());
        QVERIFY(!spacer->minimumSizeHint().isValid());
        QCOMPARE(spacer->minimumSize(), QSize(0, 0));
        QCOMPARE(spacer->maximumSize(), QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
        QCOMPARE(spacer->layout(), nullptr);
    }

    void createsANewSpacerEachTime()
    {
        QWidget parent;
        QVERIFY(createSpacer(&parent, QStringLiteral("gap")) != createSpacer(&parent, QStringLiteral("gap")));
    }

    void aSpacerWithoutParentIsOwnedByTheCaller()
    {
        std::unique_ptr<QWidget> const spacer(createSpacer(nullptr, QString()));
        QCOMPARE(spacer->parent(), nullptr);
        QCOMPARE(spacer->objectName(), QString());
    }

    void aSpacerIsTransparentForTheMouse()
    {
        QWidget parent;
        parent.resize(100, 100);
        QLabel below(&parent);
        below.setGeometry(0, 0, 100, 100);
        QWidget* const spacer = createSpacer(&parent, QStringLiteral("gap"));
        spacer->setGeometry(0, 0, 100, 100);
        parent.show();
        QVERIFY(spacer->isVisible());
        QCOMPARE(parent.childAt(50, 50), &below);
    }

    void theControllerInvalidatesTheLayoutForChangeEvents_data()
    {
        QTest::addColumn<int>("event");
        QTest::newRow("font change") << static_cast<int>(QEvent::FontChange);
        QTest::newRow("style change") << static_cast<int>(QEvent::StyleChange);
        QTest::newRow("layout direction change") << static_cast<int>(QEvent::LayoutDirectionChange);
    }

    void theControllerInvalidatesTheLayoutForChangeEvents()
    {
        QFETCH(int, event);
        // QWidget::event() would also invalidate the layout. This widget does not call QWidget::event(), so that only
        // the controller invalidates the layout.
        class Container : public QWidget
        {
        public:
            bool event(QEvent* /*event*/) override { return true; }
        } container;
        auto* const layout = new CountingLayout(&container);
        installLayoutController(&container);
        layout->invalidations = 0;
        QEvent change(static_cast<QEvent::Type>(event));
        QCoreApplication::sendEvent(&container, &change);
        QCOMPARE(layout->invalidations, 1);
        QEvent other(QEvent::ToolTipChange);
        QCoreApplication::sendEvent(&container, &other);
        QCOMPARE(layout->invalidations, 1);
    }

    void theControllerInvalidatesTheLayoutWhenChildrenAreAddedOrRemoved()
    {
        QWidget container;
        auto* const layout = new CountingLayout(&container);
        installLayoutController(&container);
        layout->invalidations = 0;
        auto child = std::make_unique<QObject>(&container);
        QCOMPARE(layout->invalidations, 1);
        child.reset();
        QCOMPARE(layout->invalidations, 2);
    }

    void aNewChildDoesNotInvalidateTheLayoutWithoutController()
    {
        QWidget container;
        auto* const layout = new CountingLayout(&container);
        layout->invalidations = 0;
        QObject const child(&container);
        QCOMPARE(layout->invalidations, 0);
    }

    void installingTheControllerInvalidatesTheLayout()
    {
        QWidget container;
        auto* const layout = new CountingLayout(&container);
        layout->invalidations = 0;
        installLayoutController(&container);
        QVERIFY(layout->invalidations > 0);
    }

    void theControllerIgnoresChangesOfChildren()
    {
        QWidget container;
        auto* const layout = new CountingLayout(&container);
        QWidget* const child = AddChild(*layout);
        installLayoutController(&container);
        layout->invalidations = 0;
        QObject const grandChild(child);
        QCOMPARE(layout->invalidations, 0);
    }

    void installingTheControllerAgainHasNoEffect()
    {
        QWidget container;
        auto* const layout = new CountingLayout(&container);
        installLayoutController(&container);
        int const children = container.children().size();
        layout->invalidations = 0;
        installLayoutController(&container);
        QCOMPARE(layout->invalidations, 0);
        QCOMPARE(container.children().size(), children);
        QObject const child(&container);
        QCOMPARE(layout->invalidations, 1);
    }

    void aControllerOfAChildDoesNotReplaceTheControllerOfTheContainer()
    {
        QWidget container;
        auto* const layout = new CountingLayout(&container);
        installLayoutController(AddChild(*layout));
        installLayoutController(&container);
        layout->invalidations = 0;
        QObject const child(&container);
        QCOMPARE(layout->invalidations, 1);
    }

    void theControllerAcceptsAMissingLayout()
    {
        QWidget container;
        installLayoutController(&container);
        QObject const early(&container);
        auto* const layout = new CountingLayout(&container);
        layout->invalidations = 0;
        QObject const late(&container);
        QCOMPARE(layout->invalidations, 1);
        delete layout;
        QObject const last(&container);
        QCOMPARE(container.layout(), nullptr);
    }

    void theControllerUsesTheCurrentLayout()
    {
        QWidget container;
        auto* const first = new CountingLayout(&container);
        installLayoutController(&container);
        delete first;
        auto* const second = new CountingLayout(&container);
        second->invalidations = 0;
        QObject const child(&container);
        QCOMPARE(second->invalidations, 1);
    }

    void theControllerUpdatesDefaultMarginsAndSpacingFromTheStyle()
    {
        CustomMetricsStyle style;
        QWidget container;
        auto* const layout = new QVBoxLayout(&container);
        QWidget* const upper = AddChild(*layout);
        QWidget* const lower = AddChild(*layout);
        installLayoutController(&container);
        container.show();
        container.setStyle(&style);
        upper->setStyle(&style);
        layout->activate();
        QCOMPARE(upper->x(), 43);
        QCOMPARE(lower->y() - upper->geometry().bottom() - 1, 71);
    }

    void theControllerKeepsExplicitMarginsAndSpacing()
    {
        CustomMetricsStyle style;
        QWidget container;
        auto* const layout = new QVBoxLayout(&container);
        layout->setContentsMargins(5, 6, 7, 8);
        layout->setSpacing(9);
        installLayoutController(&container);
        container.setStyle(&style);
        QCOMPARE(layout->contentsMargins(), QMargins(5, 6, 7, 8));
        QCOMPARE(layout->spacing(), 9);
    }

    void theControllerIsDestroyedWithItsContainer()
    {
        auto container = std::make_unique<QWidget>();
        auto* const layout = new CountingLayout(container.get());
        AddChild(*layout);
        installLayoutController(container.get());
        QPointer<QObject> const controller(container->children().constLast());
        container.reset();
        QVERIFY(controller.isNull());
    }
};

ZQTUTIL_WIDGET_TEST_MAIN(WidgetUtilsTest)
#include "WidgetUtilsTest.moc"

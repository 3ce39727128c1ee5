#include <support/TestCase.h>

#include <WidgetKit/Layouts.h>

#include <QtTest/QtTest>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>

#include <memory>
#include <type_traits>

using Zelkor::Widget::MBoxLayout;
using Zelkor::Widget::MFrame;
using Zelkor::Widget::MVBoxLayout;
using Zelkor::Widget::LayoutHelpers::BoxItem;
using Zelkor::Widget::LayoutHelpers::SpacerPolicy;

template <class T, class Base>
constexpr bool IsNonCopyableSubclass =
    std::is_convertible_v<T*, Base*>&& std::is_polymorphic_v<T> && !std::is_final_v<T> &&
    !std::is_copy_constructible_v<T> && !std::is_copy_assignable_v<T> && !std::is_move_constructible_v<T> &&
    !std::is_move_assignable_v<T>;

static_assert(IsNonCopyableSubclass<MFrame, QFrame> && IsNonCopyableSubclass<MBoxLayout, QBoxLayout> &&
              IsNonCopyableSubclass<MVBoxLayout, MBoxLayout>);
static_assert(std::is_default_constructible_v<MFrame> && !std::is_convertible_v<QWidget*, MFrame>);
static_assert(std::is_default_constructible_v<MVBoxLayout> && !std::is_convertible_v<QWidget*, MVBoxLayout>);
static_assert(!std::is_convertible_v<QBoxLayout::Direction, MBoxLayout>);
static_assert(std::is_copy_constructible_v<BoxItem> && std::is_copy_assignable_v<BoxItem>);
static_assert(!std::is_default_constructible_v<BoxItem> && !std::is_polymorphic_v<BoxItem>);
static_assert(std::is_convertible_v<QWidget*, BoxItem> && std::is_constructible_v<BoxItem, QWidget*, int>);
static_assert(std::is_constructible_v<BoxItem, SpacerPolicy, int> && !std::is_constructible_v<BoxItem, SpacerPolicy>);
static_assert(static_cast<int>(SpacerPolicy::Fixed) == 0 && static_cast<int>(SpacerPolicy::Stretch) == 1);
static_assert(std::is_same_v<std::underlying_type_t<SpacerPolicy>, int>);

Q_DECLARE_METATYPE(QBoxLayout::Direction)
Q_DECLARE_METATYPE(Zelkor::Widget::LayoutHelpers::SpacerPolicy)
Q_DECLARE_METATYPE(QMetaObject const*)

namespace
{

/// Returns the widget of each item of \a layout, in order. For an item without a widget, the result contains null.
QWidgetList Widgets(QLayout const& layout)
{
    QWidgetList widgets;
    for (int i = 0; i < layout.count(); ++i) {
        widgets += layout.itemAt(i)->widget();
    }
    return widgets;
}

} // namespace

class LayoutsTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void hasAMetaObject_data()
    {
        QTest::addColumn<QMetaObject const*>("metaObject");
        QTest::addColumn<QMetaObject const*>("base");
        QTest::newRow("Zelkor::Widget::MFrame") << &MFrame::staticMetaObject << &QFrame::staticMetaObject;
        QTest::newRow("Zelkor::Widget::MBoxLayout") << &MBoxLayout::staticMetaObject << &QBoxLayout::staticMetaObject;
        QTest::newRow("Zelkor::Widget::MVBoxLayout") << &MVBoxLayout::staticMetaObject << &MBoxLayout::staticMetaObject;
    }

    void hasAMetaObject()
    {
        QFETCH(QMetaObject const*, metaObject);
        QFETCH(QMetaObject const*, base);
        QCOMPARE(metaObject->className(), QTest::currentDataTag());
        QCOMPARE(metaObject->superClass(), base);
    }

    void aFrameHasNoBorder()
    {
        QWidget parent;
        MFrame const frame(&parent);
        QCOMPARE(frame.frameShape(), QFrame::NoFrame);
        QCOMPARE(frame.frameWidth(), 0);
        QCOMPARE(frame.parentWidget(), &parent);
        QCOMPARE(frame.layout(), nullptr);
        QCOMPARE(MFrame().parent(), nullptr);
    }

    void becomesTheLayoutOfItsParent_data()
    {
        QTest::addColumn<QBoxLayout::Direction>("direction");
        QTest::newRow("left to right") << QBoxLayout::LeftToRight;
        QTest::newRow("right to left") << QBoxLayout::RightToLeft;
        QTest::newRow("top to bottom") << QBoxLayout::TopToBottom;
        QTest::newRow("bottom to top") << QBoxLayout::BottomToTop;
    }

    void becomesTheLayoutOfItsParent()
    {
        QFETCH(QBoxLayout::Direction, direction);
        QWidget widget;
        auto* const layout = new MBoxLayout(direction, &widget);
        QCOMPARE(layout->direction(), direction);
        QCOMPARE(widget.layout(), layout);
        QVERIFY(layout->isEmpty());
        QCOMPARE(MBoxLayout(direction).parent(), nullptr);
    }

    void aVerticalLayoutRunsFromTopToBottom()
    {
        QWidget widget;
        auto* const layout = new MVBoxLayout(&widget);
        QCOMPARE(layout->direction(), QBoxLayout::TopToBottom);
        QCOMPARE(widget.layout(), layout);
        QCOMPARE(MVBoxLayout().direction(), QBoxLayout::TopToBottom);
        QCOMPARE(MVBoxLayout().parent(), nullptr);
    }

    void appendsItemsInOrderWithTheirStretch()
    {
        QWidget widget;
        MVBoxLayout layout(&widget);
        auto* const first = new QLabel;
        auto* const second = new QLabel;
        auto* const third = new QLabel;
        layout.addItems({{first, 3}});
        layout.addItems({{second, 0}, {SpacerPolicy::Stretch, 0}, third});
        QCOMPARE(Widgets(layout), (QWidgetList{first, second, nullptr, third}));
        QVERIFY(layout.itemAt(2)->spacerItem());
        QCOMPARE(layout.stretch(0), 3);
        QCOMPARE(layout.stretch(1), 0);
        QCOMPARE(layout.stretch(2), 0);
        QCOMPARE(layout.stretch(3), 0);
        QCOMPARE(third->parentWidget(), &widget);
    }

    void acceptsAnEmptyListOfItems()
    {
        MVBoxLayout layout;
        layout.addItems({});
        QCOMPARE(layout.count(), 0);
    }

    void ignoresANullWidget()
    {
        QWidget widget;
        MVBoxLayout layout(&widget);
        auto* const label = new QLabel;
        layout.addItems({{static_cast<QWidget*>(nullptr), 2}, {label, 1}});
        QCOMPARE(Widgets(layout), QWidgetList{label});
        QCOMPARE(layout.stretch(0), 1);
    }

    void anItemCanBeAppendedSeveralTimes()
    {
        BoxItem const spacer(SpacerPolicy::Fixed, 5);
        QHBoxLayout layout;
        spacer.AppendTo(layout);
        spacer.AppendTo(layout);
        QCOMPARE(layout.count(), 2);
        QVERIFY(layout.itemAt(0) != layout.itemAt(1));
        BoxItem const copy = spacer;
        copy.AppendTo(layout);
        QCOMPARE(layout.itemAt(2)->sizeHint(), QSize(5, 0));
    }

    void anItemDoesNotOwnItsWidget()
    {
        QLabel label;
        {
            BoxItem const item(&label);
        }
        QCOMPARE(label.parent(), nullptr);
    }

    void orientsASpacerAlongTheLayout_data()
    {
        QTest::addColumn<QBoxLayout::Direction>("direction");
        QTest::addColumn<SpacerPolicy>("policy");
        QTest::addColumn<int>("expanding");
        int const none = 0;
        int const horizontal = Qt::Horizontal;
        int const vertical = Qt::Vertical;
        QTest::newRow("left to right, fixed") << QBoxLayout::LeftToRight << SpacerPolicy::Fixed << none;
        QTest::newRow("left to right, stretch") << QBoxLayout::LeftToRight << SpacerPolicy::Stretch << horizontal;
        QTest::newRow("right to left, fixed") << QBoxLayout::RightToLeft << SpacerPolicy::Fixed << none;
        QTest::newRow("right to left, stretch") << QBoxLayout::RightToLeft << SpacerPolicy::Stretch << horizontal;
        QTest::newRow("top to bottom, fixed") << QBoxLayout::TopToBottom << SpacerPolicy::Fixed << none;
        QTest::newRow("top to bottom, stretch") << QBoxLayout::TopToBottom << SpacerPolicy::Stretch << vertical;
        QTest::newRow("bottom to top, fixed") << QBoxLayout::BottomToTop << SpacerPolicy::Fixed << none;
        QTest::newRow("bottom to top, stretch") << QBoxLayout::BottomToTop << SpacerPolicy::Stretch << vertical;
    }

    void orientsASpacerAlongTheLayout()
    {
        QFETCH(QBoxLayout::Direction, direction);
        QFETCH(SpacerPolicy, policy);
        QFETCH(int, expanding);
        constexpr int Size = 13;
        MBoxLayout layout(direction);
        layout.addItems({{policy, Size}});
        bool const horizontal = direction == QBoxLayout::LeftToRight || direction == QBoxLayout::RightToLeft;
        QLayoutItem* const item = layout.itemAt(0);
        QVERIFY(item->spacerItem());
        QSize const size = horizontal ? QSize(Size, 0) : QSize(0, Size);
        QCOMPARE(item->sizeHint(), size);
        QCOMPARE(item->minimumSize(), size);
        QCOMPARE(static_cast<int>(item->expandingDirections()), expanding);
        int const maximumAlong = horizontal ? item->maximumSize().width() : item->maximumSize().height();
        QVERIFY(expanding ? maximumAlong >= QLAYOUTSIZE_MAX : maximumAlong == Size);
        int const maximumAcross = horizontal ? item->maximumSize().height() : item->maximumSize().width();
        QVERIFY(maximumAcross >= QLAYOUTSIZE_MAX);
    }

    void aStretchTakesAllAdditionalSpace()
    {
        QWidget widget;
        MVBoxLayout layout(&widget);
        layout.setContentsMargins(0, 0, 0, 0);
        layout.setSpacing(0);
        auto* const upper = new QLabel(QStringLiteral("upper"));
        auto* const lower = new QLabel(QStringLiteral("lower"));
        layout.addItems({{upper, 0}, {SpacerPolicy::Fixed, 21}, {lower, 0}, {SpacerPolicy::Stretch, 0}});
        layout.setGeometry(QRect(0, 0, 200, 500));
        QCOMPARE(upper->geometry().top(), 0);
        QCOMPARE(upper->height(), upper->sizeHint().height());
        QCOMPARE(lower->geometry().top(), upper->height() + 21);
        QCOMPARE(lower->height(), lower->sizeHint().height());
    }

    void destroyingTheLayoutKeepsItsWidgets()
    {
        QWidget widget;
        auto layout = std::make_unique<MVBoxLayout>(&widget);
        QPointer<QLabel> const label(new QLabel);
        layout->addItems({{SpacerPolicy::Stretch, 1}, {label, 0}});
        layout.reset();
        QVERIFY(!label.isNull());
        QCOMPARE(label->parentWidget(), &widget);
    }

    void autoFillAddsTheChildrenInOrder()
    {
        QWidget widget;
        auto* const first = new QLabel(&widget);
        auto* const second = new MFrame(&widget);
        new QLabel(second);
        new QObject(&widget);
        auto* const third = new QLabel(&widget);
        third->hide();
        auto* const layout = new MVBoxLayout(&widget);
        layout->autoFill();
        QCOMPARE(Widgets(*layout), (QWidgetList{first, second, third}));
        QCOMPARE(layout->stretch(0), 0);
    }

    void autoFillAppendsToExistingItems()
    {
        QWidget widget;
        auto* const first = new QLabel(&widget);
        auto* const second = new QLabel(&widget);
        auto* const third = new QLabel(&widget);
        auto* const layout = new MVBoxLayout(&widget);
        layout->addItems({{second, 4}, {SpacerPolicy::Fixed, 1}});
        layout->autoFill();
        QCOMPARE(Widgets(*layout), (QWidgetList{second, nullptr, first, third}));
        QCOMPARE(layout->stretch(0), 4);
        layout->autoFill();
        QCOMPARE(layout->count(), 4);
    }

    void autoFillIgnoresWindows()
    {
        QWidget widget;
        auto* const label = new QLabel(&widget);
        auto* const window = new QWidget(&widget, Qt::Window);
        new QWidget(&widget, Qt::Popup);
        auto* const layout = new MVBoxLayout(&widget);
        layout->autoFill();
        QCOMPARE(Widgets(*layout), QWidgetList{label});
        QVERIFY(window->isWindow());
    }

    void autoFillIgnoresWidgetsInNestedLayouts()
    {
        QWidget widget;
        auto* const layout = new MVBoxLayout(&widget);
        auto* const row = new QHBoxLayout;
        layout->addLayout(row);
        auto* const nested = new QLabel(&widget);
        row->addWidget(nested);
        auto* const direct = new QLabel(&widget);
        layout->autoFill();
        QCOMPARE(Widgets(*row), QWidgetList{nested});
        QCOMPARE(Widgets(*layout), (QWidgetList{nullptr, direct}));
    }

    void autoFillDoesNothingWithoutParentWidget()
    {
        MVBoxLayout layout;
        layout.autoFill();
        QCOMPARE(layout.count(), 0);
    }
};

ZQTUTIL_WIDGET_TEST_MAIN(LayoutsTest)
#include "LayoutsTest.moc"

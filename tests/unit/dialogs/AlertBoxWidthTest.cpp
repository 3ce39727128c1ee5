#include <support/TestCase.h>

#include <Util/AlertBox.h>

#include <QtTest/QtTest>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QVBoxLayout>

#include <functional>
#include <memory>

using Zelkor::Util::AlertBox;

using Change = std::function<void(AlertBox&)>;
Q_DECLARE_METATYPE(Change)

namespace
{

/// Wider than any message box without it.
constexpr int Wide = 777;

void TurnEventLoop()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

std::unique_ptr<AlertBox> CreateBox()
{
    return std::make_unique<AlertBox>(AlertBox::Information, QStringLiteral("title"), QStringLiteral("text"),
                                      QMessageBox::Ok | QMessageBox::Cancel);
}

QWidgetList Spacers(AlertBox const& box)
{
    return box.findChildren<QWidget*>(QStringLiteral("widthSpacer"));
}

QPixmap CreateIcon()
{
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::red);
    return pixmap;
}

/// Checks that \a box has one spacer of \a width, across the last row of its grid.
void VerifyHeld(AlertBox const& box, int width)
{
    QCOMPARE(box.GetWidth(), width);
    QCOMPARE(Spacers(box).size(), 1);
    QWidget* const spacer = Spacers(box).constFirst();
    QCOMPARE(spacer->minimumSize(), QSize(width, 0));
    QCOMPARE(spacer->maximumSize(), QSize(width, 0));
    QCOMPARE(spacer->size(), QSize(width, 0));

    auto* const grid = qobject_cast<QGridLayout*>(box.layout());
    QVERIFY(grid);
    int const index = grid->indexOf(spacer);
    QVERIFY(index >= 0);
    int row = -1;
    int column = -1;
    int rowSpan = -1;
    int columnSpan = -1;
    grid->getItemPosition(index, &row, &column, &rowSpan, &columnSpan);
    QCOMPARE(row, grid->rowCount() - 1);
    QCOMPARE(column, 0);
    QCOMPARE(rowSpan, 1);
    QCOMPARE(columnSpan, grid->columnCount());
    QCOMPARE(grid->itemAt(index)->alignment(), Qt::Alignment());
    int items = 0;
    int othersInRow = 0;
    for (int i = 0; i < grid->count(); ++i) {
        bool const isSpacer = grid->itemAt(i)->widget() == spacer;
        grid->getItemPosition(i, &row, &column, &rowSpan, &columnSpan);
        items += isSpacer;
        othersInRow += !isSpacer && row + rowSpan == grid->rowCount();
    }
    QCOMPARE(items, 1);
    QVERIFY(othersInRow > 0); // it has no row to itself
}

/// How many connections wait for the end of \a object.
int ConnectionsToTheEndOf(QObject const& object)
{
    class Access : public QObject
    {
    public:
        static int Count(QObject const& any) { return (any.*(&Access::receivers))(SIGNAL(destroyed(QObject*))); }
    };
    return Access::Count(object);
}

void VerifyNotHeld(AlertBox const& box)
{
    QCOMPARE(box.GetWidth(), -1);
    QVERIFY(Spacers(box).isEmpty());
}

} // namespace

class AlertBoxWidthTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void noWidthAtFirst()
    {
        VerifyNotHeld(AlertBox());
        VerifyNotHeld(*CreateBox());
    }

    void widthIsHeldByASpacer_data()
    {
        QTest::addColumn<int>("width");
        QTest::newRow("none") << 0;
        QTest::newRow("one") << 1;
        QTest::newRow("some") << 240;
        QTest::newRow("much") << 1234;
    }

    void widthIsHeldByASpacer()
    {
        QFETCH(int, width);
        auto const box = CreateBox();
        box->SetWidth(width);
        VerifyHeld(*box, width);
    }

    void bareBoxHoldsAWidthToo()
    {
        AlertBox box;
        box.SetWidth(222);
        VerifyHeld(box, 222);
    }

    void questionWithoutTitleIsHeld()
    {
        AlertBox const box(AlertBox::Question, QString(), QStringLiteral("text"), QMessageBox::Yes);
        VerifyHeld(box, 300);
    }

    void spacerIsAPlainWidgetOfTheBox()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        QWidget const* const spacer = Spacers(*box).constFirst();
        QCOMPARE(spacer->metaObject(), &QWidget::staticMetaObject);
        QCOMPARE(spacer->parentWidget(), box.get());
    }

    void nextWidthReplacesTheOneBefore()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        QWidget const* const spacer = Spacers(*box).constFirst();
        box->SetWidth(450);
        VerifyHeld(*box, 450);
        QCOMPARE(Spacers(*box).constFirst(), spacer);
        box->SetWidth(120);
        VerifyHeld(*box, 120);
    }

    void negativeWidthRemovesTheSpacerInTheEventLoop()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        QPointer<QWidget> const spacer(Spacers(*box).constFirst());
        box->SetWidth(-1);
        QVERIFY(!spacer.isNull());
        QCOMPARE(spacer->maximumSize(), QSize(0, 0));
        QCOMPARE(spacer->minimumSize(), QSize(0, 0));
        QCOMPARE(box->GetWidth(), 0);
        TurnEventLoop();
        QVERIFY(spacer.isNull());
        VerifyNotHeld(*box);
    }

    void anyNegativeWidthRemovesTheSpacer()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        box->SetWidth(-300);
        TurnEventLoop();
        VerifyNotHeld(*box);
    }

    void negativeWidthWithoutSpacerIsNothing()
    {
        auto const box = CreateBox();
        box->SetWidth(-1);
        VerifyNotHeld(*box);
        TurnEventLoop();
        VerifyNotHeld(*box);
        box->SetWidth(210);
        TurnEventLoop();
        VerifyHeld(*box, 210);
    }

    void negativeWidthMayComeTwice()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        box->SetWidth(-1);
        box->SetWidth(-1);
        TurnEventLoop();
        VerifyNotHeld(*box);
    }

    void widthThatFollowsANegativeOneAtOnceIsHeld()
    {
        auto const box = CreateBox();
        box->SetWidth(100);
        box->SetWidth(-1);
        box->SetWidth(200);
        QCOMPARE(box->GetWidth(), 200);
        TurnEventLoop();
        VerifyHeld(*box, 200);
        box->setInformativeText(QStringLiteral("more"));
        TurnEventLoop();
        VerifyHeld(*box, 200);
    }

    void widthThatFollowsANegativeOneLaterIsHeld()
    {
        auto const box = CreateBox();
        box->SetWidth(100);
        box->SetWidth(-1);
        TurnEventLoop();
        box->SetWidth(200);
        TurnEventLoop();
        VerifyHeld(*box, 200);
    }

    void widthSurvivesChangesOfTheContents_data()
    {
        QTest::addColumn<Change>("change");
        auto const addRow = [](char const* name, Change const& change) { QTest::newRow(name) << change; };
        addRow("text", [](AlertBox& box) { box.setText(QStringLiteral("a longer text")); });
        addRow("informative text", [](AlertBox& box) { box.setInformativeText(QStringLiteral("more")); });
        addRow("learn more link", [](AlertBox& box) { box.SetLearnMoreLink(QStringLiteral("<a href=\"x\">x</a>")); });
        addRow("detailed text", [](AlertBox& box) { box.setDetailedText(QStringLiteral("details")); });
        addRow("pixmap", [](AlertBox& box) { box.setIconPixmap(CreateIcon()); });
        addRow("standard icon", [](AlertBox& box) { box.setIcon(QMessageBox::Warning); });
        addRow("button", [](AlertBox& box) { box.addButton(QStringLiteral("more"), QMessageBox::ActionRole); });
        addRow("check box", [](AlertBox& box) { box.setCheckBox(new QCheckBox); });
        addRow("two at once", [](AlertBox& box) {
            box.setInformativeText(QStringLiteral("more"));
            box.setIconPixmap(CreateIcon());
        });
        addRow("two in turn", [](AlertBox& box) {
            box.setInformativeText(QStringLiteral("more"));
            TurnEventLoop();
            box.setInformativeText(QString());
        });
        addRow("preparation", [](AlertBox& box) { box.PrepareToShow(); });
    }

    void widthSurvivesChangesOfTheContents()
    {
        QFETCH(Change, change);
        auto const box = CreateBox();
        box->SetWidth(321);
        change(*box);
        QCOMPARE(box->GetWidth(), 321);
        TurnEventLoop();
        VerifyHeld(*box, 321);
    }

    void spacerGoesIntoTheNewGridInTheEventLoop()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        QPointer<QLayout> const grid(box->layout());
        box->setInformativeText(QStringLiteral("more"));
        QVERIFY(grid.isNull());
        QVERIFY(box->layout()->indexOf(Spacers(*box).constFirst()) < 0);
        TurnEventLoop();
        VerifyHeld(*box, 200);
    }

    void spacerGoesBackAtTheWidthThatItHasThen()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        box->setInformativeText(QStringLiteral("more"));
        Spacers(*box).constFirst()->setFixedSize(260, 0);
        TurnEventLoop();
        VerifyHeld(*box, 260);
    }

    void widthThatIsSetWhileTheNewGridIsWaitingIsHeld()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        box->setInformativeText(QStringLiteral("more"));
        box->SetWidth(410);
        VerifyHeld(*box, 410);
        TurnEventLoop();
        VerifyHeld(*box, 410);
    }

    void removedWidthDoesNotComeBackWithTheNewGrid()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        box->SetWidth(-1);
        box->setInformativeText(QStringLiteral("more"));
        TurnEventLoop();
        VerifyNotHeld(*box);
        box->setInformativeText(QString());
        TurnEventLoop();
        VerifyNotHeld(*box);
    }

    void widthThatIsRemovedWhileTheNewGridIsWaitingDoesNotComeBack()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        box->setInformativeText(QStringLiteral("more"));
        box->SetWidth(-1);
        TurnEventLoop();
        TurnEventLoop();
        VerifyNotHeld(*box);
    }

    void gridIsWatchedOnceAsLongAsAWidthIsHeld()
    {
        auto const box = CreateBox();
        QLayout const& grid = *box->layout();
        int const before = ConnectionsToTheEndOf(grid);
        box->SetWidth(200);
        QCOMPARE(ConnectionsToTheEndOf(grid), before + 1);
        box->SetWidth(210);
        QCOMPARE(ConnectionsToTheEndOf(grid), before + 1);
        box->SetWidth(-1);
        QCOMPARE(ConnectionsToTheEndOf(grid), before);
    }

    void spacerThatSomebodyDestroysIsForgotten()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        delete Spacers(*box).constFirst();
        QCOMPARE(box->GetWidth(), -1);
        box->setInformativeText(QStringLiteral("more"));
        TurnEventLoop();
        VerifyNotHeld(*box);
        box->SetWidth(150);
        VerifyHeld(*box, 150);
    }

    void otherLayoutsAreLeftAlone()
    {
        auto const box = CreateBox();
        delete box->layout();
        auto* const column = new QVBoxLayout(box.get());
        box->SetWidth(200);
        VerifyNotHeld(*box);
        QCOMPARE(column->count(), 0);
    }

    void missingLayoutIsLeftAlone()
    {
        auto const box = CreateBox();
        delete box->layout();
        box->SetWidth(200);
        VerifyNotHeld(*box);
    }

    void spacerStaysOutOfAnotherLayoutThatReplacesTheGrid()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        delete box->layout();
        auto* const column = new QVBoxLayout(box.get());
        TurnEventLoop();
        QCOMPARE(column->count(), 0);
        box->SetWidth(250);
        QCOMPARE(box->GetWidth(), 200);
        box->SetWidth(-1);
        TurnEventLoop();
        VerifyNotHeld(*box);
    }

    void shownBoxIsAsWideAtLeast()
    {
        auto const box = CreateBox();
        box->SetWidth(Wide);
        box->Show(false);
        QTRY_VERIFY(box->width() >= Wide);
    }

    void shownBoxFollowsTheWidth()
    {
        auto const box = CreateBox();
        box->Show(false);
        QVERIFY(box->width() < Wide);
        box->SetWidth(Wide);
        QTRY_VERIFY(box->width() >= Wide);
        box->setIconPixmap(CreateIcon());
        TurnEventLoop();
        QTRY_VERIFY(box->width() >= Wide);
        VerifyHeld(*box, Wide);
        box->SetWidth(-1);
        QTRY_VERIFY(box->width() < Wide);
    }

    void spacerTakesNoHeight()
    {
        auto const plain = CreateBox();
        auto const held = CreateBox();
        held->SetWidth(1);
        plain->Show(false);
        held->Show(false);
        QCOMPARE(held->height(), plain->height());
    }

    void boxMayEndWhileTheNewGridIsWaiting()
    {
        auto box = CreateBox();
        box->SetWidth(200);
        box->setInformativeText(QStringLiteral("more"));
        QPointer<QWidget> const spacer(Spacers(*box).constFirst());
        box.reset();
        QVERIFY(spacer.isNull());
        TurnEventLoop();
    }
};

ZQTUTIL_WIDGET_TEST_MAIN(AlertBoxWidthTest)
#include "AlertBoxWidthTest.moc"

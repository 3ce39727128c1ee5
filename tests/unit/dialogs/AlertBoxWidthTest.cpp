#include <support/TestCase.h>

#include <Util/AlertBox.h>

#include <QtTest/QtTest>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QVBoxLayout>

#include <memory>

using Zelkor::Util::AlertBox;

namespace
{

/// A width in pixels that is larger than the natural width of every box in these tests.
constexpr int LargeWidth = 777;

/// Delivers posted events and deferred deletions.
void ProcessEvents()
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

/// Checks that \a box has exactly one spacer, and that the spacer is \a width pixels wide. The spacer must span all
/// columns of the last row of the grid layout, and this row must also contain other items.
void VerifyWidthIsSet(AlertBox const& box, int width)
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
    QVERIFY(othersInRow > 0);
}

/// Returns the number of connections to the signal destroyed() of \a object.
int DestroyedConnections(QObject const& object)
{
    class Access : public QObject
    {
    public:
        static int Count(QObject const& any) { return (any.*(&Access::receivers))(SIGNAL(destroyed(QObject*))); }
    };
    return Access::Count(object);
}

void VerifyNoWidthIsSet(AlertBox const& box)
{
    QCOMPARE(box.GetWidth(), -1);
    QVERIFY(Spacers(box).isEmpty());
}

} // namespace

class AlertBoxWidthTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void hasNoInitialWidth()
    {
        VerifyNoWidthIsSet(AlertBox());
        VerifyNoWidthIsSet(*CreateBox());
    }

    void addsASpacerOfTheWidth_data()
    {
        QTest::addColumn<int>("width");
        QTest::newRow("zero") << 0;
        QTest::newRow("one pixel") << 1;
        QTest::newRow("typical width") << 240;
        QTest::newRow("large width") << 1234;
    }

    void addsASpacerOfTheWidth()
    {
        QFETCH(int, width);
        auto const box = CreateBox();
        box->SetWidth(width);
        VerifyWidthIsSet(*box, width);
    }

    void defaultConstructedBoxAcceptsAWidth()
    {
        AlertBox box;
        box.SetWidth(222);
        VerifyWidthIsSet(box, 222);
    }

    void aQuestionWithoutTitleHasAWidth()
    {
        AlertBox const box(AlertBox::Question, QString(), QStringLiteral("text"), QMessageBox::Yes);
        VerifyWidthIsSet(box, 300);
    }

    void theSpacerIsAPlainChildWidgetOfTheBox()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        QWidget const* const spacer = Spacers(*box).constFirst();
        QCOMPARE(spacer->metaObject(), &QWidget::staticMetaObject);
        QCOMPARE(spacer->parentWidget(), box.get());
    }

    void aNewWidthReplacesTheOldOne()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        QWidget const* const spacer = Spacers(*box).constFirst();
        box->SetWidth(450);
        VerifyWidthIsSet(*box, 450);
        QCOMPARE(Spacers(*box).constFirst(), spacer);
        box->SetWidth(120);
        VerifyWidthIsSet(*box, 120);
    }

    void aNegativeWidthRemovesTheSpacerInTheEventLoop()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        QPointer<QWidget> const spacer(Spacers(*box).constFirst());
        box->SetWidth(-1);
        QVERIFY(!spacer.isNull());
        QCOMPARE(spacer->maximumSize(), QSize(0, 0));
        QCOMPARE(spacer->minimumSize(), QSize(0, 0));
        QCOMPARE(box->GetWidth(), 0);
        ProcessEvents();
        QVERIFY(spacer.isNull());
        VerifyNoWidthIsSet(*box);
    }

    void anyNegativeWidthRemovesTheSpacer()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        box->SetWidth(-300);
        ProcessEvents();
        VerifyNoWidthIsSet(*box);
    }

    void aNegativeWidthWithoutSpacerHasNoEffect()
    {
        auto const box = CreateBox();
        box->SetWidth(-1);
        VerifyNoWidthIsSet(*box);
        ProcessEvents();
        VerifyNoWidthIsSet(*box);
        box->SetWidth(210);
        ProcessEvents();
        VerifyWidthIsSet(*box, 210);
    }

    void aNegativeWidthCanBeSetTwice()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        box->SetWidth(-1);
        box->SetWidth(-1);
        ProcessEvents();
        VerifyNoWidthIsSet(*box);
    }

    void setsAWidthDirectlyAfterANegativeOne()
    {
        auto const box = CreateBox();
        box->SetWidth(100);
        box->SetWidth(-1);
        box->SetWidth(200);
        QCOMPARE(box->GetWidth(), 200);
        ProcessEvents();
        VerifyWidthIsSet(*box, 200);
        box->setInformativeText(QStringLiteral("more"));
        ProcessEvents();
        VerifyWidthIsSet(*box, 200);
    }

    void setsAWidthAfterTheSpacerWasRemoved()
    {
        auto const box = CreateBox();
        box->SetWidth(100);
        box->SetWidth(-1);
        ProcessEvents();
        box->SetWidth(200);
        ProcessEvents();
        VerifyWidthIsSet(*box, 200);
    }

    void keepsTheWidthAfterANewText()
    {
        auto const box = CreateBox();
        box->SetWidth(321);
        box->setText(QStringLiteral("a longer text"));
        QCOMPARE(box->GetWidth(), 321);
        ProcessEvents();
        VerifyWidthIsSet(*box, 321);
    }

    void keepsTheWidthAfterAnInformativeText()
    {
        auto const box = CreateBox();
        box->SetWidth(321);
        box->setInformativeText(QStringLiteral("more"));
        QCOMPARE(box->GetWidth(), 321);
        ProcessEvents();
        VerifyWidthIsSet(*box, 321);
    }

    void keepsTheWidthAfterALearnMoreLink()
    {
        auto const box = CreateBox();
        box->SetWidth(321);
        box->SetLearnMoreLink(QStringLiteral("<a href=\"x\">x</a>"));
        QCOMPARE(box->GetWidth(), 321);
        ProcessEvents();
        VerifyWidthIsSet(*box, 321);
    }

    void keepsTheWidthAfterADetailedText()
    {
        auto const box = CreateBox();
        box->SetWidth(321);
        box->setDetailedText(QStringLiteral("details"));
        QCOMPARE(box->GetWidth(), 321);
        ProcessEvents();
        VerifyWidthIsSet(*box, 321);
    }

    void keepsTheWidthAfterAPixmap()
    {
        auto const box = CreateBox();
        box->SetWidth(321);
        box->setIconPixmap(CreateIcon());
        QCOMPARE(box->GetWidth(), 321);
        ProcessEvents();
        VerifyWidthIsSet(*box, 321);
    }

    void keepsTheWidthAfterAStandardIcon()
    {
        auto const box = CreateBox();
        box->SetWidth(321);
        box->setIcon(QMessageBox::Warning);
        QCOMPARE(box->GetWidth(), 321);
        ProcessEvents();
        VerifyWidthIsSet(*box, 321);
    }

    void keepsTheWidthAfterAnAddedButton()
    {
        auto const box = CreateBox();
        box->SetWidth(321);
        box->addButton(QStringLiteral("more"), QMessageBox::ActionRole);
        QCOMPARE(box->GetWidth(), 321);
        ProcessEvents();
        VerifyWidthIsSet(*box, 321);
    }

    void keepsTheWidthAfterACheckBox()
    {
        auto const box = CreateBox();
        box->SetWidth(321);
        box->setCheckBox(new QCheckBox);
        QCOMPARE(box->GetWidth(), 321);
        ProcessEvents();
        VerifyWidthIsSet(*box, 321);
    }

    void keepsTheWidthAfterTwoChangesAtOnce()
    {
        auto const box = CreateBox();
        box->SetWidth(321);
        box->setInformativeText(QStringLiteral("more"));
        box->setIconPixmap(CreateIcon());
        QCOMPARE(box->GetWidth(), 321);
        ProcessEvents();
        VerifyWidthIsSet(*box, 321);
    }

    void keepsTheWidthAfterTwoSuccessiveChanges()
    {
        auto const box = CreateBox();
        box->SetWidth(321);
        box->setInformativeText(QStringLiteral("more"));
        ProcessEvents();
        box->setInformativeText(QString());
        QCOMPARE(box->GetWidth(), 321);
        ProcessEvents();
        VerifyWidthIsSet(*box, 321);
    }

    void keepsTheWidthAfterPrepareToShow()
    {
        auto const box = CreateBox();
        box->SetWidth(321);
        box->PrepareToShow();
        QCOMPARE(box->GetWidth(), 321);
        ProcessEvents();
        VerifyWidthIsSet(*box, 321);
    }

    void movesTheSpacerToANewGridInTheEventLoop()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        QPointer<QLayout> const grid(box->layout());
        box->setInformativeText(QStringLiteral("more"));
        QVERIFY(grid.isNull());
        QVERIFY(box->layout()->indexOf(Spacers(*box).constFirst()) < 0);
        ProcessEvents();
        VerifyWidthIsSet(*box, 200);
    }

    void usesTheCurrentWidthOfTheSpacerForANewGrid()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        box->setInformativeText(QStringLiteral("more"));
        Spacers(*box).constFirst()->setFixedSize(260, 0);
        ProcessEvents();
        VerifyWidthIsSet(*box, 260);
    }

    void setsAWidthWhileTheMoveToANewGridIsPending()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        box->setInformativeText(QStringLiteral("more"));
        box->SetWidth(410);
        VerifyWidthIsSet(*box, 410);
        ProcessEvents();
        VerifyWidthIsSet(*box, 410);
    }

    void doesNotRestoreARemovedWidthInANewGrid()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        box->SetWidth(-1);
        box->setInformativeText(QStringLiteral("more"));
        ProcessEvents();
        VerifyNoWidthIsSet(*box);
        box->setInformativeText(QString());
        ProcessEvents();
        VerifyNoWidthIsSet(*box);
    }

    void removesTheWidthWhileTheMoveToANewGridIsPending()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        box->setInformativeText(QStringLiteral("more"));
        box->SetWidth(-1);
        ProcessEvents();
        ProcessEvents();
        VerifyNoWidthIsSet(*box);
    }

    void connectsToTheGridOnceWhileAWidthIsSet()
    {
        auto const box = CreateBox();
        QLayout const& grid = *box->layout();
        int const before = DestroyedConnections(grid);
        box->SetWidth(200);
        QCOMPARE(DestroyedConnections(grid), before + 1);
        box->SetWidth(210);
        QCOMPARE(DestroyedConnections(grid), before + 1);
        box->SetWidth(-1);
        QCOMPARE(DestroyedConnections(grid), before);
    }

    void recoversFromADestroyedSpacer()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        delete Spacers(*box).constFirst();
        QCOMPARE(box->GetWidth(), -1);
        box->setInformativeText(QStringLiteral("more"));
        ProcessEvents();
        VerifyNoWidthIsSet(*box);
        box->SetWidth(150);
        VerifyWidthIsSet(*box, 150);
    }

    void ignoresTheWidthForAnotherLayout()
    {
        auto const box = CreateBox();
        delete box->layout();
        auto* const column = new QVBoxLayout(box.get());
        box->SetWidth(200);
        VerifyNoWidthIsSet(*box);
        QCOMPARE(column->count(), 0);
    }

    void ignoresTheWidthWithoutLayout()
    {
        auto const box = CreateBox();
        delete box->layout();
        box->SetWidth(200);
        VerifyNoWidthIsSet(*box);
    }

    void doesNotMoveTheSpacerToAnotherKindOfLayout()
    {
        auto const box = CreateBox();
        box->SetWidth(200);
        delete box->layout();
        auto* const column = new QVBoxLayout(box.get());
        ProcessEvents();
        QCOMPARE(column->count(), 0);
        box->SetWidth(250);
        QCOMPARE(box->GetWidth(), 200);
        box->SetWidth(-1);
        ProcessEvents();
        VerifyNoWidthIsSet(*box);
    }

    void aShownBoxHasAtLeastTheWidth()
    {
        auto const box = CreateBox();
        box->SetWidth(LargeWidth);
        box->Show(false);
        QTRY_VERIFY(box->width() >= LargeWidth);
    }

    void aShownBoxAdaptsToANewWidth()
    {
        auto const box = CreateBox();
        box->Show(false);
        QVERIFY(box->width() < LargeWidth);
        box->SetWidth(LargeWidth);
        QTRY_VERIFY(box->width() >= LargeWidth);
        box->setIconPixmap(CreateIcon());
        ProcessEvents();
        QTRY_VERIFY(box->width() >= LargeWidth);
        VerifyWidthIsSet(*box, LargeWidth);
        box->SetWidth(-1);
        QTRY_VERIFY(box->width() < LargeWidth);
    }

    void theSpacerHasNoHeight()
    {
        auto const plain = CreateBox();
        auto const widened = CreateBox();
        widened->SetWidth(1);
        plain->Show(false);
        widened->Show(false);
        QCOMPARE(widened->height(), plain->height());
    }

    void theBoxCanBeDestroyedWhileTheMoveToANewGridIsPending()
    {
        auto box = CreateBox();
        box->SetWidth(200);
        box->setInformativeText(QStringLiteral("more"));
        QPointer<QWidget> const spacer(Spacers(*box).constFirst());
        box.reset();
        QVERIFY(spacer.isNull());
        ProcessEvents();
    }
};

ZQTUTIL_WIDGET_TEST_MAIN(AlertBoxWidthTest)
#include "AlertBoxWidthTest.moc"

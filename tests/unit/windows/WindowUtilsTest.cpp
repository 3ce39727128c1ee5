#include <support/TestCase.h>
#include <support/displays/Screens.h>

#include <Util/WindowUtils.h>

#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtGui/QScreen>
#include <QtTest/QtTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>

#include <functional>
#include <memory>

using Zelkor::Testing::Screens;
using Zelkor::Util::ExecDialogInCenterWindow;
using Zelkor::Util::GetCurrentScreenRect;
using Zelkor::Util::GetWidgetPosOnCurrentScreenCenter;

namespace
{

QRect Primary()
{
    return QGuiApplication::primaryScreen()->geometry();
}

QPoint MiddleOf(QRect const& rect)
{
    return {(rect.left() + rect.right()) / 2, (rect.top() + rect.bottom()) / 2};
}

/// What is placed by its centre pixel, which an odd size has.
QRect Around(QPoint centre)
{
    QRect rect(0, 0, 101, 101);
    rect.moveCenter(centre);
    return rect;
}

/// Of a fixed size; calls back when it is shown modally.
class Dialog : public QDialog
{
public:
    using QDialog::QDialog;

    std::function<void()> onExec = [this] { done(7); };

    int exec() override
    {
        placed = QRect(pos(), size());
        QTimer::singleShot(0, this, [this] { onExec(); });
        return QDialog::exec();
    }

    QRect placed;
};

} // namespace

class WindowUtilsTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void aScreenWithoutWidgetIsThePrimaryOne() { QCOMPARE(GetCurrentScreenRect(nullptr), Primary()); }

    void findsTheScreenOfTheCentre_data()
    {
        QTest::addColumn<QRect>("geometry");
        QTest::addColumn<QRect>("screen");
        QTest::newRow("inside") << QRect(Primary().topLeft() + QPoint(10, 10), QSize(100, 100)) << Primary();
        QTest::newRow("outside all screens") << QRect(100000, 100000, 100, 100) << Primary();
        QTest::newRow("half outside") << QRect(Primary().topLeft() - QPoint(49, 49), QSize(100, 100)) << Primary();
        for (QRect const& screen : Screens()) {
            int const number = Screens().indexOf(screen);
            QTest::addRow("middle of screen %d", number) << Around(screen.center()) << screen;
            QTest::addRow("first pixel of screen %d", number) << Around(screen.topLeft()) << screen;
            QTest::addRow("last pixel of screen %d", number) << Around(screen.bottomRight()) << screen;
        }
    }

    void findsTheScreenOfTheCentre()
    {
        QFETCH(QRect, geometry);
        QFETCH(QRect, screen);
        QWidget window;
        window.setGeometry(geometry);
        QCOMPARE(GetCurrentScreenRect(&window), screen);
    }

    void findsTheScreenOfAShownWindow_data() { Zelkor::Testing::AddScreens(); }

    void findsTheScreenOfAShownWindow()
    {
        QFETCH(QRect, screen);
        QWidget window;
        window.setGeometry(Around(screen.center()));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QCOMPARE(GetCurrentScreenRect(&window), screen);
        for (QRect const& next : Screens()) {
            window.move(next.center());
            QTRY_COMPARE(GetCurrentScreenRect(&window), next);
        }
    }

    void locatesAChildByItsGlobalPosition_data()
    {
        QTest::addColumn<QRect>("screenOfTheWindow");
        QTest::addColumn<QRect>("screen");
        for (QRect const& screenOfTheWindow : Screens()) {
            for (QRect const& screen : Screens()) {
                QTest::addRow("on screen %d, its window on screen %d", Screens().indexOf(screen),
                              Screens().indexOf(screenOfTheWindow))
                    << screenOfTheWindow << screen;
            }
        }
    }

    void locatesAChildByItsGlobalPosition()
    {
        QFETCH(QRect, screenOfTheWindow);
        QFETCH(QRect, screen);
        QWidget window;
        window.setGeometry(QRect(screenOfTheWindow.topLeft() + QPoint(20, 20), QSize(200, 200)));
        QWidget child(&window);
        child.setGeometry(QRect(window.mapFromGlobal(screen.topLeft()), QSize(10, 10)));
        QCOMPARE(GetCurrentScreenRect(&child), screen);
    }

    void centresOnThePrimaryScreenWithoutParent()
    {
        QWidget window;
        window.resize(101, 51);
        QCOMPARE(GetWidgetPosOnCurrentScreenCenter(window), CentredIn(Primary(), window));
    }

    void centresOnTheScreenOfTheParent_data() { Zelkor::Testing::AddScreens(); }

    void centresOnTheScreenOfTheParent()
    {
        QFETCH(QRect, screen);
        QWidget parent;
        parent.setGeometry(Around(screen.bottomRight()));
        QWidget window(&parent, Qt::Window);
        window.setGeometry(QRect(Primary().topLeft(), QSize(101, 51)));
        QCOMPARE(GetWidgetPosOnCurrentScreenCenter(window), CentredIn(screen, window));
        window.setGeometry(QRect(Primary().topLeft(), QSize(100, 50)));
        QCOMPARE(GetWidgetPosOnCurrentScreenCenter(window), CentredIn(screen, window));
    }

    void centresAShownWindowWithItsFrame_data() { Zelkor::Testing::AddScreens(); }

    void centresAShownWindowWithItsFrame()
    {
        QFETCH(QRect, screen);
        QWidget parent;
        parent.setGeometry(Around(screen.center()));
        QWidget window(&parent, Qt::Window);
        window.resize(301, 201);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        window.move(GetWidgetPosOnCurrentScreenCenter(window));
        QTRY_COMPARE(window.pos(), CentredIn(screen, window));
        QCOMPARE(GetCurrentScreenRect(&window), screen);
    }

    void showsNothingWithoutDialog()
    {
        QWidget parent;
        QCOMPARE(ExecDialogInCenterWindow(nullptr, &parent), 0);
        QVERIFY(!parent.isVisible());
    }

    void centresTheDialog_data()
    {
        QTest::addColumn<QString>("around");
        QTest::addColumn<QRect>("screen");
        for (QRect const& screen : Screens()) {
            auto const addRow = [&screen](char const* name, char const* around) {
                QTest::addRow("%s, screen %d", name, Screens().indexOf(screen))
                    << QString::fromLatin1(around) << screen;
            };
            addRow("the parent given", "given");
            addRow("the window of the child given", "child");
            addRow("its own parent", "own");
            addRow("the screen", "screen");
        }
        QTest::newRow("the screen, before it is anywhere") << QStringLiteral("nowhere") << Primary();
    }

    void centresTheDialog()
    {
        QFETCH(QString, around);
        QFETCH(QRect, screen);
        QWidget window;
        window.setGeometry(QRect(screen.topLeft() + QPoint(150, 120), QSize(401, 301)));
        QWidget child(&window);
        child.setGeometry(0, 0, 50, 50);
        Dialog dialog(around == QLatin1String("own") ? &child : nullptr);
        dialog.setFixedSize(121, 81);
        if (around == QLatin1String("screen")) {
            dialog.move(screen.topLeft() + QPoint(1, 1));
        }

        QWidget* const parent = around == QLatin1String("given")   ? &window
                                : around == QLatin1String("child") ? &child
                                                                   : nullptr;
        bool const hasWindow = parent || dialog.parent();
        QPoint const middle = MiddleOf(hasWindow ? window.geometry() : screen);
        QCOMPARE(ExecDialogInCenterWindow(&dialog, parent), 7);
        QCOMPARE(dialog.placed, QRect(middle - QPoint(61, 41), QSize(121, 81)));
    }

    void centresTheDialogAroundAPixelThatIsRoundedTowardZero_data()
    {
        QTest::addColumn<QRect>("window");
        QTest::addColumn<QPoint>("middle");
        QTest::newRow("before zero") << QRect(-500, -300, 400, 200) << QPoint(-300, -200); // -300.5, -200.5
        QTest::newRow("across zero") << QRect(-300, -200, 400, 300) << QPoint(-100, -50);  // -100.5, -50.5
        QTest::newRow("after zero") << QRect(300, 200, 400, 300) << QPoint(499, 349);      // 499.5, 349.5
    }

    void centresTheDialogAroundAPixelThatIsRoundedTowardZero()
    {
        QFETCH(QRect, window);
        QFETCH(QPoint, middle);
        QWidget parent;
        parent.setGeometry(window);
        Dialog dialog;
        dialog.setFixedSize(120, 80);
        QCOMPARE(ExecDialogInCenterWindow(&dialog, &parent), 7);
        QCOMPARE(dialog.placed, QRect(middle - QPoint(60, 40), QSize(120, 80)));
    }

    void theDialogStaysWhereItIsPlaced_data() { Zelkor::Testing::AddScreens(); }

    void theDialogStaysWhereItIsPlaced()
    {
        QFETCH(QRect, screen);
        QWidget window;
        window.setGeometry(QRect(screen.topLeft() + QPoint(150, 120), QSize(401, 301)));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        Dialog dialog(&window);
        dialog.setFixedSize(121, 81);
        QPoint settled;
        dialog.onExec = [&dialog, &settled] {
            // Active: the window manager is done with it.
            if (QTest::qWaitForWindowActive(&dialog)) {
                settled = dialog.pos();
            }
            dialog.done(7);
        };
        QPoint const middle = MiddleOf(window.geometry());
        QCOMPARE(ExecDialogInCenterWindow(&dialog, nullptr), 7);
        QCOMPARE(settled, middle - QPoint(61, 41));
    }

    void passesTheResultOn()
    {
        Dialog dialog;
        dialog.onExec = [&dialog] { dialog.reject(); };
        QCOMPARE(ExecDialogInCenterWindow(&dialog, nullptr), int(QDialog::Rejected));
        dialog.onExec = [&dialog] { dialog.accept(); };
        QCOMPARE(ExecDialogInCenterWindow(&dialog, nullptr), int(QDialog::Accepted));
    }

    void aDialogMayEndBeforeItRuns()
    {
        QPointer<Dialog> const dialog = new Dialog;
        QTimer::singleShot(0, dialog.data(), [ending = dialog.data()] { delete ending; });
        QCOMPARE(ExecDialogInCenterWindow(dialog, nullptr), 0);
        QVERIFY(!dialog);
    }

    void aDialogMayEndWhileItRuns()
    {
        auto parent = std::make_unique<QWidget>();
        QPointer<Dialog> const dialog = new Dialog(parent.get());
        dialog->onExec = [&parent] { parent.reset(); };
        QCOMPARE(ExecDialogInCenterWindow(dialog, nullptr), 0);
        QVERIFY(!dialog);
    }

private:
    static QPoint CentredIn(QRect const& screen, QWidget const& window)
    {
        QSize const frame = window.frameGeometry().size();
        return MiddleOf(screen) - QPoint(frame.width() / 2, frame.height() / 2);
    }
};

ZQTUTIL_WIDGET_TEST_MAIN(WindowUtilsTest)

#include "WindowUtilsTest.moc"

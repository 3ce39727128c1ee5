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

using Zelkor::Testing::AddScreenRows;
using Zelkor::Testing::ScreenGeometries;
using Zelkor::Util::ExecDialogInCenterWindow;
using Zelkor::Util::GetCurrentScreenRect;
using Zelkor::Util::GetWidgetPosOnCurrentScreenCenter;

namespace
{

QRect PrimaryScreen()
{
    return QGuiApplication::primaryScreen()->geometry();
}

QPoint MiddleOf(QRect const& rect)
{
    return {(rect.left() + rect.right()) / 2, (rect.top() + rect.bottom()) / 2};
}

/// Returns a rectangle whose middle pixel is \a centre.
QRect Around(QPoint centre)
{
    return {centre - QPoint(50, 50), QSize(101, 101)};
}

constexpr QSize DialogSize(121, 81);

/// Returns the expected geometry of a dialog that has the size DialogSize and is centred on \a middle. Half of the
/// width and half of the height are rounded up: to 61 and 41 pixels.
QRect DialogGeometry(QPoint middle)
{
    return {middle - QPoint(61, 41), DialogSize};
}

/// A dialog that records its geometry when exec() is called, and then runs a callback in its event loop.
class Dialog : public QDialog
{
public:
    using QDialog::QDialog;

    std::function<void()> onExec = [this] { done(7); };

    int exec() override
    {
        geometryOnExec = QRect(pos(), size());
        QTimer::singleShot(0, this, [this] { onExec(); });
        return QDialog::exec();
    }

    QRect geometryOnExec;
};

} // namespace

class WindowUtilsTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void returnsThePrimaryScreenForNull() { QCOMPARE(GetCurrentScreenRect(nullptr), PrimaryScreen()); }

    void returnsTheScreenOfTheCentre_data()
    {
        QTest::addColumn<QRect>("geometry");
        QTest::addColumn<QRect>("screen");
        QTest::newRow("inside the primary screen")
            << QRect(PrimaryScreen().topLeft() + QPoint(10, 10), QSize(100, 100)) << PrimaryScreen();
        QTest::newRow("outside all screens") << QRect(100000, 100000, 100, 100) << PrimaryScreen();
        QTest::newRow("half outside all screens")
            << QRect(PrimaryScreen().topLeft() - QPoint(49, 49), QSize(100, 100)) << PrimaryScreen();
        for (QRect const& screen : ScreenGeometries()) {
            int const number = ScreenGeometries().indexOf(screen);
            QTest::addRow("middle of screen %d", number) << Around(screen.center()) << screen;
            QTest::addRow("first pixel of screen %d", number) << Around(screen.topLeft()) << screen;
            QTest::addRow("last pixel of screen %d", number) << Around(screen.bottomRight()) << screen;
        }
    }

    void returnsTheScreenOfTheCentre()
    {
        QFETCH(QRect, geometry);
        QFETCH(QRect, screen);
        QWidget window;
        window.setGeometry(geometry);
        QCOMPARE(GetCurrentScreenRect(&window), screen);
    }

    void returnsTheScreenOfAShownWindow_data() { AddScreenRows(); }

    void returnsTheScreenOfAShownWindow()
    {
        QFETCH(QRect, screen);
        QWidget window;
        window.setGeometry(Around(screen.center()));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QCOMPARE(GetCurrentScreenRect(&window), screen);
        for (QRect const& next : ScreenGeometries()) {
            window.move(next.center());
            QTRY_COMPARE(GetCurrentScreenRect(&window), next);
        }
    }

    void returnsTheScreenOfAChildByItsGlobalPosition_data()
    {
        QTest::addColumn<QRect>("windowScreen");
        QTest::addColumn<QRect>("screen");
        for (QRect const& windowScreen : ScreenGeometries()) {
            for (QRect const& screen : ScreenGeometries()) {
                QTest::addRow("child on screen %d, window on screen %d", ScreenGeometries().indexOf(screen),
                              ScreenGeometries().indexOf(windowScreen))
                    << windowScreen << screen;
            }
        }
    }

    void returnsTheScreenOfAChildByItsGlobalPosition()
    {
        QFETCH(QRect, windowScreen);
        QFETCH(QRect, screen);
        QWidget window;
        window.setGeometry(QRect(windowScreen.topLeft() + QPoint(20, 20), QSize(200, 200)));
        QWidget child(&window);
        child.setGeometry(QRect(window.mapFromGlobal(screen.topLeft()), QSize(10, 10)));
        QCOMPARE(GetCurrentScreenRect(&child), screen);
    }

    void centresOnThePrimaryScreenWithoutParent()
    {
        QWidget window;
        window.resize(101, 51);
        QCOMPARE(GetWidgetPosOnCurrentScreenCenter(window), CentredPosition(PrimaryScreen(), window));
    }

    void centresOnTheScreenOfTheParent_data() { AddScreenRows(); }

    void centresOnTheScreenOfTheParent()
    {
        QFETCH(QRect, screen);
        QWidget parent;
        parent.setGeometry(Around(screen.bottomRight()));
        QWidget window(&parent, Qt::Window);
        window.setGeometry(QRect(PrimaryScreen().topLeft(), QSize(101, 51)));
        QCOMPARE(GetWidgetPosOnCurrentScreenCenter(window), CentredPosition(screen, window));
        window.setGeometry(QRect(PrimaryScreen().topLeft(), QSize(100, 50)));
        QCOMPARE(GetWidgetPosOnCurrentScreenCenter(window), CentredPosition(screen, window));
    }

    void centresAShownWindowWithItsFrame_data() { AddScreenRows(); }

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
        QTRY_COMPARE(window.pos(), CentredPosition(screen, window));
        QCOMPARE(GetCurrentScreenRect(&window), screen);
    }

    void returnsZeroForANullDialog()
    {
        QWidget parent;
        QCOMPARE(ExecDialogInCenterWindow(nullptr, &parent), 0);
        QVERIFY(!parent.isVisible());
    }

    void centresTheDialogOnTheGivenParent_data() { AddScreenRows(); }

    void centresTheDialogOnTheGivenParent()
    {
        QFETCH(QRect, screen);
        QWidget window;
        window.setGeometry(QRect(screen.topLeft() + QPoint(150, 120), QSize(401, 301)));
        Dialog dialog;
        dialog.setFixedSize(DialogSize);
        QCOMPARE(ExecDialogInCenterWindow(&dialog, &window), 7);
        QCOMPARE(dialog.geometryOnExec, DialogGeometry(MiddleOf(window.geometry())));
    }

    void centresTheDialogOnTheWindowOfAGivenChild_data() { AddScreenRows(); }

    void centresTheDialogOnTheWindowOfAGivenChild()
    {
        QFETCH(QRect, screen);
        QWidget window;
        window.setGeometry(QRect(screen.topLeft() + QPoint(150, 120), QSize(401, 301)));
        QWidget child(&window);
        child.setGeometry(0, 0, 50, 50);
        Dialog dialog;
        dialog.setFixedSize(DialogSize);
        QCOMPARE(ExecDialogInCenterWindow(&dialog, &child), 7);
        QCOMPARE(dialog.geometryOnExec, DialogGeometry(MiddleOf(window.geometry())));
    }

    void centresTheDialogOnTheWindowOfItsParent_data() { AddScreenRows(); }

    void centresTheDialogOnTheWindowOfItsParent()
    {
        QFETCH(QRect, screen);
        QWidget window;
        window.setGeometry(QRect(screen.topLeft() + QPoint(150, 120), QSize(401, 301)));
        QWidget child(&window);
        child.setGeometry(0, 0, 50, 50);
        Dialog dialog(&child);
        dialog.setFixedSize(DialogSize);
        QCOMPARE(ExecDialogInCenterWindow(&dialog, nullptr), 7);
        QCOMPARE(dialog.geometryOnExec, DialogGeometry(MiddleOf(window.geometry())));
    }

    void centresTheDialogOnItsScreenWithoutParent_data() { AddScreenRows(); }

    void centresTheDialogOnItsScreenWithoutParent()
    {
        QFETCH(QRect, screen);
        Dialog dialog;
        dialog.setFixedSize(DialogSize);
        dialog.move(screen.topLeft() + QPoint(1, 1));
        QCOMPARE(ExecDialogInCenterWindow(&dialog, nullptr), 7);
        QCOMPARE(dialog.geometryOnExec, DialogGeometry(MiddleOf(screen)));
    }

    void centresADialogWithoutPositionOnThePrimaryScreen()
    {
        Dialog dialog;
        dialog.setFixedSize(DialogSize);
        QCOMPARE(ExecDialogInCenterWindow(&dialog, nullptr), 7);
        QCOMPARE(dialog.geometryOnExec, DialogGeometry(MiddleOf(PrimaryScreen())));
    }

    void roundsTheCentreTowardZero_data()
    {
        QTest::addColumn<QRect>("window");
        QTest::addColumn<QPoint>("middle");
        // The exact centres of the windows in the three rows are (-300.5, -200.5), (-100.5, -50.5) and (499.5, 349.5).
        QTest::newRow("negative coordinates") << QRect(-500, -300, 400, 200) << QPoint(-300, -200);
        QTest::newRow("negative centre across zero") << QRect(-300, -200, 400, 300) << QPoint(-100, -50);
        QTest::newRow("positive coordinates") << QRect(300, 200, 400, 300) << QPoint(499, 349);
    }

    void roundsTheCentreTowardZero()
    {
        QFETCH(QRect, window);
        QFETCH(QPoint, middle);
        QWidget parent;
        parent.setGeometry(window);
        Dialog dialog;
        dialog.setFixedSize(120, 80);
        QCOMPARE(ExecDialogInCenterWindow(&dialog, &parent), 7);
        QCOMPARE(dialog.geometryOnExec, QRect(middle - QPoint(60, 40), QSize(120, 80)));
    }

    void keepsTheDialogAtItsPosition_data() { AddScreenRows(); }

    void keepsTheDialogAtItsPosition()
    {
        QFETCH(QRect, screen);
        QWidget window;
        window.setGeometry(QRect(screen.topLeft() + QPoint(150, 120), QSize(401, 301)));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        Dialog dialog(&window);
        dialog.setFixedSize(DialogSize);
        QPoint finalPosition;
        dialog.onExec = [&dialog, &finalPosition] {
            // The window manager places the dialog first and activates it afterwards. The position of an active dialog
            // is therefore final.
            if (QTest::qWaitForWindowActive(&dialog)) {
                finalPosition = dialog.pos();
            }
            dialog.done(7);
        };
        QPoint const middle = MiddleOf(window.geometry());
        QCOMPARE(ExecDialogInCenterWindow(&dialog, nullptr), 7);
        QCOMPARE(finalPosition, DialogGeometry(middle).topLeft());
    }

    void returnsTheResultOfTheDialog()
    {
        Dialog dialog;
        dialog.onExec = [&dialog] { dialog.reject(); };
        QCOMPARE(ExecDialogInCenterWindow(&dialog, nullptr), int(QDialog::Rejected));
        dialog.onExec = [&dialog] { dialog.accept(); };
        QCOMPARE(ExecDialogInCenterWindow(&dialog, nullptr), int(QDialog::Accepted));
    }

    void returnsZeroIfTheDialogIsDestroyedBeforeExec()
    {
        QPointer<Dialog> const dialog = new Dialog;
        QTimer::singleShot(0, dialog.data(), [pointer = dialog.data()] { delete pointer; });
        QCOMPARE(ExecDialogInCenterWindow(dialog, nullptr), 0);
        QVERIFY(!dialog);
    }

    void returnsZeroIfTheDialogIsDestroyedDuringExec()
    {
        auto parent = std::make_unique<QWidget>();
        QPointer<Dialog> const dialog = new Dialog(parent.get());
        dialog->onExec = [&parent] { parent.reset(); };
        QCOMPARE(ExecDialogInCenterWindow(dialog, nullptr), 0);
        QVERIFY(!dialog);
    }

private:
    /// Returns the position at which \a window, including its window frame, is centred in \a screen.
    static QPoint CentredPosition(QRect const& screen, QWidget const& window)
    {
        QSize const frame = window.frameGeometry().size();
        return MiddleOf(screen) - QPoint(frame.width() / 2, frame.height() / 2);
    }
};

ZQTUTIL_WIDGET_TEST_MAIN(WindowUtilsTest)

#include "WindowUtilsTest.moc"

#include <support/TestCase.h>
#include <support/displays/Screens.h>

#include <Util/GlobalCoordinates.h>

#include <QtTest/QtTest>
#include <QtWidgets/QWidget>

using Zelkor::Util::GetGlobalWidgetRect;
using Zelkor::Util::GetWidgetRect;

class GlobalCoordinatesTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void returnsTheGlobalRectangleOfAWindow()
    {
        QWidget window;
        window.setGeometry(100, 150, 320, 240);
        QCOMPARE(GetGlobalWidgetRect(&window), QRect(window.mapToGlobal(QPoint(0, 0)), QSize(320, 240)));
    }

    void returnsTheGlobalRectangleOfAChild()
    {
        QWidget window;
        window.setGeometry(100, 150, 320, 240);
        QWidget child(&window);
        child.setGeometry(10, 20, 30, 40);
        QCOMPARE(GetGlobalWidgetRect(&child), QRect(window.mapToGlobal(QPoint(10, 20)), QSize(30, 40)));
    }

    void mapsGlobalRectanglesBackToWidgets()
    {
        QWidget window;
        window.setGeometry(100, 150, 320, 240);
        QWidget child(&window);
        child.setGeometry(10, 20, 30, 40);
        QCOMPARE(GetWidgetRect(&child, GetGlobalWidgetRect(&child)), QRect(0, 0, 30, 40));
        QCOMPARE(GetWidgetRect(&window, GetGlobalWidgetRect(&child)), QRect(10, 20, 30, 40));
    }

    void returnsTheRectanglesOfAShownWindow_data() { Zelkor::Testing::AddScreenRows(); }

    void returnsTheRectanglesOfAShownWindow()
    {
        QFETCH(QRect, screen);
        QWidget window;
        window.setGeometry(QRect(screen.topLeft() + QPoint(100, 150), QSize(320, 240)));
        QWidget child(&window);
        child.setGeometry(10, 20, 30, 40);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        // The global rectangle does not include the window frame.
        QCOMPARE(GetGlobalWidgetRect(&window), window.geometry());
        QCOMPARE(GetGlobalWidgetRect(&child), child.geometry().translated(window.geometry().topLeft()));
        QVERIFY(screen.contains(GetGlobalWidgetRect(&child)));

        window.move(screen.center());
        QTRY_COMPARE(window.pos(), screen.center());
        QCOMPARE(GetGlobalWidgetRect(&window), window.geometry());
        QCOMPARE(GetWidgetRect(&window, GetGlobalWidgetRect(&child)), child.geometry());
    }

    void mapsAnyRectangle_data()
    {
        QTest::addColumn<QRect>("rect");
        QTest::newRow("null") << QRect();
        QTest::newRow("one pixel") << QRect(0, 0, 1, 1);
        QTest::newRow("outside the widget") << QRect(-500, -400, 100, 50);
    }

    void mapsAnyRectangle()
    {
        QFETCH(QRect, rect);
        QWidget window;
        window.setGeometry(100, 150, 320, 240);
        QPoint const origin = window.mapToGlobal(QPoint(0, 0));
        QCOMPARE(GetWidgetRect(&window, rect), rect.translated(-origin));
    }

    void returnsANullRectangleForANullWidget()
    {
        QCOMPARE(GetGlobalWidgetRect(nullptr), QRect());
        QCOMPARE(GetWidgetRect(nullptr, QRect(1, 2, 3, 4)), QRect());
    }
};

ZQTUTIL_WIDGET_TEST_MAIN(GlobalCoordinatesTest)

#include "GlobalCoordinatesTest.moc"

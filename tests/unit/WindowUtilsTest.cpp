#include <TestCase.h>

#include <Util/WindowUtils.h>

#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtGui/QScreen>
#include <QtTest/QtTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>

#include <functional>
#include <memory>

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
        QTest::newRow("inside") << QRect(10, 10, 100, 100);
        QTest::newRow("outside all screens") << QRect(100000, 100000, 100, 100);
        QTest::newRow("half outside") << QRect(-49, -49, 100, 100);
    }

    void findsTheScreenOfTheCentre()
    {
        QFETCH(QRect, geometry);
        QWidget window;
        window.setGeometry(geometry);
        QCOMPARE(GetCurrentScreenRect(&window), Primary());
    }

    void locatesAChildByItsGlobalPosition()
    {
        QWidget window;
        window.setGeometry(20, 20, 200, 200);
        QWidget child(&window);
        child.setGeometry(0, 0, 10, 10);
        QCOMPARE(GetCurrentScreenRect(&child), Primary());
    }

    void centresOnTheScreenOfTheParent()
    {
        QWidget window;
        window.resize(101, 51);
        QPoint const middle = MiddleOf(Primary());
        QSize const frame = window.frameGeometry().size();
        QCOMPARE(GetWidgetPosOnCurrentScreenCenter(window), middle - QPoint(frame.width() / 2, frame.height() / 2));
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
        QTest::newRow("the parent given") << QStringLiteral("given");
        QTest::newRow("the window of the child given") << QStringLiteral("child");
        QTest::newRow("its own parent") << QStringLiteral("own");
        QTest::newRow("the screen") << QStringLiteral("screen");
    }

    void centresTheDialog()
    {
        QFETCH(QString, around);
        QWidget window;
        window.setGeometry(150, 120, 401, 301);
        QWidget child(&window);
        child.setGeometry(0, 0, 50, 50);
        Dialog dialog(around == QLatin1String("own") ? &child : nullptr);
        dialog.setFixedSize(121, 81);

        QWidget* const parent = around == QLatin1String("given")   ? &window
                                : around == QLatin1String("child") ? &child
                                                                   : nullptr;
        QPoint const middle = MiddleOf(around == QLatin1String("screen") ? Primary() : window.geometry());
        QCOMPARE(ExecDialogInCenterWindow(&dialog, parent), 7);
        QCOMPARE(dialog.placed, QRect(middle - QPoint(61, 41), QSize(121, 81)));
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
        QTimer::singleShot(0, dialog.data(), [dialog] { delete dialog.data(); });
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
};

ZQTUTIL_WIDGET_TEST_MAIN(WindowUtilsTest)

#include "WindowUtilsTest.moc"

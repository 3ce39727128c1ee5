#include <support/TestCase.h>

#include <Util/AlertBox.h>

#include <QtGui/QWindow>
#include <QtTest/QtTest>
#include <QtWidgets/QPushButton>

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

using Zelkor::Util::AlertBox;

Q_DECLARE_METATYPE(QMessageBox::StandardButton)

namespace
{

struct TestException
{};

/// Returns the alert box of the native window \a window, or null if the window belongs to another widget.
AlertBox* FindBox(QWindow const* window)
{
    auto const widgets = QApplication::topLevelWidgets();
    auto const found = std::find_if(widgets.begin(), widgets.end(),
                                    [window](QWidget* each) { return each->windowHandle() == window; });
    return found != widgets.end() ? qobject_cast<AlertBox*>(*found) : nullptr;
}

/// Waits until an alert box is visible on the screen, then runs an action in the event loop of the box. Closes the box
/// if the action does not close it, because an open box would block the test.
class WhenShown : public QObject
{
public:
    using Action = std::function<void(AlertBox& box)>;

    explicit WhenShown(Action action)
        : action_(std::move(action))
    {
        qApp->installEventFilter(this);
    }

    /// The alert box that has been shown. Null if no box has been shown yet, or if the box has been destroyed.
    QPointer<AlertBox> box;

    bool HasRun() const { return hasRun_; }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        auto* const window = qobject_cast<QWindow*>(watched);
        if (!wasShown_ && window && event->type() == QEvent::Expose && window->isExposed() && FindBox(window)) {
            wasShown_ = true;
            box = FindBox(window);
            QMetaObject::invokeMethod(
                this, [this] { Run(); }, Qt::QueuedConnection);
        }
        return false;
    }

private:
    void Run()
    {
        QVERIFY(box);
        hasRun_ = true;
        action_(*box);
        if (box && box->isVisible()) {
            box->done(-1);
        }
    }

    Action action_;
    bool wasShown_ = false;
    bool hasRun_ = false;
};

void Click(QAbstractButton* button)
{
    QVERIFY(button);
    QTest::mouseClick(button, Qt::LeftButton);
}

/// Throws a TestException when a widget of a visible alert box receives the focus, before the event loop of the box
/// starts. A later exception would propagate through the event loop, which Qt does not support.
class ThrowsWhenFocused : public QObject
{
public:
    ThrowsWhenFocused() { qApp->installEventFilter(this); }

    /// The alert box that contains the widget with the focus. Null if this widget is not in an alert box.
    QPointer<AlertBox> box;

    bool HasThrown() const { return hasThrown_; }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::FocusIn && watched->isWidgetType()) {
            box = qobject_cast<AlertBox*>(static_cast<QWidget*>(watched)->window());
            if (box && box->isVisible()) {
                hasThrown_ = true;
                throw TestException();
            }
        }
        return false;
    }

private:
    bool hasThrown_ = false;
};

/// Returns an action that clicks the standard button \a button.
WhenShown::Action Clicks(QMessageBox::StandardButton button)
{
    return [button](AlertBox& box) { Click(box.button(button)); };
}

QString TextProperty(QAbstractButton const* button, char const* property)
{
    return button ? button->property(property).toString() : QStringLiteral("no button");
}

/// An alert box that overrides the virtual functions and records their calls.
class DerivedBox : public AlertBox
{
    Q_OBJECT

public:
    using AlertBox::AlertBox;
    using AlertBox::Exec;

    int dialogExecCalls = 0;      // number of calls of exec()
    int boxExecCalls = 0;         // number of calls of Exec()
    std::vector<bool> shownModal; // the argument of each call of Show()

    int exec() override
    {
        ++dialogExecCalls;
        return -7;
    }
    int Exec() override
    {
        ++boxExecCalls;
        return AlertBox::Exec();
    }
    void Show(bool modal) override
    {
        shownModal.push_back(modal);
        AlertBox::Show(modal);
    }
};

int ExecBox(QMessageBox::StandardButtons buttons, QWidget* parent = nullptr)
{
    return AlertBox::Exec(AlertBox::Question, QStringLiteral("title"), QStringLiteral("text"), buttons, parent);
}

} // namespace

class AlertBoxExecTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void returnsTheClickedButton_data()
    {
        QTest::addColumn<QMessageBox::StandardButton>("button");
        QTest::newRow("Ok") << QMessageBox::Ok;
        QTest::newRow("Cancel") << QMessageBox::Cancel;
        QTest::newRow("Yes") << QMessageBox::Yes;
        QTest::newRow("No") << QMessageBox::No;
        QTest::newRow("RestoreDefaults") << QMessageBox::RestoreDefaults;
    }

    void returnsTheClickedButton()
    {
        QFETCH(QMessageBox::StandardButton, button);
        constexpr auto Buttons =
            QMessageBox::Ok | QMessageBox::Cancel | QMessageBox::Yes | QMessageBox::No | QMessageBox::RestoreDefaults;
        WhenShown const first(Clicks(button));
        QCOMPARE(ExecBox(Buttons), static_cast<int>(button));

        AlertBox box(AlertBox::Question, QStringLiteral("title"), QStringLiteral("text"), Buttons);
        WhenShown const second(Clicks(button));
        QCOMPARE(box.Exec(), static_cast<int>(button));
        QCOMPARE(box.clickedButton(), box.button(button));
    }

    void returnsTheIndexOfACustomButton()
    {
        AlertBox box;
        box.addButton(QStringLiteral("first"), QMessageBox::ActionRole);
        QPushButton* const second = box.addButton(QStringLiteral("second"), QMessageBox::ActionRole);
        WhenShown const shown([second](AlertBox& /*box*/) { Click(second); });
        QCOMPARE(box.Exec(), 1);
        QCOMPARE(box.clickedButton(), second);
    }

    void escapeKeyReturnsTheRejectButton()
    {
        WhenShown const shown([](AlertBox& box) { QTest::keyClick(&box, Qt::Key_Escape); });
        QCOMPARE(ExecBox(QMessageBox::Ok | QMessageBox::Cancel), static_cast<int>(QMessageBox::Cancel));
    }

    void addsAnOkButtonIfThereAreNoButtons()
    {
        WhenShown const shown(Clicks(QMessageBox::Ok));
        QCOMPARE(AlertBox::Exec(AlertBox::Information, QString(), QStringLiteral("text")),
                 static_cast<int>(QMessageBox::Ok));
        QVERIFY(shown.HasRun());
    }

    void staticExecPassesItsArgumentsToTheBox()
    {
        QWidget parent;
        WhenShown const shown([&parent](AlertBox& box) {
            QCOMPARE(box.windowTitle(), QStringLiteral("Error"));
            QCOMPARE(box.text(), QStringLiteral("the text"));
            QCOMPARE(box.standardButtons(), QMessageBox::Ok | QMessageBox::Cancel);
            QCOMPARE(box.parentWidget(), &parent);
            QVERIFY(box.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
            QCOMPARE(box.property("Level").toString(), QStringLiteral("Error"));
            QCOMPARE(box.metaObject(), &AlertBox::staticMetaObject);
            Click(box.button(QMessageBox::Ok));
        });
        QCOMPARE(AlertBox::Exec(AlertBox::Error, QString(), QStringLiteral("the text"),
                                QMessageBox::Ok | QMessageBox::Cancel, &parent, Qt::Dialog | Qt::WindowStaysOnTopHint),
                 static_cast<int>(QMessageBox::Ok));
        QVERIFY(shown.box.isNull());
    }

    void staticExecShowsAModalBoxWithButtonProperties()
    {
        WhenShown const shown([](AlertBox& box) {
            QVERIFY(box.isModal());
            QCOMPARE(QApplication::activeModalWidget(), &box);
            QAbstractButton* const yes = box.button(QMessageBox::Yes);
            QCOMPARE(TextProperty(yes, "SubStyle"), QStringLiteral("Yes"));
            QCOMPARE(TextProperty(yes, "styleHint"), QStringLiteral("activeButton"));
            QCOMPARE(TextProperty(yes, "buttonRole"), QStringLiteral("Yes"));
            QCOMPARE(yes->objectName(), QStringLiteral("buttonYes"));
            Click(yes);
        });
        QCOMPARE(ExecBox(QMessageBox::Yes | QMessageBox::No), static_cast<int>(QMessageBox::Yes));
    }

    void staticExecDestroysTheBox()
    {
        WhenShown const shown(Clicks(QMessageBox::Yes));
        QWidget parent;
        QCOMPARE(ExecBox(QMessageBox::Yes, &parent), static_cast<int>(QMessageBox::Yes));
        QVERIFY(shown.HasRun());
        QVERIFY(shown.box.isNull());
        QVERIFY(parent.children().isEmpty());
    }

    void staticExecReturnsZeroIfTheParentIsDestroyed()
    {
        auto* const parent = new QWidget;
        WhenShown const shown([parent](AlertBox& /*box*/) { delete parent; });
        QCOMPARE(ExecBox(QMessageBox::Ok, parent), 0);
        QVERIFY(shown.HasRun());
        QVERIFY(shown.box.isNull());
    }

    void staticExecReturnsZeroIfTheBoxIsDestroyed()
    {
        WhenShown const shown([](AlertBox& box) { delete &box; });
        QCOMPARE(ExecBox(QMessageBox::Ok), 0);
        QVERIFY(shown.HasRun());
    }

    void staticExecDestroysTheBoxIfAnExceptionIsThrown()
    {
        QWidget parent;
        ThrowsWhenFocused const thrower;
        // If Exec() does not throw as expected, this object closes the box so that the test does not hang.
        WhenShown const shown([](AlertBox& /*box*/) {});
        QVERIFY_EXCEPTION_THROWN(ExecBox(QMessageBox::Ok, &parent), TestException);
        QVERIFY(thrower.HasThrown());
        QVERIFY(thrower.box.isNull());
        QVERIFY(parent.children().isEmpty());
        QCOMPARE(QApplication::activeModalWidget(), nullptr);
    }

    void execReturnsZeroIfTheParentIsDestroyed()
    {
        auto* const parent = new QWidget;
        auto* const box = new AlertBox(AlertBox::Error, QString(), QStringLiteral("text"), QMessageBox::Ok, parent);
        WhenShown const shown([parent](AlertBox& /*box*/) { delete parent; });
        QCOMPARE(box->Exec(), 0);
        QVERIFY(shown.HasRun());
        QVERIFY(shown.box.isNull());
    }

    void execPreparesTheBox()
    {
        AlertBox box;
        QPushButton* const ok = box.addButton(QMessageBox::Ok);
        WhenShown const shown([&box, ok](AlertBox& shownBox) {
            QCOMPARE(&shownBox, &box);
            QVERIFY(box.isModal());
            QCOMPARE(TextProperty(ok, "SubStyle"), QStringLiteral("Ok"));
            Click(ok);
        });
        QCOMPARE(box.Exec(), static_cast<int>(QMessageBox::Ok));
        QVERIFY(shown.HasRun());
        QVERIFY(!box.isVisible());
    }

    void execCanBeCalledAgain()
    {
        AlertBox box(AlertBox::Question, QString(), QStringLiteral("text"), QMessageBox::Yes | QMessageBox::No);
        {
            WhenShown const shown(Clicks(QMessageBox::Yes));
            QCOMPARE(box.Exec(), static_cast<int>(QMessageBox::Yes));
        }
        QPushButton const* const later = box.addButton(QStringLiteral("later"), QMessageBox::RejectRole);
        WhenShown const shown(Clicks(QMessageBox::No));
        QCOMPARE(box.Exec(), static_cast<int>(QMessageBox::No));
        QCOMPARE(TextProperty(later, "SubStyle"), QStringLiteral("Cancel"));
    }

    void execIsVirtualAndDoesNotCallTheOverriddenDialogExec()
    {
        DerivedBox box(AlertBox::Question, QString(), QStringLiteral("text"), QMessageBox::Yes);
        AlertBox& base = box;
        WhenShown const shown(Clicks(QMessageBox::Yes));
        QCOMPARE(base.Exec(), static_cast<int>(QMessageBox::Yes));
        QCOMPARE(box.boxExecCalls, 1);
        QCOMPARE(box.dialogExecCalls, 0);
    }

    void showIsVirtual()
    {
        DerivedBox box(AlertBox::Question, QString(), QStringLiteral("text"), QMessageBox::Yes);
        AlertBox& base = box;
        base.Show(true);
        base.Show(false);
        QCOMPARE(box.shownModal, (std::vector<bool>{true, false}));
    }

    void showDoesNotBlock_data()
    {
        QTest::addColumn<bool>("modal");
        QTest::newRow("modal") << true;
        QTest::newRow("not modal") << false;
    }

    void showDoesNotBlock()
    {
        QFETCH(bool, modal);
        AlertBox box(AlertBox::Question, QString(), QStringLiteral("text"), QMessageBox::Yes | QMessageBox::Cancel);
        box.Show(modal);
        QVERIFY(box.isVisible());
        QCOMPARE(box.isModal(), modal);
        QCOMPARE(TextProperty(box.button(QMessageBox::Cancel), "styleHint"), QStringLiteral("rejectButton"));
        Click(box.button(QMessageBox::Yes));
        QVERIFY(!box.isVisible());
        QCOMPARE(box.result(), static_cast<int>(QMessageBox::Yes));
    }

    void showReplacesTheModality()
    {
        AlertBox box(AlertBox::Question, QString(), QStringLiteral("text"), QMessageBox::Yes);
        box.setModal(true);
        box.Show(false);
        QVERIFY(!box.isModal());
        box.hide();
        box.Show(true);
        QVERIFY(box.isModal());
    }

    void aShownBoxCanBeDestroyed()
    {
        auto box = std::make_unique<AlertBox>(AlertBox::Question, QString(), QStringLiteral("text"), QMessageBox::Yes);
        box->Show(true);
        QCOMPARE(QApplication::activeModalWidget(), box.get());
        box.reset();
        QCOMPARE(QApplication::activeModalWidget(), nullptr);
    }

    void aShownBoxCanBeDestroyedWithItsParent()
    {
        auto parent = std::make_unique<QWidget>();
        QPointer<AlertBox> const box(
            new AlertBox(AlertBox::Question, QString(), QStringLiteral("text"), QMessageBox::Yes, parent.get()));
        box->Show(true);
        parent.reset();
        QVERIFY(box.isNull());
    }
};

ZQTUTIL_WIDGET_TEST_MAIN(AlertBoxExecTest)
#include "AlertBoxExecTest.moc"

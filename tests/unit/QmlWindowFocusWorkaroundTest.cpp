#include <TestCase.h>

#include <Util/QmlWindowFocusWorkaround.h>

#include <QtTest/QtTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>

#include <memory>
#include <type_traits>

using Zelkor::Util::ApplyQmlWindowFocusWorkaround;
using Zelkor::Util::findQmlContainer;
using Zelkor::Util::QmlWindowFocusWorkaround;

static_assert(std::is_base_of_v<QObject, QmlWindowFocusWorkaround>);
static_assert(!std::is_copy_constructible_v<QmlWindowFocusWorkaround>);

class QmlWindowFocusWorkaroundTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void findsNoContainerWithoutNativeWindow()
    {
        QCOMPARE(findQmlContainer(nullptr), nullptr);
        QCOMPARE(findQmlContainer(window_.get()), nullptr);
    }

    void findsTheWidgetItself()
    {
        container_->setAttribute(Qt::WA_NativeWindow);
        QCOMPARE(findQmlContainer(container_), container_);
    }

    void findsTheFirstOneBelow()
    {
        auto* const deep = new QWidget(outer_);
        deep->setAttribute(Qt::WA_NativeWindow);
        container_->setAttribute(Qt::WA_NativeWindow);
        outer_->setAttribute(Qt::WA_NativeWindow, false); // Qt makes those around a native widget native too
        window_->setAttribute(Qt::WA_NativeWindow, false);
        QCOMPARE(findQmlContainer(window_.get()), deep);
        QCOMPARE(findQmlContainer(outer_), deep);
    }

    void isAppliedToWindowsWithAContainerOnly()
    {
        ApplyQmlWindowFocusWorkaround(nullptr, container_);
        ApplyQmlWindowFocusWorkaround(window_.get(), nullptr);
        ApplyQmlWindowFocusWorkaround(window_.get(), container_);
        QCOMPARE(Workarounds(window_.get()), 0);

        container_->setAttribute(Qt::WA_NativeWindow);
        ApplyQmlWindowFocusWorkaround(outer_, container_); // no window
        QCOMPARE(Workarounds(outer_), 0);
        QCOMPARE(container_->focusPolicy(), Qt::NoFocus);

        ApplyQmlWindowFocusWorkaround(window_.get(), container_);
        QCOMPARE(Workarounds(window_.get()), 1);
        QCOMPARE(container_->focusPolicy(), Qt::StrongFocus);
        ApplyQmlWindowFocusWorkaround(window_.get(), container_);
        QCOMPARE(Workarounds(window_.get()), 2);
    }

    void handsTheFocusOverWhenTheWindowIsActivated()
    {
        Show();
        container_->setFocusPolicy(Qt::StrongFocus);
        new QmlWindowFocusWorkaround(window_.get(), container_);
        edit_->setFocus();
        QVERIFY(!SendActivationChange());
        QVERIFY(container_->hasFocus());
    }

    void handsTheFocusOverEachTimeTheWindowComesBack_data()
    {
        QTest::addColumn<bool>("native");
        QTest::newRow("to a plain widget") << false;
        QTest::newRow("to one with a native window") << true;
    }

    void handsTheFocusOverEachTimeTheWindowComesBack()
    {
        QFETCH(bool, native);
        container_->setAttribute(Qt::WA_NativeWindow, native);
        container_->setGeometry(50, 50, 100, 100);
        Show();
        container_->setFocusPolicy(Qt::StrongFocus);
        new QmlWindowFocusWorkaround(window_.get(), container_);
        QWidget other;
        for (int i = 0; i < 2; ++i) {
            edit_->setFocus();
            QVERIFY(edit_->hasFocus());
            other.show();
            other.activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&other));
            QVERIFY(!container_->hasFocus());
            window_->activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(window_.get()));
            QTRY_VERIFY(container_->hasFocus());
        }
    }

    void leavesOtherEventsAlone()
    {
        Show();
        container_->setFocusPolicy(Qt::StrongFocus);
        new QmlWindowFocusWorkaround(window_.get(), container_);
        edit_->setFocus();
        QEvent event(QEvent::FontChange);
        QCoreApplication::sendEvent(window_.get(), &event);
        QVERIFY(event.isAccepted());
        QVERIFY(edit_->hasFocus());
    }

    void doesNothingForAHiddenWindow()
    {
        container_->setFocusPolicy(Qt::StrongFocus);
        new QmlWindowFocusWorkaround(window_.get(), container_);
        QVERIFY(SendActivationChange());
    }

    void doesNothingWhenTheTargetIsGone()
    {
        Show();
        new QmlWindowFocusWorkaround(window_.get(), container_);
        edit_->setFocus();
        delete container_;
        QVERIFY(SendActivationChange());
        QVERIFY(edit_->hasFocus());
    }

    void swallowsNothing()
    {
        Show();
        QmlWindowFocusWorkaround workaround(window_.get(), container_);
        QEvent event(QEvent::ActivationChange);
        QVERIFY(!workaround.eventFilter(window_.get(), &event));
        QCOMPARE(workaround.parent(), window_.get());
    }

protected:
    void SetUp() override
    {
        window_ = std::make_unique<QWidget>();
        window_->resize(200, 200);
        outer_ = new QWidget(window_.get());
        edit_ = new QLineEdit(window_.get());
        container_ = new QWidget(window_.get());
        container_->setAttribute(Qt::WA_DontCreateNativeAncestors);
    }

    void TearDown() override { window_.reset(); }

private:
    void Show()
    {
        window_->show();
        window_->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window_.get()));
    }

    /// Whether the event was left accepted.
    bool SendActivationChange()
    {
        QEvent event(QEvent::ActivationChange);
        QCoreApplication::sendEvent(window_.get(), &event);
        return event.isAccepted();
    }

    static int Workarounds(QWidget const* window)
    {
        int count = 0;
        for (QObject* const child : window->children()) {
            count += dynamic_cast<QmlWindowFocusWorkaround*>(child) ? 1 : 0;
        }
        return count;
    }

    std::unique_ptr<QWidget> window_;
    QWidget* outer_ = nullptr;
    QLineEdit* edit_ = nullptr;
    QWidget* container_ = nullptr;
};

ZQTUTIL_WIDGET_TEST_MAIN(QmlWindowFocusWorkaroundTest)

#include "QmlWindowFocusWorkaroundTest.moc"

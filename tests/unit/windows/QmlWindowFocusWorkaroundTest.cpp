#include <support/TestCase.h>

#include <Util/QmlWindowFocusWorkaround.h>

#include <QtCore/QPointer>
#include <QtGui/QFocusEvent>
#include <QtGui/QWindow>
#include <QtTest/QtTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>

#include <memory>
#include <type_traits>
#include <vector>

using Zelkor::Util::ApplyQmlWindowFocusWorkaround;
using Zelkor::Util::findQmlContainer;
using Zelkor::Util::QmlWindowFocusWorkaround;

static_assert(std::is_base_of_v<QObject, QmlWindowFocusWorkaround>);
static_assert(!std::is_copy_constructible_v<QmlWindowFocusWorkaround>);

namespace
{

/// Records the reasons of the focus-in events of a widget.
class FocusReasons : public QObject
{
public:
    explicit FocusReasons(QWidget* widget) { widget->installEventFilter(this); }

    std::vector<Qt::FocusReason> recorded;

    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() == QEvent::FocusIn) {
            recorded.push_back(static_cast<QFocusEvent*>(event)->reason());
        }
        return false;
    }
};

/// Event filter that destroys a widget when the widget is raised.
class DestroysWhenRaised : public QObject
{
public:
    explicit DestroysWhenRaised(QWidget* widget) { widget->installEventFilter(this); }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::ZOrderChange) {
            return false;
        }
        delete watched;
        return true;
    }
};

} // namespace

class QmlWindowFocusWorkaroundTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void returnsNoContainerWithoutNativeWindow()
    {
        QCOMPARE(findQmlContainer(nullptr), nullptr);
        QCOMPARE(findQmlContainer(window_.get()), nullptr);
    }

    void returnsANativeWidgetItself()
    {
        container_->setAttribute(Qt::WA_NativeWindow);
        QCOMPARE(findQmlContainer(container_), container_);
    }

    void returnsTheFirstNativeDescendant()
    {
        auto* const deep = new QWidget(outer_);
        deep->setAttribute(Qt::WA_NativeWindow);
        container_->setAttribute(Qt::WA_NativeWindow);
        // Qt also makes all ancestors of a native widget native. Undo this for the ancestors, because `deep` must be
        // the first native widget.
        outer_->setAttribute(Qt::WA_NativeWindow, false);
        window_->setAttribute(Qt::WA_NativeWindow, false);
        QCOMPARE(findQmlContainer(window_.get()), deep);
        QCOMPARE(findQmlContainer(outer_), deep);
    }

    void appliesOnlyToWindowsWithAContainer()
    {
        ApplyQmlWindowFocusWorkaround(nullptr, container_);
        ApplyQmlWindowFocusWorkaround(window_.get(), nullptr);
        ApplyQmlWindowFocusWorkaround(window_.get(), container_);
        QCOMPARE(CountWorkarounds(window_.get()), 0);

        container_->setAttribute(Qt::WA_NativeWindow);
        ApplyQmlWindowFocusWorkaround(outer_, container_); // has no effect: outer_ is not a window
        QCOMPARE(CountWorkarounds(outer_), 0);
        QCOMPARE(container_->focusPolicy(), Qt::NoFocus);

        ApplyQmlWindowFocusWorkaround(window_.get(), container_);
        QCOMPARE(CountWorkarounds(window_.get()), 1);
        QCOMPARE(container_->focusPolicy(), Qt::StrongFocus);
        ApplyQmlWindowFocusWorkaround(window_.get(), container_);
        QCOMPARE(CountWorkarounds(window_.get()), 2);
    }

    void focusesTheTargetWhenTheWindowIsActivated()
    {
        Show();
        container_->setFocusPolicy(Qt::StrongFocus);
        new QmlWindowFocusWorkaround(window_.get(), container_);
        edit_->setFocus();
        QVERIFY(!SendActivationChange());
        QVERIFY(container_->hasFocus());
    }

    void focusesTheParentOfTheContainer()
    {
        container_->setParent(outer_);
        container_->setAttribute(Qt::WA_NativeWindow);
        Show();
        ApplyQmlWindowFocusWorkaround(window_.get(), outer_);
        QCOMPARE(container_->focusPolicy(), Qt::StrongFocus);
        QCOMPARE(outer_->focusPolicy(), Qt::NoFocus);
        edit_->setFocus();
        QVERIFY(!SendActivationChange());
        QVERIFY(outer_->hasFocus());
    }

    void raisesTheTarget()
    {
        Show();
        new QmlWindowFocusWorkaround(window_.get(), outer_);
        QVERIFY(!SendActivationChange());
        QCOMPARE(window_->children().constLast(), outer_);
    }

    void usesTheActiveWindowFocusReason()
    {
        Show();
        new QmlWindowFocusWorkaround(window_.get(), container_);
        edit_->setFocus();
        FocusReasons const reasons(container_);
        QVERIFY(!SendActivationChange());
        QCOMPARE(reasons.recorded, std::vector<Qt::FocusReason>{Qt::ActiveWindowFocusReason});
    }

    void focusesTheTargetAtEachActivation_data()
    {
        QTest::addColumn<bool>("native");
        QTest::newRow("widget without native window") << false;
        QTest::newRow("widget with native window") << true;
    }

    void focusesTheTargetAtEachActivation()
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

    void ignoresOtherEvents()
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

    void ignoresAHiddenWindow()
    {
        container_->setFocusPolicy(Qt::StrongFocus);
        new QmlWindowFocusWorkaround(window_.get(), container_);
        QVERIFY(SendActivationChange());
    }

    void ignoresAnInactiveWindow()
    {
        Show();
        edit_->setFocus();
        QWidget other;
        other.show();
        other.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&other));
        QVERIFY(window_->isVisible() && !window_->isActiveWindow());
        new QmlWindowFocusWorkaround(window_.get(), outer_);
        QVERIFY(SendActivationChange());
        QCOMPARE(window_->focusWidget(), edit_);
        QVERIFY(window_->children().indexOf(outer_) < window_->children().indexOf(edit_));
    }

    void theTargetCanBeDestroyedWhenItIsRaised()
    {
        Show();
        new QmlWindowFocusWorkaround(window_.get(), outer_);
        edit_->setFocus();
        DestroysWhenRaised const filter(outer_);
        QPointer<QWidget> const target(outer_);
        QVERIFY(!SendActivationChange());
        QVERIFY(!target);
        QVERIFY(edit_->hasFocus());
    }

    void theTargetCanBeDestroyedWhenItIsActivated()
    {
        // The target must be destroyed while activateWindow() runs. With the flag WindowDoesNotAcceptFocus,
        // activateWindow() logs a Qt warning. The message handler below receives this warning and destroys the target.
        static QPointer<QWidget> target;
        static QtMessageHandler previous = nullptr;
        target = container_;
        Show();
        edit_->setFocus();
        new QmlWindowFocusWorkaround(window_.get(), target);
        window_->windowHandle()->setFlag(Qt::WindowDoesNotAcceptFocus);
        ExpectQtWarning(QRegularExpression(QStringLiteral("^requestActivate\\(\\) called for ")));
        previous = qInstallMessageHandler([](QtMsgType type, QMessageLogContext const& context, QString const& text) {
            previous(type, context, text);
            delete target.data();
        });
        bool const accepted = SendActivationChange();
        qInstallMessageHandler(previous);
        QVERIFY(!accepted);
        QVERIFY(!target);
        QVERIFY(edit_->hasFocus());
    }

    void ignoresADestroyedTarget()
    {
        Show();
        new QmlWindowFocusWorkaround(window_.get(), container_);
        edit_->setFocus();
        delete container_;
        QVERIFY(SendActivationChange());
        QVERIFY(edit_->hasFocus());
    }

    void doesNotFilterEvents()
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

    /// Sends an ActivationChange event to the window. Returns true if the event is still accepted after its delivery.
    bool SendActivationChange()
    {
        QEvent event(QEvent::ActivationChange);
        QCoreApplication::sendEvent(window_.get(), &event);
        return event.isAccepted();
    }

    static int CountWorkarounds(QWidget const* window)
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

#include <support/TestCase.h>

#include <Util/SpontaneousDialog.h>

#include <QtTest/QtTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>

#include <memory>
#include <type_traits>

using Zelkor::Util::SpontaneousDialog;

static_assert(!std::is_default_constructible_v<SpontaneousDialog>);
static_assert(std::is_empty_v<SpontaneousDialog>);

class SpontaneousDialogTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void returnsNullWithoutWindows()
    {
        QCOMPARE(SpontaneousDialog::findParent(), nullptr);
        QCOMPARE(SpontaneousDialog::GetMainWindow(), nullptr);
    }

    void returnsTheMainWindow()
    {
        SpontaneousDialog::SetMainWindow(main_.get());
        QCOMPARE(SpontaneousDialog::findParent(), main_.get());
        QCOMPARE(SpontaneousDialog::GetMainWindow(), main_.get());
    }

    void prefersTheActiveWindow()
    {
        SpontaneousDialog::SetMainWindow(main_.get());
        Activate(active_.get());
        QCOMPARE(SpontaneousDialog::findParent(), active_.get());
        QCOMPARE(SpontaneousDialog::GetMainWindow(), main_.get());
    }

    void ignoresAnActiveWindowThatIsDeletedOnClose()
    {
        Activate(active_.get());
        active_->setAttribute(Qt::WA_DeleteOnClose);
        QCOMPARE(SpontaneousDialog::findParent(), active_.get());
        SpontaneousDialog::SetMainWindow(main_.get());
        QCOMPARE(SpontaneousDialog::findParent(), main_.get());
        active_->setAttribute(Qt::WA_DeleteOnClose, false);
    }

    void prefersTheModalWindow()
    {
        SpontaneousDialog::SetMainWindow(main_.get());
        Activate(active_.get());
        QDialog modal;
        modal.setModal(true);
        modal.show();
        QCOMPARE(QApplication::activeModalWidget(), &modal);
        QCOMPARE(SpontaneousDialog::findParent(), &modal);

        modal.setAttribute(Qt::WA_DeleteOnClose);
        QCOMPARE(SpontaneousDialog::findParent(), main_.get());
        modal.setAttribute(Qt::WA_DeleteOnClose, false);
    }

    void forgetsADestroyedMainWindow()
    {
        SpontaneousDialog::SetMainWindow(main_.get());
        Activate(active_.get());
        main_.reset();
        QCOMPARE(SpontaneousDialog::GetMainWindow(), active_.get());
    }

    void nullClearsTheMainWindow()
    {
        SpontaneousDialog::SetMainWindow(main_.get());
        SpontaneousDialog::SetMainWindow(nullptr);
        QCOMPARE(SpontaneousDialog::GetMainWindow(), nullptr);
    }

protected:
    void SetUp() override
    {
        main_ = std::make_unique<QWidget>();
        active_ = std::make_unique<QWidget>();
    }

    void TearDown() override
    {
        SpontaneousDialog::SetMainWindow(nullptr);
        main_.reset();
        active_.reset();
    }

private:
    static void Activate(QWidget* window)
    {
        window->show();
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window));
    }

    std::unique_ptr<QWidget> main_;
    std::unique_ptr<QWidget> active_;
};

ZQTUTIL_WIDGET_TEST_MAIN(SpontaneousDialogTest)

#include "SpontaneousDialogTest.moc"

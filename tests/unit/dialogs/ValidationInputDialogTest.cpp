#include <support/TestCase.h>
#include <support/displays/LayoutRequests.h>

#include <Util/SpontaneousDialog.h>
#include <Util/ValidationInputDialog.h>
#include <WidgetKit/Layouts.h>

#include <QtCore/QTimer>
#include <QtCore/QTranslator>
#include <QtTest/QtTest>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

#include <functional>
#include <memory>
#include <type_traits>

using Zelkor::Testing::RequestsLayoutForNewChild;
using Zelkor::Util::SpontaneousDialog;
using Zelkor::Util::ValidationInputDialog;
using Zelkor::Widget::MFrame;
using Zelkor::Widget::MVBoxLayout;

static_assert(std::is_base_of_v<QDialog, ValidationInputDialog>);
static_assert(!std::is_copy_constructible_v<ValidationInputDialog> && !std::is_final_v<ValidationInputDialog>);

namespace
{

/// Records each string that is looked up in the translation context "ValidationInputDialog".
class RecordingTranslator : public QTranslator
{
public:
    RecordingTranslator() { QCoreApplication::installTranslator(this); }
    ~RecordingTranslator() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }

    QString translate(char const* context, char const* source, char const* /*disambiguation*/, int /*n*/) const override
    {
        if (qstrcmp(context, "ValidationInputDialog") == 0) {
            sourceTexts_ += source;
        }
        return {};
    }

    QByteArrayList SourceTexts() const { return sourceTexts_; }

private:
    mutable QByteArrayList sourceTexts_;
};

/// Changes the text of a line edit when the line edit is hidden. Input methods do the same when they commit pending
/// text.
class TextChangeOnHide : public QObject
{
public:
    explicit TextChangeOnHide(QLineEdit* edit)
        : edit_(edit)
    {
        edit->installEventFilter(this);
    }

    bool hasChanged = false;

    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() == QEvent::Hide) {
            edit_->setText(QStringLiteral("late"));
            hasChanged = true;
        }
        return false;
    }

private:
    QLineEdit* edit_;
};

/// Returns the object names of the direct child widgets of \a parent in the order of their creation.
QStringList ChildNames(QWidget const* parent)
{
    QStringList names;
    auto const children = parent->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    for (QWidget const* const child : children) {
        names += child->objectName();
    }
    return names;
}

} // namespace

class ValidationInputDialogTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void declaresNoMethodsAndNoProperties()
    {
        QMetaObject const& meta = ValidationInputDialog::staticMetaObject;
        QCOMPARE(meta.className(), "Zelkor::Util::ValidationInputDialog");
        QCOMPARE(meta.methodCount(), meta.methodOffset());
        QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    }

    void containsNamedWidgets()
    {
        Open();
        auto* const frame = dialog_->findChild<MFrame*>(QStringLiteral("contentFrame"), Qt::FindDirectChildrenOnly);
        QVERIFY(frame);
        QVERIFY(dialog_->findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"), Qt::FindDirectChildrenOnly));
        QVERIFY(frame->findChild<QLabel*>(QStringLiteral("label"), Qt::FindDirectChildrenOnly));
        QVERIFY(frame->findChild<QLineEdit*>(QStringLiteral("lineEdit"), Qt::FindDirectChildrenOnly));
        QVERIFY(frame->findChild<QLabel*>(QStringLiteral("errorLabel"), Qt::FindDirectChildrenOnly));
    }

    void createsItsWidgetsFromTopToBottom()
    {
        Open();
        QCOMPARE(ChildNames(dialog_.get()), (QStringList{QStringLiteral("contentFrame"), QStringLiteral("buttonBox")}));
        QCOMPARE(ChildNames(dialog_->findChild<MFrame*>()),
                 (QStringList{QStringLiteral("label"), QStringLiteral("lineEdit"), QStringLiteral("errorLabel")}));
    }

    void installsALayoutController()
    {
        Open();
        QVERIFY(RequestsLayoutForNewChild(*dialog_));
        QVERIFY(!RequestsLayoutForNewChild(*dialog_->findChild<MFrame*>()));
    }

    void hasLayoutsWithoutMarginsAndSpacing()
    {
        Open();
        auto* const frame = dialog_->findChild<MFrame*>();
        for (QWidget* const widget : {static_cast<QWidget*>(dialog_.get()), static_cast<QWidget*>(frame)}) {
            auto* const layout = qobject_cast<MVBoxLayout*>(widget->layout());
            QVERIFY(layout);
            QCOMPARE(layout->contentsMargins(), QMargins());
            QCOMPARE(layout->spacing(), 0);
        }
        QCOMPARE(dialog_->layout()->count(), 2);
        QCOMPARE(dialog_->layout()->itemAt(0)->widget(), frame);
        QCOMPARE(dialog_->layout()->itemAt(1)->widget(), Buttons());
        QCOMPARE(frame->layout()->count(), 4);
        QCOMPARE(frame->layout()->itemAt(0)->widget(), Label());
        QCOMPARE(frame->layout()->itemAt(1)->widget(), Edit());
        QCOMPARE(frame->layout()->itemAt(2)->widget(), Error());
        QVERIFY(frame->layout()->itemAt(3)->spacerItem());
        QVERIFY(frame->layout()->itemAt(3)->expandingDirections() & Qt::Vertical);
    }

    void showsItsArguments()
    {
        Open(QStringLiteral("text"));
        QCOMPARE(dialog_->windowTitle(), QStringLiteral("Title"));
        QCOMPARE(Label()->text(), QStringLiteral("Label"));
        QVERIFY(Label()->wordWrap());
        QCOMPARE(Edit()->text(), QStringLiteral("text"));
        QCOMPARE(Buttons()->standardButtons(), QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
        QCOMPARE(Ok()->objectName(), QStringLiteral("okButton"));
        QCOMPARE(Ok()->property("styleHint").toString(), QStringLiteral("activeButton"));
        QCOMPARE(Buttons()->button(QDialogButtonBox::Cancel)->objectName(), QStringLiteral("cancelButton"));
        QVERIFY(!(dialog_->windowFlags() & Qt::WindowContextHelpButtonHint));
    }

    void translatesTheDefaultLabel()
    {
        RecordingTranslator const translator;
        Open();
        QCOMPARE(translator.SourceTexts().count("Input string:"), 1);
    }

    void doesNotCheckAnEmptyInitialText()
    {
        Open();
        QCOMPARE(firstCheckInputs_, QStringList());
        QCOMPARE(secondCheckInputs_, QStringList());
        QVERIFY(Ok()->isEnabled());
        QVERIFY(Error()->isHidden());
        QVERIFY(!Edit()->property("styleHint").isValid());
    }

    void checksAnInitialTextOnce()
    {
        Open(QStringLiteral(" a  b "));
        QCOMPARE(firstCheckInputs_, QStringList{QStringLiteral("a b")});
        QCOMPARE(secondCheckInputs_, QStringList{QStringLiteral("a b")});
    }

    void simplifiesTheInputForTheChecks()
    {
        Open();
        Edit()->setText(QStringLiteral("  a  b "));
        QCOMPARE(firstCheckInputs_, QStringList{QStringLiteral("a b")});
        QCOMPARE(secondCheckInputs_, QStringList{QStringLiteral("a b")});
        QCOMPARE(Edit()->text(), QStringLiteral("  a  b "));
    }

    void showsTheResultOfTheChecks_data()
    {
        QTest::addColumn<bool>("firstCheckPasses");
        QTest::addColumn<bool>("secondCheckPasses");
        QTest::addColumn<QStringList>("secondCheckInputs");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("hint");
        QTest::addColumn<bool>("showsError");

        // Each check appends its number to the displayed message. The message "12" therefore means that both checks
        // were called, and "1" means that only the first check was called.
        QTest::newRow("both checks pass") << true << true << QStringList{QStringLiteral("x")} << QStringLiteral("12")
                                          << QStringLiteral("normal") << false;
        QTest::newRow("second check fails") << true << false << QStringList{QStringLiteral("x")} << QStringLiteral("12")
                                            << QStringLiteral("error") << true;
        QTest::newRow("first check fails")
            << false << true << QStringList() << QStringLiteral("1") << QStringLiteral("error") << true;
    }

    void showsTheResultOfTheChecks()
    {
        QFETCH(bool, firstCheckPasses);
        QFETCH(bool, secondCheckPasses);
        QFETCH(QStringList, secondCheckInputs);
        QFETCH(QString, message);
        QFETCH(QString, hint);
        QFETCH(bool, showsError);
        firstCheckPasses_ = firstCheckPasses;
        secondCheckPasses_ = secondCheckPasses;
        Open();
        Edit()->setText(QStringLiteral("x"));
        QCOMPARE(firstCheckInputs_, QStringList{QStringLiteral("x")});
        QCOMPARE(secondCheckInputs_, secondCheckInputs);
        QCOMPARE(Ok()->isEnabled(), firstCheckPasses);
        QCOMPARE(Error()->text(), message);
        QCOMPARE(Error()->isHidden(), !showsError);
        QCOMPARE(Edit()->property("styleHint").toString(), hint);
    }

    void checksEveryChangeOfTheInput()
    {
        Open();
        firstCheckPasses_ = false;
        Edit()->setText(QStringLiteral("x"));
        QVERIFY(!Ok()->isEnabled());
        firstCheckPasses_ = true;
        Edit()->setText(QStringLiteral("y"));
        QVERIFY(Ok()->isEnabled());
        QVERIFY(Error()->isHidden());
        QCOMPARE(Edit()->property("styleHint").toString(), QStringLiteral("normal"));
    }

    void clearsTheMessageWhenTheInputPasses()
    {
        auto const isNotTaken = [](QString const& input, QString& message) {
            bool const taken = input == QLatin1String("x");
            message = taken ? QStringLiteral("taken") : QString();
            return !taken;
        };
        auto const pass = [](QString const& /*input*/, QString& /*message*/) { return true; };
        dialog_ = std::make_unique<ValidationInputDialog>(QString(), QString(), QStringLiteral("x"), pass, isNotTaken);
        QCOMPARE(Error()->text(), QStringLiteral("taken"));
        Edit()->setText(QStringLiteral("y"));
        QCOMPARE(Error()->text(), QString());
        dialog_ = std::make_unique<ValidationInputDialog>(QString(), QString(), QStringLiteral("x"), isNotTaken, pass);
        QCOMPARE(Error()->text(), QStringLiteral("taken"));
        Edit()->setText(QStringLiteral("y"));
        QCOMPARE(Error()->text(), QString());
    }

    void inputTextIsEmptyIfTheFirstCheckFails()
    {
        Open(QStringLiteral(" a  b "));
        QCOMPARE(dialog_->inputText(), QStringLiteral("a b"));
        secondCheckPasses_ = false;
        QCOMPARE(dialog_->inputText(), QStringLiteral("a b"));
        dialog_->accept();
        firstCheckPasses_ = false;
        QCOMPARE(dialog_->inputText(), QString());
    }

    void returnsTheResultOfItsButtons_data()
    {
        QTest::addColumn<int>("button");
        QTest::addColumn<int>("result");
        QTest::newRow("OK") << int(QDialogButtonBox::Ok) << int(QDialog::Accepted);
        QTest::newRow("Cancel") << int(QDialogButtonBox::Cancel) << int(QDialog::Rejected);
    }

    void returnsTheResultOfItsButtons()
    {
        QFETCH(int, button);
        QFETCH(int, result);
        Open(QStringLiteral("x"));
        auto* const clicked = Buttons()->button(QDialogButtonBox::StandardButton(button));
        QTimer::singleShot(0, clicked, [clicked] { clicked->click(); });
        QCOMPARE(dialog_->exec(), result);
    }

    void canBeDestroyedWhileItIsOpen()
    {
        Open();
        QTimer::singleShot(0, this, [this] { dialog_.reset(); });
        QCOMPARE(dialog_->exec(), int(QDialog::Rejected));
    }

    void doesNotCheckChangesDuringItsDestruction()
    {
        Open();
        dialog_->show();
        QVERIFY(QTest::qWaitForWindowExposed(dialog_.get()));
        TextChangeOnHide const textChange(Edit());
        dialog_.reset();
        QVERIFY(textChange.hasChanged);
        QCOMPARE(firstCheckInputs_, QStringList());
        QCOMPARE(secondCheckInputs_, QStringList());
    }

    void throwsForEmptyChecks()
    {
        ValidationInputDialog dialog(QString(), QString(), QString(), nullptr, nullptr);
        QVERIFY_EXCEPTION_THROWN(dialog.inputText(), std::bad_function_call);
        QVERIFY_EXCEPTION_THROWN(dialog.findChild<QLineEdit*>()->setText(QStringLiteral("x")), std::bad_function_call);
    }

    void throwsOnConstructionForTextAndAnEmptyFirstCheck()
    {
        auto const pass = [](QString const& /*input*/, QString& /*message*/) { return true; };
        QVERIFY_EXCEPTION_THROWN(
            ValidationInputDialog(QString(), QString(), QStringLiteral("x"), ValidationInputDialog::Check(), pass),
            std::bad_function_call);
    }

    void throwsForAnEmptySecondCheckOnlyIfTheFirstOnePasses()
    {
        auto const isLong = [](QString const& input, QString& /*message*/) { return input.size() > 1; };
        dialog_ = std::make_unique<ValidationInputDialog>(QString(), QString(), QStringLiteral("x"), isLong,
                                                          ValidationInputDialog::Check());
        QVERIFY(!Ok()->isEnabled());
        QCOMPARE(dialog_->inputText(), QString());
        QVERIFY_EXCEPTION_THROWN(Edit()->setText(QStringLiteral("xy")), std::bad_function_call);
        // The second check is an empty std::function, so calling it would throw. inputText() does not call it.
        QCOMPARE(dialog_->inputText(), QStringLiteral("xy"));
        QVERIFY_EXCEPTION_THROWN(
            ValidationInputDialog(QString(), QString(), QStringLiteral("xy"), isLong, ValidationInputDialog::Check()),
            std::bad_function_call);
    }

    void usesTheParentOfSpontaneousDialogs()
    {
        QWidget window;
        SpontaneousDialog::SetMainWindow(&window);
        Open();
        SpontaneousDialog::SetMainWindow(nullptr);
        QCOMPARE(dialog_->parentWidget(), &window);
        dialog_.reset();
    }

protected:
    void SetUp() override
    {
        firstCheckPasses_ = true;
        secondCheckPasses_ = true;
        firstCheckInputs_.clear();
        secondCheckInputs_.clear();
    }

    void TearDown() override { dialog_.reset(); }

private:
    void Open(QString const& text = QString())
    {
        dialog_ = std::make_unique<ValidationInputDialog>(
            QStringLiteral("Title"), QStringLiteral("Label"), text,
            [this](QString const& input, QString& message) {
                firstCheckInputs_ += input;
                message += QLatin1Char('1');
                return firstCheckPasses_;
            },
            [this](QString const& input, QString& message) {
                secondCheckInputs_ += input;
                message += QLatin1Char('2');
                return secondCheckPasses_;
            });
    }

    QLabel* Label() const { return dialog_->findChild<QLabel*>(QStringLiteral("label")); }
    QLabel* Error() const { return dialog_->findChild<QLabel*>(QStringLiteral("errorLabel")); }
    QLineEdit* Edit() const { return dialog_->findChild<QLineEdit*>(QStringLiteral("lineEdit")); }
    QDialogButtonBox* Buttons() const { return dialog_->findChild<QDialogButtonBox*>(); }
    QPushButton* Ok() const { return Buttons()->button(QDialogButtonBox::Ok); }

    bool firstCheckPasses_ = true;
    bool secondCheckPasses_ = true;
    QStringList firstCheckInputs_;
    QStringList secondCheckInputs_;
    std::unique_ptr<ValidationInputDialog> dialog_;
};

ZQTUTIL_WIDGET_TEST_MAIN(ValidationInputDialogTest)

#include "ValidationInputDialogTest.moc"

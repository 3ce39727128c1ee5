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

using Zelkor::Testing::FollowsItsChildren;
using Zelkor::Util::SpontaneousDialog;
using Zelkor::Util::ValidationInputDialog;
using Zelkor::Widget::MFrame;
using Zelkor::Widget::MVBoxLayout;

static_assert(std::is_base_of_v<QDialog, ValidationInputDialog>);
static_assert(!std::is_copy_constructible_v<ValidationInputDialog> && !std::is_final_v<ValidationInputDialog>);

namespace
{

/// Keeps what is asked for while it lives, each as "context: text".
class RecordingTranslator : public QTranslator
{
public:
    RecordingTranslator() { QCoreApplication::installTranslator(this); }
    ~RecordingTranslator() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }

    QString translate(char const* context, char const* source, char const* /*disambiguation*/, int /*n*/) const override
    {
        asked_ += QStringLiteral("%1: %2").arg(QString::fromUtf8(context), QString::fromUtf8(source));
        return {};
    }

    QStringList Asked() const { return asked_; }

private:
    mutable QStringList asked_;
};

/// Types into \a edit when it is hidden, as an input method does that commits what it has.
class LateTyping : public QObject
{
public:
    explicit LateTyping(QLineEdit* edit)
        : edit_(edit)
    {
        edit->installEventFilter(this);
    }

    bool hasTyped = false;

    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() == QEvent::Hide) {
            edit_->setText(QStringLiteral("late"));
            hasTyped = true;
        }
        return false;
    }

private:
    QLineEdit* edit_;
};

/// The names of the widgets right below \a parent, in the order of their creation.
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
    void hasItsNameAndNothingElseInItsMetaObject()
    {
        QMetaObject const& meta = ValidationInputDialog::staticMetaObject;
        QCOMPARE(meta.className(), "Zelkor::Util::ValidationInputDialog");
        QCOMPARE(meta.methodCount(), meta.methodOffset());
        QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    }

    void isBuiltOfNamedParts()
    {
        Open();
        auto* const frame = dialog_->findChild<MFrame*>(QStringLiteral("contentFrame"), Qt::FindDirectChildrenOnly);
        QVERIFY(frame);
        QVERIFY(dialog_->findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"), Qt::FindDirectChildrenOnly));
        QVERIFY(frame->findChild<QLabel*>(QStringLiteral("label"), Qt::FindDirectChildrenOnly));
        QVERIFY(frame->findChild<QLineEdit*>(QStringLiteral("lineEdit"), Qt::FindDirectChildrenOnly));
        QVERIFY(frame->findChild<QLabel*>(QStringLiteral("errorLabel"), Qt::FindDirectChildrenOnly));
    }

    void makesItsPartsFromTopToBottom()
    {
        Open();
        QCOMPARE(ChildNames(dialog_.get()), (QStringList{QStringLiteral("contentFrame"), QStringLiteral("buttonBox")}));
        QCOMPARE(ChildNames(dialog_->findChild<MFrame*>()),
                 (QStringList{QStringLiteral("label"), QStringLiteral("lineEdit"), QStringLiteral("errorLabel")}));
    }

    void followsItsChildren()
    {
        Open();
        QVERIFY(FollowsItsChildren(*dialog_));
        QVERIFY(!FollowsItsChildren(*dialog_->findChild<MFrame*>()));
    }

    void isLaidOutWithoutGaps()
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

    void showsWhatItIsGiven()
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

    void asksForATranslationOfTheUsualLabel()
    {
        RecordingTranslator const translator;
        Open();
        QCOMPARE(translator.Asked().count(QStringLiteral("ValidationInputDialog: Input string:")), 1);
    }

    void checksNothingWhenItStartsEmpty()
    {
        Open();
        QCOMPARE(log_, QStringList());
        QVERIFY(Ok()->isEnabled());
        QVERIFY(Error()->isHidden());
        QVERIFY(!Edit()->property("styleHint").isValid());
    }

    void checksOnceWhenItStartsWithText()
    {
        Open(QStringLiteral(" a  b "));
        QCOMPARE(log_, (QStringList{QStringLiteral("first a b"), QStringLiteral("second a b")}));
    }

    void simplifiesTheInput()
    {
        Open();
        Edit()->setText(QStringLiteral("  a  b "));
        QCOMPARE(log_, (QStringList{QStringLiteral("first a b"), QStringLiteral("second a b")}));
        QCOMPARE(Edit()->text(), QStringLiteral("  a  b "));
    }

    void showsTheOutcome_data()
    {
        QTest::addColumn<bool>("valid");
        QTest::addColumn<bool>("clean");
        QTest::addColumn<QStringList>("calls");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("hint");
        QTest::addColumn<bool>("showsError");

        QString const first = QStringLiteral("first x");
        QString const second = QStringLiteral("second x");
        QTest::newRow("passes") << true << true << QStringList{first, second} << QStringLiteral("12")
                                << QStringLiteral("normal") << false;
        QTest::newRow("warned of") << true << false << QStringList{first, second} << QStringLiteral("12")
                                   << QStringLiteral("error") << true;
        QTest::newRow("refused") << false << true << QStringList{first} << QStringLiteral("1")
                                 << QStringLiteral("error") << true;
    }

    void showsTheOutcome()
    {
        QFETCH(bool, valid);
        QFETCH(bool, clean);
        QFETCH(QStringList, calls);
        QFETCH(QString, message);
        QFETCH(QString, hint);
        QFETCH(bool, showsError);
        valid_ = valid;
        clean_ = clean;
        Open();
        Edit()->setText(QStringLiteral("x"));
        QCOMPARE(log_, calls);
        QCOMPARE(Ok()->isEnabled(), valid);
        QCOMPARE(Error()->text(), message);
        QCOMPARE(Error()->isHidden(), !showsError);
        QCOMPARE(Edit()->property("styleHint").toString(), hint);
    }

    void followsTheInput()
    {
        Open();
        valid_ = false;
        Edit()->setText(QStringLiteral("x"));
        QVERIFY(!Ok()->isEnabled());
        valid_ = true;
        Edit()->setText(QStringLiteral("y"));
        QVERIFY(Ok()->isEnabled());
        QVERIFY(Error()->isHidden());
        QCOMPARE(Edit()->property("styleHint").toString(), QStringLiteral("normal"));
    }

    void takesTheMessageBackWhenTheInputIsClean()
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

    void returnsWhatPassesTheFirstCheck()
    {
        Open(QStringLiteral(" a  b "));
        QCOMPARE(dialog_->inputText(), QStringLiteral("a b"));
        clean_ = false;
        QCOMPARE(dialog_->inputText(), QStringLiteral("a b"));
        dialog_->accept();
        valid_ = false;
        QCOMPARE(dialog_->inputText(), QString());
    }

    void isAnsweredByItsButtons_data()
    {
        QTest::addColumn<int>("button");
        QTest::addColumn<int>("result");
        QTest::newRow("OK") << int(QDialogButtonBox::Ok) << int(QDialog::Accepted);
        QTest::newRow("Cancel") << int(QDialogButtonBox::Cancel) << int(QDialog::Rejected);
    }

    void isAnsweredByItsButtons()
    {
        QFETCH(int, button);
        QFETCH(int, result);
        Open(QStringLiteral("x"));
        auto* const clicked = Buttons()->button(QDialogButtonBox::StandardButton(button));
        QTimer::singleShot(0, clicked, [clicked] { clicked->click(); });
        QCOMPARE(dialog_->exec(), result);
    }

    void mayEndWhileItIsOpen()
    {
        Open();
        QTimer::singleShot(0, this, [this] { dialog_.reset(); });
        QCOMPARE(dialog_->exec(), int(QDialog::Rejected));
    }

    void checksNothingThatIsTypedWhileItEnds()
    {
        Open();
        dialog_->show();
        QVERIFY(QTest::qWaitForWindowExposed(dialog_.get()));
        LateTyping const typing(Edit());
        dialog_.reset();
        QVERIFY(typing.hasTyped);
        QCOMPARE(log_, QStringList());
    }

    void emptyChecksThrow()
    {
        ValidationInputDialog dialog(QString(), QString(), QString(), nullptr, nullptr);
        QVERIFY_EXCEPTION_THROWN(dialog.inputText(), std::bad_function_call);
        QVERIFY_EXCEPTION_THROWN(dialog.findChild<QLineEdit*>()->setText(QStringLiteral("x")), std::bad_function_call);
    }

    void anEmptyFirstCheckThrowsAtOnceWhenThereIsText()
    {
        auto const pass = [](QString const& /*input*/, QString& /*message*/) { return true; };
        QVERIFY_EXCEPTION_THROWN(
            ValidationInputDialog(QString(), QString(), QStringLiteral("x"), ValidationInputDialog::Check(), pass),
            std::bad_function_call);
    }

    void anEmptySecondCheckThrowsOnlyWhenTheFirstPasses()
    {
        auto const isLong = [](QString const& input, QString& /*message*/) { return input.size() > 1; };
        dialog_ = std::make_unique<ValidationInputDialog>(QString(), QString(), QStringLiteral("x"), isLong,
                                                          ValidationInputDialog::Check());
        QVERIFY(!Ok()->isEnabled());
        QCOMPARE(dialog_->inputText(), QString());
        QVERIFY_EXCEPTION_THROWN(Edit()->setText(QStringLiteral("xy")), std::bad_function_call);
        QCOMPARE(dialog_->inputText(), QStringLiteral("xy")); // has no need of it
        QVERIFY_EXCEPTION_THROWN(
            ValidationInputDialog(QString(), QString(), QStringLiteral("xy"), isLong, ValidationInputDialog::Check()),
            std::bad_function_call);
    }

    void hasTheParentOfSpontaneousDialogs()
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
        valid_ = true;
        clean_ = true;
        log_.clear();
    }

    void TearDown() override { dialog_.reset(); }

private:
    void Open(QString const& text = QString())
    {
        dialog_ = std::make_unique<ValidationInputDialog>(
            QStringLiteral("Title"), QStringLiteral("Label"), text,
            [this](QString const& input, QString& message) {
                log_ += QLatin1String("first ") + input;
                message += QLatin1Char('1');
                return valid_;
            },
            [this](QString const& input, QString& message) {
                log_ += QLatin1String("second ") + input;
                message += QLatin1Char('2');
                return clean_;
            });
    }

    QLabel* Label() const { return dialog_->findChild<QLabel*>(QStringLiteral("label")); }
    QLabel* Error() const { return dialog_->findChild<QLabel*>(QStringLiteral("errorLabel")); }
    QLineEdit* Edit() const { return dialog_->findChild<QLineEdit*>(QStringLiteral("lineEdit")); }
    QDialogButtonBox* Buttons() const { return dialog_->findChild<QDialogButtonBox*>(); }
    QPushButton* Ok() const { return Buttons()->button(QDialogButtonBox::Ok); }

    bool valid_ = true;
    bool clean_ = true;
    QStringList log_;
    std::unique_ptr<ValidationInputDialog> dialog_;
};

ZQTUTIL_WIDGET_TEST_MAIN(ValidationInputDialogTest)

#include "ValidationInputDialogTest.moc"

#include <Util/ValidationInputDialog.h>

#include <Util/FixWidgetStyle.h>
#include <Util/SpontaneousDialog.h>
#include <WidgetKit/Layouts.h>
#include <WidgetKit/WidgetUtils.h>

#include <QtCore/QCoreApplication>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

namespace Zelkor::Util
{

namespace
{

template <class T>
T* CreateNamed(QLatin1String name, QWidget* parent)
{
    auto* const widget = new T(parent);
    widget->setObjectName(name);
    return widget;
}

void RemoveGaps(QLayout* layout)
{
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
}

} // namespace

class ValidationInputDialog::UI
{
public:
    explicit UI(QDialog* parent)
        : dialog(parent)
        , contentFrame(CreateNamed<Widget::MFrame>(QLatin1String("contentFrame"), dialog))
        , buttonBox(CreateNamed<QDialogButtonBox>(QLatin1String("buttonBox"), dialog))
        , label(CreateNamed<QLabel>(QLatin1String("label"), contentFrame))
        , lineEdit(CreateNamed<QLineEdit>(QLatin1String("lineEdit"), contentFrame))
        , errorLabel(CreateNamed<QLabel>(QLatin1String("errorLabel"), contentFrame))
    {
        auto* const contentLayout = new Widget::MVBoxLayout(contentFrame);
        RemoveGaps(contentLayout);
        contentLayout->addItems(
            {{label, 0}, {lineEdit, 0}, {errorLabel, 0}, {Widget::LayoutHelpers::SpacerPolicy::Stretch, 0}});

        auto* const dialogLayout = new Widget::MVBoxLayout(dialog);
        RemoveGaps(dialogLayout);
        dialogLayout->autoFill();

        label->setWordWrap(true);
        buttonBox->setStandardButtons(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
        // The constructor of ValidationInputDialog replaces this text. It is kept because the translation catalogues
        // contain it.
        label->setText(QCoreApplication::translate("ValidationInputDialog", "Input string:"));
    }

    QDialog* const dialog;
    Widget::MFrame* const contentFrame;
    QDialogButtonBox* const buttonBox;
    QLabel* const label;
    QLineEdit* const lineEdit;
    QLabel* const errorLabel;
};

ValidationInputDialog::ValidationInputDialog(QString const& title, QString const& labelText, QString const& text,
                                             Check const& firstCheck, Check const& secondCheck)
    : QDialog(SpontaneousDialog::findParent())
    , ui_(std::make_unique<UI>(this))
    , firstCheck_(firstCheck)
    , secondCheck_(secondCheck)
{
    FixWidgetStyle::Apply(this);
    setWindowTitle(title);
    ui_->label->setText(labelText);
    ui_->errorLabel->hide();
    connect(ui_->buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(ui_->buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(ui_->lineEdit, &QLineEdit::textChanged, this, &ValidationInputDialog::checkInput);
    ui_->lineEdit->setText(text);
    Widget::Util::installLayoutController(this);
}

ValidationInputDialog::~ValidationInputDialog()
{
    // The line edit can still emit textChanged() during ~QDialog(). At that time, the check functions have already been
    // destroyed, so the signal must not call checkInput().
    disconnect(ui_->lineEdit, nullptr, this, nullptr);
}

QString ValidationInputDialog::inputText()
{
    QString const input = ui_->lineEdit->text().simplified();
    QString message;
    return firstCheck_(input, message) ? input : QString();
}

void ValidationInputDialog::checkInput(QString const& text)
{
    QString const input = text.simplified();
    QString message;
    bool const valid = firstCheck_(input, message);
    bool const clean = valid && secondCheck_(input, message);
    ui_->errorLabel->setText(message);
    ui_->errorLabel->setVisible(!clean);
    ui_->buttonBox->button(QDialogButtonBox::Ok)->setEnabled(valid);
    Widget::Util::applyStyleHint(ui_->lineEdit, clean ? QStringLiteral("normal") : QStringLiteral("error"));
}

} // namespace Zelkor::Util

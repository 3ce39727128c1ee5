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
                                             Check const& mustPass, Check const& shouldPass)
    : QDialog(SpontaneousDialog::findParent())
    , ui(std::make_unique<UI>(this))
    , firstCheck(mustPass)
    , secondCheck(shouldPass)
{
    FixWidgetStyle::Apply(this);
    setWindowTitle(title);
    ui->label->setText(labelText);
    ui->errorLabel->hide();
    connect(ui->buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(ui->buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(ui->lineEdit, &QLineEdit::textChanged, this, &ValidationInputDialog::CheckInput);
    ui->lineEdit->setText(text);
    Widget::Util::installLayoutController(this);
}

ValidationInputDialog::~ValidationInputDialog()
{
    // Hiding may still change the text, by what an input method commits, and comes when the checks have gone.
    disconnect(ui->lineEdit, nullptr, this, nullptr);
}

QString ValidationInputDialog::inputText()
{
    QString const input = ui->lineEdit->text().simplified();
    QString message;
    return firstCheck(input, message) ? input : QString();
}

void ValidationInputDialog::CheckInput(QString const& text)
{
    QString const input = text.simplified();
    QString message;
    bool const valid = firstCheck(input, message);
    bool const clean = valid && secondCheck(input, message);
    ui->errorLabel->setText(message);
    ui->errorLabel->setVisible(!clean);
    ui->buttonBox->button(QDialogButtonBox::Ok)->setEnabled(valid);
    Widget::Util::applyStyleHint(ui->lineEdit, clean ? QStringLiteral("normal") : QStringLiteral("error"));
}

} // namespace Zelkor::Util

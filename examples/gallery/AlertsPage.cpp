#include "AlertsPage.h"

#include "StatusLabel.h"
#include "Widgets.h"

#include <Base/ILinksOpener.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QPointer>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSpinBox>

#include <array>

namespace Zelkor::Gallery
{
namespace
{

using Util::AlertBox;

constexpr int MaximumWidth = 800;
constexpr int MaximumSpacing = 60;
constexpr int SampleWidth = 520;
constexpr int SampleSpacing = 24;

struct Buttons
{
    char const* title;
    QMessageBox::StandardButtons buttons;
};

std::array<Buttons, 4> const& ButtonChoices()
{
    static std::array<Buttons, 4> const choices = {{
        {QT_TRANSLATE_NOOP("GalleryAlerts", "OK"), QMessageBox::Ok},
        {QT_TRANSLATE_NOOP("GalleryAlerts", "OK, Cancel"), QMessageBox::Ok | QMessageBox::Cancel},
        {QT_TRANSLATE_NOOP("GalleryAlerts", "Yes, No"), QMessageBox::Yes | QMessageBox::No},
        {QT_TRANSLATE_NOOP("GalleryAlerts", "Save, Discard, Cancel"),
         QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel},
    }};
    return choices;
}

QString SampleText()
{
    return AlertsPage::tr("The film could not be exported: there is no space left on the disk.");
}

QString SampleLink()
{
    return QStringLiteral("<a href=\"https://example.org/space\">%1</a>").arg(AlertsPage::tr("How to free up space"));
}

/// Shows the URL of a clicked link in a label instead of opening a browser.
class LinkDisplay : public App::ILinksOpener
{
public:
    explicit LinkDisplay(StatusLabel* label)
        : label_(label)
    {}

    void OpenLink(QString const& link) override
    {
        if (label_) {
            label_->Show(link, Tone::Good);
        }
    }

private:
    QPointer<StatusLabel> label_;
};

} // namespace

AlertsPage::AlertsPage(QWidget* parent)
    : Page(parent)
    , levelBox_(new QComboBox)
    , titleEdit_(new QLineEdit)
    , textEdit_(new QLineEdit(SampleText()))
    , buttonsBox_(new QComboBox)
    , widthBox_(new QSpinBox)
    , spacingBox_(new QSpinBox)
    , linkBox_(new QCheckBox(tr("&Link below the text")))
    , openerBox_(new QCheckBox(tr("Show clicked links on this &page")))
    , ownIconBox_(new QCheckBox(tr("Custom &icon")))
    , showButton_(new QPushButton(tr("S&how")))
{
    // Add the items in the order of the enumerators of AlertBox::Level: the index of each item in the combo box must be
    // equal to the numeric value of its level.
    levelBox_->addItems({tr("Information"), tr("Error"), tr("Question")});
    for (Buttons const& choice : ButtonChoices()) {
        buttonsBox_->addItem(QCoreApplication::translate("GalleryAlerts", choice.title));
    }
    titleEdit_->setPlaceholderText(tr("Default title of the level"));
    widthBox_->setRange(-1, MaximumWidth);
    widthBox_->setValue(-1);
    widthBox_->setSpecialValueText(tr("Automatic"));
    widthBox_->setSuffix(tr(" px"));
    spacingBox_->setRange(-1, MaximumSpacing);
    spacingBox_->setValue(-1);
    spacingBox_->setSpecialValueText(tr("Default"));
    spacingBox_->setSuffix(tr(" px"));

    auto* const column = new QVBoxLayout(this);
    SetUpPageLayout(column);
    column->addLayout(NewForm());
    column->addWidget(showButton_, 0, Qt::AlignLeft);
    column->addStretch();
    connect(showButton_, &QPushButton::clicked, this, &AlertsPage::ShowBox);
    setFocusProxy(levelBox_);
}

QFormLayout* AlertsPage::NewForm()
{
    auto* const form = new QFormLayout;
    form->addRow(NewLabelFor(levelBox_, tr("Le&vel")), levelBox_);
    form->addRow(NewLabelFor(titleEdit_, tr("&Title")), titleEdit_);
    form->addRow(NewLabelFor(textEdit_, tr("Te&xt")), textEdit_);
    form->addRow(NewLabelFor(buttonsBox_, tr("&Buttons")), buttonsBox_);
    form->addRow(NewLabelFor(widthBox_, tr("Minimum &width")), widthBox_);
    form->addRow(NewLabelFor(spacingBox_, tr("&Spacing of the buttons")), spacingBox_);
    form->addRow(linkBox_);
    form->addRow(openerBox_);
    form->addRow(ownIconBox_);
    answerLabel_ = AddValueRow(form, tr("Clicked button"));
    linkLabel_ = AddValueRow(form, tr("Clicked link"));
    return form;
}

std::unique_ptr<AlertBox> AlertsPage::NewBox()
{
    auto const buttons = ButtonChoices()[static_cast<std::size_t>(buttonsBox_->currentIndex())].buttons;
    auto box = std::make_unique<AlertBox>(static_cast<AlertBox::Level>(levelBox_->currentIndex()), titleEdit_->text(),
                                          textEdit_->text(), buttons, this);
    if (linkBox_->isChecked()) {
        box->SetLearnMoreLink(SampleLink());
    }
    if (openerBox_->isChecked()) {
        box->SetLinksOpener(std::make_shared<LinkDisplay>(linkLabel_));
    }
    if (ownIconBox_->isChecked()) {
        box->setIconPixmap(QPixmap(QStringLiteral(":/icons/export.png")));
    }
    if (widthBox_->value() >= 0) {
        box->SetWidth(widthBox_->value());
    }
    if (spacingBox_->value() >= 0) {
        box->SetSpacing(spacingBox_->value());
    }
    return box;
}

void AlertsPage::ShowBox()
{
    QPointer<AlertsPage> const alive(this);
    QPointer<AlertBox> const box = NewBox().release();
    box->Exec();
    if (!alive) {
        return; // The main window was destroyed while the box was open. This page has been destroyed too.
    }
    answerLabel_->Show(box && box->clickedButton() ? box->clickedButton()->objectName() : tr("none"));
    delete box;
}

void AlertsPage::ShowSample()
{
    levelBox_->setCurrentIndex(AlertBox::Error);
    buttonsBox_->setCurrentIndex(1);
    linkBox_->setChecked(true);
    openerBox_->setChecked(true);
    answerLabel_->Show(QStringLiteral("buttonOk"));
    ScheduleSampleShown();
}

std::vector<SampleDialog> AlertsPage::SampleDialogs()
{
    std::vector<SampleDialog> dialogs;
    auto const add = [&dialogs](char const* id, std::unique_ptr<AlertBox> box) {
        box->PrepareToShow();
        dialogs.push_back({id, std::move(box)});
    };
    add("alert-information", std::make_unique<AlertBox>(AlertBox::Information, QString(), tr("The film was exported."),
                                                        QMessageBox::Ok, this));
    add("alert-error", NewBox());
    auto question = std::make_unique<AlertBox>(AlertBox::Question, QString(),
                                               tr("Save the changes to “Holidays 2024” before closing?"),
                                               QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, this);
    add("alert-question", std::move(question));
    auto wide =
        std::make_unique<AlertBox>(AlertBox::Question, tr("Replace"), tr("A film with this name exists. Replace it?"),
                                   QMessageBox::Yes | QMessageBox::No | QMessageBox::Help, this);
    wide->setIconPixmap(QPixmap(QStringLiteral(":/icons/export.png")));
    wide->SetWidth(SampleWidth);
    wide->SetSpacing(SampleSpacing);
    add("alert-wide", std::move(wide));
    return dialogs;
}

} // namespace Zelkor::Gallery

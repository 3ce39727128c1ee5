#include "InputDialogPage.h"

#include "StatusLabel.h"
#include "Widgets.h"

#include <Util/ValidatorFactory.h>

#include <QtCore/QPointer>
#include <QtGui/QValidator>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPushButton>

namespace Zelkor::Gallery
{
namespace
{

using Util::ValidationInputDialog;

bool IsFileName(QString name)
{
    std::unique_ptr<QValidator> const validator(Util::GetFilenameValidator(nullptr));
    int position = 0;
    return validator->validate(name, position) == QValidator::Acceptable;
}

} // namespace

InputDialogPage::InputDialogPage(QWidget* parent)
    : Page(parent)
    , films_(new QListWidget)
    , addButton_(new QPushButton(tr("&New Film…")))
    , outcomeLabel_(new StatusLabel(tr("Outcome")))
{
    films_->setAccessibleName(tr("Films"));
    films_->addItems({tr("Holidays 2024"), tr("First steps")});

    auto* const row = new QHBoxLayout;
    row->setSpacing(Spacing);
    row->addWidget(addButton_);
    row->addWidget(outcomeLabel_, 1);
    auto* const column = new QVBoxLayout(this);
    SetUpPageLayout(column);
    column->addWidget(NewHint(tr("The dialog rejects invalid file names and warns about names that are in use.")));
    column->addLayout(row);
    column->addWidget(films_, 1);
    connect(addButton_, &QPushButton::clicked, this, &InputDialogPage::AddFilm);
    setFocusProxy(addButton_);
}

bool InputDialogPage::IsTaken(QString const& name) const
{
    return !films_->findItems(name, Qt::MatchFixedString).empty();
}

std::unique_ptr<ValidationInputDialog> InputDialogPage::NewDialog(QString const& text)
{
    auto const isName = [](QString const& input, QString& message) {
        bool const isGood = IsFileName(input);
        if (!isGood) {
            message = input.isEmpty() ? tr("Type a name.") : tr("This is not a valid file name.");
        }
        return isGood;
    };
    auto const isFree = [page = QPointer<InputDialogPage>(this)](QString const& input, QString& message) {
        bool const isTaken = page && page->IsTaken(input);
        if (isTaken) {
            message = tr("A film with this name exists. A number will be added.");
        }
        return !isTaken;
    };
    return std::make_unique<ValidationInputDialog>(tr("New Film"), tr("Name of the film:"), text, isName, isFree);
}

void InputDialogPage::AddFilm()
{
    QPointer<InputDialogPage> const alive(this);
    QPointer<ValidationInputDialog> const dialog = NewDialog(QString()).release();
    bool const isAccepted = dialog->exec() == QDialog::Accepted;
    if (!alive) {
        return; // The main window was destroyed while the dialog was open. This page has been destroyed too.
    }
    QString const input = dialog ? dialog->inputText() : QString();
    delete dialog;
    if (!isAccepted || input.isEmpty()) {
        outcomeLabel_->Show(tr("No film added"));
        return;
    }
    QString name = input;
    for (int number = 2; IsTaken(name); ++number) {
        name = tr("%1 (%2)").arg(input).arg(number);
    }
    films_->addItem(name);
    outcomeLabel_->Show(tr("Added “%1”").arg(name), Tone::Good);
}

void InputDialogPage::ShowSample()
{
    films_->addItem(tr("The garden"));
    outcomeLabel_->Show(tr("Added “%1”").arg(tr("The garden")), Tone::Good);
    ScheduleSampleShown();
}

std::vector<SampleDialog> InputDialogPage::SampleDialogs()
{
    std::vector<SampleDialog> dialogs;
    dialogs.push_back({"input-accepted", NewDialog(tr("The new year"))});
    dialogs.push_back({"input-warned", NewDialog(tr("First steps"))});
    dialogs.push_back({"input-refused", NewDialog(QStringLiteral("AC/DC: live"))});
    return dialogs;
}

} // namespace Zelkor::Gallery

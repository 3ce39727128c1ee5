#include "ValidatorBox.h"

#include "StatusLabel.h"
#include "ToneDelegate.h"
#include "Widgets.h"

#include <QtGui/QValidator>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QTableWidget>

namespace Zelkor::Gallery
{
namespace
{

struct Result
{
    QString name;
    Tone tone;
};

Result Validate(QValidator const& validator, QString text)
{
    int position = text.size();
    switch (validator.validate(text, position)) {
    case QValidator::Acceptable:
        return {ValidatorBox::tr("Acceptable"), Tone::Good};
    case QValidator::Intermediate:
        return {ValidatorBox::tr("Intermediate"), Tone::Caution};
    case QValidator::Invalid:
        break;
    }
    return {ValidatorBox::tr("Invalid"), Tone::Bad};
}

} // namespace

ValidatorBox::ValidatorBox(QString const& title, QString const& label, QValidator* validator,
                           QStringList const& samples)
    : QGroupBox(title)
    , samples_(samples)
    , validator_(validator)
    , edit_(new QLineEdit)
    , stateLabel_(new StatusLabel(tr("State")))
    , rejectBox_(new QCheckBox(tr("Reject invalid input")))
    , table_(new QTableWidget)
{
    validator_->setParent(this);
    rejectBox_->setToolTip(tr("Sets the validator on the line edit."));
    ListSamples();
    CreateLayout(label);
    connect(edit_, &QLineEdit::textChanged, this, &ValidatorBox::Update);
    connect(rejectBox_, &QCheckBox::toggled, this,
            [this](bool isOn) { edit_->setValidator(isOn ? validator_ : nullptr); });
    connect(table_, &QTableWidget::itemSelectionChanged, this, [this] { Choose(table_->currentRow()); });
    Update();
}

void ValidatorBox::CreateLayout(QString const& label)
{
    auto* const editRow = new QHBoxLayout;
    editRow->addWidget(NewLabelFor(edit_, label));
    editRow->addWidget(edit_, 1);
    auto* const stateRow = new QHBoxLayout;
    stateRow->addWidget(stateLabel_, 1);
    stateRow->addWidget(rejectBox_);

    auto* const column = new QVBoxLayout(this);
    column->setSpacing(Spacing);
    column->addLayout(editRow);
    column->addLayout(stateRow);
    column->addWidget(table_, 1);
}

void ValidatorBox::ListSamples()
{
    SetUpTable(table_, {tr("Sample"), tr("State")});
    table_->setItemDelegate(new ToneDelegate(table_));
    table_->setAccessibleName(tr("Samples"));
    table_->setRowCount(samples_.size());
    int row = 0;
    for (QString const& sample : samples_) {
        Result const result = Validate(*validator_, sample);
        QTableWidgetItem* const state = NewCell(result.name);
        state->setData(ToneDelegate::ToneRole, static_cast<int>(result.tone));
        table_->setItem(row, 0, NewCell(sample.isEmpty() ? tr("(empty)") : sample));
        table_->setItem(row++, 1, state);
    }
}

void ValidatorBox::Choose(int row)
{
    edit_->setText(samples_.at(row));
}

void ValidatorBox::Update()
{
    Result const result = Validate(*validator_, edit_->text());
    stateLabel_->Show(result.name, result.tone);
}

} // namespace Zelkor::Gallery

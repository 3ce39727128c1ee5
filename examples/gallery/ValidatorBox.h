#pragma once

/// \file
/// A group box that demonstrates a validator.

#include <QtWidgets/QGroupBox>

QT_BEGIN_NAMESPACE
class QCheckBox;
class QLineEdit;
class QTableWidget;
class QValidator;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Gallery
{

class StatusLabel;

/// Shows a line edit, the validation state of its text, and a table of sample strings with their validation states.
class ValidatorBox : public QGroupBox
{
    Q_OBJECT

public:
    /// Creates a box with the title \a title. \a label is the text next to the line edit, and may contain a mnemonic.
    /// \a samples are the strings in the table. Takes ownership of \a validator.
    ValidatorBox(QString const& title, QString const& label, QValidator* validator, QStringList const& samples);

    /// Sets the text of the line edit to the sample string in row \a row of the table.
    void Choose(int row);

private:
    void CreateLayout(QString const& label);
    void ListSamples();
    void Update();

    QStringList const samples_;
    QValidator* validator_;
    QLineEdit* edit_;
    StatusLabel* stateLabel_;
    QCheckBox* rejectBox_;
    QTableWidget* table_;
};

} // namespace Gallery
} // namespace Zelkor

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

/// Shows a line edit, the validator's state for its text, and a table of sample texts.
class ValidatorBox : public QGroupBox
{
    Q_OBJECT

public:
    /// Creates a box with the title \a title, and with \a label for the line edit, which may contain a mnemonic. Takes
    /// ownership of \a validator.
    ValidatorBox(QString const& title, QString const& label, QValidator* validator, QStringList const& samples);

    /// Sets the sample at \a row as the text of the line edit.
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

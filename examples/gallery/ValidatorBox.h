#pragma once

/// \file
/// A validator at work.

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

/// A line edit, what the validator says of its text, and samples to choose from.
class ValidatorBox : public QGroupBox
{
    Q_OBJECT

public:
    /// Takes \a validator over. \a title and \a label may hold mnemonics.
    ValidatorBox(QString const& title, QString const& label, QValidator* validator, QStringList const& samples);

    /// Chooses the sample at \a row.
    void Choose(int row);

private:
    void LayOut(QString const& label);
    void ListSamples();
    void Update();

    QStringList const samples_;
    QValidator* validator_;
    QLineEdit* edit_;
    StatusLabel* stateLabel_;
    QCheckBox* refuseBox_;
    QTableWidget* table_;
};

} // namespace Gallery
} // namespace Zelkor

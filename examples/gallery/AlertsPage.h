#pragma once

/// \file
/// The Alerts page: shows message boxes with options that the user sets.

#include "Page.h"

#include <Util/AlertBox.h>

QT_BEGIN_NAMESPACE
class QCheckBox;
class QComboBox;
class QFormLayout;
class QLineEdit;
class QPushButton;
class QSpinBox;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Gallery
{

class StatusLabel;

class AlertsPage : public Page
{
    Q_OBJECT

public:
    explicit AlertsPage(QWidget* parent = nullptr);

    void ShowSample() override;
    std::vector<SampleDialog> SampleDialogs() override;

private:
    QFormLayout* NewForm();
    std::unique_ptr<Util::AlertBox> NewBox();
    void ShowBox();

    QComboBox* levelBox_;
    QLineEdit* titleEdit_;
    QLineEdit* textEdit_;
    QComboBox* buttonsBox_;
    QSpinBox* widthBox_;
    QSpinBox* spacingBox_;
    QCheckBox* linkBox_;
    QCheckBox* openerBox_;
    QCheckBox* ownIconBox_;
    QPushButton* showButton_;
    StatusLabel* answerLabel_;
    StatusLabel* linkLabel_;
};

} // namespace Gallery
} // namespace Zelkor

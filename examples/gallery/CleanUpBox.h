#pragma once

/// \file
/// Files of several ages, and the clean-up of the old ones.

#include <Util/TemporaryDir.h>

#include <QtWidgets/QGroupBox>

#include <memory>

QT_BEGIN_NAMESPACE
class QCheckBox;
class QPushButton;
class QSpinBox;
class QTableWidget;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Gallery
{

class StatusLabel;

/// Works in a temporary directory of its own, made with the first files.
class CleanUpBox : public QGroupBox
{
    Q_OBJECT

public:
    explicit CleanUpBox(QWidget* parent = nullptr);

    void MakeFiles();
    void CleanUp();

private:
    void LayOut();
    QString Folder() const;
    QString MakeFile(QString const& name, int days) const;
    void ShowOutcome();

    std::unique_ptr<Util::TemporaryDir> scratch_;

    QPushButton* makeButton_;
    QSpinBox* daysBox_;
    QCheckBox* folderToo_;
    QPushButton* cleanUpButton_;
    QTableWidget* files_;
    StatusLabel* outcomeLabel_;
};

} // namespace Gallery
} // namespace Zelkor

#pragma once

/// \file
/// The part of the Temporary folder page that creates files of different ages and removes the old files.

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

/// Creates sample files in a temporary directory, and removes the files that have reached a minimum age. The temporary
/// directory is created by the first call of MakeFiles().
class CleanUpBox : public QGroupBox
{
    Q_OBJECT

public:
    explicit CleanUpBox(QWidget* parent = nullptr);

    /// Creates the sample files and sets their modification times. Overwrites existing sample files.
    void MakeFiles();

    /// Removes the files that have reached the age in the spin box. Also removes the folder if the check box is
    /// checked.
    void CleanUp();

private:
    void CreateLayout();
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

#pragma once

/// \file
/// A part of the Temporary folder page that creates files of several ages and removes the old ones.

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

/// Creates sample files in a temporary directory and removes those that have reached a minimum age. The directory is
/// created together with the first files.
class CleanUpBox : public QGroupBox
{
    Q_OBJECT

public:
    explicit CleanUpBox(QWidget* parent = nullptr);

    /// Creates the sample files with their modification times. Existing ones are overwritten.
    void MakeFiles();

    /// Removes the files that have the chosen age, and the folder if the user has chosen that.
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

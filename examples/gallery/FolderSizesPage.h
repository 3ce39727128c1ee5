#pragma once

/// \file
/// The Folder sizes page: measures a folder in the background.

#include "FolderMeasurer.h"
#include "Page.h"

QT_BEGIN_NAMESPACE
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QSortFilterProxyModel;
class QTableView;
class QTimer;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Gallery
{

class FolderSizesModel;

class FolderSizesPage : public Page
{
    Q_OBJECT

public:
    explicit FolderSizesPage(QWidget* parent = nullptr);

    void SetFolder(ioPath const& folder) override;
    void ShowSample() override;
    void Cancel() override;
    bool IsBusy() const override;

private:
    enum class Phase { Idle, Measuring, Cancelling };

    void CreateWidgets();
    void SetUpTable();
    void CreateLayout();
    void ConnectWidgets();
    void ConnectMeasurer();

    ioPath Folder() const;
    void Browse();
    void Measure();
    void SetPhase(Phase phase);
    void ShowMessage(QString const& message);
    void ShowListed(std::vector<FolderEntry> const& entries);
    void OnEntryStarted(int row);
    void OnEntryFinished(int row, FolderEntry const& entry);
    void ScheduleRefresh();
    void Refresh();
    void ShowTotals(FolderTotals const& totals);
    void ShowFailure(QString const& message);

    FolderMeasurer* measurer_;
    FolderSizesModel* model_;
    QSortFilterProxyModel* sorted_;
    QTimer* refreshTimer_;
    ioPath proposed_;
    Phase phase_ = Phase::Idle;
    QString measuring_; // the name of the entry whose measurement started most recently
    int measured_ = 0;

    QLabel* folderLabel_;
    QLineEdit* folderEdit_;
    QPushButton* browseButton_;
    QPushButton* measureButton_;
    QWidget* messageBar_;
    QLabel* messageLabel_;
    QTableView* table_;
    QProgressBar* progressBar_;
    QPushButton* cancelButton_;
    QLabel* summaryLabel_;
};

} // namespace Gallery
} // namespace Zelkor

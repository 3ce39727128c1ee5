#pragma once

/// \file
/// The Paths page: checks a destination folder and lists standard folders.

#include "Page.h"

QT_BEGIN_NAMESPACE
class QFormLayout;
class QLineEdit;
class QPushButton;
class QTableWidget;
class QTimer;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Gallery
{

class StatusLabel;

class PathsPage : public Page
{
    Q_OBJECT

public:
    explicit PathsPage(QWidget* parent = nullptr);

    void SetFolder(ioPath const& folder) override;
    void ShowSample() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void CreateLayout();
    QFormLayout* NewValues();
    void ListStandardFolders();
    void Connect();

    void ScheduleCheck();
    void Check();
    void CheckValidity(QString const& path);
    void CheckAccess(QString const& path);
    void Browse();
    void Explore();

    QTimer* checkTimer_;
    QLineEdit* pathEdit_;
    QPushButton* browseButton_;
    QPushButton* exploreButton_;
    StatusLabel* validityLabel_;
    StatusLabel* messageLabel_;
    StatusLabel* creatableLabel_;
    StatusLabel* readableLabel_;
    StatusLabel* spaceLabel_;
    StatusLabel* fileManagerLabel_;
    QTableWidget* standardFolders_;
};

} // namespace Gallery
} // namespace Zelkor

#pragma once

/// \file
/// The Placement page: shows screen and window geometry, and places dialogs.

#include "Page.h"

QT_BEGIN_NAMESPACE
class QPushButton;
class QTableWidget;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Gallery
{

class StatusLabel;

class PlacementPage : public Page
{
    Q_OBJECT

public:
    explicit PlacementPage(QWidget* parent = nullptr);

    void ShowSample() override;
    std::vector<SampleDialog> SampleDialogs() override;

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void CreateLayout();
    std::unique_ptr<QDialog> NewDialog() const;
    void ListScreens();
    void Update();

    QPushButton* centreButton_;
    QPushButton* parentButton_;
    QTableWidget* screens_;
    StatusLabel* globalLabel_;
    StatusLabel* screenLabel_;
    StatusLabel* centreLabel_;
    StatusLabel* parentLabel_;
};

} // namespace Gallery
} // namespace Zelkor

#pragma once

/// \file
/// The Fonts page: lists the application's fonts separately from the system's fonts.

#include "Page.h"

QT_BEGIN_NAMESPACE
class QComboBox;
class QLabel;
class QListWidget;
class QPushButton;
class QTableWidget;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Gallery
{

class StatusLabel;

class FontsPage : public Page
{
    Q_OBJECT

public:
    explicit FontsPage(QWidget* parent = nullptr);
    ~FontsPage() override;

    void ShowSample() override;

private:
    void CreateLayout();
    void Connect();
    void ChooseFile();
    void AddFont(QString const& file);
    void RemoveSelected();
    void List();
    void ShowFamily();

    QPushButton* addButton_;
    QPushButton* removeButton_;
    StatusLabel* outcomeLabel_;
    QTableWidget* added_;
    QComboBox* listBox_;
    QListWidget* families_;
    QLabel* sample_;
};

} // namespace Gallery
} // namespace Zelkor

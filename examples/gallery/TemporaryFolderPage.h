#pragma once

/// \file
/// The Temporary folder page: creates temporary directories and removes old files.

#include "Page.h"

QT_BEGIN_NAMESPACE
class QPushButton;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Gallery
{

class CleanUpBox;
class StatusLabel;
class TemporaryDirTable;

class TemporaryFolderPage : public Page
{
    Q_OBJECT

public:
    explicit TemporaryFolderPage(QWidget* parent = nullptr);

    void ShowSample() override;

private:
    void CreateLayout();
    void Connect();
    void AddDir();
    void AddFile();
    void UpdateButtons();

    QPushButton* addDirButton_;
    QPushButton* addFileButton_;
    StatusLabel* folderLabel_;
    TemporaryDirTable* dirs_;
    StatusLabel* outcomeLabel_;
    CleanUpBox* cleanUp_;
};

} // namespace Gallery
} // namespace Zelkor

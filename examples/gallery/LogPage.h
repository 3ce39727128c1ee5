#pragma once

/// \file
/// The Log page. The user can send Qt messages. The page shows the records that glog receives, and the messages that
/// QtLogHandler forwards to the previously installed message handler.

#include "Page.h"

#include <memory>
#include <vector>

QT_BEGIN_NAMESPACE
class QBoxLayout;
class QCheckBox;
class QComboBox;
class QLineEdit;
class QListWidget;
class QPushButton;
class QTableView;
QT_END_NAMESPACE

namespace Zelkor
{
namespace Gallery
{

class GlogSink;
class LogFilter;
class LogModel;
class PreviousHandler;
class StatusLabel;
struct LogLine;

class LogPage : public Page
{
    Q_OBJECT

public:
    explicit LogPage(QWidget* parent = nullptr);

    void ShowSample() override;

private:
    void CreateWidgets();
    void SetUpTable();
    void CreateLayout();
    QBoxLayout* NewMessageRow();
    QBoxLayout* NewTextFilterRow();
    QBoxLayout* NewTypeFilterRow();
    QBoxLayout* NewSwitchRow();
    void Connect();
    void ConnectFilter();

    void SendMessage();
    void SendSample(int type, int category, QString const& text);
    void ShowDropped();
    void ShowLines(std::vector<LogLine> const& lines);
    void ShowForwarded(std::vector<QString> const& messages);
    void Clear();

    std::shared_ptr<LogFilter> const filter_;
    GlogSink* glogSink_;
    PreviousHandler* previousHandler_;
    LogModel* model_;

    QLineEdit* messageEdit_;
    QComboBox* typeBox_;
    QComboBox* categoryBox_;
    QPushButton* sendButton_;
    QLineEdit* droppedTextEdit_;
    std::vector<QCheckBox*> droppedTypeBoxes_; // in the order of MessageTypes in LogPage.cpp
    StatusLabel* droppedLabel_;
    QCheckBox* positionBox_;
    QCheckBox* forwardBox_;
    QPushButton* clearButton_;
    QTableView* table_;
    QListWidget* forwarded_;
};

} // namespace Gallery
} // namespace Zelkor

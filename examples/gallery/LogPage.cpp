#include "LogPage.h"

#include "GlogSink.h"
#include "LogFilter.h"
#include "LogModel.h"
#include "PreviousHandler.h"
#include "StatusLabel.h"
#include "ToneDelegate.h"
#include "Widgets.h"

#include <Util/QtLogHandler.h>

#include <QtCore/QMessageLogger>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QTableView>

namespace Zelkor::Gallery
{
namespace
{

constexpr int MaxForwarded = 500;
constexpr int ForwardedRows = 6;

using LogFunction = void (QMessageLogger::*)(char const*, ...) const;

struct MessageType
{
    char const* title;
    QtMsgType type;
    LogFunction log;
};
constexpr MessageType MessageTypes[] = {
    {QT_TRANSLATE_NOOP("Zelkor::Gallery::LogPage", "Debug"), QtDebugMsg, &QMessageLogger::debug},
    {QT_TRANSLATE_NOOP("Zelkor::Gallery::LogPage", "Info"), QtInfoMsg, &QMessageLogger::info},
    {QT_TRANSLATE_NOOP("Zelkor::Gallery::LogPage", "Warning"), QtWarningMsg, &QMessageLogger::warning},
    {QT_TRANSLATE_NOOP("Zelkor::Gallery::LogPage", "Critical"), QtCriticalMsg, &QMessageLogger::critical},
};
enum TypeIndex { Debug, Info, Warning, Critical };

constexpr char const* Categories[] = {"gallery.files", "gallery.network", "gallery.window"};
enum CategoryIndex { Files, Network, Window };

} // namespace

LogPage::LogPage(QWidget* parent)
    : Page(parent)
    , filter_(std::make_shared<LogFilter>())
    , glogSink_(new GlogSink(this))
    , previousHandler_(new PreviousHandler(this))
    , model_(new LogModel(this))
{
    CreateWidgets();
    SetUpTable();
    CreateLayout();
    Connect();
    ConnectFilter();
    setFocusProxy(messageEdit_);
    ShowDropped();
}

void LogPage::CreateWidgets()
{
    messageEdit_ = new QLineEdit(tr("The index was rebuilt"));
    typeBox_ = new QComboBox;
    for (MessageType const& type : MessageTypes) {
        typeBox_->addItem(tr(type.title));
        droppedTypeBoxes_.push_back(new QCheckBox(tr(type.title)));
        droppedTypeBoxes_.back()->setAccessibleName(tr("Drop messages of type %1").arg(tr(type.title)));
    }
    categoryBox_ = new QComboBox;
    for (char const* const category : Categories) {
        categoryBox_->addItem(QLatin1String(category));
    }
    sendButton_ = new QPushButton(tr("&Send"));

    droppedTextEdit_ = new QLineEdit;
    droppedTextEdit_->setPlaceholderText(tr("no text filter"));
    droppedLabel_ = new StatusLabel(tr("Dropped messages"));
    positionBox_ = new QCheckBox(tr("File and &line before the text"));
    positionBox_->setChecked(true);
    forwardBox_ = new QCheckBox(tr("Forward to the &previous handler"));
    forwardBox_->setChecked(true);
    clearButton_ = new QPushButton(tr("Cl&ear"));

    table_ = new QTableView;
    forwarded_ = new QListWidget;
    forwarded_->setFixedHeight(ForwardedRows * forwarded_->fontMetrics().lineSpacing() + Spacing);
}

void LogPage::SetUpTable()
{
    table_->setModel(model_);
    Gallery::SetUpTable(table_);
    table_->setItemDelegate(new ToneDelegate(table_));
    QHeaderView* const header = table_->horizontalHeader();
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header->setStretchLastSection(true);
    QFontMetrics const metrics = table_->fontMetrics();
    header->resizeSection(LogModel::Severity, metrics.horizontalAdvance(QStringLiteral("WARNING")) + 4 * Spacing);
    header->resizeSection(LogModel::Source,
                          metrics.horizontalAdvance(QStringLiteral("QtLogHandler.cpp:9999")) + 3 * Spacing);
}

void LogPage::CreateLayout()
{
    auto* const column = new QVBoxLayout(this);
    SetUpPageLayout(column);
    column->addLayout(NewMessageRow());
    column->addLayout(NewTextFilterRow());
    column->addLayout(NewTypeFilterRow());
    column->addLayout(NewSwitchRow());
    column->addWidget(NewLabelFor(table_, tr("Lo&g lines")));
    column->addWidget(table_, 1);
    column->addWidget(NewLabelFor(forwarded_, tr("Messages received by the pre&vious handler")));
    column->addWidget(forwarded_);
}

QBoxLayout* LogPage::NewMessageRow()
{
    auto* const row = new QHBoxLayout;
    row->addWidget(NewLabelFor(messageEdit_, tr("&Message")));
    row->addWidget(messageEdit_, 1);
    row->addWidget(NewLabelFor(typeBox_, tr("&Type")));
    row->addWidget(typeBox_);
    row->addWidget(NewLabelFor(categoryBox_, tr("&Category")));
    row->addWidget(categoryBox_);
    row->addWidget(sendButton_);
    return row;
}

QBoxLayout* LogPage::NewTextFilterRow()
{
    auto* const row = new QHBoxLayout;
    row->addWidget(NewLabelFor(droppedTextEdit_, tr("&Drop messages that contain")));
    row->addWidget(droppedTextEdit_, 1);
    return row;
}

QBoxLayout* LogPage::NewTypeFilterRow()
{
    auto* const row = new QHBoxLayout;
    row->addWidget(new QLabel(tr("Drop messages of type:")));
    for (QCheckBox* const box : droppedTypeBoxes_) {
        row->addWidget(box);
    }
    row->addSpacing(Spacing);
    row->addWidget(droppedLabel_, 1);
    return row;
}

QBoxLayout* LogPage::NewSwitchRow()
{
    auto* const row = new QHBoxLayout;
    row->addWidget(positionBox_);
    row->addSpacing(Spacing);
    row->addWidget(forwardBox_);
    row->addStretch();
    row->addWidget(clearButton_);
    return row;
}

void LogPage::Connect()
{
    Util::QtLogHandler& handler = Util::QtLogHandler::GetInstance();
    connect(messageEdit_, &QLineEdit::returnPressed, sendButton_, &QPushButton::click);
    connect(sendButton_, &QPushButton::clicked, this, &LogPage::SendMessage);
    connect(positionBox_, &QCheckBox::toggled, this,
            [&handler](bool isOn) { handler.SetEnabledLogFileNameAndLineNumber(isOn); });
    connect(forwardBox_, &QCheckBox::toggled, this,
            [&handler](bool isOn) { handler.SetEnabledForwardIntoPreviousHandler(isOn); });
    connect(clearButton_, &QPushButton::clicked, this, &LogPage::Clear);
    connect(glogSink_, &GlogSink::LinesReceived, this, &LogPage::ShowLines);
    connect(previousHandler_, &PreviousHandler::MessagesReceived, this, &LogPage::ShowForwarded);
}

// A filter cannot be removed from QtLogHandler. Therefore, QtLogHandler calls the filter function even after the page
// has been destroyed, and the filter function captures only a weak pointer to filter_.
void LogPage::ConnectFilter()
{
    Util::QtLogHandler::GetInstance().AddFilter(
        [weak = std::weak_ptr<LogFilter>(filter_)](QtMsgType type, QMessageLogContext const&, QString const& message) {
            auto const filter = weak.lock();
            return !filter || filter->Accepts(type, message);
        });
    connect(droppedTextEdit_, &QLineEdit::textChanged, this,
            [this](QString const& text) { filter_->SetDroppedText(text); });
    std::size_t index = 0;
    for (MessageType const& type : MessageTypes) {
        connect(droppedTypeBoxes_[index++], &QCheckBox::toggled, this,
                [this, type = type.type](bool isOn) { filter_->SetDropped(type, isOn); });
    }
}

void LogPage::ShowSample()
{
    Clear();
    droppedTextEdit_->setText(tr("heartbeat"));
    SendSample(Debug, Files, tr("Scanning 1208 folders"));
    SendSample(Info, Files, tr("The index was rebuilt in 3.2 s"));
    SendSample(Debug, Network, tr("Heartbeat 4711 sent"));
    SendSample(Warning, Network, tr("No answer; trying again in 30 s"));
    SendSample(Critical, Files, tr("“Trip.mp4” is damaged"));
    positionBox_->setChecked(false);
    SendSample(Warning, Window, tr("The theme has no icon for “go-up”"));
    SendSample(Info, Window, tr("The window was restored"));
    ScheduleSampleShown();
}

void LogPage::SendSample(int type, int category, QString const& text)
{
    typeBox_->setCurrentIndex(type);
    categoryBox_->setCurrentIndex(category);
    messageEdit_->setText(text);
    SendMessage();
}

void LogPage::SendMessage()
{
    MessageType const& type = MessageTypes[typeBox_->currentIndex()];
    char const* const category = Categories[categoryBox_->currentIndex()];
    QMessageLogger const logger(__FILE__, __LINE__, Q_FUNC_INFO, category);
    (logger.*type.log)("%s", qUtf8Printable(messageEdit_->text()));
    ShowDropped();
}

void LogPage::ShowDropped()
{
    int const count = filter_->DroppedCount();
    // The gallery has no translations. Without a translation, tr() with "%n" would return "1 messages were dropped", so
    // handle the singular here.
    droppedLabel_->Show(count == 1 ? tr("1 message was dropped") : tr("%n messages were dropped", nullptr, count));
}

void LogPage::ShowLines(std::vector<LogLine> const& lines)
{
    // Scroll down only if the last line was visible before. If the user has scrolled up to read older lines, keep the
    // position.
    QScrollBar const* const bar = table_->verticalScrollBar();
    bool const isAtEnd = bar->value() == bar->maximum();
    model_->Append(lines);
    if (isAtEnd) {
        table_->scrollToBottom();
    }
    ShowDropped();
}

void LogPage::ShowForwarded(std::vector<QString> const& messages)
{
    for (QString const& message : messages) {
        forwarded_->addItem(message);
    }
    while (forwarded_->count() > MaxForwarded) {
        delete forwarded_->takeItem(0);
    }
    forwarded_->scrollToBottom();
}

void LogPage::Clear()
{
    model_->Clear();
    forwarded_->clear();
}

} // namespace Zelkor::Gallery

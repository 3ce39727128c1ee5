#include "LogPage.h"

#include "GlogLines.h"
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

using Raiser = void (QMessageLogger::*)(char const*, ...) const;

struct MessageType
{
    char const* title;
    QtMsgType type;
    Raiser raise;
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
    , glogLines_(new GlogLines(this))
    , previousHandler_(new PreviousHandler(this))
    , model_(new LogModel(this))
{
    CreateWidgets();
    SetUpTable();
    LayOut();
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
    raiseButton_ = new QPushButton(tr("&Raise"));

    droppedTextEdit_ = new QLineEdit;
    droppedTextEdit_->setPlaceholderText(tr("nothing is dropped for its text"));
    droppedLabel_ = new StatusLabel(tr("Dropped messages"));
    positionBox_ = new QCheckBox(tr("File and &line before the text"));
    positionBox_->setChecked(true);
    forwardBox_ = new QCheckBox(tr("Hand on to the &previous handler"));
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

void LogPage::LayOut()
{
    auto* const column = new QVBoxLayout(this);
    SetUpPageLayout(column);
    column->addLayout(NewMessageRow());
    column->addLayout(NewTextFilterRow());
    column->addLayout(NewTypeFilterRow());
    column->addLayout(NewSwitchRow());
    column->addWidget(NewLabelOf(table_, tr("Lines in the lo&g")));
    column->addWidget(table_, 1);
    column->addWidget(NewLabelOf(forwarded_, tr("What the pre&vious handler receives")));
    column->addWidget(forwarded_);
}

QBoxLayout* LogPage::NewMessageRow()
{
    auto* const row = new QHBoxLayout;
    row->addWidget(NewLabelOf(messageEdit_, tr("&Message")));
    row->addWidget(messageEdit_, 1);
    row->addWidget(NewLabelOf(typeBox_, tr("&Type")));
    row->addWidget(typeBox_);
    row->addWidget(NewLabelOf(categoryBox_, tr("&Category")));
    row->addWidget(categoryBox_);
    row->addWidget(raiseButton_);
    return row;
}

QBoxLayout* LogPage::NewTextFilterRow()
{
    auto* const row = new QHBoxLayout;
    row->addWidget(NewLabelOf(droppedTextEdit_, tr("&Drop messages that contain")));
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
    connect(messageEdit_, &QLineEdit::returnPressed, raiseButton_, &QPushButton::click);
    connect(raiseButton_, &QPushButton::clicked, this, &LogPage::Raise);
    connect(positionBox_, &QCheckBox::toggled, this,
            [&handler](bool isOn) { handler.SetEnabledLogFileNameAndLineNumber(isOn); });
    connect(forwardBox_, &QCheckBox::toggled, this,
            [&handler](bool isOn) { handler.SetEnabledForwardIntoPreviousHandler(isOn); });
    connect(clearButton_, &QPushButton::clicked, this, &LogPage::Clear);
    connect(glogLines_, &GlogLines::Arrived, this, &LogPage::ShowLines);
    connect(previousHandler_, &PreviousHandler::Arrived, this, &LogPage::ShowForwarded);
}

// The handler keeps the filter for good, and the page may go before it.
void LogPage::ConnectFilter()
{
    Util::QtLogHandler::GetInstance().AddFilter(
        [weak = std::weak_ptr<LogFilter>(filter_)](QtMsgType type, QMessageLogContext const&, QString const& message) {
            auto const filter = weak.lock();
            return !filter || filter->LetThrough(type, message);
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
    RaiseSample(Debug, Files, tr("Scanning 1208 folders"));
    RaiseSample(Info, Files, tr("The index was rebuilt in 3.2 s"));
    RaiseSample(Debug, Network, tr("Heartbeat 4711 sent"));
    RaiseSample(Warning, Network, tr("No answer; trying again in 30 s"));
    RaiseSample(Critical, Files, tr("“Trip.mp4” is damaged"));
    positionBox_->setChecked(false);
    RaiseSample(Warning, Window, tr("The theme has no icon for “go-up”"));
    RaiseSample(Info, Window, tr("The window was restored"));
    SampleIsComplete();
}

void LogPage::RaiseSample(int type, int category, QString const& text)
{
    typeBox_->setCurrentIndex(type);
    categoryBox_->setCurrentIndex(category);
    messageEdit_->setText(text);
    Raise();
}

void LogPage::Raise()
{
    MessageType const& type = MessageTypes[typeBox_->currentIndex()];
    char const* const category = Categories[categoryBox_->currentIndex()];
    QMessageLogger const logger(__FILE__, __LINE__, Q_FUNC_INFO, category);
    (logger.*type.raise)("%s", qUtf8Printable(messageEdit_->text()));
    ShowDropped();
}

void LogPage::ShowDropped()
{
    int const count = filter_->Dropped();
    // Without a translation, Qt has no singular of its own.
    droppedLabel_->Show(count == 1 ? tr("1 message was dropped") : tr("%n messages were dropped", nullptr, count));
}

void LogPage::ShowLines(std::vector<LogLine> const& lines)
{
    // Who has scrolled up is reading.
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

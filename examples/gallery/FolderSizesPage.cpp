#include "FolderSizesPage.h"

#include "FolderSizesModel.h"
#include "ShareDelegate.h"
#include "Texts.h"
#include "Widgets.h"

#include <Util/StringUtils.h>

#include <QtCore/QDir>
#include <QtCore/QLocale>
#include <QtCore/QSortFilterProxyModel>
#include <QtCore/QTimer>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QShortcut>
#include <QtWidgets/QStyle>
#include <QtWidgets/QTableView>

namespace Zelkor::Gallery
{
namespace
{

constexpr int RefreshMilliseconds = 150;
constexpr int ShareBarWidth = 70;

// The widest text that is expected in a column. The column is made wide enough for this text.
struct ColumnSample
{
    FolderSizesModel::Column column;
    char const* text;
};
constexpr ColumnSample ColumnSamples[] = {
    {FolderSizesModel::Size, "999.99 MB"},
    {FolderSizesModel::Time, "00:00.000 s"},
    {FolderSizesModel::Share, "100.0 %"},
};

QString Joined(QStringList const& parts)
{
    return parts.join(QStringLiteral("  ·  "));
}

} // namespace

FolderSizesPage::FolderSizesPage(QWidget* parent)
    : Page(parent)
    , measurer_(new FolderMeasurer(this))
    , model_(new FolderSizesModel(this))
    , sorted_(new QSortFilterProxyModel(this))
    , refreshTimer_(new QTimer(this))
{
    CreateWidgets();
    SetUpTable();
    CreateLayout();
    ConnectWidgets();
    ConnectMeasurer();
    setFocusProxy(folderEdit_);
    FolderSizesPage::SetFolder(Util::QStringToUtf8(QDir::homePath()));
    summaryLabel_->setText(tr("Choose a folder to see which entries use the most space."));
    SetPhase(Phase::Idle);
}

void FolderSizesPage::CreateWidgets()
{
    folderLabel_ = new QLabel(tr("&Folder:"));
    folderEdit_ = new QLineEdit;
    folderEdit_->setAccessibleName(tr("Folder"));
    folderLabel_->setBuddy(folderEdit_);
    browseButton_ = new QPushButton(tr("&Browse…"));
    measureButton_ = new QPushButton(tr("&Measure"));

    messageBar_ = new QWidget;
    messageLabel_ = new QLabel;
    messageLabel_->setTextFormat(Qt::PlainText);
    messageLabel_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    messageLabel_->setWordWrap(true);
    messageLabel_->setAccessibleName(tr("Error"));
    messageBar_->hide();

    table_ = new QTableView;
    table_->setAccessibleName(tr("Entries of the folder"));
    progressBar_ = new QProgressBar;
    progressBar_->setAccessibleName(tr("Progress"));
    cancelButton_ = new QPushButton(tr("&Cancel"));
    summaryLabel_ = new QLabel;
    summaryLabel_->setTextFormat(Qt::PlainText);
    summaryLabel_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    summaryLabel_->setAccessibleName(tr("Summary"));
    summaryLabel_->setWordWrap(true);
    // The horizontal policy is Ignored, so that a long name in the text does not widen the window.
    summaryLabel_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void FolderSizesPage::SetUpTable()
{
    sorted_->setSourceModel(model_);
    // Do not sort after each change. Refresh() sorts the rows once after many changes, which is faster.
    sorted_->setDynamicSortFilter(false);
    sorted_->setSortRole(FolderSizesModel::SortRole);
    sorted_->setSortCaseSensitivity(Qt::CaseInsensitive);
    sorted_->setSortLocaleAware(true);

    table_->setModel(sorted_);
    table_->setItemDelegateForColumn(FolderSizesModel::Share, new ShareDelegate(table_));
    Gallery::SetUpTable(table_);
    table_->setSortingEnabled(true);
    table_->sortByColumn(FolderSizesModel::Size, Qt::DescendingOrder);

    QHeaderView* const header = table_->horizontalHeader();
    header->setSectionResizeMode(FolderSizesModel::Name, QHeaderView::Stretch);
    QFontMetrics const metrics = table_->fontMetrics();
    int const iconWidth = style()->pixelMetric(QStyle::PM_SmallIconSize);
    header->resizeSection(FolderSizesModel::State,
                          metrics.horizontalAdvance(UnmeasuredText(999)) + iconWidth + 4 * Spacing);
    for (ColumnSample const& sample : ColumnSamples) {
        int const bar = sample.column == FolderSizesModel::Share ? ShareBarWidth : 0;
        header->resizeSection(sample.column, metrics.horizontalAdvance(QLatin1String(sample.text)) + bar + 2 * Spacing);
    }
}

void FolderSizesPage::CreateLayout()
{
    auto* const folderRow = new QHBoxLayout;
    folderRow->addWidget(folderLabel_);
    folderRow->addWidget(folderEdit_, 1);
    folderRow->addWidget(browseButton_);
    folderRow->addWidget(measureButton_);

    auto* const icon = new QLabel;
    int const iconSize = style()->pixelMetric(QStyle::PM_SmallIconSize);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxCritical).pixmap(iconSize));
    auto* const messageRow = new QHBoxLayout(messageBar_);
    messageRow->setContentsMargins(0, 0, 0, 0);
    messageRow->addWidget(icon);
    messageRow->addWidget(messageLabel_, 1);

    auto* const progressRow = new QHBoxLayout;
    progressRow->addWidget(progressBar_, 1);
    progressRow->addWidget(cancelButton_);

    auto* const column = new QVBoxLayout(this);
    SetUpPageLayout(column);
    column->addLayout(folderRow);
    column->addWidget(messageBar_);
    column->addWidget(table_, 1);
    column->addLayout(progressRow);
    column->addWidget(summaryLabel_);
}

void FolderSizesPage::ConnectWidgets()
{
    connect(folderEdit_, &QLineEdit::returnPressed, measureButton_, &QPushButton::click);
    connect(folderEdit_, &QLineEdit::textChanged, this, [this] { SetPhase(phase_); });
    connect(browseButton_, &QPushButton::clicked, this, &FolderSizesPage::Browse);
    connect(measureButton_, &QPushButton::clicked, this, &FolderSizesPage::Measure);
    connect(cancelButton_, &QPushButton::clicked, this, &FolderSizesPage::Cancel);
    auto* const escape = new QShortcut(Qt::Key_Escape, this);
    connect(escape, &QShortcut::activated, this, &FolderSizesPage::Cancel);
}

void FolderSizesPage::ConnectMeasurer()
{
    connect(measurer_, &FolderMeasurer::Listed, this, &FolderSizesPage::ShowListed);
    connect(measurer_, &FolderMeasurer::EntryStarted, this, &FolderSizesPage::OnEntryStarted);
    connect(measurer_, &FolderMeasurer::EntryFinished, this, &FolderSizesPage::OnEntryFinished);
    connect(measurer_, &FolderMeasurer::Finished, this, &FolderSizesPage::ShowTotals);
    connect(measurer_, &FolderMeasurer::Failed, this, &FolderSizesPage::ShowFailure);
    connect(measurer_, &FolderMeasurer::BecameIdle, this, &Page::BecameIdle);
    refreshTimer_->setSingleShot(true);
    refreshTimer_->setInterval(RefreshMilliseconds);
    connect(refreshTimer_, &QTimer::timeout, this, &FolderSizesPage::Refresh);
}

void FolderSizesPage::SetFolder(ioPath const& folder)
{
    proposed_ = folder;
    folderEdit_->setText(PathText(folder));
    folderEdit_->selectAll();
}

void FolderSizesPage::ShowSample()
{
    connect(measurer_, &FolderMeasurer::Finished, this, &Page::SampleShown);
    connect(measurer_, &FolderMeasurer::Failed, this, &Page::SampleShown);
    Measure();
}

void FolderSizesPage::Cancel()
{
    if (phase_ != Phase::Measuring) {
        return;
    }
    measurer_->Cancel();
    SetPhase(Phase::Cancelling);
    summaryLabel_->setText(tr("Cancelling after the current entry…"));
}

bool FolderSizesPage::IsBusy() const
{
    return measurer_->IsBusy();
}

// Returns the path in the line edit. If the user has not edited the path, returns the path that was passed to
// SetFolder(), because the text in the line edit cannot represent bytes that are not valid UTF-8.
ioPath FolderSizesPage::Folder() const
{
    QString const text = folderEdit_->text();
    return text == PathText(proposed_) ? proposed_ : ioPath(Util::QStringToUtf8(text));
}

void FolderSizesPage::Browse()
{
    QString const folder = QFileDialog::getExistingDirectory(this, tr("Choose a Folder"), folderEdit_->text());
    if (!folder.isEmpty()) {
        SetFolder(Util::QStringToUtf8(folder));
        measureButton_->setFocus();
    }
}

void FolderSizesPage::Measure()
{
    refreshTimer_->stop();
    ShowMessage(QString());
    model_->SetEntries({});
    progressBar_->setRange(0, 0);
    progressBar_->setFormat(tr("%v of %m"));
    summaryLabel_->setText(tr("Reading the folder…"));
    SetPhase(Phase::Measuring);
    measurer_->Start(Folder());
}

void FolderSizesPage::SetPhase(Phase phase)
{
    phase_ = phase;
    measureButton_->setEnabled(phase != Phase::Measuring && !folderEdit_->text().isEmpty());
    cancelButton_->setEnabled(phase == Phase::Measuring);
    if (phase == Phase::Idle && progressBar_->maximum() == 0) {
        progressBar_->setRange(0, 1);
        progressBar_->setFormat(QString());
        progressBar_->setValue(0);
    }
}

void FolderSizesPage::ShowMessage(QString const& message)
{
    messageLabel_->setText(message);
    messageBar_->setVisible(!message.isEmpty());
}

void FolderSizesPage::ShowListed(std::vector<FolderEntry> const& entries)
{
    model_->SetEntries(entries);
    measured_ = 0;
    progressBar_->setRange(0, static_cast<int>(entries.size()));
    progressBar_->setValue(0);
}

void FolderSizesPage::OnEntryStarted(int row)
{
    model_->SetMeasuring(row);
    measuring_ = NameText(model_->Entry(row));
    ScheduleRefresh();
}

void FolderSizesPage::OnEntryFinished(int row, FolderEntry const& entry)
{
    model_->SetEntry(row, entry);
    measured_ += entry.state != EntryState::Cancelled;
    ScheduleRefresh();
}

// Thousands of entries may be measured in one second. Sorting and painting the table after each entry would be too
// slow, so a timer delays the refresh.
void FolderSizesPage::ScheduleRefresh()
{
    if (!refreshTimer_->isActive()) {
        refreshTimer_->start();
    }
}

void FolderSizesPage::Refresh()
{
    refreshTimer_->stop();
    model_->NotifyViews();
    sorted_->sort(sorted_->sortColumn(), sorted_->sortOrder());
    progressBar_->setValue(measured_);
    if (phase_ == Phase::Measuring) {
        summaryLabel_->setText(
            Joined({tr("Measuring %1").arg(measuring_), tr("%1 so far").arg(SizeText(model_->Total()))}));
    }
}

void FolderSizesPage::ShowTotals(FolderTotals const& totals)
{
    Refresh();
    SetPhase(Phase::Idle);
    QStringList parts{
        tr("%1 (%2 bytes)").arg(SizeText(totals.size), QLocale().toString(totals.size)),
        EntriesText(totals.entries),
        TimeText(totals.microseconds),
    };
    if (totals.cancelled) {
        parts.prepend(tr("Cancelled"));
        parts.append(tr("%1 not measured").arg(EntriesText(totals.cancelledEntries)));
    }
    if (totals.unmeasured > 0) {
        parts.append(UnmeasuredText(totals.unmeasured));
    }
    summaryLabel_->setText(Joined(parts));
}

void FolderSizesPage::ShowFailure(QString const& message)
{
    SetPhase(Phase::Idle);
    summaryLabel_->clear();
    ShowMessage(message);
    folderEdit_->setFocus();
    folderEdit_->selectAll();
}

} // namespace Zelkor::Gallery

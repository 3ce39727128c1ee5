#include "PathsPage.h"

#include "StatusLabel.h"
#include "Texts.h"
#include "Widgets.h"

#include <Util/FileUtils.h>
#include <Util/StringUtils.h>

#include <QtCore/QDir>
#include <QtCore/QTimer>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableWidget>

namespace Zelkor::Gallery
{
namespace
{

constexpr int CheckDelayMilliseconds = 200;

struct Location
{
    char const* title;
    QStandardPaths::StandardLocation location;
};
constexpr Location Locations[] = {
    {QT_TRANSLATE_NOOP("Zelkor::Gallery::PathsPage", "Documents"), QStandardPaths::DocumentsLocation},
    {QT_TRANSLATE_NOOP("Zelkor::Gallery::PathsPage", "Movies"), QStandardPaths::MoviesLocation},
    {QT_TRANSLATE_NOOP("Zelkor::Gallery::PathsPage", "Music"), QStandardPaths::MusicLocation},
    {QT_TRANSLATE_NOOP("Zelkor::Gallery::PathsPage", "Pictures"), QStandardPaths::PicturesLocation},
    {QT_TRANSLATE_NOOP("Zelkor::Gallery::PathsPage", "Download"), QStandardPaths::DownloadLocation},
    {QT_TRANSLATE_NOOP("Zelkor::Gallery::PathsPage", "Desktop"), QStandardPaths::DesktopLocation},
    {QT_TRANSLATE_NOOP("Zelkor::Gallery::PathsPage", "Home"), QStandardPaths::HomeLocation},
    {QT_TRANSLATE_NOOP("Zelkor::Gallery::PathsPage", "Temporary files"), QStandardPaths::TempLocation},
    {QT_TRANSLATE_NOOP("Zelkor::Gallery::PathsPage", "Application data"), QStandardPaths::AppDataLocation},
};
constexpr int PathColumn = 1;

char const* NameOf(Util::PathValidity validity)
{
    switch (validity) {
    case Util::PathValidity::Valid:
        return "Valid";
    case Util::PathValidity::Empty:
        return "Empty";
    case Util::PathValidity::Relative:
        return "Relative";
    case Util::PathValidity::NotWritable:
        return "NotWritable";
    case Util::PathValidity::TrailingSpace:
        return "TrailingSpace";
    case Util::PathValidity::CannotCreate:
        return "CannotCreate";
    }
    return "";
}

void AddRow(QTableWidget* table, QString const& title, QString const& path)
{
    int const row = table->rowCount();
    table->insertRow(row);
    table->setItem(row, 0, NewCell(title));
    table->setItem(row, PathColumn, NewCell(path));
}

} // namespace

PathsPage::PathsPage(QWidget* parent)
    : Page(parent)
    , checkTimer_(new QTimer(this))
    , pathEdit_(new QLineEdit)
    , browseButton_(new QPushButton(tr("&Browse…")))
    , exploreButton_(new QPushButton(tr("&Show in File Manager")))
    , standardFolders_(new QTableWidget)
{
    checkTimer_->setSingleShot(true);
    checkTimer_->setInterval(CheckDelayMilliseconds);
    ListStandardFolders();
    CreateLayout();
    Connect();
    setFocusProxy(pathEdit_);
    PathsPage::SetFolder(Util::QStringToUtf8(QDir::homePath()));
}

void PathsPage::CreateLayout()
{
    auto* const pathRow = new QHBoxLayout;
    pathRow->addWidget(NewLabelFor(pathEdit_, tr("&Destination folder")));
    pathRow->addWidget(pathEdit_, 1);
    pathRow->addWidget(browseButton_);
    pathRow->addWidget(exploreButton_);

    auto* const column = new QVBoxLayout(this);
    SetUpPageLayout(column);
    column->addLayout(pathRow);
    column->addWidget(NewHint(tr("Each check creates the folder and removes it again, together with parents that are "
                                 "then empty.")));
    column->addLayout(NewValues());
    column->addSpacing(Spacing);
    column->addWidget(NewLabelFor(standardFolders_, tr("Standard &folders")));
    column->addWidget(standardFolders_, 1);
}

QFormLayout* PathsPage::NewValues()
{
    auto* const form = new QFormLayout;
    validityLabel_ = AddValueRow(form, tr("Validity"));
    messageLabel_ = AddValueRow(form, tr("Message for the user"));
    creatableLabel_ = AddValueRow(form, tr("Files can be created"));
    readableLabel_ = AddValueRow(form, tr("Files can be read"));
    spaceLabel_ = AddValueRow(form, tr("Free space"));
    fileManagerLabel_ = AddValueRow(form, tr("File manager"));
    return form;
}

void PathsPage::ListStandardFolders()
{
    SetUpTable(standardFolders_, {tr("Location"), tr("Path")});
    standardFolders_->setToolTip(tr("Double-click to make a folder the destination."));
    for (Location const& location : Locations) {
        AddRow(standardFolders_, tr(location.title), Util::GetStandardPath(location.location));
    }
    AddRow(standardFolders_, tr("Media library"), Util::GetZelkorLibraryPath(tr("Library")));
}

void PathsPage::Connect()
{
    connect(pathEdit_, &QLineEdit::textChanged, this, &PathsPage::ScheduleCheck);
    connect(checkTimer_, &QTimer::timeout, this, &PathsPage::Check);
    connect(browseButton_, &QPushButton::clicked, this, &PathsPage::Browse);
    connect(exploreButton_, &QPushButton::clicked, this, &PathsPage::Explore);
    connect(standardFolders_, &QTableWidget::cellActivated, this,
            [this](int row) { pathEdit_->setText(standardFolders_->item(row, PathColumn)->text()); });
}

void PathsPage::SetFolder(ioPath const& folder)
{
    pathEdit_->setText(PathText(folder));
    pathEdit_->selectAll();
}

void PathsPage::ShowSample()
{
    Check();
    ScheduleSampleShown();
}

void PathsPage::showEvent(QShowEvent* event)
{
    Page::showEvent(event);
    ScheduleCheck();
}

// If the page is visible, starts or restarts the timer that calls Check(). Check() writes to the disk, so it runs only
// when the user has stopped typing.
void PathsPage::ScheduleCheck()
{
    fileManagerLabel_->Show(tr("Not opened yet"));
    exploreButton_->setEnabled(!pathEdit_->text().isEmpty());
    if (isVisible()) {
        checkTimer_->start();
    }
}

void PathsPage::Check()
{
    CheckValidity(pathEdit_->text());
    CheckAccess(pathEdit_->text());
}

void PathsPage::CheckValidity(QString const& path)
{
    Util::PathValidity const validity = Util::IsThisPathValid(path);
    Tone const tone = validity == Util::PathValidity::Valid ? Tone::Good : Tone::Bad;
    validityLabel_->Show(
        tr("%1 – %2").arg(QString::number(static_cast<int>(validity)), QLatin1String(NameOf(validity))), tone);
    QString message;
    bool const isValid = Util::IsThisPathValid(path, &message);
    messageLabel_->Show(isValid ? tr("None") : message);
}

void PathsPage::CheckAccess(QString const& path)
{
    auto const show = [](StatusLabel* label, bool can) {
        label->Show(can ? tr("Yes") : tr("No"), can ? Tone::Good : Tone::Bad);
    };
    // Do not call the following functions with an empty path: they would check the current folder.
    show(creatableLabel_, !path.isEmpty() && Util::CanCreateFileIn(path));
    show(readableLabel_, !path.isEmpty() && Util::CanReadFileIn(path));
    long long const space = path.isEmpty() ? 0 : Util::GetAvailableDiskSpace(Util::QStringToUtf8(path));
    spaceLabel_->Show(space > 0 ? SizeText(static_cast<unsigned long long>(space)) : tr("Unknown"));
}

void PathsPage::Browse()
{
    QString const folder = QFileDialog::getExistingDirectory(this, tr("Choose a Folder"), pathEdit_->text());
    if (!folder.isEmpty()) {
        SetFolder(Util::QStringToUtf8(folder));
    }
}

void PathsPage::Explore()
{
    bool const isSent = Util::ExploreSingleFile(pathEdit_->text());
    fileManagerLabel_->Show(isSent ? tr("Request sent") : tr("No file manager available"),
                            isSent ? Tone::Good : Tone::Bad);
}

} // namespace Zelkor::Gallery

#include "CleanUpBox.h"

#include "StatusLabel.h"
#include "ToneDelegate.h"
#include "Widgets.h"

#include <Util/FileUtils.h>

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSpinBox>
#include <QtWidgets/QTableWidget>

namespace Zelkor::Gallery
{
namespace
{

struct SampleFile
{
    char const* name;
    int days;
};
constexpr SampleFile SampleFiles[] = {
    {"session.log", 0},
    {"preview.png", 1},
    {"render cache.bin", 7},
    {"crash report.txt", 30},
};
constexpr int DefaultDays = 7;
constexpr int MaxDays = 365;

enum Column { Name, Age, After };

// The gallery has no translations. Without a translation, tr() with "%n" would return "1 days", so this function
// handles the singular itself.
QString DaysText(int days)
{
    return days == 1 ? CleanUpBox::tr("1 day") : CleanUpBox::tr("%n days", nullptr, days);
}

} // namespace

CleanUpBox::CleanUpBox(QWidget* parent)
    : QGroupBox(tr("Clean up old files"), parent)
    , makeButton_(new QPushButton(tr("C&reate Files")))
    , daysBox_(new QSpinBox)
    , folderToo_(new QCheckBox(tr("Also remove the empty &folder")))
    , cleanUpButton_(new QPushButton(tr("&Clean Up")))
    , files_(new QTableWidget)
    , outcomeLabel_(new StatusLabel(tr("Outcome")))
{
    daysBox_->setRange(0, MaxDays);
    daysBox_->setValue(DefaultDays);
    SetUpTable(files_, {tr("File"), tr("Age before"), tr("After")});
    files_->setItemDelegate(new ToneDelegate(files_));
    files_->setAccessibleName(tr("Files before and after the clean-up"));
    cleanUpButton_->setEnabled(false);
    CreateLayout();
    connect(makeButton_, &QPushButton::clicked, this, &CleanUpBox::MakeFiles);
    connect(cleanUpButton_, &QPushButton::clicked, this, &CleanUpBox::CleanUp);
    outcomeLabel_->Show(tr("Create files of several ages first."));
}

void CleanUpBox::CreateLayout()
{
    auto* const controls = new QHBoxLayout;
    controls->addWidget(makeButton_);
    controls->addSpacing(2 * Spacing);
    controls->addWidget(NewLabelFor(daysBox_, tr("Minimum age in &days")));
    controls->addWidget(daysBox_);
    controls->addWidget(folderToo_);
    controls->addStretch();
    controls->addWidget(cleanUpButton_);

    auto* const column = new QVBoxLayout(this);
    column->setSpacing(Spacing);
    column->addLayout(controls);
    column->addWidget(files_, 1);
    column->addWidget(outcomeLabel_);
}

QString CleanUpBox::Folder() const
{
    return scratch_->filePath(QStringLiteral("scratch"));
}

void CleanUpBox::MakeFiles()
{
    if (!scratch_) {
        scratch_ = std::make_unique<Util::TemporaryDir>();
    }
    files_->setRowCount(0);
    if (!scratch_->isValid() || !QDir().mkpath(Folder())) {
        outcomeLabel_->Show(tr("The folder for the files cannot be created. %1").arg(scratch_->errorString()),
                            Tone::Bad);
        return;
    }
    for (SampleFile const& file : SampleFiles) {
        int const row = files_->rowCount();
        QString const name = QLatin1String(file.name);
        files_->insertRow(row);
        files_->setItem(row, Name, NewCell(name));
        files_->setItem(row, Age, NewCell(DaysText(file.days)));
        files_->setItem(row, After, NewCell(MakeFile(name, file.days)));
    }
    cleanUpButton_->setEnabled(true);
    outcomeLabel_->Show(Folder());
}

// Returns an error message, or an empty string if the file was created.
QString CleanUpBox::MakeFile(QString const& name, int days) const
{
    QFile file(QDir(Folder()).filePath(name));
    bool const isMade = file.open(QIODevice::WriteOnly) && file.setFileTime(QDateTime::currentDateTime().addDays(-days),
                                                                            QFileDevice::FileModificationTime);
    return isMade ? QString() : file.errorString();
}

void CleanUpBox::CleanUp()
{
    Util::RemoveDir(Folder(), daysBox_->value(), folderToo_->isChecked());
    ShowOutcome();
}

void CleanUpBox::ShowOutcome()
{
    int removed = 0;
    for (int row = 0; row < files_->rowCount(); ++row) {
        bool const isThere = QFile::exists(QDir(Folder()).filePath(files_->item(row, Name)->text()));
        removed += !isThere;
        QTableWidgetItem* const cell = files_->item(row, After);
        cell->setText(isThere ? tr("Kept") : tr("Removed"));
        cell->setData(ToneDelegate::ToneRole, static_cast<int>(isThere ? Tone::Good : Tone::Caution));
    }
    QString const files = tr("%1 of %2 files were removed").arg(removed).arg(files_->rowCount());
    QString const folder = QDir(Folder()).exists() ? tr("the folder still exists") : tr("the folder was removed too");
    outcomeLabel_->Show(tr("%1; %2.").arg(files, folder));
}

} // namespace Zelkor::Gallery

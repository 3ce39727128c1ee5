#include "TemporaryFolderPage.h"

#include "CleanUpBox.h"
#include "StatusLabel.h"
#include "TemporaryDirTable.h"
#include "Widgets.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QPushButton>

namespace Zelkor::Gallery
{
namespace
{

constexpr char SampleText[] = "A sample.\n";

bool WriteSample(QString const& path)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(SampleText) > 0;
}

QString UnusedName(Util::TemporaryDir const& dir)
{
    int number = 1;
    QString const name = TemporaryFolderPage::tr("sample %1.txt");
    while (QFile::exists(dir.filePath(name.arg(number)))) {
        ++number;
    }
    return name.arg(number);
}

} // namespace

TemporaryFolderPage::TemporaryFolderPage(QWidget* parent)
    : Page(parent)
    , addDirButton_(new QPushButton(tr("&Add Directory")))
    , addFileButton_(new QPushButton(tr("Add &Sample File")))
    , dirs_(new TemporaryDirTable)
    , outcomeLabel_(new StatusLabel(tr("Outcome")))
    , cleanUp_(new CleanUpBox)
{
    dirs_->setAccessibleName(tr("Temporary directories"));
    CreateLayout();
    Connect();
    setFocusProxy(addDirButton_);
    folderLabel_->Show(tr("Shown after the first directory is created"));
    UpdateButtons();
}

void TemporaryFolderPage::CreateLayout()
{
    auto* const form = new QFormLayout;
    folderLabel_ = AddValueRow(form, tr("Folder of the application"));

    auto* const buttons = new QHBoxLayout;
    buttons->addWidget(addDirButton_);
    buttons->addWidget(addFileButton_);
    buttons->addSpacing(Spacing);
    buttons->addWidget(outcomeLabel_, 1);

    auto* const column = new QVBoxLayout(this);
    SetUpPageLayout(column);
    column->addLayout(form);
    column->addLayout(buttons);
    column->addWidget(dirs_, 1);
    column->addWidget(cleanUp_, 1);
}

void TemporaryFolderPage::Connect()
{
    connect(addDirButton_, &QPushButton::clicked, this, &TemporaryFolderPage::AddDir);
    connect(addFileButton_, &QPushButton::clicked, this, &TemporaryFolderPage::AddFile);
    connect(dirs_, &QTableWidget::itemSelectionChanged, this, &TemporaryFolderPage::UpdateButtons);
}

void TemporaryFolderPage::ShowSample()
{
    AddDir();
    AddDir();
    AddFile();
    AddFile();
    cleanUp_->MakeFiles();
    cleanUp_->CleanUp();
    ScheduleSampleShown();
}

void TemporaryFolderPage::AddDir()
{
    Util::TemporaryDir const& dir = dirs_->AddDir();
    outcomeLabel_->Show(QString());
    if (dir.isValid()) {
        folderLabel_->Show(QFileInfo(dir.path()).path());
    }
}

void TemporaryFolderPage::AddFile()
{
    Util::TemporaryDir const* const dir = dirs_->SelectedDir();
    if (!dir) {
        return;
    }
    QString const name = UnusedName(*dir);
    bool const isWritten = WriteSample(dir->filePath(name));
    outcomeLabel_->Show(isWritten ? tr("Wrote “%1”").arg(name) : tr("“%1” cannot be written").arg(name),
                        isWritten ? Tone::Good : Tone::Bad);
    dirs_->CountFiles();
}

void TemporaryFolderPage::UpdateButtons()
{
    Util::TemporaryDir const* const dir = dirs_->SelectedDir();
    addFileButton_->setEnabled(dir && dir->isValid());
}

} // namespace Zelkor::Gallery

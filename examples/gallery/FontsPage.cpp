#include "FontsPage.h"

#include "StatusLabel.h"
#include "Widgets.h"

#include <Util/FontDatabase.h>

#include <QtCore/QDirIterator>
#include <QtCore/QFileInfo>
#include <QtCore/QStandardPaths>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableWidget>

namespace Zelkor::Gallery
{
namespace
{

using Util::FontDatabase;

constexpr int SampleSize = 18;

/// The lists of font families that the page can show. The enumerators are the indexes of the items in the combo box.
enum List { Added, System, Scalable };

QStringList FamiliesOf(int list)
{
    switch (list) {
    case Added:
        return FontDatabase::addedFontFamilies();
    case System:
        return FontDatabase::systemFontFamilies();
    default:
        return FontDatabase::scalableFontFamilies();
    }
}

/// Returns the path of any font file in the system's font folders. Returns an empty string if there is no font file.
QString AnyFontFile()
{
    for (QString const& folder : QStandardPaths::standardLocations(QStandardPaths::FontsLocation)) {
        QDirIterator files(folder, {QStringLiteral("*.ttf"), QStringLiteral("*.otf")}, QDir::Files,
                           QDirIterator::Subdirectories);
        if (files.hasNext()) {
            return files.next();
        }
    }
    return {};
}

} // namespace

FontsPage::FontsPage(QWidget* parent)
    : Page(parent)
    , addButton_(new QPushButton(tr("&Add…")))
    , removeButton_(new QPushButton(tr("&Remove")))
    , outcomeLabel_(new StatusLabel(tr("Outcome")))
    , added_(new QTableWidget)
    , listBox_(new QComboBox)
    , families_(new QListWidget)
    , sample_(new QLabel(tr("The quick brown fox jumps over the lazy dog")))
{
    SetUpTable(added_, {tr("Number"), tr("File"), tr("Families")});
    added_->setAccessibleName(tr("Application fonts"));
    listBox_->addItems({tr("Added by the application"), tr("System fonts"), tr("Scalable fonts")});
    listBox_->setCurrentIndex(System);
    families_->setAccessibleName(tr("Families"));
    CreateLayout();
    Connect();
    List();
    setFocusProxy(addButton_);
}

FontsPage::~FontsPage()
{
    for (int row = 0; row < added_->rowCount(); ++row) {
        FontDatabase::removeApplicationFont(added_->item(row, 0)->data(Qt::UserRole).toInt());
    }
}

void FontsPage::CreateLayout()
{
    auto* const buttons = new QHBoxLayout;
    buttons->setSpacing(Spacing);
    buttons->addWidget(addButton_);
    buttons->addWidget(removeButton_);
    buttons->addWidget(outcomeLabel_, 1);
    auto* const choice = new QHBoxLayout;
    choice->setSpacing(Spacing);
    choice->addWidget(NewLabelFor(listBox_, tr("&Families")));
    choice->addWidget(listBox_, 1);
    sample_->setAlignment(Qt::AlignCenter);

    auto* const grid = new QGridLayout(this);
    SetUpPageLayout(grid);
    grid->addLayout(buttons, 0, 0);
    grid->addWidget(added_, 1, 0);
    grid->addLayout(choice, 0, 1);
    grid->addWidget(families_, 1, 1);
    grid->addWidget(sample_, 2, 0, 1, 2);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 1);
}

void FontsPage::Connect()
{
    connect(addButton_, &QPushButton::clicked, this, &FontsPage::ChooseFile);
    connect(removeButton_, &QPushButton::clicked, this, &FontsPage::RemoveSelected);
    connect(added_, &QTableWidget::itemSelectionChanged, this,
            [this] { removeButton_->setEnabled(!added_->selectedItems().empty()); });
    connect(listBox_, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &FontsPage::List);
    connect(families_, &QListWidget::currentRowChanged, this, &FontsPage::ShowFamily);
    removeButton_->setEnabled(false);
}

void FontsPage::ChooseFile()
{
    QString const file =
        QFileDialog::getOpenFileName(this, tr("Add Font"), QString(), tr("Fonts (*.ttf *.otf *.ttc);;All files (*)"));
    if (!file.isEmpty()) {
        AddFont(file);
    }
}

void FontsPage::AddFont(QString const& file)
{
    int const id = FontDatabase::addApplicationFont(file);
    QString const name = QFileInfo(file).fileName();
    if (id < 0) {
        outcomeLabel_->Show(tr("“%1” is not a readable font file").arg(name), Tone::Bad);
        return;
    }
    int const row = added_->rowCount();
    added_->insertRow(row);
    QTableWidgetItem* const number = NewCell(locale().toString(id));
    number->setData(Qt::UserRole, id);
    added_->setItem(row, 0, number);
    added_->setItem(row, 1, NewCell(name));
    added_->setItem(row, 2, NewCell(FontDatabase::applicationFontFamilies(id).join(QLatin1String(", "))));
    outcomeLabel_->Show(tr("Added “%1”").arg(name), Tone::Good);
    List();
}

void FontsPage::RemoveSelected()
{
    int const row = added_->currentRow();
    bool const isRemoved = FontDatabase::removeApplicationFont(added_->item(row, 0)->data(Qt::UserRole).toInt());
    outcomeLabel_->Show(isRemoved ? tr("Removed") : tr("The font cannot be removed"),
                        isRemoved ? Tone::Good : Tone::Bad);
    if (isRemoved) {
        added_->removeRow(row);
    }
    List();
}

void FontsPage::List()
{
    families_->clear();
    families_->addItems(FamiliesOf(listBox_->currentIndex()));
    families_->setCurrentRow(0);
}

void FontsPage::ShowFamily()
{
    if (QListWidgetItem const* const item = families_->currentItem()) {
        sample_->setFont(QFont(item->text(), SampleSize));
    }
}

void FontsPage::ShowSample()
{
    AddFont(AnyFontFile());
    ScheduleSampleShown();
}

} // namespace Zelkor::Gallery

#include "TemporaryDirTable.h"

#include "Tone.h"
#include "ToneDelegate.h"
#include "Widgets.h"

#include <QtCore/QDir>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QPushButton>

#include <algorithm>

namespace Zelkor::Gallery
{
namespace
{

enum Column { Path, Valid, Files, Error, AutoRemove, RemoveButton, ColumnCount };

QTableWidgetItem* NewValidityCell(bool isValid)
{
    QTableWidgetItem* const cell = NewCell(isValid ? TemporaryDirTable::tr("Yes") : TemporaryDirTable::tr("No"));
    cell->setData(ToneDelegate::ToneRole, static_cast<int>(isValid ? Tone::Good : Tone::Bad));
    return cell;
}

QTableWidgetItem* NewAutoRemoveCell(bool isOn)
{
    QTableWidgetItem* const cell = NewCell(QString());
    cell->setFlags(cell->flags() | Qt::ItemIsUserCheckable);
    cell->setCheckState(isOn ? Qt::Checked : Qt::Unchecked);
    cell->setToolTip(TemporaryDirTable::tr("Remove the directory when its object is destroyed"));
    return cell;
}

} // namespace

TemporaryDirTable::TemporaryDirTable(QWidget* parent)
    : QTableWidget(parent)
{
    SetUpTable(this, {tr("Path"), tr("Valid"), tr("Files"), tr("Error"), tr("Auto-remove"), QString()});
    setItemDelegate(new ToneDelegate(this));
    horizontalHeader()->setStretchLastSection(false);
    horizontalHeader()->setSectionResizeMode(Path, QHeaderView::Stretch);
    connect(this, &QTableWidget::itemChanged, this, &TemporaryDirTable::Update);
}

Util::TemporaryDir& TemporaryDirTable::AddDir()
{
    Util::TemporaryDir& dir = *dirs_.emplace_back(std::make_unique<Util::TemporaryDir>());
    int const row = rowCount();
    insertRow(row);
    AddCells(row);
    AddRemoveButton(row);
    CountFiles();
    selectRow(row);
    return dir;
}

Util::TemporaryDir* TemporaryDirTable::SelectedDir() const
{
    QModelIndexList const rows = selectionModel()->selectedRows();
    return rows.isEmpty() ? nullptr : dirs_[static_cast<std::size_t>(rows.constFirst().row())].get();
}

void TemporaryDirTable::CountFiles()
{
    for (int row = 0; row < rowCount(); ++row) {
        Util::TemporaryDir const& dir = *dirs_[static_cast<std::size_t>(row)];
        // An invalid TemporaryDir has an empty path. QDir would interpret the empty path as the current directory.
        int const count = dir.isValid() ? QDir(dir.path()).entryList(QDir::Files).size() : 0;
        item(row, Files)->setText(QString::number(count));
    }
}

void TemporaryDirTable::AddCells(int row)
{
    Util::TemporaryDir const& dir = *dirs_[static_cast<std::size_t>(row)];
    setItem(row, Path, NewCell(dir.path()));
    item(row, Path)->setToolTip(dir.path());
    setItem(row, Valid, NewValidityCell(dir.isValid()));
    setItem(row, Files, NewCell(QString()));
    setItem(row, Error, NewCell(dir.isValid() ? tr("None") : dir.errorString()));
    setItem(row, AutoRemove, NewAutoRemoveCell(dir.autoRemove()));
}

void TemporaryDirTable::AddRemoveButton(int row)
{
    auto* const button = new QPushButton(tr("Remove"));
    button->setAccessibleName(tr("Remove %1").arg(item(row, Path)->text()));
    // Use a queued connection: Remove() deletes the row and its button. The button must not be deleted while it emits
    // clicked().
    connect(
        button, &QPushButton::clicked, this, [this, dir = dirs_.back().get()] { Remove(dir); }, Qt::QueuedConnection);
    setCellWidget(row, RemoveButton, button);
}

void TemporaryDirTable::Remove(Util::TemporaryDir const* dir)
{
    auto const found =
        std::find_if(dirs_.begin(), dirs_.end(), [dir](auto const& known) { return known.get() == dir; });
    if (found == dirs_.end()) {
        return;
    }
    int const row = static_cast<int>(found - dirs_.begin());
    if ((*found)->isValid() && !(*found)->remove()) {
        item(row, Error)->setText(tr("Could not be removed"));
        return;
    }
    // Erase the directory first. removeRow() changes the selection, and a slot for this change may call SelectedDir().
    // At that time, dirs_ and the rows must match.
    dirs_.erase(found);
    removeRow(row);
}

void TemporaryDirTable::Update(QTableWidgetItem const* cell)
{
    if (cell->column() == AutoRemove) {
        dirs_[static_cast<std::size_t>(cell->row())]->setAutoRemove(cell->checkState() == Qt::Checked);
    }
}

} // namespace Zelkor::Gallery

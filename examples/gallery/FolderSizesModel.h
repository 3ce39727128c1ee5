#pragma once

/// \file
/// A table model of the entries of a folder with their sizes.

#include "FolderEntry.h"

#include <QtCore/QAbstractTableModel>
#include <QtGui/QIcon>

#include <map>
#include <vector>

namespace Zelkor
{
namespace Gallery
{

class FolderSizesModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Name, Size, Time, Share, State, ColumnCount };

    enum Role {
        /// The value by which the view sorts a column. For sizes and times, the value is a number instead of a string.
        SortRole = Qt::UserRole,
        /// The size of the entry divided by Total(), from 0 to 1. Invalid if the entry has not been measured or if
        /// Total() is zero.
        ShareRole
    };

    explicit FolderSizesModel(QObject* parent = nullptr);

    void SetEntries(std::vector<FolderEntry> const& entries);

    /// \name Changes of one entry
    /// These functions do not emit dataChanged(): each change affects the Share column of all rows, and there may be
    /// thousands of changes in a second. Call NotifyViews() after several changes.
    /// \{
    void SetMeasuring(int row);
    void SetEntry(int row, FolderEntry const& entry);
    /// \}

    /// Emits dataChanged() for all rows.
    void NotifyViews();

    FolderEntry const& Entry(int row) const { return entries_[static_cast<std::size_t>(row)]; }
    /// Returns the total size in bytes of the entries that have been measured.
    unsigned long long Total() const { return total_; }

    int rowCount(QModelIndex const& parent = QModelIndex()) const override;
    int columnCount(QModelIndex const& parent = QModelIndex()) const override;
    QVariant data(QModelIndex const& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QVariant DisplayText(FolderEntry const& entry, int column) const;
    QVariant SortKey(FolderEntry const& entry, int column) const;
    QVariant ShareOf(FolderEntry const& entry) const;
    QVariant Decoration(FolderEntry const& entry, int column) const;

    std::vector<FolderEntry> entries_;
    unsigned long long total_ = 0;
    std::map<EntryKind, QIcon> const kindIcons_;
    QIcon const warningIcon_;
};

} // namespace Gallery
} // namespace Zelkor

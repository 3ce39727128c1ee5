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
        /// The value that a column is sorted by. Sizes and times are numbers.
        SortRole = Qt::UserRole,
        /// The size of the entry divided by Total(), 0 to 1. Invalid if the entry is not measured or Total() is zero.
        ShareRole
    };

    explicit FolderSizesModel(QObject* parent = nullptr);

    void SetEntries(std::vector<FolderEntry> const& entries);

    /// \name Changes of one entry
    /// Each change affects the shares of all rows. The views are not notified before NotifyViews(), because a folder
    /// may have thousands of changes in a second.
    /// \{
    void SetMeasuring(int row);
    void SetEntry(int row, FolderEntry const& entry);
    /// \}

    /// Emits dataChanged() for all rows.
    void NotifyViews();

    FolderEntry const& Entry(int row) const { return entries_[static_cast<std::size_t>(row)]; }
    /// Returns the size in bytes of all entries measured so far.
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

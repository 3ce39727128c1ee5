#pragma once

/// \file
/// The entries of a measured folder as a table.

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
        /// What a column is sorted by: numbers as numbers.
        SortRole = Qt::UserRole,
        /// The entry's part of the total so far, 0 to 1; invalid when it has no size.
        ShareRole
    };

    explicit FolderSizesModel(QObject* parent = nullptr);

    void SetEntries(std::vector<FolderEntry> const& entries);
    /// \name Changes that the views hear of at the next Announce()
    /// Each one changes the shares of all rows.
    /// \{
    void SetMeasuring(int row);
    void SetEntry(int row, FolderEntry const& entry);
    /// \}
    void Announce();

    FolderEntry const& Entry(int row) const { return entries_[static_cast<std::size_t>(row)]; }
    /// Bytes of all entries that are measured by now.
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

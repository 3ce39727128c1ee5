#include "FolderSizesModel.h"

#include "Texts.h"

#include <QtCore/QLocale>
#include <QtWidgets/QApplication>
#include <QtWidgets/QStyle>

namespace Zelkor::Gallery
{
namespace
{

constexpr std::size_t ToolTipPaths = 20;

QIcon StandardIcon(QStyle::StandardPixmap pixmap)
{
    return QApplication::style()->standardIcon(pixmap);
}

bool HasProblem(FolderEntry const& entry)
{
    return !entry.unmeasured.empty();
}

bool IsNumeric(int column)
{
    return column == FolderSizesModel::Size || column == FolderSizesModel::Time;
}

QString ToolTip(FolderEntry const& entry, int column)
{
    QString text;
    if (column == FolderSizesModel::Name) {
        text = PathText(entry.path);
    } else if (column == FolderSizesModel::Size && entry.state == EntryState::Measured) {
        text = FolderSizesModel::tr("%1 bytes").arg(QLocale().toString(entry.size));
    } else if (column == FolderSizesModel::State) {
        text = PathListText(entry.unmeasured, ToolTipPaths);
    }
    // Use rich text, because Qt may wrap the lines of a plain-text tool tip. Escape the text, because a file name may
    // contain "<".
    return text.isEmpty() ? text : QStringLiteral("<p style='white-space:pre'>%1</p>").arg(text.toHtmlEscaped());
}

} // namespace

FolderSizesModel::FolderSizesModel(QObject* parent)
    : QAbstractTableModel(parent)
    , kindIcons_{
          {EntryKind::File, StandardIcon(QStyle::SP_FileIcon)},
          {EntryKind::Folder, StandardIcon(QStyle::SP_DirIcon)},
          {EntryKind::LinkToFile, StandardIcon(QStyle::SP_FileLinkIcon)},
          {EntryKind::LinkToFolder, StandardIcon(QStyle::SP_DirLinkIcon)},
      }
    , warningIcon_(StandardIcon(QStyle::SP_MessageBoxWarning))
{}

void FolderSizesModel::SetEntries(std::vector<FolderEntry> const& entries)
{
    beginResetModel();
    entries_ = entries;
    total_ = 0;
    endResetModel();
}

void FolderSizesModel::SetMeasuring(int row)
{
    entries_[static_cast<std::size_t>(row)].state = EntryState::Measuring;
}

void FolderSizesModel::SetEntry(int row, FolderEntry const& entry)
{
    FolderEntry& known = entries_[static_cast<std::size_t>(row)];
    total_ += entry.size - known.size;
    known = entry;
}

void FolderSizesModel::NotifyViews()
{
    if (!entries_.empty()) {
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
    }
}

int FolderSizesModel::rowCount(QModelIndex const& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(entries_.size());
}

int FolderSizesModel::columnCount(QModelIndex const& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant FolderSizesModel::data(QModelIndex const& index, int role) const
{
    if (!index.isValid()) {
        return QVariant();
    }
    FolderEntry const& entry = Entry(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return DisplayText(entry, index.column());
    case Qt::DecorationRole:
        return Decoration(entry, index.column());
    case Qt::ToolTipRole:
        return ToolTip(entry, index.column());
    case Qt::TextAlignmentRole:
        return static_cast<int>((IsNumeric(index.column()) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    case SortRole:
        return SortKey(entry, index.column());
    case ShareRole:
        return ShareOf(entry);
    default:
        return QVariant();
    }
}

QVariant FolderSizesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal) {
        return QVariant();
    }
    if (role == Qt::TextAlignmentRole) {
        return static_cast<int>((IsNumeric(section) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    }
    if (role != Qt::DisplayRole) {
        return QVariant();
    }
    QString const titles[ColumnCount] = {tr("Name"), tr("Size"), tr("Time"), tr("Share"), tr("State")};
    return titles[section];
}

QVariant FolderSizesModel::DisplayText(FolderEntry const& entry, int column) const
{
    bool const isMeasured = entry.state == EntryState::Measured;
    switch (column) {
    case Name:
        return NameText(entry);
    case Size:
        return isMeasured ? SizeText(entry.size) : QString();
    case Time:
        return isMeasured ? TimeText(entry.microseconds) : QString();
    case Share: {
        QVariant const share = ShareOf(entry);
        return share.isValid() ? tr("%1 %").arg(QLocale().toString(share.toDouble() * 100, 'f', 1)) : QString();
    }
    case State:
        return StateText(entry);
    default:
        return QVariant();
    }
}

QVariant FolderSizesModel::SortKey(FolderEntry const& entry, int column) const
{
    bool const isMeasured = entry.state == EntryState::Measured;
    switch (column) {
    case Size:
    case Share:
        return isMeasured ? static_cast<qlonglong>(entry.size) : -1LL;
    case Time:
        return isMeasured ? static_cast<qlonglong>(entry.microseconds) : -1LL;
    case State:
        return isMeasured ? static_cast<qlonglong>(entry.unmeasured.size()) : -1 - static_cast<qlonglong>(entry.state);
    default:
        return NameText(entry);
    }
}

QVariant FolderSizesModel::ShareOf(FolderEntry const& entry) const
{
    if (entry.state != EntryState::Measured || total_ == 0) {
        return QVariant();
    }
    return static_cast<double>(entry.size) / static_cast<double>(total_);
}

QVariant FolderSizesModel::Decoration(FolderEntry const& entry, int column) const
{
    if (column == Name) {
        return kindIcons_.at(entry.kind);
    }
    return column == State && HasProblem(entry) ? warningIcon_ : QVariant();
}

} // namespace Zelkor::Gallery

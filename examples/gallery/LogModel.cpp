#include "LogModel.h"

#include "Tone.h"
#include "ToneDelegate.h"

namespace Zelkor::Gallery
{
namespace
{

constexpr int MaxLines = 2000;

Tone ToneOf(google::LogSeverity severity)
{
    switch (severity) {
    case google::GLOG_INFO:
        return Tone::Neutral;
    case google::GLOG_WARNING:
        return Tone::Caution;
    default:
        return Tone::Bad;
    }
}

QString CellText(LogLine const& line, int column)
{
    switch (column) {
    case LogModel::Severity:
        return QLatin1String(google::GetLogSeverityName(line.severity));
    case LogModel::Source:
        return line.source;
    default:
        return line.text;
    }
}

} // namespace

void LogModel::Append(std::vector<LogLine> const& lines)
{
    int const count = rowCount();
    beginInsertRows(QModelIndex(), count, count + static_cast<int>(lines.size()) - 1);
    lines_.insert(lines_.end(), lines.begin(), lines.end());
    endInsertRows();
    DropOldest();
}

void LogModel::DropOldest()
{
    int const excess = rowCount() - MaxLines;
    if (excess <= 0) {
        return;
    }
    beginRemoveRows(QModelIndex(), 0, excess - 1);
    lines_.erase(lines_.begin(), lines_.begin() + excess);
    endRemoveRows();
}

void LogModel::Clear()
{
    beginResetModel();
    lines_.clear();
    endResetModel();
}

int LogModel::rowCount(QModelIndex const& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(lines_.size());
}

int LogModel::columnCount(QModelIndex const& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant LogModel::data(QModelIndex const& index, int role) const
{
    if (!index.isValid()) {
        return QVariant();
    }
    LogLine const& line = lines_[static_cast<std::size_t>(index.row())];
    switch (role) {
    case Qt::DisplayRole:
        return CellText(line, index.column());
    case Qt::ToolTipRole:
        return QStringLiteral("<p>%1</p>").arg(CellText(line, index.column()).toHtmlEscaped());
    case ToneDelegate::ToneRole:
        return static_cast<int>(ToneOf(line.severity));
    default:
        return QVariant();
    }
}

QVariant LogModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return QVariant();
    }
    QString const titles[ColumnCount] = {tr("Severity"), tr("Source"), tr("Text")};
    return titles[section];
}

} // namespace Zelkor::Gallery

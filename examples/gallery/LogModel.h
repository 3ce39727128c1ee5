#pragma once

/// \file
/// A table model of log lines.

#include "GlogSink.h"

#include <QtCore/QAbstractTableModel>

#include <deque>
#include <vector>

namespace Zelkor
{
namespace Gallery
{

/// A table model with a maximum number of log lines. When new lines exceed the maximum, the oldest lines are removed.
class LogModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Severity, Source, Text, ColumnCount };

    using QAbstractTableModel::QAbstractTableModel;

    void Append(std::vector<LogLine> const& lines);
    void Clear();

    int rowCount(QModelIndex const& parent = QModelIndex()) const override;
    int columnCount(QModelIndex const& parent = QModelIndex()) const override;
    QVariant data(QModelIndex const& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    void DropOldest();

    std::deque<LogLine> lines_;
};

} // namespace Gallery
} // namespace Zelkor

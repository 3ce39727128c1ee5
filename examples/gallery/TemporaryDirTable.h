#pragma once

/// \file
/// A table of temporary directories.

#include <Util/TemporaryDir.h>

#include <QtWidgets/QTableWidget>

#include <memory>
#include <vector>

namespace Zelkor
{
namespace Gallery
{

/// A table that shows temporary directories. It owns one `Util::TemporaryDir` for each row.
class TemporaryDirTable : public QTableWidget
{
    Q_OBJECT

public:
    explicit TemporaryDirTable(QWidget* parent = nullptr);

    /// Creates a temporary directory, adds a row for it and selects the row. Returns the directory.
    Util::TemporaryDir& AddDir();

    /// Returns the directory of the selected row. Returns null if no row is selected.
    Util::TemporaryDir* SelectedDir() const;

    /// Counts the files in each directory and shows the numbers in the Files column.
    void CountFiles();

private:
    void AddCells(int row);
    void AddRemoveButton(int row);
    void Remove(Util::TemporaryDir const* dir);
    void Update(QTableWidgetItem const* cell);

    std::vector<std::unique_ptr<Util::TemporaryDir>> dirs_;
};

} // namespace Gallery
} // namespace Zelkor

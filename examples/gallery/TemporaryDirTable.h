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

/// Owns one `Util::TemporaryDir` for each row.
class TemporaryDirTable : public QTableWidget
{
    Q_OBJECT

public:
    explicit TemporaryDirTable(QWidget* parent = nullptr);

    /// Creates a directory in a new row, selects the row and returns the directory.
    Util::TemporaryDir& AddDir();

    /// Returns the directory of the selected row. Returns null if no row is selected.
    Util::TemporaryDir* SelectedDir() const;

    /// Updates the column with the number of files in each directory.
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

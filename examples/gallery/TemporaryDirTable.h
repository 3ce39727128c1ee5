#pragma once

/// \file
/// Temporary directories, each with its object.

#include <Util/TemporaryDir.h>

#include <QtWidgets/QTableWidget>

#include <memory>
#include <vector>

namespace Zelkor
{
namespace Gallery
{

/// Owns a `Util::TemporaryDir` a row.
class TemporaryDirTable : public QTableWidget
{
    Q_OBJECT

public:
    explicit TemporaryDirTable(QWidget* parent = nullptr);

    /// Makes a directory in a new row and selects that.
    Util::TemporaryDir& AddDir();

    /// The directory of the selected row; null when there is none.
    Util::TemporaryDir* Selected() const;

    /// Counts the files in the directories again.
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

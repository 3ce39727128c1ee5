#pragma once

#include "TestCase.h"

#include <QtCore/QTemporaryDir>

#include <optional>
#include <string>

namespace Zelkor::Testing
{

/// Tests that have a folder of their own, emptied after each row. Ordinary users may enter it.
class FolderTestCase : public TestCase
{
    Q_OBJECT

protected:
    void SetUp() override;
    void TearDown() override;

    /// Rows of names that are easily mistaken for something else, in the one column "name", a QByteArray.
    static void NameRows();

    std::string Root() const { return folder_->path().toStdString(); }
    /// The path of \a name in the folder.
    std::string At(std::string const& name) const { return Root() + '/' + name; }
    QString PathAt(QByteArray const& name) const;

private:
    std::optional<QTemporaryDir> folder_;
};

} // namespace Zelkor::Testing

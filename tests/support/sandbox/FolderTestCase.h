#pragma once

#include <support/TestCase.h>

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

    /// Makes in the folder what links may lead to: "target", a file of 321 bytes, and "link-to-target"; "full", a
    /// folder with a "file" of 1000 bytes, and "link-to-full"; "dangling"; "ring1" and "ring2", links to each other; a
    /// "pipe".
    void MakeTargets() const;

private:
    std::optional<QTemporaryDir> folder_;
};

} // namespace Zelkor::Testing

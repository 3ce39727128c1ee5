#pragma once

#include <support/TestCase.h>

#include <QtCore/QMetaType>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <optional>
#include <string>

Q_DECLARE_METATYPE(std::string)

namespace QTest
{

/// Prints strings that QCOMPARE() finds different.
template <>
inline char* toString(std::string const& t)
{
    return qstrdup(t.c_str());
}

} // namespace QTest

namespace Zelkor::Testing
{

/// A test that has an empty folder for each data row. All users may enter the folder.
class FolderTestCase : public TestCase
{
    Q_OBJECT

protected:
    void SetUp() override;
    void TearDown() override;

    /// Adds the column "name" of type QByteArray, with file names that code may misinterpret.
    static void NameRows();

    /// The path of the folder.
    std::string Root() const { return folder_->path().toStdString(); }

    /// Returns the path of the entry \a name in the folder.
    std::string At(std::string const& name) const { return Root() + '/' + name; }

    /// As At(), for functions that take a QString.
    QString PathAt(QByteArray const& name) const;

    /// Creates entries in the folder that links can point to:
    ///   - "target", a file of 321 bytes, and "link-to-target"
    ///   - "full", a folder with a "file" of 1000 bytes, and "link-to-full"
    ///   - "dangling", a link to a missing entry
    ///   - "ring1" and "ring2", links to each other
    ///   - "pipe"
    void MakeTargets() const;

private:
    std::optional<QTemporaryDir> folder_;
};

} // namespace Zelkor::Testing

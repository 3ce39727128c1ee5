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

/// QCOMPARE() calls this function to print std::string values that are not equal.
template <>
inline char* toString(std::string const& t)
{
    return qstrdup(t.c_str());
}

} // namespace QTest

namespace Zelkor::Testing
{

/// Base class for tests that need an empty folder. Each data row gets a new folder, which all users may enter.
class FolderTestCase : public TestCase
{
    Q_OBJECT

protected:
    void SetUp() override;
    void TearDown() override;

    /// Adds the column "name" of type QByteArray to the test data, and rows with unusual file names.
    static void NameRows();

    /// Returns the path of the test's folder.
    std::string Root() const { return folder_->path().toStdString(); }

    /// Returns the path of the entry \a name in the test's folder.
    std::string At(std::string const& name) const { return Root() + '/' + name; }

    /// Returns the same path as At(), for functions that take a QString.
    QString PathAt(QByteArray const& name) const;

    /// Creates the following entries in the test's folder. Tests use them as targets of links:
    ///   - "target", a file of 321 bytes
    ///   - "link-to-target", a link to "target"
    ///   - "full", a folder that contains only the file "file" of 1000 bytes
    ///   - "link-to-full", a link to "full"
    ///   - "dangling", a link to a missing entry
    ///   - "ring1", a link to "ring2", and "ring2", a link to "ring1"
    ///   - "pipe", a named pipe
    void MakeTargets() const;

private:
    std::optional<QTemporaryDir> folder_;
};

} // namespace Zelkor::Testing

// Tests of the member functions of TemporaryDir. Other test programs test the location of the directory. They must
// create each TemporaryDir in a child process; TemporaryDirTestCase.h explains the reason.

#include <support/TestCase.h>
#include <support/sandbox/Folders.h>

#include <Util/TemporaryDir.h>

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <memory>
#include <optional>
#include <string>
#include <type_traits>

using Zelkor::Util::TemporaryDir;
using namespace Zelkor::Testing;

static_assert(std::is_default_constructible_v<TemporaryDir>);
static_assert(!std::is_copy_constructible_v<TemporaryDir> && !std::is_copy_assignable_v<TemporaryDir>);
static_assert(!std::is_move_constructible_v<TemporaryDir> && !std::is_move_assignable_v<TemporaryDir>);
static_assert(!std::is_polymorphic_v<TemporaryDir> && !std::is_final_v<TemporaryDir>);
static_assert(sizeof(TemporaryDir) == sizeof(std::unique_ptr<QTemporaryDir>));
static_assert(std::is_same_v<decltype(&TemporaryDir::isValid), bool (TemporaryDir::*)() const>);
static_assert(std::is_same_v<decltype(&TemporaryDir::errorString), QString (TemporaryDir::*)() const>);
static_assert(std::is_same_v<decltype(&TemporaryDir::autoRemove), bool (TemporaryDir::*)() const>);
static_assert(std::is_same_v<decltype(&TemporaryDir::setAutoRemove), void (TemporaryDir::*)(bool)>);
static_assert(std::is_same_v<decltype(&TemporaryDir::remove), bool (TemporaryDir::*)()>);
static_assert(std::is_same_v<decltype(&TemporaryDir::path), QString (TemporaryDir::*)() const>);
static_assert(std::is_same_v<decltype(&TemporaryDir::filePath), QString (TemporaryDir::*)(QString const&) const>);

class TemporaryDirInterfaceTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void removesTheFolderUnlessAutoRemoveIsOff_data();
    void removesTheFolderUnlessAutoRemoveIsOff();
    void removesTheFolderAsQTemporaryDirDoes();
    void composesFilePathsAsQTemporaryDirDoes_data();
    void composesFilePathsAsQTemporaryDirDoes();
    void rejectsAnAbsoluteFileName();
    void hasNoErrorIfValid();

private:
    void SetUp() override;

    static void MakeTree(std::string const& path);
};

void TemporaryDirInterfaceTest::SetUp()
{
    QCoreApplication::setApplicationName(QStringLiteral("Studio"));
    QCoreApplication::setApplicationVersion(QStringLiteral("2.5.1"));
}

void TemporaryDirInterfaceTest::MakeTree(std::string const& path)
{
    MakeFolders(path + "/a/b/.c");
    MakeFile(path + "/.hidden");
    MakeFile(path + "/a/b/.c/file");
    MakeLink(path + "/a/link", "..");
    MakeLink(path + "/a/dangling", "nowhere");
}

void TemporaryDirInterfaceTest::removesTheFolderUnlessAutoRemoveIsOff_data()
{
    QTest::addColumn<QVector<bool>>("settings");
    QTest::addColumn<bool>("removed");
    QTest::newRow("default") << QVector<bool>() << true;
    QTest::newRow("on") << QVector<bool>{true} << true;
    QTest::newRow("off") << QVector<bool>{false} << false;
    QTest::newRow("off and on again") << QVector<bool>{false, true} << true;
}

void TemporaryDirInterfaceTest::removesTheFolderUnlessAutoRemoveIsOff()
{
    QFETCH(QVector<bool>, settings);
    QFETCH(bool, removed);
    std::optional<TemporaryDir> directory(std::in_place);
    QVERIFY(directory->autoRemove());
    for (bool const setting : settings) {
        directory->setAutoRemove(setting);
        QCOMPARE(directory->autoRemove(), setting);
    }
    std::string const path = directory->path().toStdString();
    MakeTree(path + "/folder");

    directory.reset();

    QCOMPARE(!Exists(path), removed);
}

void TemporaryDirInterfaceTest::removesTheFolderAsQTemporaryDirDoes()
{
    TemporaryDir directory;
    QTemporaryDir reference;
    std::string const path = directory.path().toStdString();
    MakeTree(path + "/folder");

    QVERIFY(directory.remove());

    QVERIFY(!Exists(path));
    QVERIFY(reference.remove());
    QCOMPARE(directory.isValid(), reference.isValid());
    QCOMPARE(directory.path().isEmpty(), reference.path().isEmpty());
    QCOMPARE(directory.errorString(), reference.errorString());
    QCOMPARE(directory.remove(), reference.remove());
}

void TemporaryDirInterfaceTest::composesFilePathsAsQTemporaryDirDoes_data()
{
    QTest::addColumn<QString>("name");
    for (char const* const name : {"", "file", "folder/file", "../file", "%1", " a b ", "\xC3\xA4\xE2\x82\xAC"}) {
        QTest::newRow(name) << QString::fromUtf8(name);
    }
}

void TemporaryDirInterfaceTest::composesFilePathsAsQTemporaryDirDoes()
{
    QFETCH(QString, name);
    TemporaryDir const directory;
    QTemporaryDir const reference;
    QCOMPARE(directory.filePath(name), directory.path() + reference.filePath(name).mid(reference.path().size()));
}

void TemporaryDirInterfaceTest::rejectsAnAbsoluteFileName()
{
    TemporaryDir const directory;
    ExpectQtWarning(QRegularExpression(QStringLiteral("^QTemporaryDir::filePath: Absolute paths are not allowed")));
    QCOMPARE(directory.filePath(QStringLiteral("/file")), QString());
}

void TemporaryDirInterfaceTest::hasNoErrorIfValid()
{
    TemporaryDir const directory;
    QVERIFY(directory.isValid());
    QCOMPARE(directory.errorString(), QString());
    QVERIFY(QDir::isAbsolutePath(directory.path()));
}

ZQTUTIL_TEST_MAIN(TemporaryDirInterfaceTest)
#include "TemporaryDirInterfaceTest.moc"

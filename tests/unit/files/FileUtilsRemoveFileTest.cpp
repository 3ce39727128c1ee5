#include <support/logs/LogCapture.h>
#include <support/sandbox/FolderTestCase.h>
#include <support/sandbox/Folders.h>
#include <support/sandbox/OrdinaryUser.h>

#include <Util/FileUtils.h>

#include <QtCore/QByteArray>
#include <QtCore/QStringList>
#include <QtTest/QtTest>

#include <string>
#include <type_traits>

#include <sys/stat.h>
#include <unistd.h>

using Zelkor::ioPath;
using Zelkor::Util::GetPathSize;
using Zelkor::Util::RemoveFile;
using namespace Zelkor::Testing;

static_assert(std::is_same_v<decltype(&RemoveFile), bool (*)(ioPath)>);

class FileUtilsRemoveFileTest : public Zelkor::Testing::FolderTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void oneEntryIsRemoved_data();
    void oneEntryIsRemoved();
    void linkIsRemovedAndNotItsTarget_data();
    void linkIsRemovedAndNotItsTarget();
    void hardLinkIsRemovedAndNotTheOtherName();
    void whatIsMissingIsNotRemoved_data();
    void whatIsMissingIsNotRemoved();
    void folderWithContentStaysAsItIs();
    void linkToAFolderWithASlashRemovesNothing();
    void pathWithNulRemovesNothing();
    void withoutPermissionNothingIsRemoved_data();
    void withoutPermissionNothingIsRemoved();
    void anyNameIsRemoved_data() { NameRows(); }
    void anyNameIsRemoved();
};

void FileUtilsRemoveFileTest::oneEntryIsRemoved_data()
{
    QTest::addColumn<Maker>("make");
    auto const add = [](char const* name, Maker make) { QTest::newRow(name) << make; };
    add("file", [](std::string const& path) { Write(path, "hello"); });
    add("empty file", [](std::string const& path) { Write(path, ""); });
    add("file that cannot be written", [](std::string const& path) {
        Write(path, "hello");
        Chmod(path, 0444);
    });
    add("empty folder", [](std::string const& path) { MakeFolder(path); });
    add("dangling link", [](std::string const& path) { MakeLink(path, "nowhere"); });
    add("link to itself", [](std::string const& path) { MakeLink(path, path); });
    add("pipe", [](std::string const& path) { Check(mkfifo(path.c_str(), 0644)); });
    add("socket", MakeSocket);
}

void FileUtilsRemoveFileTest::oneEntryIsRemoved()
{
    QFETCH(Maker, make);
    LogCapture const capture;
    MakeFile(At("beside"), 1);
    make(At("it"));

    QVERIFY(RemoveFile(ioPath(At("it"))));

    QVERIFY(!Exists(At("it")));
    QVERIFY(Exists(At("beside")));
    QVERIFY(!RemoveFile(ioPath(At("it"))));
    QCOMPARE(capture.Texts(), QStringList());
}

void FileUtilsRemoveFileTest::linkIsRemovedAndNotItsTarget_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::newRow("a file") << QByteArray("target");
    QTest::newRow("a folder with content") << QByteArray("full");
    QTest::newRow("an empty folder") << QByteArray("empty");
    QTest::newRow("a link") << QByteArray("link-to-target");
    QTest::newRow("a dangling link") << QByteArray("dangling");
}

void FileUtilsRemoveFileTest::linkIsRemovedAndNotItsTarget()
{
    QFETCH(QByteArray, target);
    LogCapture const capture;
    MakeTargets();
    MakeFolder(At("empty"));
    MakeLink(At("link"), target.toStdString());

    QVERIFY(RemoveFile(ioPath(At("link"))));

    QVERIFY(!Exists(At("link")));
    QVERIFY(Exists(At(target.toStdString())));
    QVERIFY(Exists(At("target")));
    QVERIFY(Exists(At("full/file")));
    QCOMPARE(capture.Texts(), QStringList());
}

void FileUtilsRemoveFileTest::hardLinkIsRemovedAndNotTheOtherName()
{
    Write(At("name"), "hello");
    Check(link(At("name").c_str(), At("other").c_str()));

    QVERIFY(RemoveFile(ioPath(At("name"))));

    QVERIFY(!Exists(At("name")));
    QCOMPARE(GetPathSize(ioPath(At("other"))), 5ULL);
}

void FileUtilsRemoveFileTest::whatIsMissingIsNotRemoved_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::newRow("missing") << QByteArray("missing");
    QTest::newRow("missing below missing") << QByteArray("missing/missing");
    QTest::newRow("below a file") << QByteArray("file/name");
    QTest::newRow("file with a slash") << QByteArray("file/");
    QTest::newRow("name that is too long") << QByteArray(256, 'x');
    QTest::newRow("path that is too long") << QByteArray("xx/").repeated(1500);
    QTest::newRow("empty path") << QByteArray();
}

void FileUtilsRemoveFileTest::whatIsMissingIsNotRemoved()
{
    QFETCH(QByteArray, path);
    LogCapture const capture;
    Write(At("file"), "hello");
    AtFolder const here(At(""));

    QVERIFY(!RemoveFile(ioPath(path.toStdString())));

    QVERIFY(Exists(At("file")));
    QCOMPARE(capture.Texts(), QStringList());
}

void FileUtilsRemoveFileTest::folderWithContentStaysAsItIs()
{
    LogCapture const capture;
    MakeFolder(At("folder"));
    Write(At("folder/.hidden"), "hello");
    MakeFolder(At("folder/empty"));

    QVERIFY(!RemoveFile(ioPath(At("folder"))));

    QVERIFY(Exists(At("folder/.hidden")));
    QVERIFY(Exists(At("folder/empty")));
    QCOMPARE(capture.Texts(), QStringList());
}

void FileUtilsRemoveFileTest::linkToAFolderWithASlashRemovesNothing()
{
    LogCapture const capture;
    MakeFolder(At("empty"));
    MakeLink(At("link"), "empty");

    QVERIFY(!RemoveFile(ioPath(At("link/"))));

    QVERIFY(Exists(At("link")));
    QVERIFY(Exists(At("empty")));
    QCOMPARE(capture.Texts(), QStringList());
}

void FileUtilsRemoveFileTest::pathWithNulRemovesNothing()
{
    LogCapture const capture;
    Write(At("file"), "hello");
    MakeFolder(At("empty"));

    QVERIFY(!RemoveFile(ioPath(At(std::string("file\0", 5)))));
    QVERIFY(!RemoveFile(ioPath(At(std::string("file\0more", 9)))));
    QVERIFY(!RemoveFile(ioPath(At(std::string("empty\0/x", 8)))));

    QVERIFY(Exists(At("file")));
    QVERIFY(Exists(At("empty")));
    QCOMPARE(capture.Texts(), QStringList());
}

void FileUtilsRemoveFileTest::withoutPermissionNothingIsRemoved_data()
{
    QTest::addColumn<uint>("mode");
    QTest::newRow("folder cannot be written") << 0555U;
    QTest::newRow("folder cannot be searched") << 0444U;
    QTest::newRow("folder is closed") << 0000U;
}

void FileUtilsRemoveFileTest::withoutPermissionNothingIsRemoved()
{
    QFETCH(uint, mode);
    MakeFolder(At("folder"));
    Write(At("folder/file"), "hello");
    MakeFolder(At("folder/empty"));
    Chmod(At("folder"), mode);

    QByteArray const result = RunAsOrdinaryUser([&] {
        LogCapture const capture;
        bool const removed = RemoveFile(ioPath(At("folder/file"))) || RemoveFile(ioPath(At("folder/empty")));
        return QByteArray::number(removed) + ' ' + QByteArray::number(capture.Lines().size());
    });

    QCOMPARE(result, QByteArray("0 0"));
    Chmod(At("folder"), 0755);
    QVERIFY(Exists(At("folder/file")));
    QVERIFY(Exists(At("folder/empty")));
}

void FileUtilsRemoveFileTest::anyNameIsRemoved()
{
    QFETCH(QByteArray, name);
    LogCapture const capture;
    std::string const folder = At(name.toStdString());
    std::string const file = folder + '/' + name.toStdString();
    MakeFolder(folder);
    Write(file, "hello");

    QVERIFY(RemoveFile(ioPath(file)));
    QVERIFY(!Exists(file));
    QVERIFY(RemoveFile(ioPath(folder)));
    QVERIFY(!Exists(folder));
    QCOMPARE(capture.Texts(), QStringList());
}

ZQTUTIL_TEST_MAIN(FileUtilsRemoveFileTest)
#include "FileUtilsRemoveFileTest.moc"

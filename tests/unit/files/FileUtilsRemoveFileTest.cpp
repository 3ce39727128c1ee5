#include <support/logs/LogCapture.h>
#include <support/sandbox/FolderTestCase.h>
#include <support/sandbox/Folders.h>
#include <support/sandbox/Users.h>

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
    void removesOneEntry_data();
    void removesOneEntry();
    void removesALinkButNotItsTarget_data();
    void removesALinkButNotItsTarget();
    void removesOneHardLinkOnly();
    void returnsFalseForAMissingEntry_data();
    void returnsFalseForAMissingEntry();
    void keepsAFolderWithContent();
    void keepsALinkToAFolderWithASlash();
    void doesNotTruncateAPathAtANulCharacter();
    void removesNothingWithoutPermission_data();
    void removesNothingWithoutPermission();
    void removesEntriesWithAnyName_data() { NameRows(); }
    void removesEntriesWithAnyName();
};

void FileUtilsRemoveFileTest::removesOneEntry_data()
{
    QTest::addColumn<Maker>("make");
    auto const add = [](char const* name, Maker make) { QTest::newRow(name) << make; };
    add("file", [](std::string const& path) { WriteFile(path, "hello"); });
    add("empty file", [](std::string const& path) { WriteFile(path, ""); });
    add("read-only file", [](std::string const& path) {
        WriteFile(path, "hello");
        Chmod(path, 0444);
    });
    add("empty folder", [](std::string const& path) { MakeFolder(path); });
    add("dangling link", [](std::string const& path) { MakeLink(path, "nowhere"); });
    add("link to itself", [](std::string const& path) { MakeLink(path, path); });
    add("pipe", [](std::string const& path) { MakePipe(path); });
    add("socket", MakeSocket);
}

void FileUtilsRemoveFileTest::removesOneEntry()
{
    QFETCH(Maker, make);
    LogCapture const capture;
    MakeFile(At("other"), 1);
    make(At("entry"));

    QVERIFY(RemoveFile(ioPath(At("entry"))));

    QVERIFY(!Exists(At("entry")));
    QVERIFY(Exists(At("other")));
    QVERIFY(!RemoveFile(ioPath(At("entry"))));
    QCOMPARE(capture.Texts(), QStringList());
}

void FileUtilsRemoveFileTest::removesALinkButNotItsTarget_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::newRow("file") << QByteArray("target");
    QTest::newRow("folder with content") << QByteArray("full");
    QTest::newRow("empty folder") << QByteArray("empty");
    QTest::newRow("link") << QByteArray("link-to-target");
    QTest::newRow("dangling link") << QByteArray("dangling");
}

void FileUtilsRemoveFileTest::removesALinkButNotItsTarget()
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

void FileUtilsRemoveFileTest::removesOneHardLinkOnly()
{
    WriteFile(At("name"), "hello");
    MakeHardLink(At("other"), At("name"));

    QVERIFY(RemoveFile(ioPath(At("name"))));

    QVERIFY(!Exists(At("name")));
    QCOMPARE(GetPathSize(ioPath(At("other"))), 5ULL);
}

void FileUtilsRemoveFileTest::returnsFalseForAMissingEntry_data()
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

void FileUtilsRemoveFileTest::returnsFalseForAMissingEntry()
{
    QFETCH(QByteArray, path);
    LogCapture const capture;
    WriteFile(At("file"), "hello");
    WorkingFolder const current(At(""));

    QVERIFY(!RemoveFile(ioPath(path.toStdString())));

    QVERIFY(Exists(At("file")));
    QCOMPARE(capture.Texts(), QStringList());
}

void FileUtilsRemoveFileTest::keepsAFolderWithContent()
{
    LogCapture const capture;
    MakeFolder(At("folder"));
    WriteFile(At("folder/.hidden"), "hello");
    MakeFolder(At("folder/empty"));

    QVERIFY(!RemoveFile(ioPath(At("folder"))));

    QVERIFY(Exists(At("folder/.hidden")));
    QVERIFY(Exists(At("folder/empty")));
    QCOMPARE(capture.Texts(), QStringList());
}

void FileUtilsRemoveFileTest::keepsALinkToAFolderWithASlash()
{
    LogCapture const capture;
    MakeFolder(At("empty"));
    MakeLink(At("link"), "empty");

    QVERIFY(!RemoveFile(ioPath(At("link/"))));

    QVERIFY(Exists(At("link")));
    QVERIFY(Exists(At("empty")));
    QCOMPARE(capture.Texts(), QStringList());
}

void FileUtilsRemoveFileTest::doesNotTruncateAPathAtANulCharacter()
{
    LogCapture const capture;
    WriteFile(At("file"), "hello");
    MakeFolder(At("empty"));

    QVERIFY(!RemoveFile(ioPath(At(std::string("file\0", 5)))));
    QVERIFY(!RemoveFile(ioPath(At(std::string("file\0more", 9)))));
    QVERIFY(!RemoveFile(ioPath(At(std::string("empty\0/x", 8)))));

    QVERIFY(Exists(At("file")));
    QVERIFY(Exists(At("empty")));
    QCOMPARE(capture.Texts(), QStringList());
}

void FileUtilsRemoveFileTest::removesNothingWithoutPermission_data()
{
    QTest::addColumn<uint>("mode");
    QTest::newRow("no write permission") << 0555U;
    QTest::newRow("no search permission") << 0444U;
    QTest::newRow("no permissions") << 0000U;
}

void FileUtilsRemoveFileTest::removesNothingWithoutPermission()
{
    QFETCH(uint, mode);
    MakeFolder(At("folder"));
    WriteFile(At("folder/file"), "hello");
    MakeFolder(At("folder/empty"));
    Chmod(At("folder"), mode);

    QVector<int> const result = RunAsOrdinaryUser([&] {
        LogCapture const capture;
        bool const isFileRemoved = RemoveFile(ioPath(At("folder/file")));
        bool const isFolderRemoved = RemoveFile(ioPath(At("folder/empty")));
        return QVector<int>{isFileRemoved, isFolderRemoved, capture.Lines().size()};
    });

    QCOMPARE(result, (QVector<int>{false, false, 0}));
    Chmod(At("folder"), 0755);
    QVERIFY(Exists(At("folder/file")));
    QVERIFY(Exists(At("folder/empty")));
}

void FileUtilsRemoveFileTest::removesEntriesWithAnyName()
{
    QFETCH(QByteArray, name);
    LogCapture const capture;
    std::string const folder = At(name.toStdString());
    std::string const file = folder + '/' + name.toStdString();
    MakeFolder(folder);
    WriteFile(file, "hello");

    QVERIFY(RemoveFile(ioPath(file)));
    QVERIFY(!Exists(file));
    QVERIFY(RemoveFile(ioPath(folder)));
    QVERIFY(!Exists(folder));
    QCOMPARE(capture.Texts(), QStringList());
}

ZQTUTIL_TEST_MAIN(FileUtilsRemoveFileTest)
#include "FileUtilsRemoveFileTest.moc"

// Tests of the result and the log messages of GetPathSize(), with trees that do not change while the function runs.

#include <support/logs/LogCapture.h>
#include <support/sandbox/FolderTestCase.h>
#include <support/sandbox/Folders.h>
#include <unit/files/MeasuredSize.h>

#include <Util/FileUtils.h>

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayList>
#include <QtTest/QtTest>

#include <string>
#include <type_traits>

#include <sys/stat.h>
#include <unistd.h>

using Zelkor::ioPath;
using Zelkor::Util::GetPathSize;
using namespace Zelkor::Testing;

static_assert(std::is_same_v<decltype(&GetPathSize), unsigned long long (*)(ioPath const&)>);
static_assert(sizeof(GetPathSize({})) == 8);

class FileUtilsSizeTest : public Zelkor::Testing::FolderTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void measuresEntriesOfAllKinds_data() { EntryRows(); }
    void measuresEntriesOfAllKinds();
    void measuresEntriesOfAllKindsInAFolder_data() { EntryRows(); }
    void measuresEntriesOfAllKindsInAFolder();
    void logsAPathWithoutAnEntry_data();
    void logsAPathWithoutAnEntry();
    void logsOneErrorForEachPathWithoutASize();
    void logsADevice();
    void doesNotTruncateAPathAtANulCharacter_data();
    void doesNotTruncateAPathAtANulCharacter();

    void returnsZeroForAnEmptyFolder();
    void addsTheSizesOfAllFilesBelowAFolder();
    void includesHiddenFiles();
    void countsEachHardLink();
    void addsMoreThanFourGibibytes();
    void doesNotFollowALinkToAFolder();
    void followsALinkToAFolderWithASlash();

    void measuresEntriesWithAnyName_data() { NameRows(); }
    void measuresEntriesWithAnyName();
    void logsAnyNameByteForByte_data() { NameRows(); }
    void logsAnyNameByteForByte();
    void logsTheStartPathAndTheNamesBelowIt_data();
    void logsTheStartPathAndTheNamesBelowIt();

private:
    static void EntryRows();
};

void FileUtilsSizeTest::EntryRows()
{
    QTest::addColumn<Maker>("make");
    QTest::addColumn<Bytes>("bytes");
    QTest::addColumn<bool>("sizeless");

    struct Row
    {
        char const* name;
        Maker make;
        Bytes bytes;
    };
    // clang-format off
    Row const withSize[] = {
        {"file", [](std::string const& path) { WriteFile(path, "hello"); }, 5},
        {"empty file", [](std::string const& path) { WriteFile(path, ""); }, 0},
        {"file of one byte", [](std::string const& path) { WriteFile(path, std::string(1, '\0')); }, 1},
        {"sparse file", [](std::string const& path) { MakeFile(path, 0x7fff'ffff'ffLL); }, 0x7fff'ffff'ffULL},
        {"file of 4 GiB", [](std::string const& path) { MakeFile(path, 0x1'0000'0000LL); }, 0x1'0000'0000ULL},
        {"link to a file", [](std::string const& path) { MakeLink(path, "../target"); }, 321},
        {"link to a link to a file", [](std::string const& path) { MakeLink(path, "../link-to-target"); }, 321},
    };
    Row const sizeless[] = {
        {"dangling link", [](std::string const& path) { MakeLink(path, "nowhere"); }, 0},
        {"link to a dangling link", [](std::string const& path) { MakeLink(path, "../dangling"); }, 0},
        {"link to itself", [](std::string const& path) { MakeLink(path, path); }, 0},
        {"link to a loop of links", [](std::string const& path) { MakeLink(path, "../ring1"); }, 0},
        {"link to a folder", [](std::string const& path) { MakeLink(path, "../full"); }, 0},
        {"link to a link to a folder", [](std::string const& path) { MakeLink(path, "../link-to-full"); }, 0},
        {"link to the parent folder", [](std::string const& path) { MakeLink(path, ".."); }, 0},
        {"link to a device", [](std::string const& path) { MakeLink(path, "/dev/null"); }, 0},
        {"pipe", [](std::string const& path) { MakePipe(path); }, 0},
        {"link to a pipe", [](std::string const& path) { MakeLink(path, "../pipe"); }, 0},
        {"socket", MakeSocket, 0},
    };
    // clang-format on
    for (Row const& row : withSize) {
        QTest::newRow(row.name) << row.make << row.bytes << false;
    }
    for (Row const& row : sizeless) {
        QTest::newRow(row.name) << row.make << row.bytes << true;
    }
}

void FileUtilsSizeTest::measuresEntriesOfAllKinds()
{
    QFETCH(Maker, make);
    QFETCH(Bytes, bytes);
    QFETCH(bool, sizeless);
    MakeTargets();
    MakeFolder(At("around"));
    std::string const path = At("around/it");
    make(path);

    Measured const measured = Measure(path);

    QCOMPARE(measured.bytes, bytes);
    QCOMPARE(measured.sizeless, sizeless ? QByteArrayList{QByteArray::fromStdString(path)} : QByteArrayList());
}

void FileUtilsSizeTest::measuresEntriesOfAllKindsInAFolder()
{
    QFETCH(Maker, make);
    QFETCH(Bytes, bytes);
    QFETCH(bool, sizeless);
    MakeTargets();
    MakeFolder(At("around"));
    MakeFile(At("around/a"), 7);
    make(At("around/it"));
    MakeFile(At("around/z"), 11);

    Measured const measured = Measure(At("around"));

    QCOMPARE(measured.bytes, bytes + 18);
    QCOMPARE(measured.sizeless,
             sizeless ? QByteArrayList{QByteArray::fromStdString(At("around/it"))} : QByteArrayList());
}

void FileUtilsSizeTest::logsAPathWithoutAnEntry_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("missing") << QByteArray("missing");
    QTest::newRow("missing below missing") << QByteArray("missing/missing");
    QTest::newRow("below a file") << QByteArray("file/name");
    QTest::newRow("file with a slash") << QByteArray("file/");
    QTest::newRow("missing with a slash") << QByteArray("missing/");
    QTest::newRow("name that is too long") << QByteArray(256, 'x');
    QTest::newRow("path that is too long") << QByteArray("xx/").repeated(1500);
}

void FileUtilsSizeTest::logsAPathWithoutAnEntry()
{
    QFETCH(QByteArray, name);
    MakeFile(At("file"), 5);
    std::string const path = At(name.toStdString());

    Measured const measured = Measure(path);

    QCOMPARE(measured.bytes, 0ULL);
    QCOMPARE(measured.sizeless, QByteArrayList{QByteArray::fromStdString(path)});
}

void FileUtilsSizeTest::logsOneErrorForEachPathWithoutASize()
{
    LogCapture const capture;

    QCOMPARE(GetPathSize(ioPath("/no/such/file")), 0ULL);
    QCOMPARE(GetPathSize(ioPath()), 0ULL);

    QVector<LogLine> const lines = capture.Lines();
    QCOMPARE(lines.size(), 2);
    for (LogLine const& line : lines) {
        QCOMPARE(line.severity, static_cast<google::LogSeverity>(google::GLOG_ERROR));
        QCOMPARE(line.file, QStringLiteral("Util/FileUtils.cpp"));
        QVERIFY(line.line > 0);
    }
    QCOMPARE(lines[0].text, QStringLiteral("Erorr get size for: /no/such/file"));
    QCOMPARE(lines[1].text, QStringLiteral("Erorr get size for: "));
}

void FileUtilsSizeTest::logsADevice()
{
    Measured const measured = Measure("/dev/null");
    QCOMPARE(measured.bytes, 0ULL);
    QCOMPARE(measured.sizeless, QByteArrayList{"/dev/null"});
}

void FileUtilsSizeTest::doesNotTruncateAPathAtANulCharacter_data()
{
    QTest::addColumn<QByteArray>("tail");
    QTest::newRow("after a file") << QByteArray("file\0", 5);
    QTest::newRow("between a file and further text") << QByteArray("file\0more", 9);
    QTest::newRow("after a folder") << QByteArray("folder\0/file", 12);
    QTest::newRow("after a missing name") << QByteArray("missing\0", 8);
}

void FileUtilsSizeTest::doesNotTruncateAPathAtANulCharacter()
{
    QFETCH(QByteArray, tail);
    MakeFile(At("file"), 5);
    MakeFolder(At("folder"));
    MakeFile(At("folder/file"), 5);
    std::string const path = At(tail.toStdString());

    Measured const measured = Measure(path);

    QCOMPARE(measured.bytes, 0ULL);
    QCOMPARE(measured.sizeless, QByteArrayList{QByteArray::fromStdString(path)});
}

void FileUtilsSizeTest::returnsZeroForAnEmptyFolder()
{
    MakeFolder(At("empty"));
    MakeFolder(At("empty/empty"));
    for (char const* const name : {"empty", "empty/empty"}) {
        Measured const measured = Measure(At(name));
        QCOMPARE(measured.bytes, 0ULL);
        QCOMPARE(measured.sizeless, QByteArrayList());
    }
}

void FileUtilsSizeTest::addsTheSizesOfAllFilesBelowAFolder()
{
    MakeFolder(At("a"));
    MakeFile(At("a/1"), 1);
    MakeFile(At("a/2"), 20);
    MakeFolder(At("a/b"));
    MakeFile(At("a/b/1"), 300);
    MakeFolder(At("a/b/empty"));
    MakeFolder(At("a/b/c"));
    MakeFile(At("a/b/c/1"), 4000);
    MakeFolder(At("a/d"));
    MakeFile(At("a/d/1"), 50000);
    MakeFile(At("other"), 600000);

    Measured const measured = Measure(At("a"));

    QCOMPARE(measured.bytes, 54321ULL);
    QCOMPARE(measured.sizeless, QByteArrayList());
}

void FileUtilsSizeTest::includesHiddenFiles()
{
    MakeFile(At(".hidden"), 1);
    MakeFile(At("..two-dots"), 20);
    MakeFile(At("..."), 300);
    MakeFolder(At(".folder"));
    MakeFile(At(".folder/.file"), 4000);
    MakeFolder(At("...."));
    MakeFile(At("..../file"), 50000);

    Measured const measured = Measure(At(""));

    QCOMPARE(measured.bytes, 54321ULL);
    QCOMPARE(measured.sizeless, QByteArrayList());
}

void FileUtilsSizeTest::countsEachHardLink()
{
    MakeFolder(At("folder"));
    MakeFile(At("name"), 11);
    for (char const* const name : {"second", "folder/third"}) {
        MakeHardLink(At(name), At("name"));
    }
    QCOMPARE(Measure(At("")).bytes, 33ULL);
    QCOMPARE(Measure(At("folder")).bytes, 11ULL);
}

void FileUtilsSizeTest::addsMoreThanFourGibibytes()
{
    MakeFolder(At("below"));
    MakeFile(At("1"), 0xffff'ffffLL);
    MakeFile(At("below/2"), 0xffff'ffffLL);
    MakeFile(At("below/3"), 0x123'4567'89abLL);

    QCOMPARE(Measure(At("")).bytes, 0x125'4567'89a9ULL);
    QCOMPARE(Measure(At("below")).bytes, 0x124'4567'89aaULL);
}

void FileUtilsSizeTest::doesNotFollowALinkToAFolder()
{
    MakeFolder(At("start"));
    MakeFile(At("start/file"), 3);
    MakeFolder(At("other"));
    MakeLink(At("other/dangling"), "nowhere");
    MakeLink(At("start/other"), "../other");
    MakeLink(At("start/around"), "../start");

    Measured const measured = Measure(At("start"));

    QCOMPARE(measured.bytes, 3ULL);
    QCOMPARE(measured.sizeless, (QByteArrayList{QByteArray::fromStdString(At("start/around")),
                                                QByteArray::fromStdString(At("start/other"))}));
}

void FileUtilsSizeTest::followsALinkToAFolderWithASlash()
{
    MakeFolder(At("folder"));
    MakeFile(At("folder/file"), 9);
    MakeLink(At("link"), "folder");

    Measured const measured = Measure(At("link/"));

    QCOMPARE(measured.bytes, 9ULL);
    QCOMPARE(measured.sizeless, QByteArrayList());
}

void FileUtilsSizeTest::measuresEntriesWithAnyName()
{
    QFETCH(QByteArray, name);
    std::string const folder = At(name.toStdString());
    std::string const file = folder + '/' + name.toStdString();
    MakeFolder(folder);
    MakeFile(file, 17);

    for (std::string const& start : {file, folder, At("")}) {
        Measured const measured = Measure(start);
        QCOMPARE(measured.bytes, 17ULL);
        QCOMPARE(measured.sizeless, QByteArrayList());
    }
}

void FileUtilsSizeTest::logsAnyNameByteForByte()
{
    QFETCH(QByteArray, name);
    std::string const folder = At(name.toStdString());
    std::string const dangling = folder + '/' + name.toStdString();
    MakeFolder(folder);
    MakeLink(dangling, "nowhere");

    for (std::string const& start : {dangling, folder}) {
        Measured const measured = Measure(start);
        QCOMPARE(measured.bytes, 0ULL);
        QCOMPARE(measured.sizeless, QByteArrayList{QByteArray::fromStdString(dangling)});
    }
}

void FileUtilsSizeTest::logsTheStartPathAndTheNamesBelowIt_data()
{
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<QByteArray>("logged");
    // The test function replaces "%" with Root(), the absolute path of the test's folder.
    QTest::newRow("absolute") << QByteArray("%/a") << QByteArray("%/a/b/gone");
    QTest::newRow("absolute with a slash") << QByteArray("%/a/") << QByteArray("%/a/b/gone");
    QTest::newRow("absolute with two slashes") << QByteArray("%/a//") << QByteArray("%/a//b/gone");
    QTest::newRow("two slashes inside") << QByteArray("%//a") << QByteArray("%//a/b/gone");
    QTest::newRow("relative") << QByteArray("a") << QByteArray("a/b/gone");
    QTest::newRow("relative with a slash") << QByteArray("a/") << QByteArray("a/b/gone");
    QTest::newRow("relative to the current folder") << QByteArray("./a") << QByteArray("./a/b/gone");
    QTest::newRow("current folder") << QByteArray(".") << QByteArray("./a/b/gone");
    QTest::newRow("current folder with a slash") << QByteArray("./") << QByteArray("./a/b/gone");
    QTest::newRow("parent folder") << QByteArray("a/..") << QByteArray("a/../a/b/gone");
}

void FileUtilsSizeTest::logsTheStartPathAndTheNamesBelowIt()
{
    QFETCH(QByteArray, start);
    QFETCH(QByteArray, logged);
    QByteArray const root = QByteArray::fromStdString(Root());
    MakeFolder(At("a"));
    MakeFolder(At("a/b"));
    MakeLink(At("a/b/gone"), "nowhere");
    MakeFile(At("a/b/file"), 9);
    WorkingFolder const current(At(""));

    Measured const measured = Measure(start.replace('%', root).toStdString());

    QCOMPARE(measured.bytes, 9ULL);
    QCOMPARE(measured.sizeless, QByteArrayList{logged.replace('%', root)});
}

ZQTUTIL_TEST_MAIN(FileUtilsSizeTest)
#include "FileUtilsSizeTest.moc"

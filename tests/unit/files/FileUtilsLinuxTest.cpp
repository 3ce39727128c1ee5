// Tests of the functions with a separate implementation for Linux: CanReadFileIn() and GetAvailableDiskSpace().

#include <support/overrides/FixedVolume.h>
#include <support/sandbox/FolderTestCase.h>
#include <support/sandbox/Folders.h>
#include <support/sandbox/Mounts.h>
#include <support/sandbox/Users.h>

#include <Util/FileUtils.h>

#include <QtTest/QtTest>

#include <limits>
#include <string>
#include <type_traits>

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

using Zelkor::ioPath;
using namespace Zelkor::Testing;
using namespace Zelkor::Util;

static_assert(std::is_same_v<decltype(&CanReadFileIn), bool (*)(QString const&)>);
static_assert(std::is_same_v<decltype(&GetAvailableDiskSpace), long long (*)(ioPath const&)>);
static_assert(sizeof(GetAvailableDiskSpace({})) == 8);

class FileUtilsLinuxTest : public Zelkor::Testing::FolderTestCase
{
    Q_OBJECT

private Q_SLOTS:
    // Tests of CanReadFileIn()
    void checksReadAndSearchPermission_data();
    void checksReadAndSearchPermission();
    void allowsRootToReadInAnyFolder();

    // Tests of GetAvailableDiskSpace()
    void returnsTheFreeSpaceOfAVolume_data();
    void returnsTheFreeSpaceOfAVolume();
    void returnsTheSpaceForUnprivilegedUsers_data();
    void returnsTheSpaceForUnprivilegedUsers();
    void limitsTheFreeSpaceOfAHugeVolume();
    void returnsZeroForAPathWithANulByte_data();
    void returnsZeroForAPathWithANulByte();
    void returnsZeroForAPathThatCannotBeRead_data();
    void returnsZeroForAPathThatCannotBeRead();
};

// Tests of CanReadFileIn()

void FileUtilsLinuxTest::checksReadAndSearchPermission_data()
{
    QTest::addColumn<uid_t>("owner");
    QTest::addColumn<gid_t>("group");
    QTest::addColumn<uint>("mode");
    QTest::addColumn<bool>("can");
    QTest::newRow("open to others") << Them << TheirGroup << 0005U << true;
    QTest::newRow("not open to others") << Them << TheirGroup << 0772U << false;
    QTest::newRow("list permission only") << Them << TheirGroup << 0774U << false;
    QTest::newRow("search permission only") << Them << TheirGroup << 0771U << false;
    QTest::newRow("open to the group") << Them << OurGroup << 0050U << true;
    QTest::newRow("open to all but the group") << Them << OurGroup << 0707U << false;
    QTest::newRow("own") << Us << OurGroup << 0500U << true;
    QTest::newRow("own, open to all but the owner") << Us << OurGroup << 0277U << false;
}

void FileUtilsLinuxTest::checksReadAndSearchPermission()
{
    QFETCH(uid_t, owner);
    QFETCH(gid_t, group);
    QFETCH(uint, mode);
    QFETCH(bool, can);
    MakeFolder(At("folder"));
    MakeLink(At("link"), "folder");
    SetOwner(At("folder"), owner, group);
    Chmod(At("folder"), mode);

    QVector<bool> const found = RunAs({Us, Us, OurGroup, OurGroup, {}}, [&] {
        return QVector<bool>{CanReadFileIn(PathAt("folder")), CanReadFileIn(PathAt("link/"))};
    });

    QCOMPARE(found, (QVector<bool>{can, can}));
}

void FileUtilsLinuxTest::allowsRootToReadInAnyFolder()
{
    MakeFolder(At("folder"));
    MakeFile(At("file"));
    MakeFile(At("open-file"));
    MakePipe(At("pipe"));
    MakeLink(At("link"), "folder");
    MakeLink(At("link-to-file"), "file");
    MakeLink(At("dangling"), "nowhere");
    Chmod(At("open-file"), 0777);
    Chmod(At("folder"), 0000);
    for (char const* const name : {"folder", "folder/", "link"}) {
        QVERIFY2(CanReadFileIn(PathAt(name)), name);
    }
    for (char const* const name : {"missing", "dangling", "file", "open-file", "link-to-file", "pipe"}) {
        QVERIFY2(!CanReadFileIn(PathAt(name)), name);
    }
}

// Tests of GetAvailableDiskSpace()

void FileUtilsLinuxTest::returnsTheFreeSpaceOfAVolume_data()
{
    QTest::addColumn<QByteArray>("options");
    QTest::addColumn<qlonglong>("size");
    QTest::newRow("1 MiB") << QByteArray("size=1m") << 0x10'0000LL;
    QTest::newRow("more than 4 GiB") << QByteArray("size=5g") << 0x1'4000'0000LL;
    QTest::newRow("64 PiB") << QByteArray("nr_blocks=0x100000000000") << 0x100'0000'0000'0000LL;
}

void FileUtilsLinuxTest::returnsTheFreeSpaceOfAVolume()
{
    QFETCH(QByteArray, options);
    QFETCH(qlonglong, size);
    MakeFolder(At("volume"));
    MakeLink(At("link"), "volume");

    QVector<qlonglong> const used = RunWithMount(At("volume"), options.constData(), [&] {
        WorkingFolder const current(At("volume"));
        auto const usedSpace = [&](std::string const& path) { return size - GetAvailableDiskSpace(ioPath(path)); };
        QVector<qlonglong> result{usedSpace(At("volume")), usedSpace(At("link")), usedSpace(".")};
        MakeFile("file");
        result << usedSpace(At("volume")) << usedSpace(At("volume/file")) << usedSpace("file");
        MakeFile("second");
        result << usedSpace(At("volume"));
        return result;
    });

    QCOMPARE(used, (QVector<qlonglong>{0, 0, 0, 4096, 4096, 4096, 8192}));
}

void FileUtilsLinuxTest::returnsTheSpaceForUnprivilegedUsers_data()
{
    QTest::addColumn<qlonglong>("blocksForUsers");
    QTest::addColumn<qlonglong>("blockSize");
    QTest::addColumn<qlonglong>("space");
    QTest::newRow("some blocks") << 3LL << 512LL << 1536LL;
    QTest::newRow("no blocks") << 0LL << 4096LL << 0LL;
    QTest::newRow("more than 32 bits of blocks") << 0x2'0000'0000LL << 4096LL << 0x2000'0000'0000LL;
    QTest::newRow("more than 32 bits of bytes") << 0x0fff'ffffLL << 4096LL << 0xff'ffff'f000LL;
    QTest::newRow("maximum") << std::numeric_limits<qlonglong>::max() << 1LL << std::numeric_limits<qlonglong>::max();
    QTest::newRow("8 EiB") << 0x40'0000'0000'0000LL << 512LL << std::numeric_limits<qlonglong>::max();
    QTest::newRow("64 EiB") << 0x40'0000'0000'0000LL << 4096LL << std::numeric_limits<qlonglong>::max();
    QTest::newRow("maximum number of blocks") << -1LL << 4096LL << std::numeric_limits<qlonglong>::max();
}

void FileUtilsLinuxTest::returnsTheSpaceForUnprivilegedUsers()
{
    QFETCH(qlonglong, blocksForUsers);
    QFETCH(qlonglong, blockSize);
    QFETCH(qlonglong, space);
    struct statvfs volume = {};
    volume.f_bavail = static_cast<fsblkcnt_t>(blocksForUsers);
    volume.f_bfree = volume.f_bavail + 4;
    volume.f_blocks = volume.f_bavail + 10;
    volume.f_frsize = static_cast<unsigned long>(blockSize);
    volume.f_bsize = volume.f_frsize * 8;
    FixedVolume const fixed(volume);

    QCOMPARE(GetAvailableDiskSpace(ioPath(Root())), space);
}

void FileUtilsLinuxTest::limitsTheFreeSpaceOfAHugeVolume()
{
    MakeFolder(At("volume"));

    // The volume has 10 EiB.
    qlonglong const space = RunWithMount(At("volume"), "nr_blocks=0xA000000000000",
                                         [&] { return qlonglong{GetAvailableDiskSpace(ioPath(At("volume")))}; });

    QCOMPARE(space, std::numeric_limits<qlonglong>::max());
}

void FileUtilsLinuxTest::returnsZeroForAPathWithANulByte_data()
{
    QTest::addColumn<QByteArray>("tail");
    QTest::newRow("at the end") << QByteArray(1, '\0');
    QTest::newRow("before a name") << QByteArray("\0name", 5);
}

void FileUtilsLinuxTest::returnsZeroForAPathWithANulByte()
{
    QFETCH(QByteArray, tail);
    QCOMPARE(GetAvailableDiskSpace(ioPath(Root() + tail.toStdString())), 0LL);
}

void FileUtilsLinuxTest::returnsZeroForAPathThatCannotBeRead_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("missing") << QByteArray("missing");
    QTest::newRow("below missing") << QByteArray("missing/below");
    QTest::newRow("dangling link") << QByteArray("dangling");
    QTest::newRow("below a file") << QByteArray("file/name");
    QTest::newRow("in a folder of another user") << QByteArray("closed/file");
    QTest::newRow("name that is too long") << QByteArray(256, 'n');
}

void FileUtilsLinuxTest::returnsZeroForAPathThatCannotBeRead()
{
    QFETCH(QByteArray, name);
    MakeFile(At("file"));
    MakeLink(At("dangling"), "nowhere");
    MakeFolder(At("closed"));
    MakeFile(At("closed/file"));
    Chmod(At("closed"), 0700);

    QVector<qlonglong> const found = RunAsOrdinaryUser([&] {
        return QVector<qlonglong>{GetAvailableDiskSpace(ioPath(At(name.toStdString()))),
                                  GetAvailableDiskSpace(ioPath())};
    });

    QCOMPARE(found, (QVector<qlonglong>{0, 0}));
}

ZQTUTIL_TEST_MAIN(FileUtilsLinuxTest)
#include "FileUtilsLinuxTest.moc"

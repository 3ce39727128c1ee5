// What Linux answers: readable folders and free space.

#include <support/overrides/NextFunction.h>
#include <support/processes/ChildProcess.h>
#include <support/sandbox/FolderTestCase.h>
#include <support/sandbox/Folders.h>
#include <support/sandbox/OrdinaryUser.h>

#include <Util/FileUtils.h>

#include <QtTest/QtTest>

#include <atomic>
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

namespace
{

QByteArray Text(bool value)
{
    return value ? "yes" : "no";
}

// What the system answers, while a test says so
std::atomic<struct statvfs const*>& FixedVolume()
{
    static std::atomic<struct statvfs const*> volume{nullptr};
    return volume;
}

struct RealAnswers
{
    ~RealAnswers() { FixedVolume() = nullptr; }
};

} // namespace

// In the way of the C library's own: the library under test calls this.
extern "C" Q_DECL_EXPORT int statvfs(char const* path, struct statvfs* volume) noexcept
{
    static auto const next = NextFunction<int (*)(char const*, struct statvfs*)>("statvfs");
    struct statvfs const* const fixed = FixedVolume();
    if (!fixed) {
        return next(path, volume);
    }
    *volume = *fixed;
    return 0;
}

class FileUtilsLinuxTest : public Zelkor::Testing::FolderTestCase
{
    Q_OBJECT

private Q_SLOTS:
    // CanReadFileIn
    void filesCanBeReadWhereTheFolderIsReadable_data();
    void filesCanBeReadWhereTheFolderIsReadable();
    void rootReadsFilesInAnyFolder();

    // GetAvailableDiskSpace
    void spaceIsWhatTheVolumeTells_data();
    void spaceIsWhatTheVolumeTells();
    void spaceIsWhatThisUserMayFill_data();
    void spaceIsWhatThisUserMayFill();
    void spaceOfWhatCannotBeReadIsNone_data();
    void spaceOfWhatCannotBeReadIsNone();
};

// CanReadFileIn

void FileUtilsLinuxTest::filesCanBeReadWhereTheFolderIsReadable_data()
{
    QTest::addColumn<uid_t>("owner");
    QTest::addColumn<gid_t>("group");
    QTest::addColumn<uint>("mode");
    QTest::addColumn<bool>("can");
    // clang-format off
    QTest::newRow("open to others")                 << Them << TheirGroup << 0005U << true;
    QTest::newRow("closed to others")               << Them << TheirGroup << 0772U << false;
    QTest::newRow("others may list alone")          << Them << TheirGroup << 0774U << false;
    QTest::newRow("others may enter alone")         << Them << TheirGroup << 0771U << false;
    QTest::newRow("open to the group")              << Them << OurGroup   << 0050U << true;
    QTest::newRow("closed to the group alone")      << Them << OurGroup   << 0707U << false;
    QTest::newRow("own")                            << Us   << OurGroup   << 0500U << true;
    QTest::newRow("own, closed to the owner alone") << Us   << OurGroup   << 0277U << false;
    // clang-format on
}

void FileUtilsLinuxTest::filesCanBeReadWhereTheFolderIsReadable()
{
    QFETCH(uid_t, owner);
    QFETCH(gid_t, group);
    QFETCH(uint, mode);
    QFETCH(bool, can);
    MakeFolder(At("folder"));
    MakeLink(At("link"), "folder");
    Check(chown(At("folder").c_str(), owner, group));
    Check(chmod(At("folder").c_str(), mode));

    QByteArray const found = RunAs({Us, Us, OurGroup, OurGroup, {}}, [&] {
        return Text(CanReadFileIn(PathAt("folder"))) + ' ' + Text(CanReadFileIn(PathAt("link/")));
    });

    QCOMPARE(found, Text(can) + ' ' + Text(can));
}

void FileUtilsLinuxTest::rootReadsFilesInAnyFolder()
{
    MakeTree(Root(), {{"folder/", New},
                      {"file", New},
                      {"open-file", New},
                      {"pipe|", New},
                      {"link@folder", New},
                      {"link-to-file@file", New},
                      {"dangling@nowhere", New}});
    Check(chmod(At("open-file").c_str(), 0777));
    Check(chmod(At("folder").c_str(), 0000));
    for (char const* const name : {"folder", "folder/", "link"}) {
        QVERIFY2(CanReadFileIn(PathAt(name)), name);
    }
    for (char const* const name : {"missing", "dangling", "file", "open-file", "link-to-file", "pipe"}) {
        QVERIFY2(!CanReadFileIn(PathAt(name)), name);
    }
}

// GetAvailableDiskSpace

void FileUtilsLinuxTest::spaceIsWhatTheVolumeTells_data()
{
    QTest::addColumn<QByteArray>("options");
    QTest::addColumn<qlonglong>("size");
    QTest::newRow("1 MiB") << QByteArray("size=1m") << 0x10'0000LL;
    QTest::newRow("more than 4 GiB") << QByteArray("size=5g") << 0x1'4000'0000LL;
    QTest::newRow("more than 4 billion GiB") << QByteArray("nr_blocks=0x100000000000") << 0x100'0000'0000'0000LL;
}

void FileUtilsLinuxTest::spaceIsWhatTheVolumeTells()
{
    QFETCH(QByteArray, options);
    QFETCH(qlonglong, size);
    MakeFolder(At("volume"));
    MakeLink(At("link"), "volume");

    QByteArray const found = RunWithMount(At("volume"), options.constData(), [&] {
        AtFolder const here(At("volume"));
        auto const space = [&](std::string const& path) {
            return QByteArray::number(size - GetAvailableDiskSpace(ioPath(path))) + ' ';
        };
        QByteArray spaces = space(At("volume")) + space(At("link")) + space(".");
        MakeFile("file");
        spaces += space(At("volume")) + space(At("volume/file")) + space("file");
        MakeFile("second");
        return spaces + space(At("volume"));
    });

    QCOMPARE(found, QByteArray("0 0 0 4096 4096 4096 8192 "));
}

void FileUtilsLinuxTest::spaceIsWhatThisUserMayFill_data()
{
    QTest::addColumn<qlonglong>("blocksForUsers");
    QTest::addColumn<qlonglong>("blockSize");
    QTest::addColumn<qlonglong>("space");
    QTest::newRow("some") << 3LL << 512LL << 1536LL;
    QTest::newRow("none") << 0LL << 4096LL << 0LL;
    QTest::newRow("more than 32 bits of blocks") << 0x2'0000'0000LL << 4096LL << 0x2000'0000'0000LL;
    QTest::newRow("more than 32 bits of bytes") << 0x0fff'ffffLL << 4096LL << 0xff'ffff'f000LL;
}

void FileUtilsLinuxTest::spaceIsWhatThisUserMayFill()
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
    RealAnswers const realAfterwards;
    FixedVolume() = &volume;

    QCOMPARE(GetAvailableDiskSpace(ioPath(Root())), space);
}

void FileUtilsLinuxTest::spaceOfWhatCannotBeReadIsNone_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("missing") << QByteArray("missing");
    QTest::newRow("below missing") << QByteArray("missing/below");
    QTest::newRow("dangling link") << QByteArray("dangling");
    QTest::newRow("below a file") << QByteArray("file/name");
    QTest::newRow("in a closed folder") << QByteArray("closed/file");
    QTest::newRow("name that is too long") << QByteArray(256, 'n');
}

void FileUtilsLinuxTest::spaceOfWhatCannotBeReadIsNone()
{
    QFETCH(QByteArray, name);
    MakeTree(Root(), {{"file", New}, {"dangling@nowhere", New}, {"closed/", New}, {"closed/file", New}});
    Check(chmod(At("closed").c_str(), 0700));

    QByteArray const found = RunAsOrdinaryUser([&] {
        return QByteArray::number(GetAvailableDiskSpace(ioPath(At(name.toStdString())))) + ' ' +
               QByteArray::number(GetAvailableDiskSpace(ioPath()));
    });

    QCOMPARE(found, QByteArray("0 0"));
}

ZQTUTIL_TEST_MAIN(FileUtilsLinuxTest)
#include "FileUtilsLinuxTest.moc"

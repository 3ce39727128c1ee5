#include <TestBed.h>
#include <support/processes/ChildProcess.h>
#include <support/sandbox/FolderTestCase.h>
#include <support/sandbox/Folders.h>
#include <support/sandbox/Mounts.h>

#include <Util/FileUtils.h>
#include <Util/MediaUtils.h>

#include <QtCore/QStorageInfo>
#include <QtTest/QtTest>

#include <algorithm>
#include <limits>
#include <string>

#include <fcntl.h>
#include <unistd.h>

using Zelkor::ioPath;
using namespace Zelkor::Testing;
using namespace Zelkor::Util;
namespace TestBed = Zelkor::TestBed;

class MacFileUtilsTest : public Zelkor::Testing::FolderTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void opensAFolder()
    {
        QVERIFY(ExploreFile(ioPath("/tmp/a b"), {}));
        QCOMPARE(TestBed::OpenedUrls().size(), 1);
        QVERIFY(TestBed::OpenedUrls().first().contains(QStringLiteral("/tmp/a%20b")));
        QCOMPARE(TestBed::FileViewerRequests(), QList<QStringList>());
    }

    void showsFilesInOneRequest()
    {
        QVERIFY(ExploreFile(ioPath("/ignored"), {ioPath("/tmp/b"), ioPath("/tmp/\u00E4")}));
        QCOMPARE(TestBed::OpenedUrls(), QStringList());
        QCOMPARE(TestBed::FileViewerRequests().size(), 1);
        QStringList const urls = TestBed::FileViewerRequests().first();
        QCOMPARE(urls.size(), 2);
        QVERIFY(urls.at(0).endsWith(QStringLiteral("/tmp/b")));
        QVERIFY(urls.at(1).endsWith(QStringLiteral("/tmp/%C3%A4")));
    }

    void showsASingleFile()
    {
        QVERIFY(ExploreSingleFile(QStringLiteral("/tmp/file")));
        QVERIFY(ExploreFile(ioPath("/tmp/file")));
        QVERIFY(ExploreSingleFile(QStringLiteral("/tmp/\u00E4 b")));
        QString const url = QStringLiteral("file:///tmp/file");
        QCOMPARE(TestBed::FileViewerRequests(),
                 (QList<QStringList>{{url}, {url}, {QStringLiteral("file:///tmp/%C3%A4%20b")}}));
        QCOMPARE(TestBed::OpenedUrls(), QStringList());
    }

    void acceptsPathsThatAreNotUtf8()
    {
        QVERIFY(ExploreFile(ioPath(std::string("/tmp/\xff")), {}));
        QVERIFY(ExploreFile(ioPath("/tmp"), {ioPath(std::string("/tmp/\xff"))}));
        QCOMPARE(TestBed::OpenedUrls(), QStringList());
        QCOMPARE(GetAvailableDiskSpace(ioPath(std::string("/tmp/\xff"))), 0LL);
    }

    void ignoresPathsWithANulByte()
    {
        ioPath const path(std::string("/tmp\0name", 9));
        QVERIFY(ExploreFile(path, {}));
        QVERIFY(ExploreFile(ioPath("/tmp"), {path}));
        QCOMPARE(TestBed::OpenedUrls(), QStringList());
        QCOMPARE(TestBed::FileViewerRequests(), QList<QStringList>{QStringList()});
        QCOMPARE(GetAvailableDiskSpace(path), 0LL);
    }

    void reportsEveryFolderAsReadable()
    {
        QVERIFY(CanReadFileIn(QStringLiteral("/tmp")));
        QVERIFY(CanReadFileIn(QStringLiteral("/no/such/folder")));
    }

    void returnsTheFreeSpace()
    {
        QVERIFY(GetAvailableDiskSpace(ioPath("/")) > 0);
        QVERIFY(GetAvailableDiskSpace(ioPath("/")) <= QStorageInfo(QStringLiteral("/")).bytesTotal());
        QCOMPARE(GetAvailableDiskSpace(ioPath("/no/such/folder")), 0LL);
    }

    void subtractsUsedSpace()
    {
        MakeFolder(At("volume"));
        QVector<qlonglong> const spaces = RunWithMount(At("volume"), "size=1m", [this] {
            qlonglong const before = GetAvailableDiskSpace(ioPath(At("volume")));
            MakeFile(At("volume/file"));
            qlonglong const after = GetAvailableDiskSpace(ioPath(At("volume/file")));
            return QVector<qlonglong>{before, after};
        });
        QCOMPARE(spaces, (QVector<qlonglong>{1048576, 1048576 - 4096}));
    }

    void limitsTheFreeSpaceOfAHugeVolume()
    {
        MakeFolder(At("volume"));
        // The volume has 10 EiB.
        qlonglong const space = RunWithMount(At("volume"), "nr_blocks=0xA000000000000",
                                             [this] { return qlonglong{GetAvailableDiskSpace(ioPath(At("volume")))}; });
        QCOMPARE(space, std::numeric_limits<qlonglong>::max());
    }

    void findsNoDiscsWithoutVolumes() { QVERIFY(MountedDVD().empty()); }

    void findsDiscsAmongTheVolumes()
    {
        MakeFolder(At("Volumes"));
        MakeFolder(At("Volumes/Backup"));
        for (char const* const disc : {"MOVIE", "\u041A\u0438\u043D\u043E", "with space", "ZOO"}) {
            MakeFolder(At(std::string("Volumes/") + disc));
            MakeFolder(At(std::string("Volumes/") + disc + "/VIDEO_TS"));
        }
        std::vector<std::string> names = NamesIn(AT_FDCWD, At("Volumes").c_str());
        names.erase(std::remove(names.begin(), names.end(), "Backup"), names.end());
        QStringList const found = RunInChild([this] {
            Check(chroot(Root().c_str()));
            QStringList paths;
            for (ioPath const& path : MountedDVD()) {
                paths += QString::fromStdString(path.utf8string());
            }
            return paths;
        });
        QStringList expected;
        for (std::string const& name : names) {
            expected += QStringLiteral("/Volumes/") + QString::fromStdString(name);
        }
        QCOMPARE(expected.size(), 4);
        QCOMPARE(found, expected);
    }

    void returnsTheLabelOfAVolume() { QCOMPARE(DVDLabel(ioPath("/Volumes/Backup")), std::string("Backup")); }

protected:
    void SetUp() override
    {
        FolderTestCase::SetUp();
        TestBed::Reset();
    }
};

ZQTUTIL_WIDGET_TEST_MAIN(MacFileUtilsTest)

#include "MacFileUtilsTest.moc"

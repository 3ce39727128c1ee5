#include <TestBed.h>
#include <support/processes/ChildProcess.h>
#include <support/sandbox/FolderTestCase.h>
#include <support/sandbox/Folders.h>

#include <Util/FileUtils.h>
#include <Util/MediaUtils.h>

#include <QtCore/QStorageInfo>
#include <QtTest/QtTest>

#include <algorithm>

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
        QCOMPARE(TestBed::FileViewerRequests(), QStringList());
    }

    void showsFilesInOneRequest()
    {
        QVERIFY(ExploreFile(ioPath("/ignored"), {ioPath("/tmp/b"), ioPath("/tmp/\u00E4")}));
        QCOMPARE(TestBed::OpenedUrls(), QStringList());
        QCOMPARE(TestBed::FileViewerRequests().size(), 1);
        QVERIFY(TestBed::FileViewerRequests().first().contains(QStringLiteral("/tmp/b file://")));
        QVERIFY(TestBed::FileViewerRequests().first().endsWith(QStringLiteral("/tmp/%C3%A4")));
    }

    void showsASingleFile()
    {
        QVERIFY(ExploreSingleFile(QStringLiteral("/tmp/file")));
        QVERIFY(ExploreFile(ioPath("/tmp/file")));
        QVERIFY(ExploreSingleFile(QStringLiteral("/tmp/\u00E4 b")));
        QString const url = QStringLiteral("file:///tmp/file");
        QCOMPARE(TestBed::FileViewerRequests(), (QStringList{url, url, QStringLiteral("file:///tmp/%C3%A4%20b")}));
        QCOMPARE(TestBed::OpenedUrls(), QStringList());
    }

    void standsPathsThatAreNoUtf8()
    {
        QVERIFY(ExploreFile(ioPath(std::string("/tmp/\xff")), {}));
        QVERIFY(ExploreFile(ioPath("/tmp"), {ioPath(std::string("/tmp/\xff"))}));
        QCOMPARE(TestBed::OpenedUrls(), QStringList());
        QCOMPARE(GetAvailableDiskSpace(ioPath(std::string("/tmp/\xff"))), 0LL);
    }

    void canReadEverywhere()
    {
        QVERIFY(CanReadFileIn(QStringLiteral("/tmp")));
        QVERIFY(CanReadFileIn(QStringLiteral("/no/such/folder")));
    }

    void tellsTheFreeSpace()
    {
        QVERIFY(GetAvailableDiskSpace(ioPath("/")) > 0);
        QVERIFY(GetAvailableDiskSpace(ioPath("/")) <= QStorageInfo(QStringLiteral("/")).bytesTotal());
        QCOMPARE(GetAvailableDiskSpace(ioPath("/no/such/folder")), 0LL);
    }

    void freeSpaceIsWhatIsNotTaken()
    {
        MakeFolder(At("volume"));
        QByteArray const found = RunWithMount(At("volume"), "size=1m", [this] {
            long long const before = GetAvailableDiskSpace(ioPath(At("volume")));
            MakeFile(At("volume/file"));
            return QByteArray::number(before) + ' ' +
                   QByteArray::number(before - GetAvailableDiskSpace(ioPath(At("volume/file"))));
        });
        QCOMPARE(found, QByteArray("1048576 4096"));
    }

    void findsNoDiscWithoutVolumes() { QVERIFY(MountedDVD().empty()); }

    void findsTheDiscsAmongTheVolumes()
    {
        MakeFolder(At("Volumes"));
        MakeFolder(At("Volumes/Backup"));
        for (char const* const disc : {"MOVIE", "\u041A\u0438\u043D\u043E", "another one", "ZOO"}) {
            MakeFolder(At(std::string("Volumes/") + disc));
            MakeFolder(At(std::string("Volumes/") + disc + "/VIDEO_TS"));
        }
        std::vector<std::string> expected = NamesIn(AT_FDCWD, At("Volumes").c_str());
        expected.erase(std::remove(expected.begin(), expected.end(), "Backup"), expected.end());
        auto const enter = [this] { Check(chroot(Root().c_str())); };
        QByteArray const found = RunInFork(enter, [] {
            QByteArray paths;
            for (ioPath const& path : MountedDVD()) {
                paths += QByteArray::fromStdString(path.utf8string()) + '|';
            }
            return paths;
        });
        QByteArray paths;
        for (std::string const& name : expected) {
            paths += "/Volumes/" + QByteArray::fromStdString(name) + '|';
        }
        QCOMPARE(expected.size(), std::size_t(4));
        QCOMPARE(found, paths);
    }

    void labelsAVolume() { QCOMPARE(DVDLabel(ioPath("/Volumes/Backup")), std::string("Backup")); }

protected:
    void SetUp() override
    {
        FolderTestCase::SetUp();
        TestBed::Reset();
    }
};

ZQTUTIL_WIDGET_TEST_MAIN(MacFileUtilsTest)

#include "MacFileUtilsTest.moc"

#include <TestBed.h>
#include <TestCase.h>

#include <Util/FileUtils.h>
#include <Util/MediaUtils.h>

#include <QtCore/QStorageInfo>
#include <QtTest/QtTest>

using Zelkor::ioPath;
using namespace Zelkor::Util;
namespace TestBed = Zelkor::TestBed;

class MacFileUtilsTest : public Zelkor::Testing::TestCase
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
        QCOMPARE(TestBed::FileViewerRequests().size(), 2);
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

    void findsNoDiscWithoutVolumes() { QVERIFY(MountedDVD().empty()); }

    void labelsAVolume() { QCOMPARE(DVDLabel(ioPath("/Volumes/Backup")), std::string("Backup")); }

protected:
    void SetUp() override { TestBed::Reset(); }
};

ZQTUTIL_WIDGET_TEST_MAIN(MacFileUtilsTest)

#include "MacFileUtilsTest.moc"

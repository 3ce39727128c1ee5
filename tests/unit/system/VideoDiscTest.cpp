#include <support/sandbox/FolderTestCase.h>
#include <support/sandbox/Folders.h>
#include <support/sandbox/Users.h>

#include <Util/MediaUtils.h>
#include <Util/Platforms/VideoDisc.h>

#include <QtTest/QtTest>

#include <fcntl.h>

using Zelkor::ioPath;
using Zelkor::Testing::Chmod;
using Zelkor::Testing::MakeFile;
using Zelkor::Testing::MakeFolders;
using Zelkor::Testing::NamesIn;
using Zelkor::Testing::RunAsOrdinaryUser;
using Zelkor::Util::DVDLabel;
using Zelkor::Util::VideoDiscLabel;
using Zelkor::Util::VideoDiscsIn;

class VideoDiscTest : public Zelkor::Testing::FolderTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void labelsDiscs_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("siblings");
        QTest::addColumn<QString>("label");
        QString const video = QStringLiteral("VIDEO_TS");
        QString const lower = QStringLiteral("video_ts");
        QString const parent = QStringLiteral("MOVIE");
        QStringList const disc = {video, QStringLiteral("AUDIO_TS"), QStringLiteral(".DS_Store"),
                                  QStringLiteral("Thumbs.db")};
        QTest::newRow("volume") << QStringLiteral("Backup") << QStringList{QStringLiteral("x")}
                                << QStringLiteral("Backup");
        QTest::newRow("disc") << video << disc << parent;
        QTest::newRow("disc with another file") << video << disc + QStringList{QStringLiteral("readme.txt")} << video;
        QTest::newRow("lower case, readable parent") << lower << QStringList{lower} << lower;
        QTest::newRow("lower case, unreadable parent") << lower << QStringList() << parent;
        QTest::newRow("lower case audio") << video << QStringList{video, QStringLiteral("audio_ts")} << video;
        QTest::newRow("thumbs in lower case") << video << QStringList{video, QStringLiteral("thumbs.db")} << video;
        QTest::newRow("dotless i, unreadable parent") << QStringLiteral("v\u0131deo_ts") << QStringList() << parent;
        QTest::newRow("dotless i next to a disc")
            << video << QStringList{video, QStringLiteral("v\u0131deo_ts")} << video;
        QTest::newRow("full-width letters")
            << QStringLiteral("\uFF56\uFF49deo_ts") << QStringList() << QStringLiteral("\uFF56\uFF49deo_ts");
        QTest::newRow("disc with a hidden file") << video << QStringList{QStringLiteral(".anything")} << parent;
    }

    void labelsDiscs()
    {
        QFETCH(QString, name);
        QFETCH(QStringList, siblings);
        QFETCH(QString, label);
        QCOMPARE(VideoDiscLabel(name, siblings, QStringLiteral("MOVIE")), label);
    }

    void labelsFolders()
    {
        MakeFolders(At("MOVIE/VIDEO_TS"));
        MakeFolders(At("MOVIE/AUDIO_TS"));
        QCOMPARE(VideoDiscLabel(Path(QStringLiteral("MOVIE/VIDEO_TS"))), QStringLiteral("MOVIE"));
        QCOMPARE(VideoDiscLabel(Path(QStringLiteral("MOVIE/VIDEO_TS/"))), QStringLiteral("MOVIE"));
        QCOMPARE(VideoDiscLabel(Path(QStringLiteral("MOVIE"))), QStringLiteral("MOVIE"));
        MakeFile(At("MOVIE/readme.txt"));
        QCOMPARE(VideoDiscLabel(Path(QStringLiteral("MOVIE/VIDEO_TS"))), QStringLiteral("VIDEO_TS"));
        QCOMPARE(VideoDiscLabel(Path(QStringLiteral("gone/VIDEO_TS"))), QStringLiteral("gone"));
    }

    void labelsFoldersByPath()
    {
        std::string const movie = "\u041A\u0438\u043D\u043E e\u0301";
        MakeFolders(At(movie + "/VIDEO_TS"));
        MakeFolders(At(movie + "/AUDIO_TS"));
        MakeFile(At(movie + "/.DS_Store"));
        MakeFile(At(movie + "/Thumbs.db"));
        QCOMPARE(DVDLabel(ioPath(At(movie + "/VIDEO_TS"))), movie);
        QCOMPARE(DVDLabel(ioPath(At(movie + "/AUDIO_TS"))), std::string("AUDIO_TS"));
        QCOMPARE(DVDLabel(ioPath(At(movie))), movie);

        MakeFolders(At("lower/video_ts"));
        QCOMPARE(DVDLabel(ioPath(At("lower/video_ts"))), std::string("video_ts"));
        QCOMPARE(DVDLabel(ioPath(At("gone/video_ts"))), std::string("gone"));
        QCOMPARE(DVDLabel(ioPath(At("gone/v\u0131deo_ts"))), std::string("gone"));
    }

    void treatsAnUnreadableParentAsEmpty()
    {
        MakeFolders(At("closed/VIDEO_TS"));
        MakeFolders(At("closed/video_ts"));
        MakeFile(At("closed/readme.txt"));
        QCOMPARE(DVDLabel(ioPath(At("closed/VIDEO_TS"))), std::string("VIDEO_TS"));
        Chmod(At("closed"), 0311);
        QByteArrayList const labels = RunAsOrdinaryUser([this] {
            QByteArrayList found;
            for (char const* const name : {"closed/VIDEO_TS", "closed/video_ts", "closed/readme.txt"}) {
                found += QByteArray::fromStdString(DVDLabel(ioPath(At(name))));
            }
            return found;
        });
        QCOMPARE(labels, (QByteArrayList{"closed", "closed", "readme.txt"}));
    }

    void findsDiscsInFolderOrder()
    {
        for (char const* const name : {"k", "\u042F", "c", "p", "a b", "d", "\u0416", "m", "o", "b", "E"}) {
            MakeFolders(At(std::string(name) + "/VIDEO_TS"));
        }
        QStringList found;
        for (ioPath const& path : VideoDiscsIn(QString::fromStdString(Root()))) {
            found += QString::fromStdString(path.utf8string());
        }
        QStringList expected;
        for (std::string const& name : NamesIn(AT_FDCWD, Root().c_str())) {
            expected += QString::fromStdString(At(name));
        }
        QCOMPARE(found.size(), 11);
        QCOMPARE(found, expected);
    }

    void findsDiscs()
    {
        MakeFolders(At("one/VIDEO_TS"));
        MakeFolders(At("two/video_ts"));
        MakeFolders(At("three"));
        MakeFile(At("three/VIDEO_TS")); // a file, not a folder
        auto const discs = VideoDiscsIn(QString::fromStdString(Root()));
        QCOMPARE(discs.size(), std::size_t(1));
        QCOMPARE(QString::fromStdString(discs.front().utf8string()), Path(QStringLiteral("one")));
        QVERIFY(VideoDiscsIn(Path(QStringLiteral("nowhere"))).empty());
    }

private:
    QString Path(QString const& name) const { return PathAt(name.toUtf8()); }
};

ZQTUTIL_TEST_MAIN(VideoDiscTest)

#include "VideoDiscTest.moc"

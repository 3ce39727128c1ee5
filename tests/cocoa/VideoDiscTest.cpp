#include <TestCase.h>

#include <Util/Platforms/posix/VideoDisc.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <memory>

using Zelkor::Util::VideoDiscLabel;
using Zelkor::Util::VideoDiscsIn;

class VideoDiscTest : public Zelkor::Testing::TestCase
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
        QTest::newRow("something else beside it") << video << disc + QStringList{QStringLiteral("readme.txt")} << video;
        QTest::newRow("lower case beside others") << lower << QStringList{lower} << lower;
        QTest::newRow("lower case, unreadable parent") << lower << QStringList() << parent;
        QTest::newRow("lower case audio") << video << QStringList{video, QStringLiteral("audio_ts")} << video;
        QTest::newRow("thumbs in lower case") << video << QStringList{video, QStringLiteral("thumbs.db")} << video;
        QTest::newRow("hidden") << video << QStringList{QStringLiteral(".anything")} << parent;
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
        Make(QStringLiteral("MOVIE/VIDEO_TS"));
        Make(QStringLiteral("MOVIE/AUDIO_TS"));
        QCOMPARE(VideoDiscLabel(Path(QStringLiteral("MOVIE/VIDEO_TS"))), QStringLiteral("MOVIE"));
        QCOMPARE(VideoDiscLabel(Path(QStringLiteral("MOVIE/VIDEO_TS/"))), QStringLiteral("MOVIE"));
        QCOMPARE(VideoDiscLabel(Path(QStringLiteral("MOVIE"))), QStringLiteral("MOVIE"));
        QFile readme(Path(QStringLiteral("MOVIE/readme.txt")));
        QVERIFY(readme.open(QIODevice::WriteOnly));
        QCOMPARE(VideoDiscLabel(Path(QStringLiteral("MOVIE/VIDEO_TS"))), QStringLiteral("VIDEO_TS"));
        QCOMPARE(VideoDiscLabel(Path(QStringLiteral("gone/VIDEO_TS"))), QStringLiteral("gone"));
    }

    void findsDiscs()
    {
        Make(QStringLiteral("one/VIDEO_TS"));
        Make(QStringLiteral("two/video_ts"));
        Make(QStringLiteral("three"));
        QFile file(Path(QStringLiteral("three/VIDEO_TS")));
        QVERIFY(file.open(QIODevice::WriteOnly)); // no folder
        auto const discs = VideoDiscsIn(folder_->path());
        QCOMPARE(discs.size(), std::size_t(1));
        QCOMPARE(QString::fromStdString(discs.front().utf8string()), Path(QStringLiteral("one")));
        QVERIFY(VideoDiscsIn(Path(QStringLiteral("nowhere"))).empty());
    }

protected:
    void SetUp() override { folder_ = std::make_unique<QTemporaryDir>(); }
    void TearDown() override { folder_.reset(); }

private:
    QString Path(QString const& name) const { return folder_->filePath(name); }
    void Make(QString const& name) const { QVERIFY(QDir().mkpath(Path(name))); }

    std::unique_ptr<QTemporaryDir> folder_;
};

ZQTUTIL_TEST_MAIN(VideoDiscTest)

#include "VideoDiscTest.moc"

#include <support/overrides/StandardLocations.h>
#include <support/sandbox/Environment.h>
#include <support/sandbox/FolderTestCase.h>
#include <support/sandbox/Folders.h>

#include <Util/FileUtils.h>

#include <QtCore/QFile>
#include <QtCore/QStandardPaths>
#include <QtTest/QtTest>

#include <string>
#include <type_traits>

using namespace Zelkor::Testing;
using namespace Zelkor::Util;

static_assert(std::is_same_v<decltype(&GetStandardPath), QString (*)(QStandardPaths::StandardLocation)>);
static_assert(std::is_same_v<decltype(&GetZelkorLibraryPath), QString (*)(QString)>);

class FileUtilsStandardPathTest : public Zelkor::Testing::FolderTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void returnsTheFirstPathThatIsNotEmpty_data();
    void returnsTheFirstPathThatIsNotEmpty();
    void fallsBackToTheHomeFolder_data();
    void fallsBackToTheHomeFolder();
    void readsTheSettingsOfTheDesktop_data();
    void readsTheSettingsOfTheDesktop();
    void resolvesOneLink_data();
    void resolvesOneLink();
    void returnsALibraryInTheVideosFolder_data();
    void returnsALibraryInTheVideosFolder();
};

void FileUtilsStandardPathTest::returnsTheFirstPathThatIsNotEmpty_data()
{
    QTest::addColumn<QStringList>("locations");
    QTest::addColumn<QStringList>("documents");
    QTest::addColumn<QString>("found");
    QString const a = QStringLiteral("/no/a");
    QString const b = QStringLiteral("/no/b");
    QString const d = QStringLiteral("/no/documents");
    QString const e = QStringLiteral("/no/more documents");
    QTest::newRow("first") << QStringList{a, b} << QStringList{d} << a;
    QTest::newRow("second, after an empty path") << QStringList{QString(), a, b} << QStringList{d} << a;
    QTest::newRow("third, after empty paths") << QStringList{QString(), QStringLiteral(""), b} << QStringList{d} << b;
    QTest::newRow("documents, without other paths") << QStringList() << QStringList{d, e} << d;
    QTest::newRow("documents, after empty paths") << QStringList{QString(), QString()} << QStringList{d, e} << d;
    QTest::newRow("second documents") << QStringList{QString()} << QStringList{QString(), e} << e;
    QTest::newRow("blank") << QStringList{QStringLiteral(" ")} << QStringList{d} << QStringLiteral(" ");
}

void FileUtilsStandardPathTest::returnsTheFirstPathThatIsNotEmpty()
{
    QFETCH(QStringList, locations);
    QFETCH(QStringList, documents);
    QFETCH(QString, found);
    StandardLocations const fixed(locations, documents);

    QCOMPARE(GetStandardPath(QStandardPaths::MusicLocation), found);
}

void FileUtilsStandardPathTest::fallsBackToTheHomeFolder_data()
{
    QTest::addColumn<QStringList>("locations");
    QTest::newRow("no path") << QStringList();
    QTest::newRow("empty paths") << QStringList{QString(), QStringLiteral("")};
}

void FileUtilsStandardPathTest::fallsBackToTheHomeFolder()
{
    QFETCH(QStringList, locations);
    MakeFolder(At("home"));
    MakeLink(At("link"), "home");
    StandardLocations const fixed(locations, locations);
    for (char const* const name : {"home", "link"}) {
        EnvironmentVariable const home("HOME", QByteArray::fromStdString(At(name)));
        QCOMPARE(GetStandardPath(QStandardPaths::MusicLocation), PathAt("home"));
    }
}

void FileUtilsStandardPathTest::readsTheSettingsOfTheDesktop_data()
{
    QTest::addColumn<int>("location");
    QTest::addColumn<QByteArray>("setting");
    QTest::addColumn<QByteArray>("path"); // the expected path, relative to the home folder
    QTest::newRow("videos, not set") << int{QStandardPaths::MoviesLocation} << QByteArray() << QByteArray("/Videos");
    QTest::newRow("videos, set below home")
        << int{QStandardPaths::MoviesLocation} << QByteArray("XDG_VIDEOS_DIR=\"$HOME/My \xd0\x9a videos\"")
        << QByteArray("/My \xd0\x9a videos");
    QTest::newRow("music, set") << int{QStandardPaths::MusicLocation} << QByteArray("XDG_MUSIC_DIR=\"$HOME/sounds\"")
                                << QByteArray("/sounds");
    QTest::newRow("documents, set") << int{QStandardPaths::DocumentsLocation}
                                    << QByteArray("XDG_DOCUMENTS_DIR=\"$HOME/papers\"") << QByteArray("/papers");
    QTest::newRow("desktop, another folder set")
        << int{QStandardPaths::DesktopLocation} << QByteArray("XDG_DOCUMENTS_DIR=\"$HOME/papers\"")
        << QByteArray("/Desktop");
    QTest::newRow("home") << int{QStandardPaths::HomeLocation} << QByteArray() << QByteArray();
    QTest::newRow("unknown location") << 31 << QByteArray("XDG_DOCUMENTS_DIR=\"$HOME/papers\"")
                                      << QByteArray("/papers");
    QTest::newRow("first of several") << int{QStandardPaths::GenericConfigLocation} << QByteArray()
                                      << QByteArray("/settings");
}

void FileUtilsStandardPathTest::readsTheSettingsOfTheDesktop()
{
    QFETCH(int, location);
    QFETCH(QByteArray, setting);
    QFETCH(QByteArray, path);
    MakeFolder(At("home"));
    MakeFolder(At("home/settings"));
    EnvironmentVariable const home("HOME", QByteArray::fromStdString(At("home")));
    EnvironmentVariable const settings("XDG_CONFIG_HOME", QByteArray::fromStdString(At("home/settings")));
    QFile file(PathAt("home/settings/user-dirs.dirs"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(setting + '\n');
    file.close();

    QCOMPARE(GetStandardPath(static_cast<QStandardPaths::StandardLocation>(location)), PathAt("home" + path));

    QCOMPARE(ListTree(At("home")), (QByteArrayList{"settings", "settings/user-dirs.dirs"}));
}

void FileUtilsStandardPathTest::resolvesOneLink_data()
{
    QTest::addColumn<QByteArray>("candidate");
    QTest::addColumn<QByteArray>("found");
    QTest::newRow("missing") << QByteArray("missing") << QByteArray("missing");
    QTest::newRow("folder") << QByteArray("folder") << QByteArray("folder");
    QTest::newRow("file") << QByteArray("file") << QByteArray("file");
    QTest::newRow("link") << QByteArray("link") << QByteArray("folder");
    QTest::newRow("link through the parent folder") << QByteArray("folder/up") << QByteArray("folder");
    QTest::newRow("link to a link") << QByteArray("link-to-link") << QByteArray("link");
    QTest::newRow("dangling link") << QByteArray("dangling") << QByteArray("nowhere");
    QTest::newRow("link to a file") << QByteArray("link-to-file") << QByteArray("file");
    QTest::newRow("folder behind a link") << QByteArray("link/below") << QByteArray("link/below");
}

void FileUtilsStandardPathTest::resolvesOneLink()
{
    QFETCH(QByteArray, candidate);
    QFETCH(QByteArray, found);
    MakeFolder(At("folder"));
    MakeFolder(At("folder/below"));
    MakeLink(At("folder/up"), "../folder");
    MakeFile(At("file"));
    MakeLink(At("link"), "folder");
    MakeLink(At("link-to-link"), "link");
    MakeLink(At("link-to-file"), "file");
    MakeLink(At("dangling"), "nowhere");
    std::string const absolute = At("absolute");
    MakeLink(absolute, At(candidate.toStdString()));
    {
        StandardLocations const fixed({PathAt(candidate)}, {});
        QCOMPARE(GetStandardPath(QStandardPaths::MusicLocation), PathAt(found));
    }
    {
        StandardLocations const fixed({PathAt("absolute")}, {});
        QCOMPARE(GetStandardPath(QStandardPaths::MusicLocation), PathAt(candidate));
    }
}

void FileUtilsStandardPathTest::returnsALibraryInTheVideosFolder_data()
{
    QTest::addColumn<QByteArray>("subPath");
    QTest::addColumn<QByteArray>("tail");
    QTest::newRow("name") << QByteArray("Library") << QByteArray("/Library");
    QTest::newRow("names") << QByteArray("Library/2021") << QByteArray("/Library/2021");
    QTest::newRow("empty") << QByteArray() << QByteArray("/");
    QTest::newRow("place marker") << QByteArray("%1 ") << QByteArray("/%1 ");
    QTest::newRow("path that is not normalised") << QByteArray("/../a//b/") << QByteArray("//../a//b/");
}

void FileUtilsStandardPathTest::returnsALibraryInTheVideosFolder()
{
    QFETCH(QByteArray, subPath);
    QFETCH(QByteArray, tail);
    MakeFolder(At("home"));
    MakeFolder(At("videos"));
    EnvironmentVariable const home("HOME", QByteArray::fromStdString(At("home")));
    EnvironmentVariable const settings("XDG_CONFIG_HOME", QByteArray::fromStdString(At("none")));

    QCOMPARE(GetZelkorLibraryPath(QString::fromLatin1(subPath)), PathAt("home/Videos" + tail));

    MakeLink(At("home/Videos"), "../videos");
    QCOMPARE(GetZelkorLibraryPath(QString::fromLatin1(subPath)), PathAt("videos" + tail));
}

ZQTUTIL_TEST_MAIN(FileUtilsStandardPathTest)
#include "FileUtilsStandardPathTest.moc"

#include <support/overrides/NextFunction.h>
#include <support/sandbox/Environment.h>
#include <support/sandbox/FolderTestCase.h>
#include <support/sandbox/Folders.h>

#include <Util/FileUtils.h>

#include <QtCore/QFile>
#include <QtCore/QStandardPaths>
#include <QtTest/QtTest>

#include <optional>
#include <string>
#include <type_traits>

using namespace Zelkor::Testing;
using namespace Zelkor::Util;

static_assert(std::is_same_v<decltype(&GetStandardPath), QString (*)(QStandardPaths::StandardLocation)>);
static_assert(std::is_same_v<decltype(&GetZelkorLibraryPath), QString (*)(QString)>);

namespace
{

// What the system answers, while a test says so

struct Answers
{
    std::optional<QStringList> locations; // for every standard location but documents
    QStringList documents;
};

Answers& Fixed()
{
    static Answers answers;
    return answers;
}

struct RealAnswers
{
    ~RealAnswers()
    {
        Fixed().locations.reset();
        Fixed().documents.clear();
    }
};

} // namespace

// In the way of Qt's own: the library under test calls this.
QStringList QStandardPaths::standardLocations(StandardLocation location)
{
    static auto const next = NextFunction<QStringList (*)(StandardLocation)>(
        "_ZN14QStandardPaths17standardLocationsENS_16StandardLocationE");
    if (!Fixed().locations) {
        return next(location);
    }
    return location == DocumentsLocation ? Fixed().documents : *Fixed().locations;
}

class FileUtilsStandardPathTest : public Zelkor::Testing::FolderTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void firstCandidateThatIsNotEmptyIsTaken_data();
    void firstCandidateThatIsNotEmptyIsTaken();
    void homeIsTheLastResort_data();
    void homeIsTheLastResort();
    void standardPathIsTheDesktopsOwn_data();
    void standardPathIsTheDesktopsOwn();
    void linkIsResolvedOnce_data();
    void linkIsResolvedOnce();
    void libraryIsBelowTheFilms_data();
    void libraryIsBelowTheFilms();
};

void FileUtilsStandardPathTest::firstCandidateThatIsNotEmptyIsTaken_data()
{
    QTest::addColumn<QStringList>("locations");
    QTest::addColumn<QStringList>("documents");
    QTest::addColumn<QString>("found");
    QString const a = QStringLiteral("/no/a");
    QString const b = QStringLiteral("/no/b");
    QString const d = QStringLiteral("/no/documents");
    QString const e = QStringLiteral("/no/more documents");
    QTest::newRow("first") << QStringList{a, b} << QStringList{d} << a;
    QTest::newRow("second, after an empty one") << QStringList{QString(), a, b} << QStringList{d} << a;
    QTest::newRow("third, after empty ones") << QStringList{QString(), QStringLiteral(""), b} << QStringList{d} << b;
    QTest::newRow("documents, without any") << QStringList() << QStringList{d, e} << d;
    QTest::newRow("documents, after empty ones") << QStringList{QString(), QString()} << QStringList{d, e} << d;
    QTest::newRow("second documents") << QStringList{QString()} << QStringList{QString(), e} << e;
    QTest::newRow("blank is not empty") << QStringList{QStringLiteral(" ")} << QStringList{d} << QStringLiteral(" ");
}

void FileUtilsStandardPathTest::firstCandidateThatIsNotEmptyIsTaken()
{
    QFETCH(QStringList, locations);
    QFETCH(QStringList, documents);
    QFETCH(QString, found);
    RealAnswers const realAfterwards;
    Fixed().documents = documents;
    Fixed().locations = locations;

    QCOMPARE(GetStandardPath(QStandardPaths::MusicLocation), found);
}

void FileUtilsStandardPathTest::homeIsTheLastResort_data()
{
    QTest::addColumn<QStringList>("locations");
    QTest::newRow("nothing") << QStringList();
    QTest::newRow("empty ones") << QStringList{QString(), QStringLiteral("")};
}

void FileUtilsStandardPathTest::homeIsTheLastResort()
{
    QFETCH(QStringList, locations);
    MakeTree(Root(), {{"home/", New}, {"link@home", New}});
    RealAnswers const realAfterwards;
    Fixed().locations = locations;
    Fixed().documents = locations;
    for (char const* const name : {"home", "link"}) {
        Environment const home("HOME", QByteArray::fromStdString(At(name)));
        QCOMPARE(GetStandardPath(QStandardPaths::MusicLocation), PathAt("home"));
    }
}

void FileUtilsStandardPathTest::standardPathIsTheDesktopsOwn_data()
{
    QTest::addColumn<int>("location");
    QTest::addColumn<QByteArray>("setting");
    QTest::addColumn<QByteArray>("path"); // below the home folder
    QTest::newRow("films, not set") << int{QStandardPaths::MoviesLocation} << QByteArray() << QByteArray("/Videos");
    QTest::newRow("films, set below home")
        << int{QStandardPaths::MoviesLocation} << QByteArray("XDG_VIDEOS_DIR=\"$HOME/My \xd0\x9a films\"")
        << QByteArray("/My \xd0\x9a films");
    QTest::newRow("music, set") << int{QStandardPaths::MusicLocation} << QByteArray("XDG_MUSIC_DIR=\"$HOME/sounds\"")
                                << QByteArray("/sounds");
    QTest::newRow("documents, set") << int{QStandardPaths::DocumentsLocation}
                                    << QByteArray("XDG_DOCUMENTS_DIR=\"$HOME/papers\"") << QByteArray("/papers");
    QTest::newRow("desktop, others set") << int{QStandardPaths::DesktopLocation}
                                         << QByteArray("XDG_DOCUMENTS_DIR=\"$HOME/papers\"") << QByteArray("/Desktop");
    QTest::newRow("home") << int{QStandardPaths::HomeLocation} << QByteArray() << QByteArray();
    QTest::newRow("unknown to the system is documents")
        << 31 << QByteArray("XDG_DOCUMENTS_DIR=\"$HOME/papers\"") << QByteArray("/papers");
    QTest::newRow("first of several") << int{QStandardPaths::GenericConfigLocation} << QByteArray()
                                      << QByteArray("/settings");
}

void FileUtilsStandardPathTest::standardPathIsTheDesktopsOwn()
{
    QFETCH(int, location);
    QFETCH(QByteArray, setting);
    QFETCH(QByteArray, path);
    MakeFolder(At("home"));
    MakeFolder(At("home/settings"));
    Environment const home("HOME", QByteArray::fromStdString(At("home")));
    Environment const settings("XDG_CONFIG_HOME", QByteArray::fromStdString(At("home/settings")));
    QFile file(PathAt("home/settings/user-dirs.dirs"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(setting + '\n');
    file.close();

    QCOMPARE(GetStandardPath(static_cast<QStandardPaths::StandardLocation>(location)), PathAt("home" + path));

    QCOMPARE(TreeOf(At("home")), (QByteArrayList{"settings", "settings/user-dirs.dirs"}));
}

void FileUtilsStandardPathTest::linkIsResolvedOnce_data()
{
    QTest::addColumn<QByteArray>("candidate");
    QTest::addColumn<QByteArray>("found");
    QTest::newRow("missing") << QByteArray("missing") << QByteArray("missing");
    QTest::newRow("folder") << QByteArray("folder") << QByteArray("folder");
    QTest::newRow("file") << QByteArray("file") << QByteArray("file");
    QTest::newRow("link") << QByteArray("link") << QByteArray("folder");
    QTest::newRow("link up and down") << QByteArray("folder/up") << QByteArray("folder");
    QTest::newRow("link to a link") << QByteArray("link-to-link") << QByteArray("link");
    QTest::newRow("dangling link") << QByteArray("dangling") << QByteArray("nowhere");
    QTest::newRow("link to a file") << QByteArray("link-to-file") << QByteArray("file");
    QTest::newRow("folder behind a link") << QByteArray("link/below") << QByteArray("link/below");
}

void FileUtilsStandardPathTest::linkIsResolvedOnce()
{
    QFETCH(QByteArray, candidate);
    QFETCH(QByteArray, found);
    MakeTree(Root(), {{"folder/", New},
                      {"folder/below/", New},
                      {"folder/up@../folder", New},
                      {"file", New},
                      {"link@folder", New},
                      {"link-to-link@link", New},
                      {"link-to-file@file", New},
                      {"dangling@nowhere", New}});
    std::string const absolute = At("absolute");
    MakeLink(absolute, At(candidate.toStdString()));
    RealAnswers const realAfterwards;

    Fixed().locations = QStringList{PathAt(candidate)};
    QCOMPARE(GetStandardPath(QStandardPaths::MusicLocation), PathAt(found));

    Fixed().locations = QStringList{PathAt("absolute")};
    QCOMPARE(GetStandardPath(QStandardPaths::MusicLocation), PathAt(candidate));
}

void FileUtilsStandardPathTest::libraryIsBelowTheFilms_data()
{
    QTest::addColumn<QByteArray>("subPath");
    QTest::addColumn<QByteArray>("tail");
    QTest::newRow("name") << QByteArray("Library") << QByteArray("/Library");
    QTest::newRow("names") << QByteArray("Library/2021") << QByteArray("/Library/2021");
    QTest::newRow("empty") << QByteArray() << QByteArray("/");
    QTest::newRow("place marker") << QByteArray("%1 ") << QByteArray("/%1 ");
    QTest::newRow("as it is given") << QByteArray("/../a//b/") << QByteArray("//../a//b/");
}

void FileUtilsStandardPathTest::libraryIsBelowTheFilms()
{
    QFETCH(QByteArray, subPath);
    QFETCH(QByteArray, tail);
    MakeFolder(At("home"));
    MakeFolder(At("films"));
    Environment const home("HOME", QByteArray::fromStdString(At("home")));
    Environment const settings("XDG_CONFIG_HOME", QByteArray::fromStdString(At("none")));

    QCOMPARE(GetZelkorLibraryPath(QString::fromLatin1(subPath)), PathAt("home/Videos" + tail));

    MakeLink(At("home/Videos"), "../films");
    QCOMPARE(GetZelkorLibraryPath(QString::fromLatin1(subPath)), PathAt("films" + tail));
}

ZQTUTIL_TEST_MAIN(FileUtilsStandardPathTest)
#include "FileUtilsStandardPathTest.moc"

// What temporary directories clear away of what runs leave behind, also of processes and threads that run at once.

#include <support/processes/Plays.h>
#include <support/sandbox/TemporaryFolders.h>
#include <unit/files/TemporaryDirPlay.h>
#include <unit/files/TemporaryDirTestCase.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QSet>
#include <QtTest/QtTest>

#include <memory>
#include <vector>

using namespace Zelkor::Testing;

/// Makes something at a path that is not taken.
using Maker = void (*)(QString const& path);
Q_DECLARE_METATYPE(Maker)

namespace
{

void MakeReadOnlyFile(QString const& path)
{
    MakeFile(path);
    Chmod(path, 0);
}

void MakeLinkToFile(QString const& path)
{
    MakeLink(path, Outside(path) + QStringLiteral("/canary"));
}

void MakeLinkToFolder(QString const& path)
{
    MakeLink(path, Outside(path));
}

void MakeLinkUp(QString const& path)
{
    MakeLink(path, QStringLiteral(".."));
}

void MakeDanglingLink(QString const& path)
{
    MakeLink(path, QStringLiteral("nowhere"));
}

void MakeLinkToItself(QString const& path)
{
    MakeLink(path, path.section(QLatin1Char('/'), -1));
}

void MakeHardLinkToFile(QString const& path)
{
    MakeHardLink(path, Outside(path) + QStringLiteral("/canary"));
}

} // namespace

class TemporaryDirCleanUpTest : public TemporaryDirTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void removesWhatIsLeftBehind_data();
    void removesWhatIsLeftBehind();
    void leavesHiddenAndSystemEntries_data();
    void leavesHiddenAndSystemEntries();
    void leavesOtherApplicationsFolders();
    void leavesWhatItCannotRemove();
    void emptiesTheFolderOncePerProcess();
    void emptiesTheFolderOfARunningCopyOnce();
    void removesWhatAKilledProcessLeft();

    void isMadeByManyProcessesAtOnce_data();
    void isMadeByManyProcessesAtOnce();
    void isMadeOnManyThreadsAtOnce_data();
    void isMadeOnManyThreadsAtOnce();
};

void TemporaryDirCleanUpTest::removesWhatIsLeftBehind_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<Maker>("make");
    auto const row = [](char const* title, Maker make, QString const& name = QStringLiteral("leftover")) {
        QTest::newRow(title) << name << make;
    };
    row("file", MakeFile);
    row("folder", MakeFolder);
    row("folder with hidden things and links", MakeTree);
    row("file without permissions", MakeReadOnlyFile);
    row("link to a file", MakeLinkToFile);
    row("link to a folder", MakeLinkToFolder);
    row("link to the folder above", MakeLinkUp);
    row("hard link", MakeHardLinkToFile);
    row("name with wildcards", MakeFile, QStringLiteral("*?[a]"));
    row("name with a line feed", MakeFile, QStringLiteral("a\nb"));
    row("name with a place marker", MakeTree, QStringLiteral("%1"));
    row("name beyond ASCII", MakeTree, QStringLiteral("\u00E4\u20AC"));
    row("name with blanks", MakeTree, QStringLiteral(" a b "));
    row("directory of an earlier object", MakeTree, QStringLiteral("aBcDeF"));
}

void TemporaryDirCleanUpTest::removesWhatIsLeftBehind()
{
    QFETCH(QString, name);
    QFETCH(Maker, make);
    MakeFolder(own_);
    QStringList const before = Listing(Sandbox());
    make(own_ + QLatin1Char('/') + name);
    MakeFile(own_ + QStringLiteral("/zzz"));

    Made const made = MakeOne();

    QVERIFY2(made.valid, qPrintable(made.error));
    QCOMPARE(made.complaints, QStringList());
    QCOMPARE(Listing(Sandbox()), before);
}

void TemporaryDirCleanUpTest::leavesHiddenAndSystemEntries_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<Maker>("make");
    QTest::newRow("hidden file") << QStringLiteral(".file") << Maker(MakeFile);
    QTest::newRow("hidden folder") << QStringLiteral(".folder") << Maker(MakeTree);
    QTest::newRow("hidden link") << QStringLiteral(".link") << Maker(MakeLinkToFolder);
    QTest::newRow("dangling link") << QStringLiteral("dangling") << Maker(MakeDanglingLink);
    QTest::newRow("link to itself") << QStringLiteral("loop") << Maker(MakeLinkToItself);
    QTest::newRow("pipe") << QStringLiteral("pipe") << Maker(MakePipe);
}

void TemporaryDirCleanUpTest::leavesHiddenAndSystemEntries()
{
    QFETCH(QString, name);
    QFETCH(Maker, make);
    MakeFolder(own_);
    make(own_ + QLatin1Char('/') + name);
    QStringList const before = Listing(Sandbox());
    MakeFile(own_ + QStringLiteral("/leftover"));

    QVERIFY(MakeOne().valid);

    QCOMPARE(Listing(Sandbox()), before);
}

void TemporaryDirCleanUpTest::leavesOtherApplicationsFolders()
{
    MakeFolder(own_);
    for (char const* const folder : {"", "/Studio", "/Studio/2", "/Studio/1/Studio", "/Studio/2/Other", "/Other/2"}) {
        QString const path = tmp_ + QString::fromLatin1(folder);
        MakeFolder(path);
        MakeFile(path + QStringLiteral("/file"));
    }
    MakeFile(own_ + QStringLiteral("er"));
    QStringList const before = Listing(Sandbox());
    MakeFile(own_ + QStringLiteral("/leftover"));

    QVERIFY(MakeOne().valid);

    QCOMPARE(Listing(Sandbox()), before);
}

void TemporaryDirCleanUpTest::leavesWhatItCannotRemove()
{
    Chmod(tmp_, 01777);
    QStringList const steps{QStringLiteral("ordinary user"), QStringLiteral("make"),
                            QStringLiteral("put locked folder=locked"), QStringLiteral("await")};
    Player killed(tmp_, application_ + steps);
    QString const left = killed.HearMade().path;
    QString const locked = left + QStringLiteral("/locked");
    QTRY_VERIFY(QFileInfo(locked).isDir() && !QFileInfo(locked).permission(QFileDevice::WriteOwner));
    killed.Kill();
    Chmod(own_, 0777);
    MakeFile(own_ + QStringLiteral("/AAA"));
    MakeFile(own_ + QStringLiteral("/zzz"));

    Made const made = MakeOne({QStringLiteral("ordinary user")});

    Chmod(locked, 0755);
    QVERIFY2(made.valid, qPrintable(made.error));
    QVERIFY(made.isThere);
    QCOMPARE(QDir(own_).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList(left.section(QLatin1Char('/'), -1)));
    QVERIFY(Exists(locked + QStringLiteral("/file")));
}

void TemporaryDirCleanUpTest::emptiesTheFolderOncePerProcess()
{
    QString const make = QStringLiteral("make");
    QString const wait = QStringLiteral("await");
    Player player(tmp_, application_ + QStringList{make, QStringLiteral("put file=file"), wait, make, wait});
    Made const first = player.HearMade();
    MakeTree(own_ + QStringLiteral("/late folder"));
    MakeFile(own_ + QStringLiteral("/late"));
    QTRY_VERIFY(Exists(first.file));
    player.GoOn();
    Made const second = player.HearMade();
    QVERIFY(second.isThere);
    QVERIFY(second.path != first.path);
    QVERIFY(Exists(first.file));
    QVERIFY(Exists(own_ + QStringLiteral("/late folder/file")));
    QVERIFY(Exists(own_ + QStringLiteral("/late")));
    player.GoOn();
    player.End();
}

void TemporaryDirCleanUpTest::emptiesTheFolderOfARunningCopyOnce()
{
    QString const make = QStringLiteral("make");
    QString const wait = QStringLiteral("await");
    QStringList const steps = application_ + QStringList{make, wait, make, wait};
    Player first(tmp_, steps);
    QString const ofFirst = first.HearMade().path;
    QVERIFY(Exists(ofFirst));

    Player second(tmp_, steps);
    QString const ofSecond = second.HearMade().path;
    QVERIFY(Exists(ofSecond));
    QVERIFY(!Exists(ofFirst));

    first.GoOn();
    QString const nextOfFirst = first.HearMade().path;
    second.GoOn();
    QString const nextOfSecond = second.HearMade().path;
    QVERIFY(Exists(ofSecond));
    QVERIFY(Exists(nextOfFirst));
    QVERIFY(Exists(nextOfSecond));

    first.GoOn();
    first.End();
    QVERIFY(!Exists(nextOfFirst));
    QVERIFY(Exists(ofSecond));
    QVERIFY(Exists(nextOfSecond));
    second.GoOn();
    second.End();
    QCOMPARE(Listing(own_), QStringList());
}

void TemporaryDirCleanUpTest::removesWhatAKilledProcessLeft()
{
    QStringList const steps{QStringLiteral("make"), QStringLiteral("put file=file"), QStringLiteral("await")};
    Player killed(tmp_, application_ + steps);
    Made const left = killed.HearMade();
    QTRY_VERIFY(Exists(left.file));
    killed.Kill();
    QVERIFY(Exists(left.file));

    Made const made = MakeOne();

    QVERIFY(made.isThere);
    QVERIFY(!Exists(left.path));
    QCOMPARE(Listing(own_), QStringList());
}

void TemporaryDirCleanUpTest::isMadeByManyProcessesAtOnce_data()
{
    QTest::addColumn<int>("leftovers");
    QTest::newRow("no folder yet") << -1;
    QTest::newRow("leftovers") << 30;
}

void TemporaryDirCleanUpTest::isMadeByManyProcessesAtOnce()
{
    QFETCH(int, leftovers);
    if (leftovers >= 0) {
        MakeFolder(own_);
    }
    for (int i = 0; i < leftovers; ++i) {
        MakeTree(own_ + QLatin1Char('/') + QString::number(i));
    }

    std::vector<std::unique_ptr<Player>> players;
    players.reserve(8);
    for (int i = 0; i < 8; ++i) {
        players.push_back(
            std::make_unique<Player>(tmp_, application_ + QStringList{QStringLiteral("await"), QStringLiteral("make"),
                                                                      QStringLiteral("await")}));
    }
    for (auto const& player : players) {
        player->GoOn();
    }
    QSet<QString> paths;
    for (auto const& player : players) {
        Made const made = player->HearMade();
        QVERIFY2(made.valid, qPrintable(made.error));
        QCOMPARE(made.complaints, QStringList());
        paths += made.path;
    }
    for (auto const& player : players) {
        player->GoOn();
        player->End();
    }

    QCOMPARE(paths.size(), 8);
    // They hindered each other perhaps; nothing that they did hinders the next.
    QVERIFY(MakeOne().valid);
    QCOMPARE(Listing(own_), QStringList());
}

void TemporaryDirCleanUpTest::isMadeOnManyThreadsAtOnce_data()
{
    QTest::addColumn<int>("leftovers");
    QTest::newRow("no folder yet") << -1;
    QTest::newRow("empty folder") << 0;
    QTest::newRow("more leftovers than are listed in one go") << 4000;
}

void TemporaryDirCleanUpTest::isMadeOnManyThreadsAtOnce()
{
    QFETCH(int, leftovers);
    if (leftovers >= 0) {
        MakeFolder(own_);
    }
    for (int i = 0; i < leftovers; ++i) {
        MakeFile(own_ + QStringLiteral("/leftover %1").arg(i));
    }
    Player player(tmp_, application_ + QStringList{QStringLiteral("make on threads=16"), QStringLiteral("await")});
    QStringList names;
    for (int i = 0; i < 16; ++i) {
        QJsonObject const facts = player.Hear();
        Made const made = MadeFrom(facts);
        QVERIFY2(made.valid, qPrintable(made.error));
        QVERIFY(made.isThere);
        QVERIFY(facts.value(QStringLiteral("hasFile")).toBool());
        QCOMPARE(QFileInfo(made.path).path(), own_);
        names += made.path.section(QLatin1Char('/'), -1);
    }
    names.sort();
    QCOMPARE(names.removeDuplicates(), 0);
    QStringList found = QDir(own_).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    found.sort();
    QCOMPARE(found, names);
    player.GoOn();
    player.End();
    QCOMPARE(Listing(own_), QStringList());
}

int main(int argc, char** argv)
{
    return IsPlay(argc, argv) ? TakeSteps(argc, argv) : RunTests<TemporaryDirCleanUpTest>(argc, argv, false);
}

#include "TemporaryDirCleanUpTest.moc"

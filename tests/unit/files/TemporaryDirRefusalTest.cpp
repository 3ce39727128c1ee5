// Where no temporary directory is made.

#include <support/processes/Plays.h>
#include <support/sandbox/OrdinaryUser.h>
#include <support/sandbox/TemporaryFolders.h>
#include <unit/files/TemporaryDirPlay.h>
#include <unit/files/TemporaryDirTestCase.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtTest/QtTest>

#include <unistd.h>

using namespace Zelkor::Testing;

class TemporaryDirRefusalTest : public TemporaryDirTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void refusesALink_data();
    void refusesALink();
    void refusesAFolderOfSomebodyElse_data();
    void refusesAFolderOfSomebodyElse();
    void refusesAFolderOfTheSystem();
    void refusesANameThatLeadsOut_data();
    void refusesANameThatLeadsOut();

    void isInvalidWhereAFileStands_data();
    void isInvalidWhereAFileStands();
    void isInvalidWithoutATemporaryFolder_data();
    void isInvalidWithoutATemporaryFolder();
    void takesNoPathFromTheRootWithoutATemporaryFolder();
    void isInvalidInAFolderThatCannotBeWritten_data();
    void isInvalidInAFolderThatCannotBeWritten();
    void isInvalidWithANameThatIsTooLong();

private:
    /// That \a made is not valid, and says so all over.
    static void VerifyInvalid(Made const& made);
    /// That nothing is made, twice, and each time one error is logged about \a folder.
    void VerifyRefused(QStringList const& steps, QString const& folder) const;
};

void TemporaryDirRefusalTest::VerifyInvalid(Made const& made)
{
    QVERIFY(!made.valid);
    QCOMPARE(made.path, QString());
    QCOMPARE(made.file, QString());
    QVERIFY(!made.error.isEmpty());
}

void TemporaryDirRefusalTest::VerifyRefused(QStringList const& steps, QString const& folder) const
{
    QString const make = QStringLiteral("make");
    Player player(tmp_, steps + QStringList{make, make});
    for (int i = 0; i < 2; ++i) {
        Made const made = player.HearMade();
        VerifyInvalid(made);
        QCOMPARE(made.complaints.size(), 1);
        QString const complaint = made.complaints.first();
        QVERIFY2(complaint.startsWith(QStringLiteral("ERROR Util/TemporaryDir.cpp ")), qPrintable(complaint));
        QVERIFY2(complaint.contains(folder), qPrintable(complaint));
    }
    player.End();
}

void TemporaryDirRefusalTest::refusesALink_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<QString>("target");
    char const* const levels[] = {"application", "version", "executable"};
    for (int level = 0; level < 3; ++level) {
        auto const row = [&](char const* target, char const* path) {
            QTest::newRow(QByteArray(levels[level]).append(": ").append(target).constData())
                << level << QString::fromLatin1(path);
        };
        row("link to a folder elsewhere", "outside/tree");
        row("link to a folder in the temporary folder", "tmp/tree");
        row("link to nothing", "outside/nothing");
        row("link to a file", "outside/canary");
    }
}

void TemporaryDirRefusalTest::refusesALink()
{
    QFETCH(int, level);
    QFETCH(QString, target);
    for (char const* const tree : {"outside/tree", "tmp/tree"}) {
        for (QString const& below :
             {QString(), QLatin1Char('/') + Name(), QStringLiteral("/2/") + Name()}) { // as the levels below go on
            MakeFolder(At(QString::fromLatin1(tree) + below));
            MakeFile(At(QString::fromLatin1(tree) + below + QStringLiteral("/leftover")));
        }
    }
    QString const place = own_.section(QLatin1Char('/'), 0, level - 3);
    MakeFolder(QFileInfo(place).path());
    MakeLink(place, At(target));
    QStringList const before = Listing(Sandbox());

    VerifyRefused(application_, place);

    QCOMPARE(Listing(Sandbox()), before);
}

void TemporaryDirRefusalTest::refusesAFolderOfSomebodyElse_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<uint>("owner");
    // Only a superuser can give a folder away; others have the system's folders for this.
    if (geteuid() != 0) {
        return;
    }
    QStringList const ordinary(QStringLiteral("ordinary user"));
    QTest::newRow("application: an ordinary user's") << 0 << QStringList() << uint(Nobody);
    QTest::newRow("version: an ordinary user's") << 1 << QStringList() << uint(Nobody);
    QTest::newRow("executable: an ordinary user's") << 2 << QStringList() << uint(Nobody);
    QTest::newRow("application: the superuser's") << 0 << ordinary << 0U;
    QTest::newRow("version: the superuser's") << 1 << ordinary << 0U;
    QTest::newRow("executable: the superuser's") << 2 << ordinary << 0U;
    QTest::newRow("executable: another ordinary user's") << 2 << ordinary << uint(Nobody - 1);
}

void TemporaryDirRefusalTest::refusesAFolderOfSomebodyElse()
{
    if (!QTest::currentDataTag()) {
        return;
    }
    QFETCH(int, level);
    QFETCH(QStringList, steps);
    QFETCH(uint, owner);
    MakeFolder(own_);
    MakeTree(own_ + QStringLiteral("/leftover"));
    MakeFile(own_ + QStringLiteral("/file"));
    for (int each = 0; each < 3; ++each) {
        QString const folder = own_.section(QLatin1Char('/'), 0, each - 3);
        Chmod(folder, 0777);
        GiveTo(steps.isEmpty() ? 0 : Nobody, folder);
    }
    QString const place = own_.section(QLatin1Char('/'), 0, level - 3);
    GiveTo(owner, place);
    QStringList const before = Listing(Sandbox());

    VerifyRefused(application_ + steps, place);

    QCOMPARE(Listing(Sandbox()), before);
}

void TemporaryDirRefusalTest::refusesAFolderOfTheSystem()
{
    Player player(QStringLiteral("/"), {QStringLiteral("ordinary user"), QStringLiteral("name=usr"),
                                        QStringLiteral("version=2"), QStringLiteral("make")});
    Made const made = player.HearMade();
    player.End();
    VerifyInvalid(made);
    QCOMPARE(made.complaints.size(), 1);
    QVERIFY2(made.complaints.first().startsWith(QStringLiteral("ERROR Util/TemporaryDir.cpp ")),
             qPrintable(made.complaints.first()));
    QVERIFY(!Exists(QStringLiteral("/usr/2")));
}

void TemporaryDirRefusalTest::refusesANameThatLeadsOut_data()
{
    QTest::addColumn<QString>("name");
    for (char const* const name : {"..", "../", "../Studio", "../../Studio", "a/../../Studio", "./../Studio", "a/../..",
                                   "/..", "a//../../Studio", "../tmp/../Studio"}) {
        QTest::newRow(name) << QString::fromLatin1(name);
    }
}

void TemporaryDirRefusalTest::refusesANameThatLeadsOut()
{
    QFETCH(QString, name);
    tmp_ = At(QStringLiteral("deep/tmp"));
    for (char const* const folder : {"", "Studio/", "deep/", "deep/Studio/", "deep/tmp/a/"}) {
        QString const canaries = At(QString::fromLatin1(folder) + QStringLiteral("2/") + Name());
        MakeFolder(canaries);
        MakeFile(canaries + QStringLiteral("/canary"));
    }
    QStringList const before = Listing(Sandbox());

    VerifyRefused({QStringLiteral("name=") + name, QStringLiteral("version=2")}, tmp_);

    QCOMPARE(Listing(Sandbox()), before);
}

void TemporaryDirRefusalTest::isInvalidWhereAFileStands_data()
{
    QTest::addColumn<int>("level");
    QTest::newRow("temporary folder") << -1;
    QTest::newRow("application") << 0;
    QTest::newRow("version") << 1;
    QTest::newRow("executable") << 2;
}

void TemporaryDirRefusalTest::isInvalidWhereAFileStands()
{
    QFETCH(int, level);
    QString const place = own_.section(QLatin1Char('/'), 0, level - 3);
    QDir().rmdir(tmp_);
    MakeFolder(QFileInfo(place).path());
    MakeFile(place);
    QStringList const before = Listing(Sandbox());

    VerifyInvalid(MakeOne());

    QCOMPARE(Listing(Sandbox()), before);
}

void TemporaryDirRefusalTest::isInvalidWithoutATemporaryFolder_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("version");
    QTest::newRow("application's") << QStringLiteral("missing") << QStringLiteral("2.5.1");
    QTest::newRow("application's, the folder above is missing too")
        << QStringLiteral("missing/missing") << QStringLiteral("2.5.1");
    QTest::newRow("Qt's") << QStringLiteral("missing") << QString();
}

void TemporaryDirRefusalTest::isInvalidWithoutATemporaryFolder()
{
    QFETCH(QString, folder);
    QFETCH(QString, version);
    QString const name = Sandbox().section(QLatin1Char('/'), -1);
    QStringList const before = Listing(Sandbox());

    QString const make = QStringLiteral("make");
    Player player(At(folder), {QStringLiteral("name=") + name, QStringLiteral("version=") + version, make, make});
    VerifyInvalid(player.HearMade());
    VerifyInvalid(player.HearMade());
    player.End();

    bool const isUnderRoot = Exists(QLatin1Char('/') + name);
    QDir::root().rmpath(name + QStringLiteral("/2/") + Name());
    QVERIFY(!isUnderRoot);
    QCOMPARE(Listing(Sandbox()), before);
}

void TemporaryDirRefusalTest::takesNoPathFromTheRootWithoutATemporaryFolder()
{
    QString const bait = At(QStringLiteral("bait"));
    MakeFolder(bait + QStringLiteral("/2/") + Name());
    MakeFile(bait + QStringLiteral("/2/") + Name() + QStringLiteral("/canary"));
    QStringList const before = Listing(Sandbox());

    Player player(At(QStringLiteral("missing")), {QStringLiteral("name=") + bait.mid(1), QStringLiteral("version=2"),
                                                  QStringLiteral("make"), QStringLiteral("await")});
    Made const made = player.HearMade();
    QCOMPARE(Listing(Sandbox()), before);
    player.GoOn();
    player.End();

    VerifyInvalid(made);
}

void TemporaryDirRefusalTest::isInvalidInAFolderThatCannotBeWritten_data()
{
    QTest::addColumn<int>("level");
    QTest::newRow("temporary folder") << -1;
    QTest::newRow("application") << 0;
    QTest::newRow("version") << 1;
    QTest::newRow("executable") << 2;
}

void TemporaryDirRefusalTest::isInvalidInAFolderThatCannotBeWritten()
{
    QFETCH(int, level);
    QString const place = own_.section(QLatin1Char('/'), 0, level - 3);
    MakeFolder(place);
    for (int each = 0; each <= level && geteuid() == 0; ++each) {
        GiveTo(Nobody, own_.section(QLatin1Char('/'), 0, each - 3));
    }
    MakeFile(place + QStringLiteral("/leftover"));
    Chmod(place, 0555);
    QStringList const before = Listing(Sandbox());

    Made const made = MakeOne({QStringLiteral("ordinary user")});

    QCOMPARE(Listing(Sandbox()), before);
    Chmod(place, 0755);
    VerifyInvalid(made);
}

void TemporaryDirRefusalTest::isInvalidWithANameThatIsTooLong()
{
    QStringList const before = Listing(Sandbox());
    application_.first() = QStringLiteral("name=") + QString(300, QLatin1Char('x'));
    VerifyInvalid(MakeOne());
    QCOMPARE(Listing(Sandbox()), before);
}

int main(int argc, char** argv)
{
    return IsPlay(argc, argv) ? TakeSteps(argc, argv) : RunTests<TemporaryDirRefusalTest>(argc, argv, false);
}

#include "TemporaryDirRefusalTest.moc"

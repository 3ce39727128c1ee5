// Tests of the cases in which TemporaryDir must not create a directory.

#include <support/processes/ChildProcess.h>
#include <support/sandbox/Folders.h>
#include <support/sandbox/Users.h>
#include <unit/files/TemporaryDirTestCase.h>

#include <QtCore/QDir>
#include <QtTest/QtTest>

#include <functional>
#include <string>

#include <unistd.h>

using Zelkor::Util::TemporaryDir;
using namespace Zelkor::Testing;

class TemporaryDirRefusalTest : public TemporaryDirTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void rejectsALink_data();
    void rejectsALink();
    void rejectsAFolderOfAnotherUser_data();
    void rejectsAFolderOfAnotherUser();
    void rejectsASystemFolder();
    void rejectsANameWithParentFolders_data();
    void rejectsANameWithParentFolders();

    void isInvalidIfAFileIsInTheWay_data();
    void isInvalidIfAFileIsInTheWay();
    void isInvalidWithoutATemporaryFolder_data();
    void isInvalidWithoutATemporaryFolder();
    void doesNotUseTheRootFolderWithoutATemporaryFolder();
    void isInvalidInAReadOnlyFolder_data();
    void isInvalidInAReadOnlyFolder();
    void isInvalidIfTheNameIsTooLong();

private:
    /// Adds the column "level" to the test data, and one row for each level. The comment of FolderAtLevel() explains
    /// the levels.
    static void LevelRows();

    /// Returns the application's folder or one of its parent folders, depending on \a level:
    ///   -1: the temporary folder
    ///    0: the folder with the name of the application
    ///    1: the folder with the major version as its name
    ///    2: the folder with the name of the program; this is the application's folder
    std::string FolderAtLevel(int level) const;

    static void VerifyInvalid(DirectoryState const& state);

    /// Starts a child process that calls \a prepare and then creates two TemporaryDir objects. Verifies that both
    /// objects are invalid, and that each of them logged one error whose text contains \a folder.
    static void VerifyRejected(std::function<void()> const& prepare, std::string const& folder);
};

void TemporaryDirRefusalTest::LevelRows()
{
    QTest::addColumn<int>("level");
    QTest::newRow("temporary folder") << -1;
    QTest::newRow("application") << 0;
    QTest::newRow("version") << 1;
    QTest::newRow("program") << 2;
}

std::string TemporaryDirRefusalTest::FolderAtLevel(int level) const
{
    std::string folder = appFolder_;
    for (int current = 2; current > level; --current) {
        folder = ParentOf(folder);
    }
    return folder;
}

void TemporaryDirRefusalTest::VerifyInvalid(DirectoryState const& state)
{
    QVERIFY(!state.isValid);
    QCOMPARE(state.path, std::string());
    QCOMPARE(state.file, std::string());
    QVERIFY(!state.error.empty());
}

void TemporaryDirRefusalTest::VerifyRejected(std::function<void()> const& prepare, std::string const& folder)
{
    auto const states = RunInChild([&] {
        prepare();
        DirectoryState const first = CreateDirectory();
        return QVector<DirectoryState>{first, CreateDirectory()};
    });
    for (DirectoryState const& state : states) {
        VerifyInvalid(state);
        QCOMPARE(state.problems.size(), 1);
        QString const problem = state.problems.first();
        QVERIFY2(problem.startsWith(QStringLiteral("ERROR Util/TemporaryDir.cpp ")), qPrintable(problem));
        QVERIFY2(problem.contains(QString::fromStdString(folder)), qPrintable(problem));
    }
}

void TemporaryDirRefusalTest::rejectsALink_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<std::string>("target");
    char const* const levels[] = {"application", "version", "program"};
    for (int level = 0; level < 3; ++level) {
        auto const row = [&](char const* target, std::string const& path) {
            QTest::addRow("%s: %s", levels[level], target) << level << path;
        };
        row("link to a folder elsewhere", "outside/tree");
        row("link to a folder in the temporary folder", "tmp/tree");
        row("dangling link", "outside/nothing");
        row("link to a file", "outside/canary");
    }
}

void TemporaryDirRefusalTest::rejectsALink()
{
    QFETCH(int, level);
    QFETCH(std::string, target);
    for (char const* const tree : {"outside/tree", "tmp/tree"}) {
        // If TemporaryDir followed the link, it could remove one of the files "leftover" that this loop creates.
        for (std::string const& below : {std::string(), '/' + ProgramName(), "/2/" + ProgramName()}) {
            MakeFolders(At(tree + below));
            MakeFile(At(tree + below + "/leftover"));
        }
    }
    std::string const link = FolderAtLevel(level);
    MakeFolders(ParentOf(link));
    MakeLink(link, At(target));
    QByteArrayList const before = ListTree(Root());

    VerifyRejected([] {}, link);

    QCOMPARE(ListTree(Root()), before);
}

void TemporaryDirRefusalTest::rejectsAFolderOfAnotherUser_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("asOrdinaryUser");
    QTest::addColumn<uint>("owner");
    // Only root can change the owner of a folder. Without root privileges, this test has no rows.
    if (geteuid() != RootUser) {
        return;
    }
    QTest::newRow("application: of an ordinary user") << 0 << false << Nobody;
    QTest::newRow("version: of an ordinary user") << 1 << false << Nobody;
    QTest::newRow("program: of an ordinary user") << 2 << false << Nobody;
    QTest::newRow("application: of root") << 0 << true << RootUser;
    QTest::newRow("version: of root") << 1 << true << RootUser;
    QTest::newRow("program: of root") << 2 << true << RootUser;
    QTest::newRow("program: of another ordinary user") << 2 << true << Nobody - 1;
}

void TemporaryDirRefusalTest::rejectsAFolderOfAnotherUser()
{
    if (!QTest::currentDataTag()) {
        return;
    }
    QFETCH(int, level);
    QFETCH(bool, asOrdinaryUser);
    QFETCH(uint, owner);
    MakeFolders(appFolder_);
    MakeTree(appFolder_ + "/leftover", outside_);
    MakeFile(appFolder_ + "/file");
    for (int i = 0; i < 3; ++i) {
        Chmod(FolderAtLevel(i), 0777);
        SetOwner(FolderAtLevel(i), asOrdinaryUser ? Nobody : RootUser);
    }
    SetOwner(FolderAtLevel(level), owner);
    QByteArrayList const before = ListTree(Root());

    VerifyRejected(
        [&] {
            if (asOrdinaryUser) {
                BecomeOrdinaryUser();
            }
        },
        FolderAtLevel(level));

    QCOMPARE(ListTree(Root()), before);
}

void TemporaryDirRefusalTest::rejectsASystemFolder()
{
    DirectoryState const state = RunAsOrdinaryUser([] {
        qputenv("TMPDIR", "/");
        SetApplication("usr", "2");
        return CreateDirectory();
    });

    VerifyInvalid(state);
    QCOMPARE(state.problems.size(), 1);
    QVERIFY2(state.problems.first().startsWith(QStringLiteral("ERROR Util/TemporaryDir.cpp ")),
             qPrintable(state.problems.first()));
    QVERIFY(!Exists("/usr/2"));
}

void TemporaryDirRefusalTest::rejectsANameWithParentFolders_data()
{
    QTest::addColumn<std::string>("name");
    for (char const* const name : {"..", "../", "../Studio", "../../Studio", "a/../../Studio", "./../Studio", "a/../..",
                                   "/..", "a//../../Studio", "../tmp/../Studio"}) {
        QTest::newRow(name) << std::string(name);
    }
}

void TemporaryDirRefusalTest::rejectsANameWithParentFolders()
{
    QFETCH(std::string, name);
    std::string const tmp = At("deep/tmp");
    for (char const* const folder : {"", "Studio/", "deep/", "deep/Studio/", "deep/tmp/a/"}) {
        std::string const canaries = At(folder + ("2/" + ProgramName()));
        MakeFolders(canaries);
        MakeFile(canaries + "/canary");
    }
    QByteArrayList const before = ListTree(Root());

    VerifyRejected(
        [&] {
            qputenv("TMPDIR", QByteArray::fromStdString(tmp));
            SetApplication(name, "2");
        },
        tmp);

    QCOMPARE(ListTree(Root()), before);
}

void TemporaryDirRefusalTest::isInvalidIfAFileIsInTheWay_data()
{
    LevelRows();
}

void TemporaryDirRefusalTest::isInvalidIfAFileIsInTheWay()
{
    QFETCH(int, level);
    std::string const file = FolderAtLevel(level);
    Check(rmdir(tmp_.c_str()));
    MakeFolders(ParentOf(file));
    MakeFile(file);
    QByteArrayList const before = ListTree(Root());

    VerifyInvalid(RunInChild(CreateDirectory));

    QCOMPARE(ListTree(Root()), before);
}

void TemporaryDirRefusalTest::isInvalidWithoutATemporaryFolder_data()
{
    QTest::addColumn<std::string>("folder");
    QTest::addColumn<std::string>("version");
    QTest::newRow("application's folder") << std::string("missing") << std::string("2.5.1");
    QTest::newRow("application's folder, missing parent") << std::string("missing/missing") << std::string("2.5.1");
    QTest::newRow("Qt's folder") << std::string("missing") << std::string();
}

void TemporaryDirRefusalTest::isInvalidWithoutATemporaryFolder()
{
    QFETCH(std::string, folder);
    QFETCH(std::string, version);
    std::string const name = NameOf(Root()); // a random name: the root folder contains no such entry
    QByteArrayList const before = ListTree(Root());

    auto const states = RunInChild([&] {
        qputenv("TMPDIR", QByteArray::fromStdString(At(folder)));
        SetApplication(name, version);
        DirectoryState const first = CreateDirectory();
        return QVector<DirectoryState>{first, CreateDirectory()};
    });

    bool const isBelowRoot = Exists('/' + name);
    QDir::root().rmpath(QString::fromStdString(name + "/2/" + ProgramName()));
    QVERIFY(!isBelowRoot);
    VerifyInvalid(states[0]);
    VerifyInvalid(states[1]);
    QCOMPARE(ListTree(Root()), before);
}

void TemporaryDirRefusalTest::doesNotUseTheRootFolderWithoutATemporaryFolder()
{
    // The temporary folder does not exist. The application name is the path of the folder "folder" without the first
    // slash. If TemporaryDir used an empty path as the temporary folder, it would change the content of "folder".
    std::string const folder = At("folder");
    MakeFolders(folder + "/2/" + ProgramName());
    MakeFile(folder + "/2/" + ProgramName() + "/canary");
    QByteArrayList const before = ListTree(Root());

    ChildProcess child([&](ChildProcess::Parent const& parent) {
        qputenv("TMPDIR", QByteArray::fromStdString(At("missing")));
        SetApplication(folder.substr(1), "2");
        LogCapture const log;
        TemporaryDir const directory;
        parent.Send(StateOf(directory, log));
        parent.WaitForContinue();
    });
    auto const state = child.Receive<DirectoryState>();
    QCOMPARE(ListTree(Root()), before);
    child.Continue();
    child.Finish();

    VerifyInvalid(state);
}

void TemporaryDirRefusalTest::isInvalidInAReadOnlyFolder_data()
{
    LevelRows();
}

void TemporaryDirRefusalTest::isInvalidInAReadOnlyFolder()
{
    QFETCH(int, level);
    std::string const folder = FolderAtLevel(level);
    MakeFolders(folder);
    for (int i = 0; i <= level && geteuid() == RootUser; ++i) {
        SetOwner(FolderAtLevel(i), Nobody);
    }
    MakeFile(folder + "/leftover");
    Chmod(folder, 0555);
    QByteArrayList const before = ListTree(Root());

    DirectoryState const state = RunAsOrdinaryUser(CreateDirectory);

    QCOMPARE(ListTree(Root()), before);
    VerifyInvalid(state);
}

void TemporaryDirRefusalTest::isInvalidIfTheNameIsTooLong()
{
    QByteArrayList const before = ListTree(Root());

    DirectoryState const state = RunInChild([] {
        SetApplication(std::string(300, 'x'), "2.5.1");
        return CreateDirectory();
    });

    VerifyInvalid(state);
    QCOMPARE(ListTree(Root()), before);
}

ZQTUTIL_TEST_MAIN(TemporaryDirRefusalTest)
#include "TemporaryDirRefusalTest.moc"

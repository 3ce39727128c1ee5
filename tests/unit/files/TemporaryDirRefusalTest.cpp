// Tests of the cases in which TemporaryDir must not create a directory.

#include <support/overrides/BeforeCalls.h>
#include <support/processes/ChildProcess.h>
#include <support/sandbox/Folders.h>
#include <support/sandbox/Users.h>
#include <unit/files/TemporaryDirTestCase.h>

#include <QtCore/QDir>
#include <QtTest/QtTest>

#include <cstdio>
#include <functional>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using Zelkor::Util::TemporaryDir;
using namespace Zelkor::Testing;

namespace
{

Identity const UserUs{Us, Us, OurGroup, OurGroup, {}};

/// Returns the log message for a TemporaryDir with the error text \a error.
QString ExpectedProblem(std::string const& error)
{
    return QStringLiteral("ERROR Util/TemporaryDir.cpp Cannot create a temporary directory: ") +
           QString::fromStdString(error);
}

} // namespace

class TemporaryDirRefusalTest : public TemporaryDirTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void followsALinkOfTheUser_data();
    void followsALinkOfTheUser();
    void rejectsALinkWithoutAFolder_data();
    void rejectsALinkWithoutAFolder();
    void rejectsALinkOfAnotherUser_data();
    void rejectsALinkOfAnotherUser();
    void rejectsALinkToAFolderOfAnotherUser_data();
    void rejectsALinkToAFolderOfAnotherUser();
    void rejectsAFolderOfAnotherUser_data();
    void rejectsAFolderOfAnotherUser();
    void rejectsASystemFolder();
    void rejectsANameWithParentFolders_data();
    void rejectsANameWithParentFolders();
    void rejectsANameWithANulCharacter();
    void deniesWritingToOtherUsers_data();
    void deniesWritingToOtherUsers();
    void createsFoldersForItsOwnerOnly();
    void isNotRedirectedWhileItRemovesLeftovers();
    void isNotRedirectedWhileItCreatesFolders();

    void doesNotEmptyAFolderBehindAReplacedLink();
    void isInvalidIfItsDirectoryIsCreatedInAnotherFolder();
    void namesAFolderThatIsMissingLater();
    void namesAFolderThatCouldNotBeCreatedBefore();
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
    /// objects are invalid, that their error text contains \a folder, and that each of them logged this error text
    /// once.
    static void VerifyRejected(std::function<void()> const& prepare, std::string const& folder);

    /// Adds the column "level" to the test data, and rows for the levels of the application's folder and its parents.
    /// Without root privileges, adds no rows.
    static void LevelRowsForRoot();

    /// Starts a child process that creates a TemporaryDir as an ordinary user. Verifies that the object is invalid and
    /// has the error text \a error.
    static void VerifyRejectedAsOrdinaryUser(std::string const& error);
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
        QVERIFY2(state.error.find(folder) != std::string::npos, state.error.c_str());
        QCOMPARE(state.problems, QStringList(ExpectedProblem(state.error)));
    }
}

void TemporaryDirRefusalTest::LevelRowsForRoot()
{
    QTest::addColumn<int>("level");
    if (geteuid() != RootUser) {
        return;
    }
    QTest::newRow("application") << 0;
    QTest::newRow("version") << 1;
    QTest::newRow("program") << 2;
}

void TemporaryDirRefusalTest::VerifyRejectedAsOrdinaryUser(std::string const& error)
{
    DirectoryState const state = RunAsOrdinaryUser(CreateDirectory);
    VerifyInvalid(state);
    QCOMPARE(state.error, error);
    QCOMPARE(state.problems, QStringList(ExpectedProblem(error)));
}

void TemporaryDirRefusalTest::followsALinkOfTheUser_data()
{
    QTest::addColumn<int>("level");
    QTest::newRow("application") << 0;
    QTest::newRow("version") << 1;
    QTest::newRow("program") << 2;
}

void TemporaryDirRefusalTest::followsALinkOfTheUser()
{
    QFETCH(int, level);
    MakeFolders(appFolder_);
    MakeFile(appFolder_ + "/leftover");
    std::string const moved = At("other disk");
    Check(rename(FolderAtLevel(level).c_str(), moved.c_str()));
    MakeLink(FolderAtLevel(level), moved);

    auto const states = RunInChild([] {
        DirectoryState const first = CreateDirectory();
        return QVector<DirectoryState>{first, CreateDirectory()};
    });

    for (DirectoryState const& state : states) {
        QVERIFY2(state.isValid, state.error.c_str());
        QVERIFY(state.exists);
        QCOMPARE(ParentOf(state.path), appFolder_);
        QCOMPARE(state.problems, QStringList());
    }
    QCOMPARE(ListTree(appFolder_), QByteArrayList());
}

void TemporaryDirRefusalTest::rejectsALinkWithoutAFolder_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<std::string>("target");
    char const* const levels[] = {"application", "version", "program"};
    for (int level = 0; level < 3; ++level) {
        QTest::addRow("%s: dangling link", levels[level]) << level << std::string("outside/nothing");
        QTest::addRow("%s: link to a file", levels[level]) << level << std::string("outside/canary");
    }
}

void TemporaryDirRefusalTest::rejectsALinkWithoutAFolder()
{
    QFETCH(int, level);
    QFETCH(std::string, target);
    std::string const link = FolderAtLevel(level);
    MakeFolders(ParentOf(link));
    MakeLink(link, At(target));
    QByteArrayList const before = ListTree(Root());

    VerifyRejected([] {}, link);

    QCOMPARE(ListTree(Root()), before);
}

void TemporaryDirRefusalTest::rejectsALinkOfAnotherUser_data()
{
    LevelRowsForRoot();
}

void TemporaryDirRefusalTest::rejectsALinkOfAnotherUser()
{
    if (!QTest::currentDataTag()) {
        return;
    }
    QFETCH(int, level);
    std::string const link = FolderAtLevel(level);
    std::string const target = At("target");
    for (std::string const& folder : {target, target + '/' + ProgramName(), target + "/2/" + ProgramName()}) {
        MakeFolders(folder);
        MakeFile(folder + "/leftover");
    }
    MakeFolders(ParentOf(link));
    MakeLink(link, target);
    for (int i = 0; i < level; ++i) {
        SetOwner(FolderAtLevel(i), Nobody);
    }
    for (char const* const folder : {"", "/2"}) {
        SetOwner(target + folder, Nobody);
    }
    SetOwner(target + '/' + ProgramName(), Nobody);
    SetOwner(target + "/2/" + ProgramName(), Nobody);
    SetOwner(link, Them);
    QByteArrayList const before = ListTree(Root());

    VerifyRejectedAsOrdinaryUser("The link \"" + link + "\" does not belong to the current user.");

    QCOMPARE(ListTree(Root()), before);
}

void TemporaryDirRefusalTest::rejectsALinkToAFolderOfAnotherUser_data()
{
    LevelRowsForRoot();
}

void TemporaryDirRefusalTest::rejectsALinkToAFolderOfAnotherUser()
{
    if (!QTest::currentDataTag()) {
        return;
    }
    QFETCH(int, level);
    std::string const link = FolderAtLevel(level);
    MakeFolders(ParentOf(link));
    MakeLink(link, outside_);
    for (int i = 0; i < level; ++i) {
        SetOwner(FolderAtLevel(i), Nobody);
    }
    SetOwner(link, Nobody);
    SetOwner(outside_, Them);
    Chmod(outside_, 0777);
    QByteArrayList const before = ListTree(Root());

    VerifyRejectedAsOrdinaryUser("The folder \"" + link + "\" does not belong to the current user.");

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
        SetOwner(FolderAtLevel(i), asOrdinaryUser ? Nobody : RootUser);
    }
    SetOwner(FolderAtLevel(level), owner);
    Chmod(FolderAtLevel(level), 0777);
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
    QCOMPARE(state.error, std::string("The folder \"//usr\" does not belong to the current user."));
    QCOMPARE(state.problems, QStringList(ExpectedProblem(state.error)));
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

void TemporaryDirRefusalTest::rejectsANameWithANulCharacter()
{
    MakeFolders(appFolder_);
    MakeFile(appFolder_ + "/file");
    QByteArrayList const before = ListTree(Root());

    VerifyRejected([] { SetApplication(std::string("Studio\0x", 8), "2"); }, tmp_);

    QCOMPARE(ListTree(Root()), before);
}

void TemporaryDirRefusalTest::deniesWritingToOtherUsers_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<uint>("mode");
    QTest::addColumn<uint>("newMode");
    char const* const levels[] = {"application", "version", "program"};
    for (int level = 0; level < 3; ++level) {
        QTest::addRow("%s: group and others", levels[level]) << level << 0777U << 0755U;
        QTest::addRow("%s: group", levels[level]) << level << 0770U << 0750U;
        QTest::addRow("%s: others, sticky", levels[level]) << level << 01703U << 01701U;
    }
}

void TemporaryDirRefusalTest::deniesWritingToOtherUsers()
{
    QFETCH(int, level);
    QFETCH(uint, mode);
    QFETCH(uint, newMode);
    std::string const folder = FolderAtLevel(level);
    MakeFolders(appFolder_);
    Chmod(folder, mode);

    auto const states = RunInChild([] {
        DirectoryState const first = CreateDirectory();
        return QVector<DirectoryState>{first, CreateDirectory()};
    });

    QVERIFY2(states[0].isValid, states[0].error.c_str());
    QCOMPARE(states[0].problems,
             QStringList(QStringLiteral("WARNING Util/Platforms/posix/OwnFolder.cpp Removed the write permission of "
                                        "other users from the temporary folder ") +
                         QString::fromStdString(folder)));
    QVERIFY2(states[1].isValid, states[1].error.c_str());
    QCOMPARE(states[1].problems, QStringList());
    QCOMPARE(ModeOf(folder), newMode);
}

void TemporaryDirRefusalTest::createsFoldersForItsOwnerOnly()
{
    DirectoryState const state = RunInChild([] {
        umask(0);
        return CreateDirectory();
    });

    QVERIFY2(state.isValid, state.error.c_str());
    QCOMPARE(state.problems, QStringList());
    for (int level = 0; level < 3; ++level) {
        QCOMPARE(ModeOf(FolderAtLevel(level)), 0700U);
    }
}

void TemporaryDirRefusalTest::isNotRedirectedWhileItRemovesLeftovers()
{
    if (geteuid() != RootUser) {
        return;
    }
    constexpr int Rounds = 20;
    constexpr int FileCount = 300;
    auto const makeFolder = [](std::string const& path) {
        std::string const program = path + "/2/" + ProgramName();
        MakeFolders(program);
        for (int i = 0; i < FileCount; ++i) {
            MakeFile(program + '/' + std::to_string(i));
        }
        for (std::string const& folder : {path, path + "/2", program}) {
            SetOwner(folder, Us);
        }
    };
    Chmod(tmp_, 0777); // all users can rename the folders of other users, because there is no sticky bit
    std::string const application = FolderAtLevel(0);
    std::string const other = At("other folder");
    makeFolder(other);
    QByteArrayList const before = ListTree(other);
    std::string const link = application + ".link";
    MakeLink(link, other);
    SetOwner(link, Them);

    for (int round = 0; round < Rounds; ++round) {
        makeFolder(application);
        ChildProcess attacker([&](ChildProcess::Parent const& parent) {
            BecomeUser({Them, Them, TheirGroup, TheirGroup, {}});
            parent.Send(true);
            std::string const moved = application + ".moved";
            for (;;) {
                rename(application.c_str(), moved.c_str());
                rename(link.c_str(), application.c_str());
                rename(application.c_str(), link.c_str());
                rename(moved.c_str(), application.c_str());
            }
        });
        QVERIFY(attacker.Receive<bool>());
        RunAs(UserUs, CreateDirectory);
        attacker.Kill();
        // The new directory itself can be in the other folder, because QTemporaryDir creates it by its path.
        for (QByteArray const& entry : before) {
            QVERIFY2(Exists(other + '/' + entry.toStdString()), entry.constData());
        }

        EmptyFolder(tmp_);
        MakeLink(link, other);
        SetOwner(link, Them);
    }
}

void TemporaryDirRefusalTest::isNotRedirectedWhileItCreatesFolders()
{
    if (geteuid() != RootUser) {
        return;
    }
    constexpr int Rounds = 300;
    Chmod(tmp_, 0777);
    std::string const application = FolderAtLevel(0);
    std::string const other = At("other folder");
    MakeFolder(other);
    SetOwner(other, Us);
    ChildProcess attacker([&](ChildProcess::Parent const& parent) {
        BecomeUser({Them, Them, TheirGroup, TheirGroup, {}});
        parent.Send(true);
        for (;;) {
            [[maybe_unused]] int const result = symlink(other.c_str(), application.c_str());
            unlink(application.c_str());
        }
    });
    QVERIFY(attacker.Receive<bool>());

    for (int round = 0; round < Rounds; ++round) {
        RunAs(UserUs, CreateDirectory);
        QCOMPARE(ListTree(other), QByteArrayList());
        QDir(QString::fromStdString(application)).removeRecursively();
    }
    attacker.Kill();
}

void TemporaryDirRefusalTest::doesNotEmptyAFolderBehindAReplacedLink()
{
    std::string const link = FolderAtLevel(0);
    for (char const* const folder : {"own", "other"}) {
        MakeFolders(At(folder + ("/2/" + ProgramName())));
        MakeFile(At(folder + ("/2/" + ProgramName()) + "/file"));
    }
    MakeLink(link, At("own"));
    MakeLink(At("replacement"), At("other"));
    QByteArrayList const before = ListTree(At("other"));

    RunInChild([&] {
        // OwnFolder follows the link after it has checked the owner of the link. Only this call has no O_NOFOLLOW.
        BeforeCalls const replace([&](BeforeCalls::Call const& call) {
            if (call.function == "openat" && call.path == "Studio" && (call.flags & O_NOFOLLOW) == 0) {
                rename(At("replacement").c_str(), link.c_str());
            }
        });
        return CreateDirectory();
    });

    QVERIFY(!Exists(At("replacement")));
    QCOMPARE(ListTree(At("other")), before);
}

void TemporaryDirRefusalTest::isInvalidIfItsDirectoryIsCreatedInAnotherFolder()
{
    std::string const application = FolderAtLevel(0);
    MakeFolders(At("other/2/" + ProgramName()));
    QByteArrayList const before = ListTree(At("other"));

    DirectoryState const state = RunInChild([&] {
        // QTemporaryDir creates its directory with mkdir().
        BeforeCalls const replace([&](BeforeCalls::Call const& call) {
            if (call.function == "mkdir" && ParentOf(call.path) == appFolder_) {
                rename(application.c_str(), At("moved").c_str());
                MakeLink(application, At("other"));
            }
        });
        return CreateDirectory();
    });

    VerifyInvalid(state);
    QCOMPARE(state.error, "Another user has replaced the folder \"" + appFolder_ + "\".");
    QCOMPARE(state.problems, QStringList(ExpectedProblem(state.error)));
    QCOMPARE(ListTree(At("other")), before);
}

void TemporaryDirRefusalTest::namesAFolderThatIsMissingLater()
{
    auto const states = RunInChild([&] {
        DirectoryState const first = CreateDirectory();
        Check(rmdir(appFolder_.c_str()));
        return QVector<DirectoryState>{first, CreateDirectory()};
    });

    QVERIFY(states[0].isValid);
    VerifyInvalid(states[1]);
    QCOMPARE(states[1].error, "The folder \"" + appFolder_ + "\" is missing.");
    QCOMPARE(states[1].problems, QStringList(ExpectedProblem(states[1].error)));
}

void TemporaryDirRefusalTest::namesAFolderThatCouldNotBeCreatedBefore()
{
    if (geteuid() == RootUser) {
        SetOwner(tmp_, Nobody);
    }

    auto const states = RunAsOrdinaryUser([&] {
        Chmod(tmp_, 0555);
        DirectoryState const first = CreateDirectory();
        Chmod(tmp_, 0755);
        return QVector<DirectoryState>{first, CreateDirectory()};
    });

    std::string const folder = FolderAtLevel(0);
    QCOMPARE(states[0].error, "The folder \"" + folder + "\" cannot be created: Permission denied");
    QCOMPARE(states[1].error, "The folder \"" + folder + "\" is missing.");
    for (DirectoryState const& state : states) {
        VerifyInvalid(state);
        QCOMPARE(state.problems, QStringList(ExpectedProblem(state.error)));
    }
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
    std::string const error =
        "The temporary folder of the system is missing. The environment variable TMPDIR can contain its path.";
    for (DirectoryState const& state : states) {
        VerifyInvalid(state);
        QCOMPARE(state.error, error);
        QCOMPARE(state.problems, QStringList(ExpectedProblem(error)));
    }
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

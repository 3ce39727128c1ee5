// Tests that TemporaryDir removes the application's old temporary directories, even if several processes or threads
// create TemporaryDir objects at the same time.

#include <support/processes/ChildProcess.h>
#include <support/sandbox/Folders.h>
#include <support/sandbox/Users.h>
#include <unit/files/TemporaryDirTestCase.h>

#include <QtCore/QSet>
#include <QtTest/QtTest>

#include <algorithm>
#include <future>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

using Zelkor::Util::TemporaryDir;
using namespace Zelkor::Testing;

/// A function that creates an entry at \a path. The entry may be a link to an entry of the folder \a outside.
using LeftoverMaker = void (*)(std::string const& path, std::string const& outside);
Q_DECLARE_METATYPE(LeftoverMaker)

namespace
{

void MakeLeftoverFile(std::string const& path, std::string const& /*outside*/)
{
    MakeFile(path);
}

void MakeLeftoverFolder(std::string const& path, std::string const& /*outside*/)
{
    MakeFolder(path);
}

void MakeReadOnlyFile(std::string const& path, std::string const& /*outside*/)
{
    MakeFile(path);
    Chmod(path, 0);
}

void MakeLinkToFile(std::string const& path, std::string const& outside)
{
    MakeLink(path, outside + "/canary");
}

void MakeLinkToFolder(std::string const& path, std::string const& outside)
{
    MakeLink(path, outside);
}

void MakeLinkToParent(std::string const& path, std::string const& /*outside*/)
{
    MakeLink(path, "..");
}

void MakeDanglingLink(std::string const& path, std::string const& /*outside*/)
{
    MakeLink(path, "nowhere");
}

void MakeLinkToItself(std::string const& path, std::string const& /*outside*/)
{
    MakeLink(path, NameOf(path));
}

void MakeHardLinkToFile(std::string const& path, std::string const& outside)
{
    MakeHardLink(path, outside + "/canary");
}

void MakeLeftoverPipe(std::string const& path, std::string const& /*outside*/)
{
    MakePipe(path);
}

} // namespace

class TemporaryDirCleanUpTest : public TemporaryDirTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void removesLeftovers_data();
    void removesLeftovers();
    void keepsHiddenAndSpecialEntries_data();
    void keepsHiddenAndSpecialEntries();
    void keepsFoldersOfOtherApplications();
    void continuesAfterAnEntryThatCannotBeRemoved();
    void removesADeepLeftover();
    void keepsThePermissionsOfLinkTargets_data();
    void keepsThePermissionsOfLinkTargets();
    void emptiesTheFolderOncePerProcess();
    void emptiesTheFolderOfARunningProcessOnce();
    void removesTheDirectoryOfAKilledProcess();

    void manyProcessesCreateDirectoriesAtOnce_data();
    void manyProcessesCreateDirectoriesAtOnce();
    void manyThreadsCreateDirectoriesAtOnce_data();
    void manyThreadsCreateDirectoriesAtOnce();
};

void TemporaryDirCleanUpTest::removesLeftovers_data()
{
    QTest::addColumn<std::string>("name");
    QTest::addColumn<LeftoverMaker>("make");
    auto const row = [](char const* title, LeftoverMaker make, std::string const& name = "leftover") {
        QTest::newRow(title) << name << make;
    };
    row("file", MakeLeftoverFile);
    row("folder", MakeLeftoverFolder);
    row("folder with hidden entries and links", MakeTree);
    row("file without permissions", MakeReadOnlyFile);
    row("link to a file", MakeLinkToFile);
    row("link to a folder", MakeLinkToFolder);
    row("link to the parent folder", MakeLinkToParent);
    row("hard link", MakeHardLinkToFile);
    row("name with wildcards", MakeLeftoverFile, "*?[a]");
    row("name with a line feed", MakeLeftoverFile, "a\nb");
    row("name with a place marker", MakeTree, "%1");
    row("non-ASCII name", MakeTree, "\u00E4\u20AC");
    row("name that is not UTF-8", MakeTree, "\xFF\xFE");
    row("name with blanks", MakeTree, " a b ");
    row("directory of an earlier object", MakeTree, "aBcDeF");
}

void TemporaryDirCleanUpTest::removesLeftovers()
{
    QFETCH(std::string, name);
    QFETCH(LeftoverMaker, make);
    MakeFolders(appFolder_);
    QByteArrayList const before = ListTree(Root());
    make(appFolder_ + '/' + name, outside_);
    MakeFile(appFolder_ + "/zzz");

    DirectoryState const state = RunInChild(CreateDirectory);

    QVERIFY2(state.isValid, state.error.c_str());
    QCOMPARE(state.problems, QStringList());
    QCOMPARE(ListTree(Root()), before);
}

void TemporaryDirCleanUpTest::keepsHiddenAndSpecialEntries_data()
{
    QTest::addColumn<std::string>("name");
    QTest::addColumn<LeftoverMaker>("make");
    auto const row = [](char const* title, LeftoverMaker make, std::string const& name) {
        QTest::newRow(title) << name << make;
    };
    row("hidden file", MakeLeftoverFile, ".file");
    row("hidden folder", MakeTree, ".folder");
    row("hidden link", MakeLinkToFolder, ".link");
    row("dangling link", MakeDanglingLink, "dangling");
    row("link to itself", MakeLinkToItself, "loop");
    row("pipe", MakeLeftoverPipe, "pipe");
}

void TemporaryDirCleanUpTest::keepsHiddenAndSpecialEntries()
{
    QFETCH(std::string, name);
    QFETCH(LeftoverMaker, make);
    MakeFolders(appFolder_);
    make(appFolder_ + '/' + name, outside_);
    QByteArrayList const before = ListTree(Root());
    MakeFile(appFolder_ + "/leftover");

    QVERIFY(RunInChild(CreateDirectory).isValid);

    QCOMPARE(ListTree(Root()), before);
}

void TemporaryDirCleanUpTest::keepsFoldersOfOtherApplications()
{
    MakeFolders(appFolder_);
    for (char const* const folder : {"", "/Studio", "/Studio/2", "/Studio/1/Studio", "/Studio/2/Other", "/Other/2"}) {
        MakeFolders(tmp_ + folder);
        MakeFile(tmp_ + folder + "/file");
    }
    MakeFile(appFolder_ + "er");
    QByteArrayList const before = ListTree(Root());
    MakeFile(appFolder_ + "/leftover");

    QVERIFY(RunInChild(CreateDirectory).isValid);

    QCOMPARE(ListTree(Root()), before);
}

void TemporaryDirCleanUpTest::continuesAfterAnEntryThatCannotBeRemoved()
{
    Chmod(tmp_, 01777);
    ChildProcess killed([](ChildProcess::Parent const& parent) {
        BecomeOrdinaryUser();
        TemporaryDir const directory;
        std::string const path = directory.path().toStdString();
        MakeFolder(path + "/locked");
        MakeFile(path + "/locked/file");
        Chmod(path + "/locked", 0555);
        parent.Send(QByteArray::fromStdString(path));
        parent.WaitForContinue();
    });
    std::string const leftover = killed.Receive<QByteArray>().toStdString();
    killed.Kill();
    Chmod(appFolder_, 0777);
    MakeFile(appFolder_ + "/AAA");
    MakeFile(appFolder_ + "/zzz");

    DirectoryState const state = RunAsOrdinaryUser(CreateDirectory);

    Chmod(leftover + "/locked", 0755);
    QVERIFY2(state.isValid, state.error.c_str());
    QVERIFY(state.exists);
    QCOMPARE(NamesIn(AT_FDCWD, appFolder_.c_str()), std::vector<std::string>{NameOf(leftover)});
    QVERIFY(Exists(leftover + "/locked/file"));
}

void TemporaryDirCleanUpTest::removesADeepLeftover()
{
    constexpr int Levels = 5000;
    MakeFolders(appFolder_);
    Descriptor folder(Check(open(appFolder_.c_str(), O_RDONLY | O_DIRECTORY)));
    for (int level = 0; level < Levels; ++level) {
        MakeFileAt(folder, "file");
        Check(mkdirat(folder, "folder", 0755));
        folder.Reset(Check(openat(folder, "folder", O_RDONLY | O_DIRECTORY)));
    }

    DirectoryState const state = RunInChild(CreateDirectory);

    QVERIFY2(state.isValid, state.error.c_str());
    QCOMPARE(ListTree(appFolder_), QByteArrayList());
}

void TemporaryDirCleanUpTest::keepsThePermissionsOfLinkTargets_data()
{
    QTest::addColumn<QString>("operation");
    QTest::newRow("new object") << QStringLiteral("new object");
    QTest::newRow("remove()") << QStringLiteral("remove()");
    QTest::newRow("destructor") << QStringLiteral("destructor");
}

void TemporaryDirCleanUpTest::keepsThePermissionsOfLinkTargets()
{
    QFETCH(QString, operation);
    Chmod(Root(), 0777);
    Chmod(tmp_, 0777);

    mode_t const mode = RunAsOrdinaryUser([&] {
        std::string const target = At("target");
        MakeFile(target);
        Chmod(target, 0444);
        auto const makeReadOnlyFolder = [&](std::string const& path) {
            MakeFolders(path + "/locked");
            MakeLink(path + "/locked/link", target);
            Chmod(path + "/locked", 0555);
        };
        if (operation == QStringLiteral("new object")) {
            makeReadOnlyFolder(appFolder_ + "/leftover");
            TemporaryDir const directory;
        } else if (operation == QStringLiteral("remove()")) {
            TemporaryDir directory;
            makeReadOnlyFolder(directory.path().toStdString());
            directory.setAutoRemove(false);
            directory.remove();
        } else {
            TemporaryDir const directory;
            makeReadOnlyFolder(directory.path().toStdString());
        }
        return ModeOf(target);
    });

    QCOMPARE(mode, 0444U);
}

void TemporaryDirCleanUpTest::emptiesTheFolderOncePerProcess()
{
    auto const states = RunInChild([&] {
        LogCapture const log;
        TemporaryDir const first;
        MakeFile(StateOf(first, log).file);
        MakeTree(appFolder_ + "/late folder", outside_);
        MakeFile(appFolder_ + "/late");

        TemporaryDir const second;
        bool const isKept = Exists(StateOf(first, log).file) && Exists(appFolder_ + "/late folder/file") &&
                            Exists(appFolder_ + "/late");
        return isKept ? QVector<DirectoryState>{StateOf(first, log), StateOf(second, log)} : QVector<DirectoryState>();
    });

    QCOMPARE(states.size(), 2);
    QVERIFY(states[1].exists);
    QVERIFY(states[1].path != states[0].path);
}

void TemporaryDirCleanUpTest::emptiesTheFolderOfARunningProcessOnce()
{
    auto const createTwo = [](ChildProcess::Parent const& parent) {
        TemporaryDir const first;
        parent.Send(first.path());
        parent.WaitForContinue();
        TemporaryDir const second;
        parent.Send(second.path());
        parent.WaitForContinue();
    };

    ChildProcess a(createTwo);
    std::string const firstOfA = a.Receive<QString>().toStdString();
    QVERIFY(Exists(firstOfA));

    // The first TemporaryDir of a process removes the directories that other processes of the same program have
    // created.
    ChildProcess b(createTwo);
    std::string const firstOfB = b.Receive<QString>().toStdString();
    QVERIFY(Exists(firstOfB));
    QVERIFY(!Exists(firstOfA));

    // The second TemporaryDir of a process removes nothing.
    a.Continue();
    std::string const secondOfA = a.Receive<QString>().toStdString();
    b.Continue();
    std::string const secondOfB = b.Receive<QString>().toStdString();
    QVERIFY(Exists(firstOfB));
    QVERIFY(Exists(secondOfA));
    QVERIFY(Exists(secondOfB));

    a.Continue();
    a.Finish();
    QVERIFY(!Exists(secondOfA));
    QVERIFY(Exists(firstOfB));
    QVERIFY(Exists(secondOfB));
    b.Continue();
    b.Finish();
    QCOMPARE(ListTree(appFolder_), QByteArrayList());
}

void TemporaryDirCleanUpTest::removesTheDirectoryOfAKilledProcess()
{
    ChildProcess killed([](ChildProcess::Parent const& parent) {
        LogCapture const log;
        TemporaryDir const directory;
        DirectoryState const state = StateOf(directory, log);
        MakeFile(state.file);
        parent.Send(state);
        parent.WaitForContinue();
    });
    auto const leftover = killed.Receive<DirectoryState>();
    killed.Kill();
    QVERIFY(Exists(leftover.file));

    DirectoryState const state = RunInChild(CreateDirectory);

    QVERIFY(state.exists);
    QVERIFY(!Exists(leftover.path));
    QCOMPARE(ListTree(appFolder_), QByteArrayList());
}

void TemporaryDirCleanUpTest::manyProcessesCreateDirectoriesAtOnce_data()
{
    QTest::addColumn<int>("leftovers");
    QTest::newRow("no folder yet") << -1;
    QTest::newRow("leftovers") << 30;
}

void TemporaryDirCleanUpTest::manyProcessesCreateDirectoriesAtOnce()
{
    QFETCH(int, leftovers);
    constexpr int ProcessCount = 8;
    if (leftovers >= 0) {
        MakeFolders(appFolder_);
    }
    for (int i = 0; i < leftovers; ++i) {
        MakeTree(appFolder_ + '/' + std::to_string(i), outside_);
    }

    std::vector<std::unique_ptr<ChildProcess>> processes;
    processes.reserve(ProcessCount);
    for (int i = 0; i < ProcessCount; ++i) {
        processes.push_back(std::make_unique<ChildProcess>([](ChildProcess::Parent const& parent) {
            parent.WaitForContinue();
            LogCapture const log;
            TemporaryDir const directory;
            parent.Send(StateOf(directory, log));
            parent.WaitForContinue();
        }));
    }
    for (auto const& process : processes) {
        process->Continue();
    }
    QSet<QString> paths;
    for (auto const& process : processes) {
        auto const state = process->Receive<DirectoryState>();
        QVERIFY2(state.isValid, state.error.c_str());
        QCOMPARE(state.problems, QStringList());
        paths += QString::fromStdString(state.path);
    }
    for (auto const& process : processes) {
        process->Continue();
        process->Finish();
    }
    QCOMPARE(paths.size(), ProcessCount);

    // The processes above may have removed each other's directories. A new process must still get a valid directory.
    QVERIFY(RunInChild(CreateDirectory).isValid);
    QCOMPARE(ListTree(appFolder_), QByteArrayList());
}

void TemporaryDirCleanUpTest::manyThreadsCreateDirectoriesAtOnce_data()
{
    QTest::addColumn<int>("leftovers");
    QTest::newRow("no folder yet") << -1;
    QTest::newRow("empty folder") << 0;
    QTest::newRow("more leftovers than one read of the folder returns") << 4000;
}

void TemporaryDirCleanUpTest::manyThreadsCreateDirectoriesAtOnce()
{
    QFETCH(int, leftovers);
    constexpr int ThreadCount = 16;
    if (leftovers >= 0) {
        MakeFolders(appFolder_);
    }
    for (int i = 0; i < leftovers; ++i) {
        MakeFile(appFolder_ + "/leftover " + std::to_string(i));
    }

    ChildProcess child([](ChildProcess::Parent const& parent) {
        LogCapture const log;
        std::promise<void> start;
        std::shared_future<void> const started = start.get_future().share();
        std::vector<std::future<std::unique_ptr<TemporaryDir>>> results;
        results.reserve(ThreadCount);
        for (int i = 0; i < ThreadCount; ++i) {
            results.push_back(std::async(std::launch::async, [started] {
                started.wait();
                auto directory = std::make_unique<TemporaryDir>();
                MakeFile(directory->filePath(QStringLiteral("file")).toStdString());
                return directory;
            }));
        }
        start.set_value();
        std::vector<std::unique_ptr<TemporaryDir>> directories;
        directories.reserve(results.size());
        for (auto& result : results) {
            directories.push_back(result.get());
        }
        QVector<DirectoryState> states;
        for (auto const& directory : directories) {
            states += StateOf(*directory, log);
        }
        parent.Send(states);
        parent.WaitForContinue();
    });
    auto const states = child.Receive<QVector<DirectoryState>>();
    QByteArrayList expected;
    for (DirectoryState const& state : states) {
        QVERIFY2(state.isValid, state.error.c_str());
        QVERIFY(state.exists);
        QCOMPARE(ParentOf(state.path), appFolder_);
        QByteArray const name = QByteArray::fromStdString(NameOf(state.path));
        QVERIFY(!expected.contains(name));
        expected << name << name + "/file";
    }
    std::sort(expected.begin(), expected.end());

    QCOMPARE(states.size(), ThreadCount);
    QCOMPARE(ListTree(appFolder_), expected);
    child.Continue();
    child.Finish();
    QCOMPARE(ListTree(appFolder_), QByteArrayList());
}

ZQTUTIL_TEST_MAIN(TemporaryDirCleanUpTest)
#include "TemporaryDirCleanUpTest.moc"

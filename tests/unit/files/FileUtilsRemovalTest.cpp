#include <support/overrides/FixedClock.h>
#include <support/processes/ChildProcess.h>
#include <support/sandbox/Environment.h>
#include <support/sandbox/FileTimes.h>
#include <support/sandbox/FolderTestCase.h>
#include <support/sandbox/Folders.h>
#include <support/sandbox/Mounts.h>
#include <support/sandbox/Users.h>

#include <Util/FileUtils.h>

#include <QtCore/QFile>
#include <QtTest/QtTest>

#include <climits>
#include <ctime>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Zelkor::Testing;
using namespace Zelkor::Util;

static_assert(std::is_same_v<decltype(&RemoveDir), void (*)(QString const&, int, bool)>);

namespace
{

constexpr Milliseconds Old = 100 * Day;
constexpr Milliseconds New = 0;

} // namespace

class FileUtilsRemovalTest : public Zelkor::Testing::FolderTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void removesEntriesOlderThanTheGivenDays_data();
    void removesEntriesOlderThanTheGivenDays();
    void comparesAgesToTheMillisecond_data();
    void comparesAgesToTheMillisecond();
    void acceptsTimesBeyondTheRangeOfMilliseconds();
    void subtractsCalendarDays_data();
    void subtractsCalendarDays();
    void removesAnyKindOfEntryByItsOwnAge_data();
    void removesAnyKindOfEntryByItsOwnAge();
    void removesTreesByAge_data();
    void removesTreesByAge();
    void removesTheFolderItselfIfRequestedAndEmpty_data();
    void removesTheFolderItselfIfRequestedAndEmpty();
    void removesOldEntriesThroughALinkThatTheCallerNames_data();
    void removesOldEntriesThroughALinkThatTheCallerNames();
    void resolvesAPathThroughALinkAsTheSystemDoes();
    void ignoresAPathThatIsNotAFolder_data();
    void ignoresAPathThatIsNotAFolder();
    void ignoresAnEmptyPath_data();
    void ignoresAnEmptyPath();
    void doesNotTruncateAPathAtANulCharacter();
    void acceptsEquivalentPaths_data();
    void acceptsEquivalentPaths();
    void removesEntriesWithAnyName_data() { NameRows(); }
    void removesEntriesWithAnyName();
    void continuesAfterAnEntryThatCannotBeRemoved_data();
    void continuesAfterAnEntryThatCannotBeRemoved();
    void removesThousandsOfEntries();
    void removesATreeDeeperThanAnyPathWithFewDescriptors_data();
    void removesATreeDeeperThanAnyPathWithFewDescriptors();
    void keepsDescriptorsAndCurrentFolder();

private:
    void MakeDeepTree(std::string const& path, int levels, bool withNewFile) const;
};

void FileUtilsRemovalTest::removesEntriesOlderThanTheGivenDays_data()
{
    QTest::addColumn<int>("days");
    QTest::addColumn<QByteArray>("left"); // the names of the entries that RemoveDir() must keep, separated by spaces
    QTest::newRow("minimum") << INT_MIN << QByteArray();
    QTest::newRow("-2 days") << -2 << QByteArray();
    QTest::newRow("-1 days") << -1 << QByteArray("in-25h");
    QTest::newRow("0 days") << 0 << QByteArray("in-1h in-25h");
    QTest::newRow("1 days") << 1 << QByteArray("23h in-1h in-25h now");
    QTest::newRow("2 days") << 2 << QByteArray("23h 25h in-1h in-25h now");
    QTest::newRow("30 days") << 30 << QByteArray("23h 25h 30d-less-1h in-1h in-25h now");
    QTest::newRow("31 days") << 31 << QByteArray("23h 25h 30d-and-1h 30d-less-1h in-1h in-25h now");
    QTest::newRow("a million days") << 1000000 << QByteArray("1960 23h 25h 30d-and-1h 30d-less-1h in-1h in-25h now");
    QTest::newRow("maximum") << INT_MAX << QByteArray("1960 23h 25h 30d-and-1h 30d-less-1h in-1h in-25h now");
}

void FileUtilsRemovalTest::removesEntriesOlderThanTheGivenDays()
{
    QFETCH(int, days);
    QFETCH(QByteArray, left);
    struct Row
    {
        char const* name;
        Milliseconds time;
    };
    Milliseconds const now = Now();
    Row const rows[] = {{"in-25h", now + 25 * Hour},
                        {"in-1h", now + Hour},
                        {"now", now},
                        {"23h", now - 23 * Hour},
                        {"25h", now - 25 * Hour},
                        {"30d-less-1h", now - 30 * Day + Hour},
                        {"30d-and-1h", now - 30 * Day - Hour},
                        {"1960", -10 * (365 * Day) - 1}};
    for (bool const folders : {false, true}) {
        for (Row const& row : rows) {
            if (folders) {
                MakeFolder(At(row.name));
            } else {
                MakeFile(At(row.name));
            }
            SetTime(At(row.name), row.time);
        }

        RemoveDir(PathAt(""), days, false);

        QCOMPARE(ListTree(Root()).join(' '), left);
        EmptyFolder(Root());
    }
}

void FileUtilsRemovalTest::comparesAgesToTheMillisecond_data()
{
    QTest::addColumn<int>("days");
    for (int const days : {0, 1, 30, -1, 20000}) {
        QTest::addRow("%d days", days) << days;
    }
}

void FileUtilsRemovalTest::comparesAgesToTheMillisecond()
{
    QFETCH(int, days);
    constexpr Milliseconds CurrentTime = 1'600'000'000'123;
    Milliseconds const threshold = CurrentTime - days * Day;
    MakeFolder(At("folder"));
    struct Row
    {
        char const* name;
        Milliseconds time;
        long nanoseconds;
    };
    Row const rows[] = {{"day before", threshold - Day, 0}, {"1 ms before", threshold - 1, 999999},
                        {"same ms", threshold, 0},          {"end of same ms", threshold, 999999},
                        {"1 ms after", threshold + 1, 0},   {"1 s after", threshold + Second, 0}};
    for (Row const& row : rows) {
        std::string const folder = At("folder/folder ") + row.name;
        MakeFolder(folder);
        MakeFile(folder + "/file");
        SetTime(folder + "/file", row.time, row.nanoseconds);
        SetTime(folder, row.time, row.nanoseconds);
        MakeFile(At("folder/file ") + row.name);
        SetTime(At("folder/file ") + row.name, row.time, row.nanoseconds);
    }

    FixedClock const clock(CurrentTime);
    RemoveDir(PathAt("folder"), days, false);

    QVERIFY(clock.ReadCount() > 0);
    QCOMPARE(ListTree(At("folder")),
             (QByteArrayList{"file 1 ms after", "file 1 s after", "folder 1 ms after", "folder 1 ms after/file",
                             "folder 1 s after", "folder 1 s after/file"}));
}

// The test uses tmpfs, a file system in memory. Unlike many other file systems, tmpfs can store modification times that
// do not fit into the type Milliseconds.
void FileUtilsRemovalTest::acceptsTimesBeyondTheRangeOfMilliseconds()
{
    MakeFolder(At("volume"));
    QByteArrayList const left = RunWithMount(At("volume"), "mode=0777", [&] {
        constexpr time_t Beyond = std::numeric_limits<Milliseconds>::max() / 1000 + 1;
        for (auto const& [name, seconds] : {std::pair("future", Beyond), std::pair("past", -Beyond)}) {
            std::string const file = At("volume/") + name;
            MakeFile(file);
            timespec const times[] = {{seconds, 0}, {seconds, 0}};
            Check(utimensat(AT_FDCWD, file.c_str(), times, 0));
        }
        RemoveDir(PathAt("volume"), 0, false);
        return ListTree(At("volume"));
    });
    QCOMPARE(left, QByteArrayList{"future"});
}

void FileUtilsRemovalTest::subtractsCalendarDays_data()
{
    QTest::addColumn<Milliseconds>("now");
    QTest::addColumn<Milliseconds>("threshold");
    // In the test's time zone, the clocks went forward on 2021-03-28 and back on 2021-10-31, both at 01:00 UTC.
    QTest::newRow("day of 23 hours") << 1616925600 * Second << (1616925600 * Second - 23 * Hour);
    QTest::newRow("day of 24 hours") << 1617012000 * Second << (1617012000 * Second - 24 * Hour);
    QTest::newRow("day of 25 hours") << 1635681600 * Second << (1635681600 * Second - 25 * Hour);
}

void FileUtilsRemovalTest::subtractsCalendarDays()
{
    QFETCH(Milliseconds, now);
    QFETCH(Milliseconds, threshold);
    EnvironmentVariable const zone("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    MakeFile(At("old enough"));
    MakeFile(At("too new"));
    SetTime(At("old enough"), threshold);
    SetTime(At("too new"), threshold + 1);

    FixedClock const clock(now);
    RemoveDir(PathAt(""), 1, false);

    QCOMPARE(ListTree(Root()), QByteArrayList{"too new"});
}

void FileUtilsRemovalTest::removesAnyKindOfEntryByItsOwnAge_data()
{
    QTest::addColumn<std::string>("name");
    QTest::addColumn<Maker>("make");
    auto const row = [](char const* title, std::string const& name, Maker make) {
        QTest::newRow(title) << name << make;
    };
    row("file", "entry", [](std::string const& path) { MakeFile(path); });
    row("hidden file", ".entry", [](std::string const& path) { MakeFile(path); });
    row("name of three dots", "...", [](std::string const& path) { MakeFile(path); });
    row("folder", "entry", [](std::string const& path) { MakeFolder(path); });
    row("hidden folder", ".entry", [](std::string const& path) { MakeFolder(path); });
    row("pipe", "entry", [](std::string const& path) { MakePipe(path); });
    row("hidden pipe", ".entry", [](std::string const& path) { MakePipe(path); });
    row("socket", "entry", [](std::string const& path) { MakeSocket(path); });
    row("device", "entry", [](std::string const& path) { MakeDevice(path); });
    row("dangling link", "entry", [](std::string const& path) { MakeLink(path, "nowhere"); });
    row("hidden dangling link", ".entry", [](std::string const& path) { MakeLink(path, "nowhere"); });
    row("link to itself", "entry", [](std::string const& path) { MakeLink(path, "entry"); });
    row("link to an old file", "entry", [](std::string const& path) { MakeLink(path, "../old-file"); });
    row("link to a new file", "entry", [](std::string const& path) { MakeLink(path, "../new-file"); });
    row("link to an old folder", "entry", [](std::string const& path) { MakeLink(path, "../old-folder"); });
    row("link to a new folder", "entry", [](std::string const& path) { MakeLink(path, "../new-folder"); });
    row("link to the parent folder", "entry", [](std::string const& path) { MakeLink(path, ".."); });
    row("link to its own folder", "entry", [](std::string const& path) { MakeLink(path, "."); });
    row("link to a folder, with a slash", "entry", [](std::string const& path) { MakeLink(path, "../old-folder/"); });
}

void FileUtilsRemovalTest::removesAnyKindOfEntryByItsOwnAge()
{
    QFETCH(std::string, name);
    QFETCH(Maker, make);
    for (Milliseconds const age : {New, Old}) {
        MakeFolder(At("old-folder"));
        MakeFile(At("old-folder/file"));
        MakeFolder(At("new-folder"));
        MakeFile(At("new-folder/file"));
        MakeFile(At("old-file"));
        MakeFile(At("new-file"));
        QByteArrayList const beside = ListTree(Root());
        MakeFolder(At("folder"));
        MakeFolder(At("folder/below"));
        make(At("folder/" + name));
        make(At("folder/below/" + name));
        SetAgeOfEntries(Root(), Old);
        SetAge(At("new-folder"), New);
        SetAge(At("new-file"), New);
        SetAge(At("folder"), New);
        SetAge(At("folder/" + name), age);
        SetAge(At("folder/below/" + name), age);
        QByteArrayList const before = ListTree(Root());

        RemoveDir(PathAt("folder"), 1, false);

        if (age == Old) {
            QCOMPARE(ListTree(At("folder")), QByteArrayList());
            QCOMPARE(ListTree(Root()).join(' '), "folder " + beside.join(' '));
        } else {
            QCOMPARE(ListTree(Root()), before);
        }
        QCOMPARE(ReadFile(At("old-folder/file")), QByteArray("content"));
        QCOMPARE(ReadFile(At("old-file")), QByteArray("content"));
        EmptyFolder(Root());
    }
}

void FileUtilsRemovalTest::removesTreesByAge_data()
{
    QTest::addColumn<Maker>("makeEntries"); // creates entries in the test's folder
    QTest::addColumn<QByteArrayList>("left");
    auto const row = [](char const* title, Maker makeEntries, QByteArrayList const& left) {
        QTest::newRow(title) << makeEntries << left;
    };
    row("old tree",
        [](std::string const& root) {
            MakeFolder(root + "/a");
            MakeFile(root + "/a/1");
            MakeFolder(root + "/a/b");
            MakeFolder(root + "/a/b/c");
            MakeFile(root + "/a/b/c/2");
            MakeFolder(root + "/a/empty");
            MakeFile(root + "/a/b/3");
            SetAgeOfEntries(root, Old);
        },
        {});
    row("new tree",
        [](std::string const& root) {
            MakeFolder(root + "/a");
            MakeFile(root + "/a/1");
            MakeFolder(root + "/a/b");
            MakeFile(root + "/a/b/2");
            SetAgeOfEntries(root, New);
        },
        {"a", "a/1", "a/b", "a/b/2"});
    row("new folder with old entries",
        [](std::string const& root) {
            MakeFolder(root + "/a");
            MakeFile(root + "/a/1");
            MakeFolder(root + "/a/b");
            MakeFile(root + "/a/b/2");
            MakePipe(root + "/a/pipe");
            SetAgeOfEntries(root, Old);
            SetAge(root + "/a", New);
        },
        {"a", "a/1", "a/b", "a/b/2", "a/pipe"});
    row("old folder with a new file",
        [](std::string const& root) {
            MakeFolder(root + "/a");
            MakeFile(root + "/a/1");
            MakeFile(root + "/a/new");
            MakeFile(root + "/a/3");
            MakeFolder(root + "/a/b");
            MakeFile(root + "/a/b/4");
            SetAgeOfEntries(root, Old);
            SetAge(root + "/a/new", New);
        },
        {"a", "a/new"});
    row("old folder with a new empty folder",
        [](std::string const& root) {
            MakeFolder(root + "/a");
            MakeFile(root + "/a/1");
            MakeFolder(root + "/a/new");
            SetAgeOfEntries(root, Old);
            SetAge(root + "/a/new", New);
        },
        {"a", "a/new"});
    row("old folders with a new file far below",
        [](std::string const& root) {
            MakeFolder(root + "/a");
            MakeFile(root + "/a/1");
            MakeFolder(root + "/a/b");
            MakeFile(root + "/a/b/2");
            MakeFolder(root + "/a/b/c");
            MakeFile(root + "/a/b/c/3");
            MakeFile(root + "/a/b/c/new");
            MakeFolder(root + "/a/d");
            MakeFile(root + "/a/d/4");
            SetAgeOfEntries(root, Old);
            SetAge(root + "/a/b/c/new", New);
        },
        {"a", "a/b", "a/b/c", "a/b/c/new"});
    row("new folder below an old folder",
        [](std::string const& root) {
            MakeFolder(root + "/a");
            MakeFolder(root + "/a/new");
            MakeFile(root + "/a/new/1");
            MakeFolder(root + "/a/z");
            MakeFile(root + "/a/z/2");
            SetAgeOfEntries(root, Old);
            SetAge(root + "/a/new", New);
        },
        {"a", "a/new", "a/new/1"});
    row("old folders before and after a new folder",
        [](std::string const& root) {
            MakeFolder(root + "/a");
            MakeFile(root + "/a/1");
            MakeFolder(root + "/b");
            MakeFile(root + "/b/1");
            MakeFolder(root + "/c");
            MakeFile(root + "/c/1");
            SetAgeOfEntries(root, Old);
            SetAge(root + "/b", New);
        },
        {"b", "b/1"});
    row("old file among new files",
        [](std::string const& root) {
            MakeFile(root + "/1");
            MakeFile(root + "/2");
            MakeFile(root + "/3");
            SetAgeOfEntries(root, Old);
            SetAge(root + "/1", New);
            SetAge(root + "/3", New);
        },
        {"1", "3"});
}

void FileUtilsRemovalTest::removesTreesByAge()
{
    QFETCH(Maker, makeEntries);
    QFETCH(QByteArrayList, left);
    makeEntries(Root());

    RemoveDir(PathAt(""), 1, false);

    QCOMPARE(ListTree(Root()), left);
}

void FileUtilsRemovalTest::removesTheFolderItselfIfRequestedAndEmpty_data()
{
    QTest::addColumn<Milliseconds>("ageOfFolder");
    QTest::addColumn<Milliseconds>("ageOfFile");
    QTest::addColumn<bool>("removeFolderItself");
    QTest::addColumn<QByteArrayList>("left");
    for (Milliseconds const age : {New, Old, -Old}) {
        char const* const title = age == New ? "new folder" : age == Old ? "old folder" : "folder with a future time";
        QTest::addRow("%s, emptied, requested", title) << age << Old << true << QByteArrayList();
        QTest::addRow("%s, emptied, not requested", title) << age << Old << false << QByteArrayList{"folder"};
        QTest::addRow("%s, not emptied, requested", title)
            << age << New << true << QByteArrayList{"folder", "folder/file"};
        QTest::addRow("%s, not emptied, not requested", title)
            << age << New << false << QByteArrayList{"folder", "folder/file"};
    }
}

void FileUtilsRemovalTest::removesTheFolderItselfIfRequestedAndEmpty()
{
    QFETCH(Milliseconds, ageOfFolder);
    QFETCH(Milliseconds, ageOfFile);
    QFETCH(bool, removeFolderItself);
    QFETCH(QByteArrayList, left);
    MakeFolder(At("folder"));
    MakeFile(At("folder/file"));
    SetAge(At("folder/file"), ageOfFile);
    SetAge(At("folder"), ageOfFolder);

    RemoveDir(PathAt("folder"), 1, removeFolderItself);

    QCOMPARE(ListTree(Root()), left);
}

void FileUtilsRemovalTest::removesOldEntriesThroughALinkThatTheCallerNames_data()
{
    QTest::addColumn<QByteArray>("path");
    for (char const* const path : {"link", "link/", "link//", "link/.", "link/./", ".//link//.//", "link-to-link",
                                   "link-to-link/", "old/link", "old/link/"}) {
        QTest::newRow(path) << QByteArray(path);
    }
}

void FileUtilsRemovalTest::removesOldEntriesThroughALinkThatTheCallerNames()
{
    QFETCH(QByteArray, path);
    MakeFolder(At("other"));
    MakeFile(At("other/file"));
    MakeFolder(At("old"));
    MakeLink(At("old/link"), "../folder");
    MakeLink(At("link"), "folder");
    MakeLink(At("link-to-link"), "link");
    MakeFolder(At("folder"));
    QByteArrayList const beside = ListTree(Root());
    WorkingFolder const current(Root());
    for (QString const& written : {PathAt(path), QString::fromLatin1(path)}) {
        for (bool const removeFolderItself : {false, true}) {
            MakeFile(At("folder/file"));
            MakeFile(At("folder/new"));
            MakeFolder(At("folder/below"));
            MakeFile(At("folder/below/file"));
            MakeLink(At("folder/below/link"), "../../other");
            MakeLink(At("folder/link"), "../other");
            SetAgeOfEntries(Root(), Old);
            SetAge(At("folder/new"), New);

            RemoveDir(written, 1, removeFolderItself);
            QCOMPARE(ListTree(At("folder")), QByteArrayList{"new"});

            RemoveDir(written, 0, removeFolderItself);
            QCOMPARE(ListTree(Root()), beside);
        }
    }
}

void FileUtilsRemovalTest::resolvesAPathThroughALinkAsTheSystemDoes()
{
    MakeFolder(At("elsewhere"));
    MakeFile(At("elsewhere/file"));
    MakeFolder(At("elsewhere/folder"));
    MakeLink(At("link"), "elsewhere/folder");
    MakeFile(At("canary"));
    SetAgeOfEntries(Root(), Old);
    RemoveDir(PathAt("link/.."), 1, false);
    QVERIFY(QFile::exists(PathAt("canary")));
    QVERIFY(!QFile::exists(PathAt("elsewhere/file")));
}

void FileUtilsRemovalTest::ignoresAPathThatIsNotAFolder_data()
{
    QTest::addColumn<QByteArray>("path");
    for (char const* const path : {"missing", "missing/", "missing/below", "file", "file/", "file/below", "pipe",
                                   "dangling", "dangling/", "loop", "link-to-file"}) {
        QTest::newRow(path) << QByteArray(path);
    }
    QTest::newRow("link to a file with slash") << QByteArray("link-to-file/");
    QTest::newRow("name that is too long") << QByteArray(256, 'n');
    QTest::newRow("path that is too long") << QByteArray("folder/").repeated(1000);
}

void FileUtilsRemovalTest::ignoresAPathThatIsNotAFolder()
{
    QFETCH(QByteArray, path);
    MakeFolder(At("folder"));
    MakeFile(At("file"));
    MakePipe(At("pipe"));
    MakeLink(At("dangling"), "missing");
    MakeLink(At("loop"), "loop");
    MakeLink(At("link-to-file"), "file");
    SetAgeOfEntries(Root(), Old);
    QByteArrayList const before = ListTree(Root());

    RemoveDir(PathAt(path), 0, true);

    QCOMPARE(ListTree(Root()), before);
}

void FileUtilsRemovalTest::ignoresAnEmptyPath_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("removeFolderItself");
    for (bool const removeFolderItself : {false, true}) {
        char const* const title = removeFolderItself ? "with the folder itself" : "entries only";
        QTest::addRow("null, %s", title) << QString() << removeFolderItself;
        QTest::addRow("empty, %s", title) << QStringLiteral("") << removeFolderItself;
    }
}

void FileUtilsRemovalTest::ignoresAnEmptyPath()
{
    QFETCH(QString, path);
    QFETCH(bool, removeFolderItself);
    MakeFolder(At("current"));
    MakeFile(At("current/file"));
    MakeFolder(At("current/empty"));
    SetAgeOfEntries(Root(), Old);
    QByteArrayList const before = ListTree(Root());
    WorkingFolder const current(At("current"));

    RemoveDir(path, 0, removeFolderItself);

    QCOMPARE(ListTree(Root()), before);
}

void FileUtilsRemovalTest::doesNotTruncateAPathAtANulCharacter()
{
    MakeFolder(At("folder"));
    MakeFile(At("folder/file"));
    SetAgeOfEntries(Root(), Old);
    QByteArrayList const before = ListTree(Root());
    // Discard all messages of Qt: Qt may log any number of warnings about a path with a NUL character.
    QtMessageHandler const handler =
        qInstallMessageHandler([](QtMsgType, QMessageLogContext const&, QString const&) {});
    for (QString const& tail : {QString(QChar::Null), QChar::Null + QStringLiteral("tail")}) {
        RemoveDir(PathAt("folder") + tail, 0, true);
    }
    qInstallMessageHandler(handler);
    QCOMPARE(ListTree(Root()), before);
}

void FileUtilsRemovalTest::acceptsEquivalentPaths_data()
{
    QTest::addColumn<QByteArray>("path");
    for (char const* const path :
         {"folder", "folder/", "folder//", "./folder", "folder/.", "folder/./", ".//folder", "folder/../folder",
          "beside/../folder/", "link-to-top/folder", "link-to-top/folder/"}) {
        QTest::newRow(path) << QByteArray(path);
    }
}

void FileUtilsRemovalTest::acceptsEquivalentPaths()
{
    QFETCH(QByteArray, path);
    MakeFolder(At("beside"));
    MakeFile(At("beside/file"));
    MakeLink(At("link-to-top"), ".");
    SetAgeOfEntries(Root(), Old);
    QByteArrayList const beside = ListTree(Root());
    WorkingFolder const current(Root());
    for (QString const& written : {PathAt(path), QString::fromLatin1(path)}) {
        MakeFolder(At("folder"));
        MakeFile(At("folder/file"));
        MakeFolder(At("folder/below"));
        MakeFile(At("folder/below/file"));
        SetAgeOfEntries(Root(), Old);
        RemoveDir(written, 1, false);
        QCOMPARE(ListTree(At("folder")), QByteArrayList());
        RemoveDir(written, 1, true);
        QCOMPARE(ListTree(Root()), beside);
    }
}

void FileUtilsRemovalTest::removesEntriesWithAnyName()
{
    QFETCH(QByteArray, name);
    std::string const text = name.toStdString();
    // In one data row, the name is not valid UTF-8, and a QString cannot represent it. RemoveDir() takes the path of
    // the start folder as a QString. Therefore, the name of the start folder is converted to a QString and back. The
    // entries in the start folder have the original name.
    QByteArray const encoded = QFile::encodeName(QFile::decodeName(name)).left(255);
    std::string const folder = At(encoded.toStdString());
    MakeFolder(folder);
    MakeFolder(folder + '/' + text);
    MakeFolder(folder + '/' + text + '/' + text);
    MakeFile(folder + '/' + text + '/' + text + '/' + text);
    MakeFile(folder + '/' + text + "/file");
    MakeFolder(folder + "/beside");
    MakeFile(folder + "/beside/" + text);
    MakeFile(At("canary"));

    RemoveDir(PathAt(encoded), 0, true);

    QCOMPARE(ListTree(Root()), QByteArrayList{"canary"});
}

void FileUtilsRemovalTest::continuesAfterAnEntryThatCannotBeRemoved_data()
{
    QTest::addColumn<std::string>("closed"); // the entry whose permissions are set to "mode"
    QTest::addColumn<uint>("mode");
    QTest::addColumn<QByteArrayList>("left");
    auto const row = [](char const* title, std::string const& closed, uint mode, QByteArrayList const& left) {
        QTest::newRow(title) << closed << mode << left;
    };
    row("read-only folder", "b", 0555, {"b", "b/2", "b/c"});
    row("read-only folder far below", "b/c", 0555, {"b", "b/c", "b/c/3"});
    row("unreadable folder", "b", 0300, {"b", "b/2", "b/c", "b/c/3"});
    row("folder without search permission", "b", 0600, {"b", "b/2", "b/c", "b/c/3"});
    row("folder without permissions", "b", 0000, {"b", "b/2", "b/c", "b/c/3"});
    row("empty folder without permissions", "e", 0000, {});
    row("file without permissions", "b/2", 0000, {});
    row("read-only start folder", ".", 0555, {"5", "a", "b", "d", "e"});
    row("unreadable start folder", ".", 0300, {"5", "a", "a/1", "b", "b/2", "b/c", "b/c/3", "d", "d/4", "e"});
}

void FileUtilsRemovalTest::continuesAfterAnEntryThatCannotBeRemoved()
{
    QFETCH(std::string, closed);
    QFETCH(uint, mode);
    QFETCH(QByteArrayList, left);
    Chmod(Root(), 0777);

    RunAsOrdinaryUser([&] {
        MakeFolder(At("start"));
        MakeFolder(At("start/a"));
        MakeFile(At("start/a/1"));
        MakeFolder(At("start/b"));
        MakeFile(At("start/b/2"));
        MakeFolder(At("start/b/c"));
        MakeFile(At("start/b/c/3"));
        MakeFolder(At("start/d"));
        MakeFile(At("start/d/4"));
        MakeFolder(At("start/e"));
        MakeFile(At("start/5"));
        SetAgeOfEntries(Root(), Old);
        Chmod(At("start/" + closed), mode);
        RemoveDir(PathAt("start"), 1, false);
    });

    QCOMPARE(ListTree(At("start")), left);
}

void FileUtilsRemovalTest::removesThousandsOfEntries()
{
    for (int i = 0; i < 5000; ++i) {
        MakeFile(At(std::to_string(i)));
    }
    for (int i = 0; i < 300; ++i) {
        std::string const folder = At("folder" + std::to_string(i));
        MakeFolder(folder);
        MakeFile(folder + "/file");
    }

    RemoveDir(PathAt(""), 0, false);

    QCOMPARE(ListTree(Root()), QByteArrayList());
}

/// Creates the folder \a path and a chain of \a levels nested folders in it. The last folder of the chain contains only
/// the file "last". Each other folder, and \a path itself, contains the file "a", the next folder of the chain, and the
/// folder "z" with a file.
///
/// All entries have an old modification time. If \a withNewFile is true, only the file "last" has the current time.
///
/// If the chain has 100 levels or more, the path of the last folder is longer than the system accepts.
void FileUtilsRemovalTest::MakeDeepTree(std::string const& path, int levels, bool withNewFile) const
{
    Milliseconds const old = Now() - Old;
    std::string const next = "m" + std::string(49, 'x');
    MakeFolder(path);
    Descriptor folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (int level = 0; level < levels; ++level) {
        MakeFileAt(folder, "a");
        Check(mkdirat(folder, "z", 0755));
        MakeFileAt(folder, "z/file");
        SetTimeAt(folder, "a", old);
        SetTimeAt(folder, "z/file", old);
        SetTimeAt(folder, "z", old);
        Check(mkdirat(folder, next.c_str(), 0755));
        Descriptor const below(openat(folder, next.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        SetTimeAt(folder, ".", old);
        folder.Reset(fcntl(below, F_DUPFD_CLOEXEC, 0));
    }
    MakeFileAt(folder, "last");
    if (!withNewFile) {
        SetTimeAt(folder, "last", old);
    }
    SetTimeAt(folder, ".", old);
}

void FileUtilsRemovalTest::removesATreeDeeperThanAnyPathWithFewDescriptors_data()
{
    QTest::addColumn<bool>("withNewFile");
    QTest::newRow("all old") << false;
    QTest::newRow("new file in the last folder") << true;
}

void FileUtilsRemovalTest::removesATreeDeeperThanAnyPathWithFewDescriptors()
{
    QFETCH(bool, withNewFile);
    constexpr int Levels = 1000;
    MakeDeepTree(At("deep"), Levels, withNewFile);

    RunInChild([&] {
        rlimit const few{24, 24};
        Check(setrlimit(RLIMIT_NOFILE, &few));
        RemoveDir(PathAt("deep"), 1, true);
    });

    QCOMPARE(Exists(At("deep")), withNewFile);
    if (!withNewFile) {
        return;
    }
    // RemoveDir() must have kept only the new file and the folders that contain it directly or indirectly.
    Descriptor folder(open(At("deep").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (int level = 0; level < Levels; ++level) {
        std::vector<std::string> const names = NamesIn(folder, ".");
        QCOMPARE(names.size(), std::size_t{1});
        folder.Reset(openat(folder, names.front().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    }
    QCOMPARE(NamesIn(folder, "."), std::vector<std::string>{"last"});
}

void FileUtilsRemovalTest::keepsDescriptorsAndCurrentFolder()
{
    MakeFolder(At("a"));
    MakeFolder(At("a/b"));
    MakeFile(At("a/b/1"));
    MakeFolder(At("a/new"));
    MakeLink(At("a/link"), "b");
    MakeFile(At("file"));
    SetAgeOfEntries(Root(), Old);
    SetAge(At("a/new"), New);
    MakeDeepTree(At("deep"), 100, true);
    WorkingFolder const current(At("a/new"));
    QByteArray const folder = CurrentFolder();
    int const descriptors = CountOpenDescriptors();

    for (char const* const path : {"deep", "a/link", "missing", "file", "a", ""}) {
        RemoveDir(PathAt(path), 1, false);
        IsThisPathValid(PathAt(path));
        CanCreateFileIn(PathAt(path));
    }

    QCOMPARE(CountOpenDescriptors(), descriptors);
    QCOMPARE(CurrentFolder(), folder);
}

ZQTUTIL_TEST_MAIN(FileUtilsRemovalTest)
#include "FileUtilsRemovalTest.moc"

#include <support/processes/ChildProcess.h>
#include <support/sandbox/Environment.h>
#include <support/sandbox/FolderTestCase.h>
#include <support/sandbox/Folders.h>
#include <support/sandbox/OrdinaryUser.h>

#include <Util/FileUtils.h>

#include <QtCore/QFile>
#include <QtTest/QtTest>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstring>
#include <ctime>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

using namespace Zelkor::Testing;
using namespace Zelkor::Util;

static_assert(std::is_same_v<decltype(&RemoveDir), void (*)(QString const&, int, bool)>);

namespace
{

// What the system answers, while a test says so

struct Answers
{
    std::atomic<Milliseconds> now{0}; // 0: the real time
    std::atomic<int> looksAtTheClock{0};
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
        Fixed().now = 0;
        Fixed().looksAtTheClock = 0;
    }
};

constexpr long SubMilliseconds = 700000; // of the fixed clock, in nanoseconds

} // namespace

// In the way of the system libraries' functions: the library under test and Qt call these.

extern "C" {

Q_DECL_EXPORT int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    Milliseconds const fixed = clock == CLOCK_REALTIME ? Fixed().now.load() : 0;
    if (fixed == 0) {
        return static_cast<int>(syscall(SYS_clock_gettime, clock, time));
    }
    ++Fixed().looksAtTheClock;
    *time = TimeOf(fixed, SubMilliseconds);
    return 0;
}

Q_DECL_EXPORT int gettimeofday(timeval* time, void*) noexcept
{
    timespec precise;
    int const result = clock_gettime(CLOCK_REALTIME, &precise);
    *time = {precise.tv_sec, precise.tv_nsec / 1000};
    return result;
}

} // extern "C"

Q_DECLARE_METATYPE(std::vector<Entry>)

class FileUtilsRemovalTest : public Zelkor::Testing::FolderTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsOldEnoughIsRemoved_data();
    void whatIsOldEnoughIsRemoved();
    void ageIsExactToTheMillisecond_data();
    void ageIsExactToTheMillisecond();
    void timeFartherThanMillisecondsReachCountsAsFar();
    void daysAreThoseOfTheCalendar_data();
    void daysAreThoseOfTheCalendar();
    void everyKindIsRemovedByItsOwnAge_data();
    void everyKindIsRemovedByItsOwnAge();
    void treeIsRemovedByAge_data();
    void treeIsRemovedByAge();
    void folderItselfIsRemovedWhenAskedAndEmpty_data();
    void folderItselfIsRemovedWhenAskedAndEmpty();
    void linkToAFolderIsLeftWithAllBehindIt_data();
    void linkToAFolderIsLeftWithAllBehindIt();
    void pathThroughALinkLeadsWhereTheSystemSays();
    void pathThatIsNoFolderIsLeftAlone_data();
    void pathThatIsNoFolderIsLeftAlone();
    void emptyPathIsNotTheCurrentFolder_data();
    void emptyPathIsNotTheCurrentFolder();
    void pathWithNulIsNotCutShort();
    void anyWritingOfThePathWorks_data();
    void anyWritingOfThePathWorks();
    void anyNameIsRemoved_data() { NameRows(); }
    void anyNameIsRemoved();
    void whatCannotBeRemovedStopsNothing_data();
    void whatCannotBeRemovedStopsNothing();
    void manyEntriesAreAllRemoved();
    void treeDeeperThanAnyPathIsRemovedWithFewDescriptors_data();
    void treeDeeperThanAnyPathIsRemovedWithFewDescriptors();
    void descriptorsAndCurrentFolderStayAsTheyWere();

private:
    void MakeDeepTree(std::string const& path, int levels, bool withNewFile) const;
};

void FileUtilsRemovalTest::whatIsOldEnoughIsRemoved_data()
{
    QTest::addColumn<int>("days");
    QTest::addColumn<QByteArray>("left");
    // clang-format off
    QTest::newRow("INT_MIN")   << INT_MIN << QByteArray();
    QTest::newRow("-2")        << -2      << QByteArray();
    QTest::newRow("-1")        << -1      << QByteArray("in-25h");
    QTest::newRow("0")         << 0       << QByteArray("in-1h in-25h");
    QTest::newRow("1")         << 1       << QByteArray("23h in-1h in-25h now");
    QTest::newRow("2")         << 2       << QByteArray("23h 25h in-1h in-25h now");
    QTest::newRow("30")        << 30      << QByteArray("23h 25h 30d-less-1h in-1h in-25h now");
    QTest::newRow("31")        << 31      << QByteArray("23h 25h 30d-and-1h 30d-less-1h in-1h in-25h now");
    QTest::newRow("a million") << 1000000 << QByteArray("1960 23h 25h 30d-and-1h 30d-less-1h in-1h in-25h now");
    QTest::newRow("INT_MAX")   << INT_MAX << QByteArray("1960 23h 25h 30d-and-1h 30d-less-1h in-1h in-25h now");
    // clang-format on
}

void FileUtilsRemovalTest::whatIsOldEnoughIsRemoved()
{
    QFETCH(int, days);
    QFETCH(QByteArray, left);
    struct Row
    {
        char const* name;
        Milliseconds moment;
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
    for (char const* const slash : {"", "/"}) {
        for (Row const& row : rows) {
            Date(MakeEntry(At(row.name) + slash), row.moment);
        }

        RemoveDir(PathAt(""), days, false);

        QCOMPARE(TreeOf(Root()).join(' '), left);
        Empty(Root());
    }
}

void FileUtilsRemovalTest::ageIsExactToTheMillisecond_data()
{
    QTest::addColumn<int>("days");
    for (int const days : {0, 1, 30, -1, 20000}) {
        QTest::newRow(qPrintable(QString::number(days))) << days;
    }
}

void FileUtilsRemovalTest::ageIsExactToTheMillisecond()
{
    QFETCH(int, days);
    RealAnswers const realAfterwards;
    constexpr Milliseconds TheTime = 1'600'000'000'123;
    Milliseconds const threshold = TheTime - days * Day;
    MakeFolder(At("folder"));
    struct Row
    {
        char const* name;
        Milliseconds moment;
        long nanoseconds;
    };
    Row const rows[] = {{"day before", threshold - Day, 0},
                        {"1 ms before", threshold - 1, 999999},
                        {"then", threshold, 0},
                        {"in the same ms", threshold, 999999},
                        {"1 ms after", threshold + 1, 0},
                        {"1 s after", threshold + Second, 0}};
    for (Row const& row : rows) {
        std::string const folder = At("folder/folder ") + row.name;
        MakeFolder(folder);
        MakeFile(folder + "/file");
        Date(folder + "/file", row.moment, row.nanoseconds);
        Date(folder, row.moment, row.nanoseconds);
        MakeFile(At("folder/file ") + row.name);
        Date(At("folder/file ") + row.name, row.moment, row.nanoseconds);
    }

    Fixed().now = TheTime;
    RemoveDir(PathAt("folder"), days, false);

    QVERIFY(Fixed().looksAtTheClock > 0);
    QCOMPARE(TreeOf(At("folder")),
             (QByteArrayList{"file 1 ms after", "file 1 s after", "folder 1 ms after", "folder 1 ms after/file",
                             "folder 1 s after", "folder 1 s after/file"}));
}

// A disc in memory keeps any number of seconds.
void FileUtilsRemovalTest::timeFartherThanMillisecondsReachCountsAsFar()
{
    MakeFolder(At("volume"));
    QByteArray const left = RunWithMount(At("volume"), "mode=0777", [&] {
        constexpr time_t beyond = std::numeric_limits<Milliseconds>::max() / 1000 + 1;
        for (auto const& [name, seconds] : {std::pair("future", beyond), std::pair("past", -beyond)}) {
            std::string const file = At("volume/") + name;
            MakeFile(file);
            timespec const times[] = {{seconds, 0}, {seconds, 0}};
            if (utimensat(AT_FDCWD, file.c_str(), times, 0) != 0) {
                return QByteArray("utimensat: ").append(strerror(errno));
            }
        }
        RemoveDir(PathAt("volume"), 0, false);
        return TreeOf(At("volume")).join(' ');
    });
    QCOMPARE(left, QByteArray("future"));
}

void FileUtilsRemovalTest::daysAreThoseOfTheCalendar_data()
{
    QTest::addColumn<Milliseconds>("now");
    QTest::addColumn<Milliseconds>("threshold");
    // The clocks went forward on 2021-03-28 and back on 2021-10-31, both at 01:00 UTC.
    QTest::newRow("day of 23 hours") << 1616925600 * Second << (1616925600 * Second - 23 * Hour);
    QTest::newRow("day of 24 hours") << 1617012000 * Second << (1617012000 * Second - 24 * Hour);
    QTest::newRow("day of 25 hours") << 1635681600 * Second << (1635681600 * Second - 25 * Hour);
}

void FileUtilsRemovalTest::daysAreThoseOfTheCalendar()
{
    QFETCH(Milliseconds, now);
    QFETCH(Milliseconds, threshold);
    RealAnswers const realAfterwards;
    Environment const zone("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    MakeFile(At("in time"));
    MakeFile(At("too new"));
    Date(At("in time"), threshold);
    Date(At("too new"), threshold + 1);

    Fixed().now = now;
    RemoveDir(PathAt(""), 1, false);

    QCOMPARE(TreeOf(Root()), QByteArrayList{"too new"});
}

void FileUtilsRemovalTest::everyKindIsRemovedByItsOwnAge_data()
{
    QTest::addColumn<QByteArray>("description");
    struct Row
    {
        char const* title;
        char const* description;
    };
    for (Row const& row :
         {Row{"file", "it"}, Row{"hidden file", ".it"}, Row{"name of three dots", "..."}, Row{"folder", "it/"},
          Row{"hidden folder", ".it/"}, Row{"pipe", "it|"}, Row{"hidden pipe", ".it|"}, Row{"socket", "it="},
          Row{"device", "it%"}, Row{"dangling link", "it@nowhere"}, Row{"hidden dangling link", ".it@nowhere"},
          Row{"link to itself", "it@it"}, Row{"link to an old file", "it@../old-file"},
          Row{"link to a new file", "it@../new-file"}, Row{"link to an old folder", "it@../old-folder"},
          Row{"link to a new folder", "it@../new-folder"}, Row{"link to the folder above", "it@.."},
          Row{"link to its own folder", "it@."}, Row{"link with a slash to a folder", "it@../old-folder/"}}) {
        QTest::newRow(row.title) << QByteArray(row.description);
    }
}

void FileUtilsRemovalTest::everyKindIsRemovedByItsOwnAge()
{
    QFETCH(QByteArray, description);
    std::string const inFolder = "folder/" + description.toStdString();
    std::string const inSubfolder = "folder/below/" + description.toStdString();
    QByteArray const outside = "new-file new-folder new-folder/file old-file old-folder old-folder/file";
    for (Milliseconds const age : {New, Old}) {
        MakeTree(Root(), {{"old-folder/", Old},
                          {"old-folder/file", Old},
                          {"new-folder/", New},
                          {"new-folder/file", Old},
                          {"old-file", Old},
                          {"new-file", New},
                          {"folder/", New},
                          {"folder/below/", Old},
                          {inFolder.c_str(), age},
                          {inSubfolder.c_str(), age}});
        QByteArrayList const before = TreeOf(Root());

        RemoveDir(PathAt("folder"), 1, false);

        QCOMPARE(TreeOf(Root()).join(' '), age == Old ? "folder " + outside : before.join(' '));
        QCOMPARE(Content(At("old-folder/file")), QByteArray("content"));
        QCOMPARE(Content(At("old-file")), QByteArray("content"));
        Empty(Root());
    }
}

void FileUtilsRemovalTest::treeIsRemovedByAge_data()
{
    QTest::addColumn<std::vector<Entry>>("entries");
    QTest::addColumn<QByteArrayList>("left");
    using Entries = std::vector<Entry>;
    QTest::newRow("old tree") << Entries{{"a/", Old},      {"a/1", Old},      {"a/b/", Old}, {"a/b/c/", Old},
                                         {"a/b/c/2", Old}, {"a/empty/", Old}, {"a/b/3", Old}}
                              << QByteArrayList();
    QTest::newRow("new tree") << Entries{{"a/", New}, {"a/1", New}, {"a/b/", New}, {"a/b/2", New}}
                              << QByteArrayList{"a", "a/1", "a/b", "a/b/2"};
    QTest::newRow("new folder is not entered")
        << Entries{{"a/", New}, {"a/1", Old}, {"a/b/", Old}, {"a/b/2", Old}, {"a/pipe|", Old}}
        << QByteArrayList{"a", "a/1", "a/b", "a/b/2", "a/pipe"};
    QTest::newRow("old folder keeps a new file")
        << Entries{{"a/", Old}, {"a/1", Old}, {"a/new", New}, {"a/3", Old}, {"a/b/", Old}, {"a/b/4", Old}}
        << QByteArrayList{"a", "a/new"};
    QTest::newRow("old folder keeps a new empty folder")
        << Entries{{"a/", Old}, {"a/1", Old}, {"a/new/", New}} << QByteArrayList{"a", "a/new"};
    QTest::newRow("old folders keep a new file far below")
        << Entries{{"a/", Old},      {"a/1", Old},       {"a/b/", Old}, {"a/b/2", Old}, {"a/b/c/", Old},
                   {"a/b/c/3", Old}, {"a/b/c/new", New}, {"a/d/", Old}, {"a/d/4", Old}}
        << QByteArrayList{"a", "a/b", "a/b/c", "a/b/c/new"};
    QTest::newRow("new folder below an old one is not entered")
        << Entries{{"a/", Old}, {"a/new/", New}, {"a/new/1", Old}, {"a/z/", Old}, {"a/z/2", Old}}
        << QByteArrayList{"a", "a/new", "a/new/1"};
    QTest::newRow("old folders before and after a new one")
        << Entries{{"a/", Old}, {"a/1", Old}, {"b/", New}, {"b/1", Old}, {"c/", Old}, {"c/1", Old}}
        << QByteArrayList{"b", "b/1"};
    QTest::newRow("old file beside new ones")
        << Entries{{"1", New}, {"2", Old}, {"3", New}} << QByteArrayList{"1", "3"};
}

void FileUtilsRemovalTest::treeIsRemovedByAge()
{
    QFETCH(std::vector<Entry>, entries);
    QFETCH(QByteArrayList, left);
    MakeTree(Root(), entries);

    RemoveDir(PathAt(""), 1, false);

    QCOMPARE(TreeOf(Root()), left);
}

void FileUtilsRemovalTest::folderItselfIsRemovedWhenAskedAndEmpty_data()
{
    QTest::addColumn<Milliseconds>("ageOfFolder");
    QTest::addColumn<Milliseconds>("ageOfFile");
    QTest::addColumn<bool>("removeFolderItself");
    QTest::addColumn<QByteArrayList>("left");
    for (Milliseconds const age : {New, Old, -Old}) {
        char const* const title = age == New ? "new folder" : age == Old ? "old folder" : "folder of the future";
        QTest::addRow("%s, emptied, asked", title) << age << Old << true << QByteArrayList();
        QTest::addRow("%s, emptied, not asked", title) << age << Old << false << QByteArrayList{"folder"};
        QTest::addRow("%s, not emptied, asked", title) << age << New << true << QByteArrayList{"folder", "folder/file"};
        QTest::addRow("%s, not emptied, not asked", title)
            << age << New << false << QByteArrayList{"folder", "folder/file"};
    }
}

void FileUtilsRemovalTest::folderItselfIsRemovedWhenAskedAndEmpty()
{
    QFETCH(Milliseconds, ageOfFolder);
    QFETCH(Milliseconds, ageOfFile);
    QFETCH(bool, removeFolderItself);
    QFETCH(QByteArrayList, left);
    MakeTree(Root(), {{"folder/", ageOfFolder}, {"folder/file", ageOfFile}});

    RemoveDir(PathAt("folder"), 1, removeFolderItself);

    QCOMPARE(TreeOf(Root()), left);
}

void FileUtilsRemovalTest::linkToAFolderIsLeftWithAllBehindIt_data()
{
    QTest::addColumn<QByteArray>("path");
    for (char const* const path : {"link", "link/", "link//", "link/.", "link/./", ".//link//.//", "link-to-link",
                                   "link-to-link/", "old/link", "old/link/"}) {
        QTest::newRow(path) << QByteArray(path);
    }
}

void FileUtilsRemovalTest::linkToAFolderIsLeftWithAllBehindIt()
{
    QFETCH(QByteArray, path);
    MakeTree(Root(), {{"folder/", Old},
                      {"folder/file", Old},
                      {"folder/empty/", Old},
                      {"old/", Old},
                      {"old/link@../folder", Old},
                      {"link@folder", Old},
                      {"link-to-link@link", Old}});
    QByteArrayList const before = TreeOf(Root());
    for (bool const removeFolderItself : {false, true}) {
        RemoveDir(PathAt(path), 1, removeFolderItself);
        QCOMPARE(TreeOf(Root()), before);

        AtFolder const here(Root());
        RemoveDir(QString::fromLatin1(path), 1, removeFolderItself);
        QCOMPARE(TreeOf(Root()), before);
    }
}

void FileUtilsRemovalTest::pathThroughALinkLeadsWhereTheSystemSays()
{
    MakeTree(Root(), {{"elsewhere/", Old},
                      {"elsewhere/file", Old},
                      {"elsewhere/folder/", Old},
                      {"link@elsewhere/folder", Old},
                      {"canary", Old}});
    RemoveDir(PathAt("link/.."), 1, false);
    QVERIFY(QFile::exists(PathAt("canary")));
    QVERIFY(!QFile::exists(PathAt("elsewhere/file")));
}

void FileUtilsRemovalTest::pathThatIsNoFolderIsLeftAlone_data()
{
    QTest::addColumn<QByteArray>("path");
    for (char const* const path : {"missing", "missing/", "missing/below", "file", "file/", "file/below", "pipe",
                                   "dangling", "dangling/", "loop", "link-to-file"}) {
        QTest::newRow(path) << QByteArray(path);
    }
    QTest::newRow("name that is too long") << QByteArray(256, 'n');
    QTest::newRow("path that is too long") << QByteArray("folder/").repeated(1000);
}

void FileUtilsRemovalTest::pathThatIsNoFolderIsLeftAlone()
{
    QFETCH(QByteArray, path);
    MakeTree(Root(), {{"folder/", Old},
                      {"file", Old},
                      {"pipe|", Old},
                      {"dangling@missing", Old},
                      {"loop@loop", Old},
                      {"link-to-file@file", Old}});
    QByteArrayList const before = TreeOf(Root());

    RemoveDir(PathAt(path), 0, true);

    QCOMPARE(TreeOf(Root()), before);
}

void FileUtilsRemovalTest::emptyPathIsNotTheCurrentFolder_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("removeFolderItself");
    for (bool const removeFolderItself : {false, true}) {
        QTest::addRow("null, %d", removeFolderItself) << QString() << removeFolderItself;
        QTest::addRow("empty, %d", removeFolderItself) << QStringLiteral("") << removeFolderItself;
    }
}

void FileUtilsRemovalTest::emptyPathIsNotTheCurrentFolder()
{
    QFETCH(QString, path);
    QFETCH(bool, removeFolderItself);
    MakeTree(Root(), {{"current/", Old}, {"current/file", Old}, {"current/empty/", Old}});
    QByteArrayList const before = TreeOf(Root());
    AtFolder const here(At("current"));

    RemoveDir(path, 0, removeFolderItself);

    QCOMPARE(TreeOf(Root()), before);
}

void FileUtilsRemovalTest::pathWithNulIsNotCutShort()
{
    MakeTree(Root(), {{"folder/", Old}, {"folder/file", Old}});
    QByteArrayList const before = TreeOf(Root());
    // Qt may complain of such a name, as often as it likes.
    QtMessageHandler const handler =
        qInstallMessageHandler([](QtMsgType, QMessageLogContext const&, QString const&) {});
    for (QString const& tail : {QString(QChar::Null), QChar::Null + QStringLiteral("tail")}) {
        RemoveDir(PathAt("folder") + tail, 0, true);
    }
    qInstallMessageHandler(handler);
    QCOMPARE(TreeOf(Root()), before);
}

void FileUtilsRemovalTest::anyWritingOfThePathWorks_data()
{
    QTest::addColumn<QByteArray>("path");
    for (char const* const path :
         {"folder", "folder/", "folder//", "./folder", "folder/.", "folder/./", ".//folder", "folder/../folder",
          "beside/../folder/", "link-to-top/folder", "link-to-top/folder/"}) {
        QTest::newRow(path) << QByteArray(path);
    }
}

void FileUtilsRemovalTest::anyWritingOfThePathWorks()
{
    QFETCH(QByteArray, path);
    MakeTree(Root(), {{"beside/", Old}, {"beside/file", Old}, {"link-to-top@.", Old}});
    QByteArrayList const beside = TreeOf(Root());
    AtFolder const here(Root());
    for (QString const& written : {PathAt(path), QString::fromLatin1(path)}) {
        MakeTree(Root(), {{"folder/", Old}, {"folder/file", Old}, {"folder/below/", Old}, {"folder/below/file", Old}});
        RemoveDir(written, 1, false);
        QCOMPARE(TreeOf(At("folder")), QByteArrayList());
        RemoveDir(written, 1, true);
        QCOMPARE(TreeOf(Root()), beside);
    }
}

void FileUtilsRemovalTest::anyNameIsRemoved()
{
    QFETCH(QByteArray, name);
    std::string const text = name.toStdString();
    // What is no UTF-8 cannot be named by a QString, but stand in the folder.
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

    QCOMPARE(TreeOf(Root()), QByteArrayList{"canary"});
}

void FileUtilsRemovalTest::whatCannotBeRemovedStopsNothing_data()
{
    QTest::addColumn<std::vector<Entry>>("entries");
    QTest::addColumn<QByteArray>("closed");
    QTest::addColumn<uint>("mode");
    QTest::addColumn<QByteArrayList>("left");
    using Entries = std::vector<Entry>;
    Entries const around = {{"a/", Old},    {"a/1", Old}, {"b/", Old},  {"b/2", Old}, {"b/c/", Old},
                            {"b/c/3", Old}, {"d/", Old},  {"d/4", Old}, {"5", Old}};
    auto const with = [&](Entries const& more) {
        Entries all = around;
        all.insert(all.end(), more.begin(), more.end());
        return all;
    };
    QTest::newRow("read-only folder") << around << QByteArray("b") << 0555U << QByteArrayList{"b", "b/2", "b/c"};
    QTest::newRow("read-only folder far below")
        << around << QByteArray("b/c") << 0555U << QByteArrayList{"b", "b/c", "b/c/3"};
    QTest::newRow("unreadable folder") << around << QByteArray("b") << 0300U
                                       << QByteArrayList{"b", "b/2", "b/c", "b/c/3"};
    QTest::newRow("folder that cannot be entered")
        << around << QByteArray("b") << 0600U << QByteArrayList{"b", "b/2", "b/c", "b/c/3"};
    QTest::newRow("closed folder") << around << QByteArray("b") << 0000U << QByteArrayList{"b", "b/2", "b/c", "b/c/3"};
    QTest::newRow("empty folder that is closed") << with({{"e/", Old}}) << QByteArray("e") << 0000U << QByteArrayList();
    QTest::newRow("read-only file") << around << QByteArray("b/2") << 0000U << QByteArrayList();
    QTest::newRow("start that is read-only")
        << around << QByteArray(".") << 0555U << QByteArrayList{"5", "a", "b", "d"};
    QTest::newRow("start that cannot be read")
        << around << QByteArray(".") << 0300U
        << QByteArrayList{"5", "a", "a/1", "b", "b/2", "b/c", "b/c/3", "d", "d/4"};
}

void FileUtilsRemovalTest::whatCannotBeRemovedStopsNothing()
{
    QFETCH(std::vector<Entry>, entries);
    QFETCH(QByteArray, closed);
    QFETCH(uint, mode);
    QFETCH(QByteArrayList, left);
    MakeFolder(At("start"), 0777);
    Check(chmod(Root().c_str(), 0777));

    RunAsOrdinaryUser([&] {
        MakeTree(At("start"), entries);
        return QByteArray();
    });
    // It belongs to whom the entries in it belong to.
    struct stat status;
    Check(stat(At("start/a").c_str(), &status));
    Check(chown(At("start").c_str(), status.st_uid, status.st_gid));
    Check(chmod(At("start/" + closed.toStdString()).c_str(), mode));
    Date(At("start/" + closed.toStdString()), Now() - Old);

    RunAsOrdinaryUser([&] {
        RemoveDir(PathAt("start"), 1, false);
        return QByteArray();
    });

    QCOMPARE(TreeOf(At("start")), left);
}

void FileUtilsRemovalTest::manyEntriesAreAllRemoved()
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

    QCOMPARE(TreeOf(Root()), QByteArrayList());
}

/// Folders in each other, each with an old file before and an old folder with such a file behind the next one by name.
/// The path of the last is longer than the system takes. A new file may lie in the last.
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
        Date(folder, "a", old);
        Date(folder, "z/file", old);
        Date(folder, "z", old);
        Check(mkdirat(folder, next.c_str(), 0755));
        Descriptor const below(openat(folder, next.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        Date(folder, ".", old);
        folder.Become(fcntl(below, F_DUPFD_CLOEXEC, 0));
    }
    MakeFileAt(folder, "last");
    if (!withNewFile) {
        Date(folder, "last", old);
    }
    Date(folder, ".", old);
}

void FileUtilsRemovalTest::treeDeeperThanAnyPathIsRemovedWithFewDescriptors_data()
{
    QTest::addColumn<bool>("withNewFile");
    QTest::newRow("all old") << false;
    QTest::newRow("new file in the last folder") << true;
}

void FileUtilsRemovalTest::treeDeeperThanAnyPathIsRemovedWithFewDescriptors()
{
    QFETCH(bool, withNewFile);
    constexpr int Levels = 1000;
    MakeDeepTree(At("deep"), Levels, withNewFile);

    RunInFork(
        [] {
            rlimit const few{24, 24};
            Check(setrlimit(RLIMIT_NOFILE, &few));
        },
        [&] {
            RemoveDir(PathAt("deep"), 1, true);
            return QByteArray();
        });

    QCOMPARE(Exists(At("deep")), withNewFile);
    if (!withNewFile) {
        return;
    }
    // Only the way to the new file is left.
    Descriptor folder(open(At("deep").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (int level = 0; level < Levels; ++level) {
        std::vector<std::string> const names = NamesIn(folder, ".");
        QCOMPARE(names.size(), std::size_t{1});
        folder.Become(openat(folder, names.front().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    }
    QCOMPARE(NamesIn(folder, "."), std::vector<std::string>{"last"});
}

void FileUtilsRemovalTest::descriptorsAndCurrentFolderStayAsTheyWere()
{
    MakeTree(Root(), {{"a/", Old}, {"a/b/", Old}, {"a/b/1", Old}, {"a/new/", New}, {"a/link@b", Old}, {"file", Old}});
    MakeDeepTree(At("deep"), 100, true);
    AtFolder const here(At("a/new"));
    QByteArray const folder = CurrentFolder();
    int const descriptors = OpenDescriptors();

    for (char const* const path : {"deep", "a/link", "missing", "file", "a", ""}) {
        RemoveDir(PathAt(path), 1, false);
        IsThisPathValid(PathAt(path));
        CanCreateFileIn(PathAt(path));
    }

    QCOMPARE(OpenDescriptors(), descriptors);
    QCOMPARE(CurrentFolder(), folder);
}

ZQTUTIL_TEST_MAIN(FileUtilsRemovalTest)
#include "FileUtilsRemovalTest.moc"

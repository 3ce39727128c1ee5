#include <Folders.h>
#include <LogCapture.h>
#include <OrdinaryUser.h>
#include <TestCase.h>

#include <Util/FileUtils.h>

#include <QtCore/QDataStream>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QMap>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <boost/filesystem.hpp>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using Zelkor::ioPath;
using Zelkor::Testing::AtFolder;
using Zelkor::Testing::Check;
using Zelkor::Testing::Descriptor;
using Zelkor::Testing::Empty;
using Zelkor::Testing::Exists;
using Zelkor::Testing::LogCapture;
using Zelkor::Testing::LogLine;
using Zelkor::Testing::MakeFolder;
using Zelkor::Testing::MakeLink;
using Zelkor::Testing::MakeSocket;
using Zelkor::Testing::OpenDescriptors;
using Zelkor::Testing::RunAsOrdinaryUser;
using Zelkor::Util::GetPathSize;
using Zelkor::Util::RemoveFile;

static_assert(std::is_same_v<decltype(&RemoveFile), bool (*)(ioPath)>);
static_assert(std::is_same_v<decltype(&GetPathSize), unsigned long long (*)(ioPath const&)>);
static_assert(sizeof(GetPathSize({})) == 8);

namespace
{

using Bytes = unsigned long long;

/// Makes something at a path, or other things below it.
using Maker = void (*)(std::string const& path);

// What a file system may answer and a test cannot ask the real one for. While armed, every folder is read that way.
struct ReadingFaults
{
    std::atomic<bool> tellsNoKinds{false};
    std::atomic<ino_t> brokenFolder{0}; // reading it fails after its last entry
    std::atomic<int> hits{0};
};

ReadingFaults& Faults()
{
    static ReadingFaults faults;
    return faults;
}

struct DisarmFaults
{
    ~DisarmFaults()
    {
        Faults().tellsNoKinds = false;
        Faults().brokenFolder = 0;
        Faults().hits = 0;
    }
};

ino_t InodeOf(std::string const& path)
{
    struct stat status;
    Check(stat(path.c_str(), &status));
    return status.st_ino;
}

void MakeFileAt(int folder, char const* name, off_t size)
{
    Descriptor const file(openat(folder, name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
    Check(ftruncate(file, size));
}

void MakeFile(std::string const& path, off_t size)
{
    MakeFileAt(AT_FDCWD, path.c_str(), size);
}

void Write(std::string const& path, std::string const& content)
{
    Descriptor const file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
    Check(static_cast<int>(write(file, content.data(), content.size())));
}

void Chmod(std::string const& path, mode_t mode)
{
    Check(chmod(path.c_str(), mode));
}

/// What GetPathSize() returned, and the paths it logged, sorted, byte for byte.
struct Measured
{
    Bytes bytes = 0;
    QByteArrayList sizeless;
};

/// Keeps the paths of the lines that something has no size, byte for byte, and calls something at each, in the middle
/// of the walk.
class SizelessLog : public google::LogSink
{
public:
    explicit SizelessLog(std::function<void(QByteArray const&)> atEach)
        : atEach_(std::move(atEach))
    {
        google::AddLogSink(this);
    }
    ~SizelessLog() override { google::RemoveLogSink(this); }

    QByteArrayList Paths() const
    {
        QByteArrayList paths = paths_;
        std::sort(paths.begin(), paths.end());
        return paths;
    }

    void send(google::LogSeverity severity, char const* fullFilename, char const*, int, google::LogMessageTime const&,
              char const* message, size_t messageSize) override
    {
        static QByteArray const Prefix("Erorr get size for: ");
        QByteArray const text(message, static_cast<int>(messageSize));
        bool const asExpected = severity == google::GLOG_ERROR &&
                                QByteArray(fullFilename) == QByteArray("Util/FileUtils.cpp") && text.startsWith(Prefix);
        paths_ += asExpected ? text.mid(Prefix.size()) : "not one of the expected lines: " + text;
        if (atEach_) {
            atEach_(paths_.last());
        }
    }

private:
    LogCapture const capture_;
    std::function<void(QByteArray const&)> atEach_;
    QByteArrayList paths_;
};

Measured Measure(std::string const& path, std::function<void(QByteArray const&)> atEach = {})
{
    SizelessLog const log(std::move(atEach));
    Bytes const bytes = GetPathSize(ioPath(path));
    return {bytes, log.Paths()};
}

QByteArray Packed(Measured const& measured)
{
    QByteArray packed;
    QDataStream stream(&packed, QIODevice::WriteOnly);
    stream << quint64{measured.bytes} << measured.sizeless;
    return packed;
}

Measured Unpacked(QByteArray const& packed)
{
    quint64 bytes = 0;
    Measured measured;
    QDataStream stream(packed);
    stream >> bytes >> measured.sizeless;
    measured.bytes = bytes;
    return measured;
}

/// In a child process without privileges.
Measured MeasureAsOrdinaryUser(std::string const& path, std::function<void(QByteArray const&)> const& atEach = {})
{
    return Unpacked(RunAsOrdinaryUser([&] { return Packed(Measure(path, atEach)); }));
}

/// Leaves the process so many descriptors to open.
class FewDescriptors
{
public:
    explicit FewDescriptors(std::size_t count)
    {
        rlimit limit{};
        Check(getrlimit(RLIMIT_NOFILE, &limit));
        limit.rlim_cur = 64;
        Check(setrlimit(RLIMIT_NOFILE, &limit));
        for (int descriptor = dup(2); descriptor >= 0; descriptor = dup(2)) {
            taken_.push_back(descriptor);
        }
        if (errno != EMFILE || taken_.size() < count) {
            qFatal("Too many descriptors are open already");
        }
        for (; count > 0; --count) {
            close(taken_.back());
            taken_.pop_back();
        }
    }
    ~FewDescriptors() { std::for_each(taken_.begin(), taken_.end(), close); }
    FewDescriptors(FewDescriptors const&) = delete;
    FewDescriptors& operator=(FewDescriptors const&) = delete;

private:
    std::vector<int> taken_;
};

/// In a child process that has so many descriptors left to open.
Measured MeasureWithDescriptors(std::size_t count, std::string const& path)
{
    return Unpacked(RunAsOrdinaryUser([&] {
        // What is loaded late needs descriptors too, and so do the sanitizers afterwards.
        Measure(path + "/nothing");
        Measured measured;
        {
            FewDescriptors const few(count);
            measured = Measure(path);
        }
        return Packed(measured);
    }));
}

/// The rule as it reads, with paths, recursion and Boost.Filesystem alone.
Bytes ReferenceSize(boost::filesystem::path const& path, QByteArrayList& sizeless)
{
    namespace fs = boost::filesystem;
    auto const noSize = [&] {
        sizeless += QByteArray::fromStdString(path.string());
        return Bytes{0};
    };
    boost::system::error_code error;
    if (!fs::exists(path, error)) {
        return noSize();
    }
    try {
        if (fs::is_regular_file(fs::status(path)) || fs::is_symlink(fs::symlink_status(path))) {
            return fs::file_size(path);
        }
        Bytes sum = 0;
        for (fs::directory_entry const& entry : fs::directory_iterator(path)) {
            sum += ReferenceSize(entry.path(), sizeless);
        }
        return sum;
    } catch (fs::filesystem_error const&) {
        return noSize();
    }
}

Measured MeasureByReference(std::string const& path)
{
    Measured measured;
    measured.bytes = ReferenceSize(path, measured.sizeless);
    std::sort(measured.sizeless.begin(), measured.sizeless.end());
    return measured;
}

/// A tree with everything in it that an ordinary user can make, the same for the same seed.
class RandomTree
{
public:
    RandomTree(unsigned seed, bool withClosedFolders)
        : random_(seed)
        , withClosedFolders_(withClosedFolders)
    {}

    void Make(std::string const& path, int levels)
    {
        MakeFolder(path);
        std::string const first = path + "/0";
        Write(first, std::string(Pick(100) + 1, 'x'));
        for (unsigned i = 1, count = Pick(9); i <= count; ++i) {
            MakeEntry(path + '/' + std::to_string(i), first, levels);
        }
        if (withClosedFolders_ && Pick(3) == 0) {
            constexpr mode_t Modes[] = {0700, 0000, 0744, 0711, 0755};
            Chmod(path, Modes[Pick(5)]);
        }
    }

private:
    unsigned Pick(unsigned below) { return static_cast<unsigned>(random_() % below); }

    void MakeEntry(std::string const& path, std::string const& file, int levels)
    {
        switch (Pick(levels > 0 ? 14 : 9)) {
        case 0:
            return MakeFile(path, static_cast<off_t>(random_()) << 3);
        case 1:
            return MakeFile(path, 0);
        case 2:
            return static_cast<void>(Check(link(file.c_str(), path.c_str())));
        case 3:
            return MakeLink(path, "0");
        case 4:
            return MakeLink(path, "nowhere");
        case 5:
            return MakeLink(path, ".");
        case 6:
            return MakeLink(path, path);
        case 7:
            return static_cast<void>(Check(mkfifo(path.c_str(), 0644)));
        case 8:
            return Write(path, std::string(Pick(5000), 'y'));
        default:
            return Make(path, levels - 1);
        }
    }

    std::mt19937 random_;
    bool withClosedFolders_;
};

/// The sizes of files by their paths, and how much of them remains when some paths are sizeless.
class Ledger
{
public:
    void MakeFile(std::string const& path, off_t size)
    {
        ::MakeFile(path, size);
        files_[QByteArray::fromStdString(path)] = static_cast<Bytes>(size);
    }

    Bytes Without(QByteArrayList const& sizeless) const
    {
        Bytes sum = 0;
        for (auto file = files_.begin(); file != files_.end(); ++file) {
            bool const lost = std::any_of(sizeless.begin(), sizeless.end(), [&](QByteArray const& path) {
                return file.key() == path || file.key().startsWith(path + '/');
            });
            sum += lost ? 0 : file.value();
        }
        return sum;
    }

private:
    QMap<QByteArray, Bytes> files_;
};

std::string CurrentFolder()
{
    return boost::filesystem::current_path().string();
}

bool IsBroken(DIR* stream)
{
    struct stat status;
    return Faults().brokenFolder != 0 && fstat(dirfd(stream), &status) == 0 && status.st_ino == Faults().brokenFolder;
}

} // namespace

/// Stands before the C library's own: the library under test calls this one.
extern "C" Q_DECL_EXPORT dirent* readdir(DIR* stream)
{
    static auto const next = reinterpret_cast<dirent* (*)(DIR*)>(dlsym(RTLD_NEXT, "readdir"));
    dirent* const entry = next(stream);
    if (entry && Faults().tellsNoKinds) {
        ++Faults().hits;
        entry->d_type = DT_UNKNOWN;
    }
    if (!entry && IsBroken(stream)) {
        ++Faults().hits;
        errno = EIO;
    }
    return entry;
}

Q_DECLARE_METATYPE(Maker)

class FileUtilsTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    // GetPathSize
    void fileOrOddityIsMeasured_data() { EntryRows(); }
    void fileOrOddityIsMeasured();
    void fileOrOddityInAFolderIsMeasured_data() { EntryRows(); }
    void fileOrOddityInAFolderIsMeasured();
    void pathToNothingIsSizeless_data();
    void pathToNothingIsSizeless();
    void sizelessIsLoggedAsOneErrorOfThisFile();
    void deviceIsSizeless();
    void pathWithNulIsSizelessAndNotCutShort_data();
    void pathWithNulIsSizelessAndNotCutShort();

    void emptyFolderHasNoBytesAndIsNotLogged();
    void folderIsTheSumOfAllBelowIt();
    void hiddenFilesCount();
    void everyNameOfAFileCounts();
    void sumPassesFourGibibytes();
    void linkToAFolderIsNotEntered();
    void anyNameIsMeasured_data() { NameRows(); }
    void anyNameIsMeasured();
    void anyNameIsLoggedByteForByte_data() { NameRows(); }
    void anyNameIsLoggedByteForByte();
    void loggedPathIsTheStartAndTheNames_data();
    void loggedPathIsTheStartAndTheNames();
    void linkToAFolderWithASlashIsTheFolder();

    void folderClosedToUsIsSizelessAsAWhole_data();
    void folderClosedToUsIsSizelessAsAWhole();
    void entriesOfAFolderWithoutSearchPermissionAreSizelessEach();
    void pathBelowAClosedFolderIsSizeless();
    void fileThatCannotBeReadHasASize();

    void folderWhoseReadingFailsLosesItsSum();
    void startWhoseReadingFailsIsSizeless();
    void fileSystemThatTellsNoKindsIsMeasuredAlike();

    void treeDeeperThanAnyPathIsMeasured();
    void deepTreeIsMeasuredWithFewDescriptors();
    void folderIsSizelessWithoutAnyDescriptor();
    void fileNeedsNoDescriptor();

    void whatVanishesMeanwhileIsSizelessOrCounted_data();
    void whatVanishesMeanwhileIsSizelessOrCounted();
    void folderReplacedMeanwhileIsNotFollowed();
    void treeRearrangedMeanwhileLosesOnlyWhatIsLogged_data();
    void treeRearrangedMeanwhileLosesOnlyWhatIsLogged();
    void folderClosedMeanwhileLosesOnlyWhatIsLogged();

    void agreesWithTheRuleOnAnyTree_data() { SeedRows(); }
    void agreesWithTheRuleOnAnyTree();
    void agreesWithTheRuleOnAnyTreeWithClosedFolders_data() { SeedRows(); }
    void agreesWithTheRuleOnAnyTreeWithClosedFolders();

    void descriptorsAndCurrentFolderStayAsTheyWere();
    void severalThreadsMeasureSideBySide();

    // RemoveFile
    void oneEntryIsRemoved_data();
    void oneEntryIsRemoved();
    void linkIsRemovedAndNotItsTarget_data();
    void linkIsRemovedAndNotItsTarget();
    void hardLinkIsRemovedAndNotTheOtherName();
    void whatIsMissingIsNotRemoved_data();
    void whatIsMissingIsNotRemoved();
    void folderWithContentStaysAsItIs();
    void linkToAFolderWithASlashRemovesNothing();
    void pathWithNulRemovesNothing();
    void withoutPermissionNothingIsRemoved_data();
    void withoutPermissionNothingIsRemoved();
    void anyNameIsRemoved_data() { NameRows(); }
    void anyNameIsRemoved();

private:
    void SetUp() override;
    void TearDown() override;

    static void EntryRows();
    static void NameRows();
    static void SeedRows();

    /// The path of \a name in this test's folder.
    std::string At(std::string const& name) const { return folder_->path().toStdString() + '/' + name; }

    /// A chain of folders, with files and side folders at each level, and a dangling link "trigger" in the last.
    void MakeChain(std::string const& path, int levels, Ledger& ledger) const;

    /// Folders "d" in each other, with so many files of one byte and side folders "s0"... with such a file at each
    /// level.
    static void MakeDeepTree(std::string const& path, int levels, int files, int sideFolders);

    std::optional<QTemporaryDir> folder_;
};

void FileUtilsTest::SetUp()
{
    folder_.emplace();
    QVERIFY2(folder_->isValid(), qPrintable(folder_->errorString()));
    // Ordinary users come here too.
    Chmod(QDir::tempPath().toStdString(), 0755);
    Chmod(folder_->path().toStdString(), 0755);
}

void FileUtilsTest::TearDown()
{
    Empty(folder_->path().toStdString());
    folder_.reset();
}

void FileUtilsTest::EntryRows()
{
    QTest::addColumn<Maker>("make");
    QTest::addColumn<Bytes>("bytes");
    QTest::addColumn<bool>("sizeless");

    struct Row
    {
        char const* name;
        Maker make;
        Bytes bytes;
    };
    // clang-format off
    Row const withSize[] = {
        {"file", [](std::string const& path) { Write(path, "hello"); }, 5},
        {"empty file", [](std::string const& path) { Write(path, ""); }, 0},
        {"file of one byte", [](std::string const& path) { Write(path, std::string(1, '\0')); }, 1},
        {"file of holes", [](std::string const& path) { MakeFile(path, 0x7fff'ffff'ffLL); }, 0x7fff'ffff'ffULL},
        {"file of 4 GiB", [](std::string const& path) { MakeFile(path, 0x1'0000'0000LL); }, 0x1'0000'0000ULL},
        {"link to a file", [](std::string const& path) { MakeLink(path, "../target"); }, 321},
        {"link to a link to a file", [](std::string const& path) { MakeLink(path, "../link-to-target"); }, 321},
    };
    Row const without[] = {
        {"dangling link", [](std::string const& path) { MakeLink(path, "nowhere"); }, 0},
        {"link to a dangling link", [](std::string const& path) { MakeLink(path, "../dangling"); }, 0},
        {"link to itself", [](std::string const& path) { MakeLink(path, path); }, 0},
        {"link to a loop of links", [](std::string const& path) { MakeLink(path, "../ring1"); }, 0},
        {"link to a folder", [](std::string const& path) { MakeLink(path, "../full"); }, 0},
        {"link to a link to a folder", [](std::string const& path) { MakeLink(path, "../link-to-full"); }, 0},
        {"link to the folder above", [](std::string const& path) { MakeLink(path, ".."); }, 0},
        {"link to a device", [](std::string const& path) { MakeLink(path, "/dev/null"); }, 0},
        {"pipe", [](std::string const& path) { Check(mkfifo(path.c_str(), 0644)); }, 0},
        {"link to a pipe", [](std::string const& path) { MakeLink(path, "../pipe"); }, 0},
        {"socket", MakeSocket, 0},
    };
    // clang-format on
    for (Row const& row : withSize) {
        QTest::newRow(row.name) << row.make << row.bytes << false;
    }
    for (Row const& row : without) {
        QTest::newRow(row.name) << row.make << row.bytes << true;
    }
}

namespace
{

void MakeTargets(std::string const& root)
{
    MakeFile(root + "target", 321);
    MakeLink(root + "link-to-target", "target");
    MakeLink(root + "dangling", "nowhere");
    MakeLink(root + "ring1", "ring2");
    MakeLink(root + "ring2", "ring1");
    MakeFolder(root + "full");
    MakeFile(root + "full/file", 1000);
    MakeLink(root + "link-to-full", "full");
    Check(mkfifo((root + "pipe").c_str(), 0644));
}

} // namespace

void FileUtilsTest::fileOrOddityIsMeasured()
{
    QFETCH(Maker, make);
    QFETCH(Bytes, bytes);
    QFETCH(bool, sizeless);
    MakeTargets(At(""));
    MakeFolder(At("around"));
    std::string const path = At("around/it");
    make(path);

    Measured const measured = Measure(path);

    QCOMPARE(measured.bytes, bytes);
    QCOMPARE(measured.sizeless, sizeless ? QByteArrayList{QByteArray::fromStdString(path)} : QByteArrayList());
}

void FileUtilsTest::fileOrOddityInAFolderIsMeasured()
{
    QFETCH(Maker, make);
    QFETCH(Bytes, bytes);
    QFETCH(bool, sizeless);
    MakeTargets(At(""));
    MakeFolder(At("around"));
    MakeFile(At("around/a"), 7);
    make(At("around/it"));
    MakeFile(At("around/z"), 11);

    Measured const measured = Measure(At("around"));

    QCOMPARE(measured.bytes, bytes + 18);
    QCOMPARE(measured.sizeless,
             sizeless ? QByteArrayList{QByteArray::fromStdString(At("around/it"))} : QByteArrayList());
}

void FileUtilsTest::pathToNothingIsSizeless_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("missing") << QByteArray("missing");
    QTest::newRow("missing below missing") << QByteArray("missing/missing");
    QTest::newRow("below a file") << QByteArray("file/name");
    QTest::newRow("file with a slash") << QByteArray("file/");
    QTest::newRow("missing with a slash") << QByteArray("missing/");
    QTest::newRow("name that is too long") << QByteArray(256, 'x');
    QTest::newRow("path that is too long") << QByteArray("xx/").repeated(1500);
}

void FileUtilsTest::pathToNothingIsSizeless()
{
    QFETCH(QByteArray, name);
    MakeFile(At("file"), 5);
    std::string const path = At(name.toStdString());

    Measured const measured = Measure(path);

    QCOMPARE(measured.bytes, 0ULL);
    QCOMPARE(measured.sizeless, QByteArrayList{QByteArray::fromStdString(path)});
}

void FileUtilsTest::sizelessIsLoggedAsOneErrorOfThisFile()
{
    LogCapture const capture;

    QCOMPARE(GetPathSize(ioPath("/no/such/file")), 0ULL);
    QCOMPARE(GetPathSize(ioPath()), 0ULL);

    QVector<LogLine> const lines = capture.Lines();
    QCOMPARE(lines.size(), 2);
    for (LogLine const& line : lines) {
        QCOMPARE(line.severity, static_cast<google::LogSeverity>(google::GLOG_ERROR));
        QCOMPARE(line.file, QStringLiteral("Util/FileUtils.cpp"));
        QVERIFY(line.line > 0);
    }
    QCOMPARE(lines[0].text, QStringLiteral("Erorr get size for: /no/such/file"));
    QCOMPARE(lines[1].text, QStringLiteral("Erorr get size for: "));
}

void FileUtilsTest::deviceIsSizeless()
{
    Measured const measured = Measure("/dev/null");
    QCOMPARE(measured.bytes, 0ULL);
    QCOMPARE(measured.sizeless, QByteArrayList{"/dev/null"});
}

void FileUtilsTest::pathWithNulIsSizelessAndNotCutShort_data()
{
    QTest::addColumn<QByteArray>("tail");
    QTest::newRow("after a file") << QByteArray("file\0", 5);
    QTest::newRow("between a file and more") << QByteArray("file\0more", 9);
    QTest::newRow("after a folder") << QByteArray("folder\0/file", 12);
    QTest::newRow("after nothing") << QByteArray("missing\0", 8);
}

void FileUtilsTest::pathWithNulIsSizelessAndNotCutShort()
{
    QFETCH(QByteArray, tail);
    MakeFile(At("file"), 5);
    MakeFolder(At("folder"));
    MakeFile(At("folder/file"), 5);
    std::string const path = At(tail.toStdString());

    Measured const measured = Measure(path);

    QCOMPARE(measured.bytes, 0ULL);
    QCOMPARE(measured.sizeless, QByteArrayList{QByteArray::fromStdString(path)});
}

void FileUtilsTest::emptyFolderHasNoBytesAndIsNotLogged()
{
    MakeFolder(At("empty"));
    MakeFolder(At("empty/empty"));
    for (char const* const name : {"empty", "empty/empty"}) {
        Measured const measured = Measure(At(name));
        QCOMPARE(measured.bytes, 0ULL);
        QCOMPARE(measured.sizeless, QByteArrayList());
    }
}

void FileUtilsTest::folderIsTheSumOfAllBelowIt()
{
    MakeFolder(At("a"));
    MakeFile(At("a/1"), 1);
    MakeFile(At("a/2"), 20);
    MakeFolder(At("a/b"));
    MakeFile(At("a/b/1"), 300);
    MakeFolder(At("a/b/empty"));
    MakeFolder(At("a/b/c"));
    MakeFile(At("a/b/c/1"), 4000);
    MakeFolder(At("a/d"));
    MakeFile(At("a/d/1"), 50000);
    MakeFile(At("beside"), 600000);

    Measured const measured = Measure(At("a"));

    QCOMPARE(measured.bytes, 54321ULL);
    QCOMPARE(measured.sizeless, QByteArrayList());
}

void FileUtilsTest::hiddenFilesCount()
{
    MakeFile(At(".hidden"), 1);
    MakeFile(At("..two-dots"), 20);
    MakeFile(At("..."), 300);
    MakeFolder(At(".folder"));
    MakeFile(At(".folder/.file"), 4000);
    MakeFolder(At("...."));
    MakeFile(At("..../file"), 50000);

    Measured const measured = Measure(At(""));

    QCOMPARE(measured.bytes, 54321ULL);
    QCOMPARE(measured.sizeless, QByteArrayList());
}

void FileUtilsTest::everyNameOfAFileCounts()
{
    MakeFolder(At("folder"));
    MakeFile(At("name"), 11);
    for (char const* const name : {"second", "folder/third"}) {
        Check(link(At("name").c_str(), At(name).c_str()));
    }
    QCOMPARE(Measure(At("")).bytes, 33ULL);
    QCOMPARE(Measure(At("folder")).bytes, 11ULL);
}

void FileUtilsTest::sumPassesFourGibibytes()
{
    MakeFolder(At("below"));
    MakeFile(At("1"), 0xffff'ffffLL);
    MakeFile(At("below/2"), 0xffff'ffffLL);
    MakeFile(At("below/3"), 0x123'4567'89abLL);

    QCOMPARE(Measure(At("")).bytes, 0x125'4567'89a9ULL);
    QCOMPARE(Measure(At("below")).bytes, 0x124'4567'89aaULL);
}

void FileUtilsTest::linkToAFolderIsNotEntered()
{
    MakeFolder(At("start"));
    MakeFile(At("start/file"), 3);
    MakeFolder(At("other"));
    MakeLink(At("other/dangling"), "nowhere");
    MakeLink(At("start/other"), "../other");
    MakeLink(At("start/around"), "../start");

    Measured const measured = Measure(At("start"));

    QCOMPARE(measured.bytes, 3ULL);
    QCOMPARE(measured.sizeless, (QByteArrayList{QByteArray::fromStdString(At("start/around")),
                                                QByteArray::fromStdString(At("start/other"))}));
}

void FileUtilsTest::NameRows()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("spaces") << QByteArray("  two words ");
    QTest::newRow("line feed") << QByteArray("\nfirst\n\nsecond");
    QTest::newRow("quotes") << QByteArray("'single' \"double\" `back`");
    QTest::newRow("backslash") << QByteArray("a\\b\\\\c\\");
    QTest::newRow("no UTF-8") << QByteArray("\xff\xfe\x80 \xc3\x28 \xed\xa0\x80");
    QTest::newRow("letters beyond ASCII") << QByteArray("\xd0\xb8\xd0\xbc\xd1\x8f \xf0\x9f\x93\x81");
    QTest::newRow("format placeholders") << QByteArray("%1% %s %n %1");
    QTest::newRow("patterns") << QByteArray("*?[a-z]$HOME~");
    QTest::newRow("hyphen") << QByteArray("-rf");
    QTest::newRow("control characters") << QByteArray("\x01\x1b[31m\t\r\x7f");
    QTest::newRow("as long as it may be") << QByteArray(255, 'n');
    QTest::newRow("three dots") << QByteArray("...");
    QTest::newRow("dot and space") << QByteArray(". ");
}

void FileUtilsTest::anyNameIsMeasured()
{
    QFETCH(QByteArray, name);
    std::string const folder = At(name.toStdString());
    std::string const file = folder + '/' + name.toStdString();
    MakeFolder(folder);
    MakeFile(file, 17);

    for (std::string const& start : {file, folder, At("")}) {
        Measured const measured = Measure(start);
        QCOMPARE(measured.bytes, 17ULL);
        QCOMPARE(measured.sizeless, QByteArrayList());
    }
}

void FileUtilsTest::anyNameIsLoggedByteForByte()
{
    QFETCH(QByteArray, name);
    std::string const folder = At(name.toStdString());
    std::string const dangling = folder + '/' + name.toStdString();
    MakeFolder(folder);
    MakeLink(dangling, "nowhere");

    for (std::string const& start : {dangling, folder}) {
        Measured const measured = Measure(start);
        QCOMPARE(measured.bytes, 0ULL);
        QCOMPARE(measured.sizeless, QByteArrayList{QByteArray::fromStdString(dangling)});
    }
}

void FileUtilsTest::loggedPathIsTheStartAndTheNames_data()
{
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<QByteArray>("logged");
    // "%" stands for the absolute path of the test's folder.
    QTest::newRow("absolute") << QByteArray("%/a") << QByteArray("%/a/b/gone");
    QTest::newRow("absolute with a slash") << QByteArray("%/a/") << QByteArray("%/a/b/gone");
    QTest::newRow("absolute with two slashes") << QByteArray("%/a//") << QByteArray("%/a//b/gone");
    QTest::newRow("two slashes inside") << QByteArray("%//a") << QByteArray("%//a/b/gone");
    QTest::newRow("relative") << QByteArray("a") << QByteArray("a/b/gone");
    QTest::newRow("relative with a slash") << QByteArray("a/") << QByteArray("a/b/gone");
    QTest::newRow("relative from here") << QByteArray("./a") << QByteArray("./a/b/gone");
    QTest::newRow("here") << QByteArray(".") << QByteArray("./a/b/gone");
    QTest::newRow("here with a slash") << QByteArray("./") << QByteArray("./a/b/gone");
    QTest::newRow("above") << QByteArray("a/..") << QByteArray("a/../a/b/gone");
}

void FileUtilsTest::loggedPathIsTheStartAndTheNames()
{
    QFETCH(QByteArray, start);
    QFETCH(QByteArray, logged);
    QByteArray const root = folder_->path().toUtf8();
    MakeFolder(At("a"));
    MakeFolder(At("a/b"));
    MakeLink(At("a/b/gone"), "nowhere");
    MakeFile(At("a/b/file"), 9);
    AtFolder const here(At(""));

    Measured const measured = Measure(start.replace('%', root).toStdString());

    QCOMPARE(measured.bytes, 9ULL);
    QCOMPARE(measured.sizeless, QByteArrayList{logged.replace('%', root)});
}

void FileUtilsTest::linkToAFolderWithASlashIsTheFolder()
{
    MakeFolder(At("folder"));
    MakeFile(At("folder/file"), 9);
    MakeLink(At("link"), "folder");

    Measured const measured = Measure(At("link/"));

    QCOMPARE(measured.bytes, 9ULL);
    QCOMPARE(measured.sizeless, QByteArrayList());
}

void FileUtilsTest::folderClosedToUsIsSizelessAsAWhole_data()
{
    QTest::addColumn<uint>("mode");
    QTest::newRow("nothing is allowed") << 0000U;
    QTest::newRow("only search is allowed") << 0111U;
    QTest::newRow("only writing is allowed") << 0222U;
}

void FileUtilsTest::folderClosedToUsIsSizelessAsAWhole()
{
    QFETCH(uint, mode);
    MakeFolder(At("start"));
    MakeFile(At("start/file"), 5);
    MakeFolder(At("start/closed"));
    MakeFile(At("start/closed/file"), 60);
    MakeFolder(At("start/closed/folder"));
    MakeFile(At("start/closed/folder/file"), 700);
    Chmod(At("start/closed"), mode);

    Measured const inside = MeasureAsOrdinaryUser(At("start"));
    QCOMPARE(inside.bytes, 5ULL);
    QCOMPARE(inside.sizeless, QByteArrayList{QByteArray::fromStdString(At("start/closed"))});

    Measured const start = MeasureAsOrdinaryUser(At("start/closed"));
    QCOMPARE(start.bytes, 0ULL);
    QCOMPARE(start.sizeless, QByteArrayList{QByteArray::fromStdString(At("start/closed"))});
}

void FileUtilsTest::entriesOfAFolderWithoutSearchPermissionAreSizelessEach()
{
    MakeFolder(At("start"));
    MakeFile(At("start/file"), 5);
    MakeFolder(At("start/list"));
    MakeFile(At("start/list/file"), 60);
    MakeFolder(At("start/list/folder"));
    MakeFile(At("start/list/folder/file"), 700);
    MakeLink(At("start/list/link"), "../file");
    Chmod(At("start/list"), 0444);

    Measured const measured = MeasureAsOrdinaryUser(At("start"));

    QCOMPARE(measured.bytes, 5ULL);
    QCOMPARE(measured.sizeless, (QByteArrayList{QByteArray::fromStdString(At("start/list/file")),
                                                QByteArray::fromStdString(At("start/list/folder")),
                                                QByteArray::fromStdString(At("start/list/link"))}));
}

void FileUtilsTest::pathBelowAClosedFolderIsSizeless()
{
    MakeFolder(At("closed"));
    MakeFile(At("closed/file"), 5);
    Chmod(At("closed"), 0000);

    Measured const measured = MeasureAsOrdinaryUser(At("closed/file"));

    QCOMPARE(measured.bytes, 0ULL);
    QCOMPARE(measured.sizeless, QByteArrayList{QByteArray::fromStdString(At("closed/file"))});
}

void FileUtilsTest::fileThatCannotBeReadHasASize()
{
    MakeFile(At("file"), 5);
    Chmod(At("file"), 0000);

    Measured const measured = MeasureAsOrdinaryUser(At("file"));

    QCOMPARE(measured.bytes, 5ULL);
    QCOMPARE(measured.sizeless, QByteArrayList());
}

void FileUtilsTest::folderWhoseReadingFailsLosesItsSum()
{
    DisarmFaults const disarm;
    MakeFolder(At("start"));
    MakeFile(At("start/file"), 5);
    MakeFolder(At("start/broken"));
    MakeFile(At("start/broken/file"), 60);
    MakeFolder(At("start/broken/folder"));
    MakeFile(At("start/broken/folder/file"), 700);
    MakeFolder(At("start/whole"));
    MakeFile(At("start/whole/file"), 8000);
    Faults().brokenFolder = InodeOf(At("start/broken"));

    Measured const measured = Measure(At("start"));

    QVERIFY(Faults().hits > 0);
    QCOMPARE(measured.bytes, 8005ULL);
    QCOMPARE(measured.sizeless, QByteArrayList{QByteArray::fromStdString(At("start/broken"))});
}

void FileUtilsTest::startWhoseReadingFailsIsSizeless()
{
    DisarmFaults const disarm;
    MakeFolder(At("start"));
    MakeFile(At("start/file"), 5);
    Faults().brokenFolder = InodeOf(At("start"));

    Measured const measured = Measure(At("start"));

    QVERIFY(Faults().hits > 0);
    QCOMPARE(measured.bytes, 0ULL);
    QCOMPARE(measured.sizeless, QByteArrayList{QByteArray::fromStdString(At("start"))});
}

void FileUtilsTest::fileSystemThatTellsNoKindsIsMeasuredAlike()
{
    DisarmFaults const disarm;
    RandomTree(7, false).Make(At("tree"), 5);
    Measured const expected = MeasureByReference(At("tree"));
    Faults().tellsNoKinds = true;

    Measured const measured = Measure(At("tree"));

    QVERIFY(Faults().hits > 0);
    QCOMPARE(measured.bytes, expected.bytes);
    QCOMPARE(measured.sizeless, expected.sizeless);
}

void FileUtilsTest::MakeDeepTree(std::string const& path, int levels, int files, int sideFolders)
{
    MakeFolder(path);
    int folder = Check(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (int level = 0; level < levels; ++level) {
        for (int i = 0; i < files; ++i) {
            MakeFileAt(folder, std::to_string(i).c_str(), 1);
        }
        for (int i = 0; i < sideFolders; ++i) {
            std::string const side = 's' + std::to_string(i);
            Check(mkdirat(folder, side.c_str(), 0755));
            MakeFileAt(folder, (side + "/f").c_str(), 1);
        }
        Check(mkdirat(folder, "d", 0755));
        int const below = Check(openat(folder, "d", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        close(std::exchange(folder, below));
    }
    Check(symlinkat("nowhere", folder, "dangling"));
    close(folder);
}

void FileUtilsTest::treeDeeperThanAnyPathIsMeasured()
{
    constexpr int Levels = 3000;
    MakeDeepTree(At("deep"), Levels, 1, 0);
    // Found again on the way back, or not: it is entered before or after.
    MakeFolder(At("deep/side"));
    MakeFile(At("deep/side/file"), 50000);

    Measured const measured = Measure(At("deep"));

    QCOMPARE(measured.bytes, 53000ULL);
    QCOMPARE(measured.sizeless,
             QByteArrayList{QByteArray::fromStdString(At("deep")) + QByteArray("/d").repeated(Levels) + "/dangling"});
}

// One test for all counts: the tree takes long to make.
void FileUtilsTest::deepTreeIsMeasuredWithFewDescriptors()
{
    constexpr int Levels = 1000;
    MakeDeepTree(At("deep"), Levels, 2, 2);

    // A folder and the one below it are the least.
    for (std::size_t const descriptors : {2U, 3U, 4U, 12U}) {
        Measured const measured = MeasureWithDescriptors(descriptors, At("deep"));
        QCOMPARE(measured.bytes, Bytes{4} * Levels);
        QCOMPARE(measured.sizeless, QByteArrayList{QByteArray::fromStdString(At("deep")) +
                                                   QByteArray("/d").repeated(Levels) + "/dangling"});
    }
}

void FileUtilsTest::folderIsSizelessWithoutAnyDescriptor()
{
    MakeFolder(At("folder"));
    MakeFile(At("folder/file"), 5);

    Measured const measured = MeasureWithDescriptors(0, At("folder"));

    QCOMPARE(measured.bytes, 0ULL);
    QCOMPARE(measured.sizeless, QByteArrayList{QByteArray::fromStdString(At("folder"))});
}

void FileUtilsTest::fileNeedsNoDescriptor()
{
    MakeFile(At("file"), 5);

    Measured const measured = MeasureWithDescriptors(0, At("file"));

    QCOMPARE(measured.bytes, 5ULL);
    QCOMPARE(measured.sizeless, QByteArrayList());
}

void FileUtilsTest::whatVanishesMeanwhileIsSizelessOrCounted_data()
{
    QTest::addColumn<bool>("folders");
    QTest::newRow("files") << false;
    QTest::newRow("folders") << true;
}

// Which of two entries is looked at first is the file system's affair: an entry is either counted or logged, once.
void FileUtilsTest::whatVanishesMeanwhileIsSizelessOrCounted()
{
    QFETCH(bool, folders);
    constexpr int Count = 40;
    Ledger ledger;
    MakeFolder(At("start"));
    for (int i = 0; i < Count; ++i) {
        std::string const victim = At("start/v" + std::to_string(i));
        if (folders) {
            MakeFolder(victim);
        }
        ledger.MakeFile(folders ? victim + "/file" : victim, 1 << (i % 20));
        MakeLink(At("start/t" + std::to_string(i)), "nowhere");
    }
    QByteArray const trigger = QByteArray::fromStdString(At("start/t"));

    Measured measured = Measure(At("start"), [&](QByteArray const& path) {
        if (path.startsWith(trigger)) {
            std::string const victim = At("start/v" + path.mid(trigger.size()).toStdString());
            boost::filesystem::rename(victim, At("away" + path.mid(trigger.size()).toStdString()));
        }
    });

    QCOMPARE(measured.bytes, ledger.Without(measured.sizeless));
    int triggers = 0;
    for (QByteArray const& path : qAsConst(measured.sizeless)) {
        triggers += path.startsWith(trigger) ? 1 : 0;
        QCOMPARE(measured.sizeless.count(path), 1);
    }
    QCOMPARE(triggers, Count);
    QVERIFY2(measured.sizeless.size() > Count, "Nothing vanished before it was looked at");
}

void FileUtilsTest::folderReplacedMeanwhileIsNotFollowed()
{
    MakeFolder(At("start"));
    MakeFolder(At("other"));
    MakeFile(At("other/file"), 60);
    MakeFolder(At("start/folder"));
    MakeLink(At("start/trigger"), "nowhere");
    bool replaced = false;

    Measured const measured = Measure(At("start"), [&](QByteArray const&) {
        if (!std::exchange(replaced, true)) {
            boost::filesystem::remove(At("start/folder"));
            MakeLink(At("start/folder"), "../other");
        }
    });

    QVERIFY(replaced);
    QCOMPARE(measured.bytes, 0ULL);
    QVERIFY(measured.sizeless.size() <= 2);
    QVERIFY(measured.sizeless.contains(QByteArray::fromStdString(At("start/trigger"))));
}

void FileUtilsTest::MakeChain(std::string const& path, int levels, Ledger& ledger) const
{
    std::string folder = path;
    for (int level = 0; level < levels; ++level) {
        MakeFolder(folder);
        ledger.MakeFile(folder + "/file", 1 + level);
        // On either side of the way down, whatever the order.
        for (int i = 0; i < 6; ++i) {
            std::string const side = folder + "/s" + std::to_string(i);
            MakeFolder(side);
            ledger.MakeFile(side + "/file", off_t{1000} * (1 + level));
        }
        folder += "/c";
    }
    MakeLink(folder.substr(0, folder.size() - 1) + "trigger", "nowhere");
}

namespace
{

constexpr int ChainLevels = 60;

std::string Chain(int levels)
{
    std::string path = "chain";
    for (int level = 0; level < levels; ++level) {
        path += "/c";
    }
    return path;
}

} // namespace

void FileUtilsTest::treeRearrangedMeanwhileLosesOnlyWhatIsLogged_data()
{
    QTest::addColumn<Maker>("rearrange");
    QTest::addColumn<QByteArray>("touched"); // nothing else may be lost

    auto const add = [](char const* name, std::string const& touched, Maker rearrange) {
        QTest::newRow(name) << rearrange << QByteArray::fromStdString(touched);
    };
    add("a folder near the start is moved", Chain(1),
        [](std::string const& root) { boost::filesystem::rename(root + Chain(1), root + "away"); });
    add("a folder near the end is moved", Chain(55),
        [](std::string const& root) { boost::filesystem::rename(root + Chain(55), root + "away"); });
    add("the start is moved", Chain(0),
        [](std::string const& root) { boost::filesystem::rename(root + Chain(0), root + "away"); });
    add("a folder and one above it are moved apart", Chain(2), [](std::string const& root) {
        boost::filesystem::rename(root + Chain(6), root + "away");
        boost::filesystem::rename(root + Chain(2), root + "far-away");
    });
    add("the start and a folder of it are moved apart", Chain(0), [](std::string const& root) {
        boost::filesystem::rename(root + Chain(3), root + "away");
        boost::filesystem::rename(root + Chain(0), root + "far-away");
    });
    add("two folders are moved, and others stand in their places", Chain(4), [](std::string const& root) {
        boost::filesystem::rename(root + Chain(9), root + "away");
        boost::filesystem::rename(root + Chain(4), root + "far-away");
        for (int level = 4; level <= 9; ++level) {
            MakeFolder(root + Chain(level));
            MakeFile(root + Chain(level) + "/decoy", 1 << 30);
            MakeFolder(root + Chain(level) + "/s5");
            MakeFile(root + Chain(level) + "/s5/decoy", 1 << 30);
        }
    });
    add("a folder is moved, and a link to it stands in its place", Chain(4), [](std::string const& root) {
        boost::filesystem::rename(root + Chain(9), root + "away");
        boost::filesystem::rename(root + Chain(4), root + "far-away");
        MakeLink(root + Chain(4), root + "far-away");
    });
    add("a folder is removed with all that is in it", Chain(20),
        [](std::string const& root) { boost::filesystem::remove_all(root + Chain(20)); });
}

void FileUtilsTest::treeRearrangedMeanwhileLosesOnlyWhatIsLogged()
{
    QFETCH(Maker, rearrange);
    QFETCH(QByteArray, touched);
    Ledger ledger;
    MakeChain(At(Chain(0)), ChainLevels, ledger);
    int const descriptorsBefore = OpenDescriptors();
    bool rearranged = false;

    Measured measured = Measure(At(Chain(0)), [&](QByteArray const& path) {
        if (path.endsWith("/trigger")) {
            rearranged = true;
            rearrange(At(""));
        }
    });

    QVERIFY(rearranged);
    QCOMPARE(measured.bytes, ledger.Without(measured.sizeless));
    QByteArray const lost = QByteArray::fromStdString(At(touched.toStdString()));
    for (QByteArray const& path : qAsConst(measured.sizeless)) {
        QVERIFY2(path == lost || path.startsWith(lost + '/'), path.constData());
        QCOMPARE(measured.sizeless.count(path), 1);
    }
    QCOMPARE(OpenDescriptors(), descriptorsBefore);
}

void FileUtilsTest::folderClosedMeanwhileLosesOnlyWhatIsLogged()
{
    Ledger ledger;
    MakeChain(At(Chain(0)), ChainLevels, ledger);
    // Only the owner may close it.
    if (geteuid() == 0) {
        for (int level = 0; level < ChainLevels; ++level) {
            Check(chown(At(Chain(level)).c_str(), 65534, 65534));
        }
    }

    Measured const measured = MeasureAsOrdinaryUser(At(Chain(0)), [&](QByteArray const& path) {
        if (path.endsWith("/trigger")) {
            Chmod(At(Chain(10)), 0000);
        }
    });

    QCOMPARE(measured.bytes, ledger.Without(measured.sizeless));
    QByteArray const closed = QByteArray::fromStdString(At(Chain(10)));
    for (QByteArray const& path : measured.sizeless) {
        QVERIFY2(path == closed || path.startsWith(closed + '/'), path.constData());
    }
    struct stat status;
    Check(stat(closed.constData(), &status));
    QCOMPARE(status.st_mode & 0777U, 0U);
}

void FileUtilsTest::SeedRows()
{
    QTest::addColumn<uint>("seed");
    for (uint seed = 1; seed <= 12; ++seed) {
        QTest::addRow("tree %u", seed) << seed;
    }
}

void FileUtilsTest::agreesWithTheRuleOnAnyTree()
{
    QFETCH(uint, seed);
    RandomTree(seed, false).Make(At("tree"), 5);

    Measured const measured = Measure(At("tree"));

    Measured const expected = MeasureByReference(At("tree"));
    QCOMPARE(measured.bytes, expected.bytes);
    QCOMPARE(measured.sizeless, expected.sizeless);
}

void FileUtilsTest::agreesWithTheRuleOnAnyTreeWithClosedFolders()
{
    QFETCH(uint, seed);
    RandomTree(seed, true).Make(At("tree"), 5);

    Measured const measured = MeasureAsOrdinaryUser(At("tree"));

    Measured const expected = Unpacked(RunAsOrdinaryUser([&] { return Packed(MeasureByReference(At("tree"))); }));
    QCOMPARE(measured.bytes, expected.bytes);
    QCOMPARE(measured.sizeless, expected.sizeless);
}

void FileUtilsTest::descriptorsAndCurrentFolderStayAsTheyWere()
{
    Ledger ledger;
    MakeChain(At(Chain(0)), ChainLevels, ledger);
    MakeTargets(At(""));
    Measure(At("missing"));
    std::string const currentBefore = CurrentFolder();
    int const descriptorsBefore = OpenDescriptors();

    for (char const* const name : {"", "target", "full", "pipe", "dangling", "link-to-full", "missing"}) {
        Measure(At(name));
        QCOMPARE(OpenDescriptors(), descriptorsBefore);
    }

    QCOMPARE(CurrentFolder(), currentBefore);
}

void FileUtilsTest::severalThreadsMeasureSideBySide()
{
    Ledger ledger;
    MakeChain(At(Chain(0)), ChainLevels, ledger);
    boost::filesystem::remove(At(Chain(ChainLevels - 1)) + "/trigger");
    std::atomic<int> right{0};
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] { right += GetPathSize(ioPath(At(Chain(0)))) == ledger.Without({}) ? 1 : 0; });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    QCOMPARE(right.load(), 4);
}

void FileUtilsTest::oneEntryIsRemoved_data()
{
    QTest::addColumn<Maker>("make");
    auto const add = [](char const* name, Maker make) { QTest::newRow(name) << make; };
    add("file", [](std::string const& path) { Write(path, "hello"); });
    add("empty file", [](std::string const& path) { Write(path, ""); });
    add("file that cannot be written", [](std::string const& path) {
        Write(path, "hello");
        Chmod(path, 0444);
    });
    add("empty folder", [](std::string const& path) { MakeFolder(path); });
    add("dangling link", [](std::string const& path) { MakeLink(path, "nowhere"); });
    add("link to itself", [](std::string const& path) { MakeLink(path, path); });
    add("pipe", [](std::string const& path) { Check(mkfifo(path.c_str(), 0644)); });
    add("socket", MakeSocket);
}

void FileUtilsTest::oneEntryIsRemoved()
{
    QFETCH(Maker, make);
    LogCapture const capture;
    MakeFile(At("beside"), 1);
    make(At("it"));

    QVERIFY(RemoveFile(ioPath(At("it"))));

    QVERIFY(!Exists(At("it")));
    QVERIFY(Exists(At("beside")));
    QVERIFY(!RemoveFile(ioPath(At("it"))));
    QCOMPARE(capture.Texts(), QStringList());
}

void FileUtilsTest::linkIsRemovedAndNotItsTarget_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::newRow("a file") << QByteArray("target");
    QTest::newRow("a folder with content") << QByteArray("full");
    QTest::newRow("an empty folder") << QByteArray("empty");
    QTest::newRow("a link") << QByteArray("link-to-target");
    QTest::newRow("a dangling link") << QByteArray("dangling");
}

void FileUtilsTest::linkIsRemovedAndNotItsTarget()
{
    QFETCH(QByteArray, target);
    LogCapture const capture;
    MakeTargets(At(""));
    MakeFolder(At("empty"));
    MakeLink(At("link"), target.toStdString());

    QVERIFY(RemoveFile(ioPath(At("link"))));

    QVERIFY(!Exists(At("link")));
    QVERIFY(Exists(At(target.toStdString())));
    QVERIFY(Exists(At("target")));
    QVERIFY(Exists(At("full/file")));
    QCOMPARE(capture.Texts(), QStringList());
}

void FileUtilsTest::hardLinkIsRemovedAndNotTheOtherName()
{
    Write(At("name"), "hello");
    Check(link(At("name").c_str(), At("other").c_str()));

    QVERIFY(RemoveFile(ioPath(At("name"))));

    QVERIFY(!Exists(At("name")));
    QCOMPARE(GetPathSize(ioPath(At("other"))), 5ULL);
}

void FileUtilsTest::whatIsMissingIsNotRemoved_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::newRow("missing") << QByteArray("missing");
    QTest::newRow("missing below missing") << QByteArray("missing/missing");
    QTest::newRow("below a file") << QByteArray("file/name");
    QTest::newRow("file with a slash") << QByteArray("file/");
    QTest::newRow("name that is too long") << QByteArray(256, 'x');
    QTest::newRow("path that is too long") << QByteArray("xx/").repeated(1500);
    QTest::newRow("empty path") << QByteArray();
}

void FileUtilsTest::whatIsMissingIsNotRemoved()
{
    QFETCH(QByteArray, path);
    LogCapture const capture;
    Write(At("file"), "hello");
    AtFolder const here(At(""));

    QVERIFY(!RemoveFile(ioPath(path.toStdString())));

    QVERIFY(Exists(At("file")));
    QCOMPARE(capture.Texts(), QStringList());
}

void FileUtilsTest::folderWithContentStaysAsItIs()
{
    LogCapture const capture;
    MakeFolder(At("folder"));
    Write(At("folder/.hidden"), "hello");
    MakeFolder(At("folder/empty"));

    QVERIFY(!RemoveFile(ioPath(At("folder"))));

    QVERIFY(Exists(At("folder/.hidden")));
    QVERIFY(Exists(At("folder/empty")));
    QCOMPARE(capture.Texts(), QStringList());
}

void FileUtilsTest::linkToAFolderWithASlashRemovesNothing()
{
    LogCapture const capture;
    MakeFolder(At("empty"));
    MakeLink(At("link"), "empty");

    QVERIFY(!RemoveFile(ioPath(At("link/"))));

    QVERIFY(Exists(At("link")));
    QVERIFY(Exists(At("empty")));
    QCOMPARE(capture.Texts(), QStringList());
}

void FileUtilsTest::pathWithNulRemovesNothing()
{
    LogCapture const capture;
    Write(At("file"), "hello");
    MakeFolder(At("empty"));

    QVERIFY(!RemoveFile(ioPath(At(std::string("file\0", 5)))));
    QVERIFY(!RemoveFile(ioPath(At(std::string("file\0more", 9)))));
    QVERIFY(!RemoveFile(ioPath(At(std::string("empty\0/x", 8)))));

    QVERIFY(Exists(At("file")));
    QVERIFY(Exists(At("empty")));
    QCOMPARE(capture.Texts(), QStringList());
}

void FileUtilsTest::withoutPermissionNothingIsRemoved_data()
{
    QTest::addColumn<uint>("mode");
    QTest::newRow("folder cannot be written") << 0555U;
    QTest::newRow("folder cannot be searched") << 0444U;
    QTest::newRow("folder is closed") << 0000U;
}

void FileUtilsTest::withoutPermissionNothingIsRemoved()
{
    QFETCH(uint, mode);
    MakeFolder(At("folder"));
    Write(At("folder/file"), "hello");
    MakeFolder(At("folder/empty"));
    Chmod(At("folder"), mode);

    QByteArray const result = RunAsOrdinaryUser([&] {
        LogCapture const capture;
        bool const removed = RemoveFile(ioPath(At("folder/file"))) || RemoveFile(ioPath(At("folder/empty")));
        return QByteArray::number(removed) + ' ' + QByteArray::number(capture.Lines().size());
    });

    QCOMPARE(result, QByteArray("0 0"));
    Chmod(At("folder"), 0755);
    QVERIFY(Exists(At("folder/file")));
    QVERIFY(Exists(At("folder/empty")));
}

void FileUtilsTest::anyNameIsRemoved()
{
    QFETCH(QByteArray, name);
    LogCapture const capture;
    std::string const folder = At(name.toStdString());
    std::string const file = folder + '/' + name.toStdString();
    MakeFolder(folder);
    Write(file, "hello");

    QVERIFY(RemoveFile(ioPath(file)));
    QVERIFY(!Exists(file));
    QVERIFY(RemoveFile(ioPath(folder)));
    QVERIFY(!Exists(folder));
    QCOMPARE(capture.Texts(), QStringList());
}

ZQTUTIL_TEST_MAIN(FileUtilsTest)
#include "FileUtilsTest.moc"

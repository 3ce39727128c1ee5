// GetPathSize() on trees that are closed, broken, deep or anyhow, and with next to nothing left to open them with.

#include <support/overrides/NextFunction.h>
#include <support/sandbox/FolderTestCase.h>
#include <support/sandbox/Folders.h>
#include <unit/files/MeasuredSize.h>

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayList>
#include <QtTest/QtTest>

#include <boost/filesystem.hpp>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Zelkor::Testing;

namespace
{

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

/// Measures in a child process that has so many descriptors left to open.
Measured MeasureWithDescriptors(std::size_t count, std::string const& path)
{
    return MeasuredByOrdinaryUser([&] {
        // What is loaded late needs descriptors too, and so do the sanitizers afterwards.
        Measure(path + "/nothing");
        FewDescriptors const few(count);
        return Measure(path);
    });
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

/// Folders "d" in each other, with so many files of one byte and side folders "s0"... with such a file at each level.
void MakeDeepTree(std::string const& path, int levels, int files, int sideFolders)
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

bool IsBroken(DIR* stream)
{
    struct stat status;
    return Faults().brokenFolder != 0 && fstat(dirfd(stream), &status) == 0 && status.st_ino == Faults().brokenFolder;
}

} // namespace

/// Stands before the C library's own: the library under test calls this one.
extern "C" Q_DECL_EXPORT dirent* readdir(DIR* stream)
{
    static auto const next = NextFunction<dirent* (*)(DIR*)>("readdir");
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

class FileUtilsSizeOddTreesTest : public Zelkor::Testing::FolderTestCase
{
    Q_OBJECT

private Q_SLOTS:
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

    void agreesWithTheRuleOnAnyTree_data() { SeedRows(); }
    void agreesWithTheRuleOnAnyTree();
    void agreesWithTheRuleOnAnyTreeWithClosedFolders_data() { SeedRows(); }
    void agreesWithTheRuleOnAnyTreeWithClosedFolders();

private:
    static void SeedRows();
};

void FileUtilsSizeOddTreesTest::folderClosedToUsIsSizelessAsAWhole_data()
{
    QTest::addColumn<uint>("mode");
    QTest::newRow("nothing is allowed") << 0000U;
    QTest::newRow("only search is allowed") << 0111U;
    QTest::newRow("only writing is allowed") << 0222U;
}

void FileUtilsSizeOddTreesTest::folderClosedToUsIsSizelessAsAWhole()
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

void FileUtilsSizeOddTreesTest::entriesOfAFolderWithoutSearchPermissionAreSizelessEach()
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

void FileUtilsSizeOddTreesTest::pathBelowAClosedFolderIsSizeless()
{
    MakeFolder(At("closed"));
    MakeFile(At("closed/file"), 5);
    Chmod(At("closed"), 0000);

    Measured const measured = MeasureAsOrdinaryUser(At("closed/file"));

    QCOMPARE(measured.bytes, 0ULL);
    QCOMPARE(measured.sizeless, QByteArrayList{QByteArray::fromStdString(At("closed/file"))});
}

void FileUtilsSizeOddTreesTest::fileThatCannotBeReadHasASize()
{
    MakeFile(At("file"), 5);
    Chmod(At("file"), 0000);

    Measured const measured = MeasureAsOrdinaryUser(At("file"));

    QCOMPARE(measured.bytes, 5ULL);
    QCOMPARE(measured.sizeless, QByteArrayList());
}

void FileUtilsSizeOddTreesTest::folderWhoseReadingFailsLosesItsSum()
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

void FileUtilsSizeOddTreesTest::startWhoseReadingFailsIsSizeless()
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

void FileUtilsSizeOddTreesTest::fileSystemThatTellsNoKindsIsMeasuredAlike()
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

void FileUtilsSizeOddTreesTest::treeDeeperThanAnyPathIsMeasured()
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
void FileUtilsSizeOddTreesTest::deepTreeIsMeasuredWithFewDescriptors()
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

void FileUtilsSizeOddTreesTest::folderIsSizelessWithoutAnyDescriptor()
{
    MakeFolder(At("folder"));
    MakeFile(At("folder/file"), 5);

    Measured const measured = MeasureWithDescriptors(0, At("folder"));

    QCOMPARE(measured.bytes, 0ULL);
    QCOMPARE(measured.sizeless, QByteArrayList{QByteArray::fromStdString(At("folder"))});
}

void FileUtilsSizeOddTreesTest::fileNeedsNoDescriptor()
{
    MakeFile(At("file"), 5);

    Measured const measured = MeasureWithDescriptors(0, At("file"));

    QCOMPARE(measured.bytes, 5ULL);
    QCOMPARE(measured.sizeless, QByteArrayList());
}

void FileUtilsSizeOddTreesTest::SeedRows()
{
    QTest::addColumn<uint>("seed");
    for (uint seed = 1; seed <= 12; ++seed) {
        QTest::addRow("tree %u", seed) << seed;
    }
}

void FileUtilsSizeOddTreesTest::agreesWithTheRuleOnAnyTree()
{
    QFETCH(uint, seed);
    RandomTree(seed, false).Make(At("tree"), 5);

    Measured const measured = Measure(At("tree"));

    Measured const expected = MeasureByReference(At("tree"));
    QCOMPARE(measured.bytes, expected.bytes);
    QCOMPARE(measured.sizeless, expected.sizeless);
}

void FileUtilsSizeOddTreesTest::agreesWithTheRuleOnAnyTreeWithClosedFolders()
{
    QFETCH(uint, seed);
    RandomTree(seed, true).Make(At("tree"), 5);

    Measured const measured = MeasureAsOrdinaryUser(At("tree"));

    Measured const expected = MeasuredByOrdinaryUser([&] { return MeasureByReference(At("tree")); });
    QCOMPARE(measured.bytes, expected.bytes);
    QCOMPARE(measured.sizeless, expected.sizeless);
}

ZQTUTIL_TEST_MAIN(FileUtilsSizeOddTreesTest)
#include "FileUtilsSizeOddTreesTest.moc"

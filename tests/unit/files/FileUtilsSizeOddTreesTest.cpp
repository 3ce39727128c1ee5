// Tests of GetPathSize() with unusual trees: trees with inaccessible folders, trees with read errors, deep trees and
// random trees. Also tests GetPathSize() in a process that can open only a few file descriptors.

#include <support/overrides/FolderReading.h>
#include <support/sandbox/FolderTestCase.h>
#include <support/sandbox/Folders.h>
#include <support/sandbox/Users.h>
#include <unit/files/MeasuredSize.h>

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayList>
#include <QtTest/QtTest>

#include <boost/filesystem.hpp>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Zelkor::Testing;

namespace
{

/// Opens so many file descriptors that this process can open only \a count additional descriptors. The destructor
/// closes the opened descriptors.
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
            opened_.push_back(descriptor);
        }
        if (errno != EMFILE || opened_.size() < count) {
            qFatal("Too many descriptors are open already");
        }
        for (; count > 0; --count) {
            close(opened_.back());
            opened_.pop_back();
        }
    }
    ~FewDescriptors() { std::for_each(opened_.begin(), opened_.end(), close); }
    FewDescriptors(FewDescriptors const&) = delete;
    FewDescriptors& operator=(FewDescriptors const&) = delete;

private:
    std::vector<int> opened_;
};

/// Calls Measure() in a child process that can open only \a count more file descriptors.
Measured MeasureWithDescriptors(std::size_t count, std::string const& path)
{
    return RunAsOrdinaryUser([&] {
        // The first call of Measure() may load shared libraries, and loading a library requires a descriptor.
        // Therefore, call Measure() once before the number of descriptors is limited.
        Measure(path + "/nothing");
        FewDescriptors const few(count);
        return Measure(path);
    });
}

/// A simple reference implementation of GetPathSize(), with recursion and Boost.Filesystem. Appends the paths of
/// entries without a size to \a sizeless.
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

/// Creates a tree with random files, links, pipes and folders. Equal seeds produce equal trees.
class RandomTree
{
public:
    RandomTree(unsigned seed, bool withRestrictedFolders)
        : random_(seed)
        , withRestrictedFolders_(withRestrictedFolders)
    {}

    void Make(std::string const& path, int levels)
    {
        MakeFolder(path);
        std::string const first = path + "/0";
        WriteFile(first, std::string(Pick(100) + 1, 'x'));
        for (unsigned i = 1, count = Pick(9); i <= count; ++i) {
            MakeEntry(path + '/' + std::to_string(i), first, levels);
        }
        if (withRestrictedFolders_ && Pick(3) == 0) {
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
            return MakeHardLink(path, file);
        case 3:
            return MakeLink(path, "0");
        case 4:
            return MakeLink(path, "nowhere");
        case 5:
            return MakeLink(path, ".");
        case 6:
            return MakeLink(path, path);
        case 7:
            return MakePipe(path);
        case 8:
            return WriteFile(path, std::string(Pick(5000), 'y'));
        default:
            return Make(path, levels - 1);
        }
    }

    std::mt19937 random_;
    bool withRestrictedFolders_;
};

/// Creates the folder \a path and a chain of nested folders with the name "d" in it. The last folder "d" contains only
/// a dangling link. All other folders of the chain, and \a path itself, contain files and side folders.
///
/// \param levels       The number of folders with the name "d".
/// \param files        The number of files in each folder. The size of each file is one byte.
/// \param sideFolders  The number of side folders ("s0", "s1" and so on) in each folder. Each side folder contains one
///                     file of one byte.
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

} // namespace

class FileUtilsSizeOddTreesTest : public Zelkor::Testing::FolderTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void logsAFolderWithoutReadPermissionOnce_data();
    void logsAFolderWithoutReadPermissionOnce();
    void logsEachEntryOfAFolderWithoutSearchPermission();
    void logsAPathInAFolderWithoutPermissions();
    void measuresAFileWithoutReadPermission();

    void ignoresAFolderWithAReadError();
    void logsAStartFolderWithAReadError();
    void measuresAFileSystemWithoutEntryTypes();

    void measuresATreeDeeperThanAnyPath();
    void measuresADeepTreeWithFewDescriptors();
    void logsAFolderWithoutADescriptor();
    void measuresAFileWithoutADescriptor();

    void agreesWithTheReferenceOnRandomTrees_data() { SeedRows(); }
    void agreesWithTheReferenceOnRandomTrees();
    void agreesWithTheReferenceOnTreesWithRestrictedFolders_data() { SeedRows(); }
    void agreesWithTheReferenceOnTreesWithRestrictedFolders();

private:
    static void SeedRows();
};

void FileUtilsSizeOddTreesTest::logsAFolderWithoutReadPermissionOnce_data()
{
    QTest::addColumn<uint>("mode");
    QTest::newRow("no permissions") << 0000U;
    QTest::newRow("search permission only") << 0111U;
    QTest::newRow("write permission only") << 0222U;
}

void FileUtilsSizeOddTreesTest::logsAFolderWithoutReadPermissionOnce()
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

void FileUtilsSizeOddTreesTest::logsEachEntryOfAFolderWithoutSearchPermission()
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

void FileUtilsSizeOddTreesTest::logsAPathInAFolderWithoutPermissions()
{
    MakeFolder(At("closed"));
    MakeFile(At("closed/file"), 5);
    Chmod(At("closed"), 0000);

    Measured const measured = MeasureAsOrdinaryUser(At("closed/file"));

    QCOMPARE(measured.bytes, 0ULL);
    QCOMPARE(measured.sizeless, QByteArrayList{QByteArray::fromStdString(At("closed/file"))});
}

void FileUtilsSizeOddTreesTest::measuresAFileWithoutReadPermission()
{
    MakeFile(At("file"), 5);
    Chmod(At("file"), 0000);

    Measured const measured = MeasureAsOrdinaryUser(At("file"));

    QCOMPARE(measured.bytes, 5ULL);
    QCOMPARE(measured.sizeless, QByteArrayList());
}

void FileUtilsSizeOddTreesTest::ignoresAFolderWithAReadError()
{
    MakeFolder(At("start"));
    MakeFile(At("start/file"), 5);
    MakeFolder(At("start/broken"));
    MakeFile(At("start/broken/file"), 60);
    MakeFolder(At("start/broken/folder"));
    MakeFile(At("start/broken/folder/file"), 700);
    MakeFolder(At("start/whole"));
    MakeFile(At("start/whole/file"), 8000);
    UnreadableFolder const fault(At("start/broken"));

    Measured const measured = Measure(At("start"));

    QVERIFY(fault.Count() > 0);
    QCOMPARE(measured.bytes, 8005ULL);
    QCOMPARE(measured.sizeless, QByteArrayList{QByteArray::fromStdString(At("start/broken"))});
}

void FileUtilsSizeOddTreesTest::logsAStartFolderWithAReadError()
{
    MakeFolder(At("start"));
    MakeFile(At("start/file"), 5);
    UnreadableFolder const fault(At("start"));

    Measured const measured = Measure(At("start"));

    QVERIFY(fault.Count() > 0);
    QCOMPARE(measured.bytes, 0ULL);
    QCOMPARE(measured.sizeless, QByteArrayList{QByteArray::fromStdString(At("start"))});
}

void FileUtilsSizeOddTreesTest::measuresAFileSystemWithoutEntryTypes()
{
    RandomTree(7, false).Make(At("tree"), 5);
    Measured const expected = MeasureByReference(At("tree"));
    EntriesWithoutTypes const fault;

    Measured const measured = Measure(At("tree"));

    QVERIFY(fault.Count() > 0);
    QCOMPARE(measured.bytes, expected.bytes);
    QCOMPARE(measured.sizeless, expected.sizeless);
}

void FileUtilsSizeOddTreesTest::measuresATreeDeeperThanAnyPath()
{
    constexpr int Levels = 3000;
    MakeDeepTree(At("deep"), Levels, 1, 0);
    // GetPathSize() visits "side" before or after the deep subfolder "d". The file system determines the order.
    MakeFolder(At("deep/side"));
    MakeFile(At("deep/side/file"), 50000);

    Measured const measured = Measure(At("deep"));

    QCOMPARE(measured.bytes, 53000ULL);
    QCOMPARE(measured.sizeless,
             QByteArrayList{QByteArray::fromStdString(At("deep")) + QByteArray("/d").repeated(Levels) + "/dangling"});
}

// This test has a loop instead of data rows, because creating the tree takes a long time.
void FileUtilsSizeOddTreesTest::measuresADeepTreeWithFewDescriptors()
{
    constexpr int Levels = 1000;
    MakeDeepTree(At("deep"), Levels, 2, 2);

    // GetPathSize() needs at least two descriptors: one for a folder and one for its subfolder.
    for (std::size_t const descriptors : {2U, 3U, 4U, 12U}) {
        Measured const measured = MeasureWithDescriptors(descriptors, At("deep"));
        QCOMPARE(measured.bytes, Bytes{4} * Levels);
        QCOMPARE(measured.sizeless, QByteArrayList{QByteArray::fromStdString(At("deep")) +
                                                   QByteArray("/d").repeated(Levels) + "/dangling"});
    }
}

void FileUtilsSizeOddTreesTest::logsAFolderWithoutADescriptor()
{
    MakeFolder(At("folder"));
    MakeFile(At("folder/file"), 5);

    Measured const measured = MeasureWithDescriptors(0, At("folder"));

    QCOMPARE(measured.bytes, 0ULL);
    QCOMPARE(measured.sizeless, QByteArrayList{QByteArray::fromStdString(At("folder"))});
}

void FileUtilsSizeOddTreesTest::measuresAFileWithoutADescriptor()
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

void FileUtilsSizeOddTreesTest::agreesWithTheReferenceOnRandomTrees()
{
    QFETCH(uint, seed);
    RandomTree(seed, false).Make(At("tree"), 5);

    Measured const measured = Measure(At("tree"));

    Measured const expected = MeasureByReference(At("tree"));
    QCOMPARE(measured.bytes, expected.bytes);
    QCOMPARE(measured.sizeless, expected.sizeless);
}

void FileUtilsSizeOddTreesTest::agreesWithTheReferenceOnTreesWithRestrictedFolders()
{
    QFETCH(uint, seed);
    RandomTree(seed, true).Make(At("tree"), 5);

    Measured const measured = MeasureAsOrdinaryUser(At("tree"));

    Measured const expected = RunAsOrdinaryUser([&] { return MeasureByReference(At("tree")); });
    QCOMPARE(measured.bytes, expected.bytes);
    QCOMPARE(measured.sizeless, expected.sizeless);
}

ZQTUTIL_TEST_MAIN(FileUtilsSizeOddTreesTest)
#include "FileUtilsSizeOddTreesTest.moc"

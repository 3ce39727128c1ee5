// Tests of GetPathSize() with trees that change while the function runs. The tests also verify that the function closes
// all descriptors that it opens, does not change the current folder of the process, and can run on several threads at
// the same time.

#include <support/overrides/FolderReading.h>
#include <support/sandbox/FolderTestCase.h>
#include <support/sandbox/Folders.h>
#include <support/sandbox/Users.h>
#include <unit/files/MeasuredSize.h>

#include <Util/FileUtils.h>

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayList>
#include <QtCore/QMap>
#include <QtTest/QtTest>

#include <boost/filesystem.hpp>

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

using Zelkor::ioPath;
using Zelkor::Util::GetPathSize;
using namespace Zelkor::Testing;

namespace
{

/// Creates files and records their paths and sizes.
class FileSizes
{
public:
    void MakeFile(std::string const& path, off_t size)
    {
        Zelkor::Testing::MakeFile(path, size);
        files_[QByteArray::fromStdString(path)] = static_cast<Bytes>(size);
    }

    /// Returns the sum of the sizes of the created files. Omits each file whose path is listed in \a sizeless, and each
    /// file in a folder whose path is listed in \a sizeless.
    Bytes SumWithout(QByteArrayList const& sizeless) const
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

/// Creates a chain of \a levels nested folders. The first folder is \a path, and the others have the name "c". Each
/// folder of the chain contains one file and six side folders. Each side folder contains one file. Records the created
/// files in \a sizes.
///
/// The last folder of the chain also contains the dangling link "trigger". When GetPathSize() logs the path of this
/// link, the test changes the tree.
void MakeChain(std::string const& path, int levels, FileSizes& sizes)
{
    std::string folder = path;
    for (int level = 0; level < levels; ++level) {
        MakeFolder(folder);
        sizes.MakeFile(folder + "/file", 1 + level);
        // The file system determines the order of entries. With six side folders, GetPathSize() probably visits some of
        // them before the subfolder "c" and some of them after it.
        for (int i = 0; i < 6; ++i) {
            std::string const side = folder + "/s" + std::to_string(i);
            MakeFolder(side);
            sizes.MakeFile(side + "/file", off_t{1000} * (1 + level));
        }
        folder += "/c";
    }
    MakeLink(folder.substr(0, folder.size() - 1) + "trigger", "nowhere");
}

constexpr int ChainLevels = 60;

/// Returns the path of a folder of the chain, relative to the test's folder. \a levels is the depth of the folder: 0
/// means the first folder of the chain, 1 means its subfolder "c", and so on.
std::string Chain(int levels)
{
    std::string path = "chain";
    for (int level = 0; level < levels; ++level) {
        path += "/c";
    }
    return path;
}

} // namespace

class FileUtilsSizeChangesTest : public Zelkor::Testing::FolderTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void countsOrLogsEntriesThatAreRemoved_data();
    void countsOrLogsEntriesThatAreRemoved();
    void doesNotFollowALinkThatReplacesAFolder();
    void logsEachFolderThatIsMoved_data();
    void logsEachFolderThatIsMoved();
    void measuresNoOtherFolderIfFoldersCannotBeIdentified();
    void logsAFolderThatLosesItsPermissions();

    void keepsDescriptorsAndCurrentFolder();
    void runsOnSeveralThreads();
};

void FileUtilsSizeChangesTest::countsOrLogsEntriesThatAreRemoved_data()
{
    QTest::addColumn<bool>("folders");
    QTest::newRow("files") << false;
    QTest::newRow("folders") << true;
}

// The test removes entries while GetPathSize() runs. GetPathSize() may visit an entry before or after the entry is
// removed. It must either count the size of each removed entry or log the path of the entry, exactly once.
void FileUtilsSizeChangesTest::countsOrLogsEntriesThatAreRemoved()
{
    QFETCH(bool, folders);
    constexpr int Count = 40;
    FileSizes sizes;
    MakeFolder(At("start"));
    for (int i = 0; i < Count; ++i) {
        std::string const victim = At("start/v" + std::to_string(i));
        if (folders) {
            MakeFolder(victim);
        }
        sizes.MakeFile(folders ? victim + "/file" : victim, 1 << (i % 20));
        MakeLink(At("start/t" + std::to_string(i)), "nowhere");
    }
    QByteArray const trigger = QByteArray::fromStdString(At("start/t"));

    Measured measured = Measure(At("start"), [&](QByteArray const& path) {
        if (path.startsWith(trigger)) {
            std::string const victim = At("start/v" + path.mid(trigger.size()).toStdString());
            boost::filesystem::rename(victim, At("away" + path.mid(trigger.size()).toStdString()));
        }
    });

    QCOMPARE(measured.bytes, sizes.SumWithout(measured.sizeless));
    int triggers = 0;
    for (QByteArray const& path : qAsConst(measured.sizeless)) {
        triggers += path.startsWith(trigger) ? 1 : 0;
        QCOMPARE(measured.sizeless.count(path), 1);
    }
    QCOMPARE(triggers, Count);
    QVERIFY2(measured.sizeless.size() > Count, "No entry was removed before it was visited");
}

void FileUtilsSizeChangesTest::doesNotFollowALinkThatReplacesAFolder()
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

void FileUtilsSizeChangesTest::logsEachFolderThatIsMoved_data()
{
    QTest::addColumn<Maker>("rearrange");
    QTest::addColumn<QByteArray>("changed"); // GetPathSize() may log only this folder and entries below it

    auto const add = [](char const* name, std::string const& changed, Maker rearrange) {
        QTest::newRow(name) << rearrange << QByteArray::fromStdString(changed);
    };
    add("folder near the start moved", Chain(1),
        [](std::string const& root) { boost::filesystem::rename(root + Chain(1), root + "away"); });
    add("folder near the end moved", Chain(55),
        [](std::string const& root) { boost::filesystem::rename(root + Chain(55), root + "away"); });
    add("start folder moved", Chain(0),
        [](std::string const& root) { boost::filesystem::rename(root + Chain(0), root + "away"); });
    add("folder and one of its parents moved apart", Chain(2), [](std::string const& root) {
        boost::filesystem::rename(root + Chain(6), root + "away");
        boost::filesystem::rename(root + Chain(2), root + "far-away");
    });
    add("start folder and a folder below it moved apart", Chain(0), [](std::string const& root) {
        boost::filesystem::rename(root + Chain(3), root + "away");
        boost::filesystem::rename(root + Chain(0), root + "far-away");
    });
    add("two folders moved and replaced", Chain(4), [](std::string const& root) {
        boost::filesystem::rename(root + Chain(9), root + "away");
        boost::filesystem::rename(root + Chain(4), root + "far-away");
        for (int level = 4; level <= 9; ++level) {
            MakeFolder(root + Chain(level));
            MakeFile(root + Chain(level) + "/decoy", 1 << 30);
            MakeFolder(root + Chain(level) + "/s5");
            MakeFile(root + Chain(level) + "/s5/decoy", 1 << 30);
        }
    });
    add("folder moved and replaced with a link", Chain(4), [](std::string const& root) {
        boost::filesystem::rename(root + Chain(9), root + "away");
        boost::filesystem::rename(root + Chain(4), root + "far-away");
        MakeLink(root + Chain(4), root + "far-away");
    });
    add("folder removed with its content", Chain(20),
        [](std::string const& root) { boost::filesystem::remove_all(root + Chain(20)); });
}

void FileUtilsSizeChangesTest::logsEachFolderThatIsMoved()
{
    QFETCH(Maker, rearrange);
    QFETCH(QByteArray, changed);
    FileSizes sizes;
    MakeChain(At(Chain(0)), ChainLevels, sizes);
    int const descriptorsBefore = CountOpenDescriptors();
    bool rearranged = false;

    Measured measured = Measure(At(Chain(0)), [&](QByteArray const& path) {
        if (path.endsWith("/trigger")) {
            rearranged = true;
            rearrange(At(""));
        }
    });

    QVERIFY(rearranged);
    QCOMPARE(measured.bytes, sizes.SumWithout(measured.sizeless));
    QByteArray const lost = QByteArray::fromStdString(At(changed.toStdString()));
    for (QByteArray const& path : qAsConst(measured.sizeless)) {
        QVERIFY2(path == lost || path.startsWith(lost + '/'), path.constData());
        QCOMPARE(measured.sizeless.count(path), 1);
    }
    QCOMPARE(CountOpenDescriptors(), descriptorsBefore);
}

// The test moves a folder of the chain into a folder with side folders of the same names. A traversal that does not
// identify folders would go up to this folder and measure these side folders.
void FileUtilsSizeChangesTest::measuresNoOtherFolderIfFoldersCannotBeIdentified()
{
    FileSizes sizes;
    MakeChain(At(Chain(0)), ChainLevels, sizes);
    MakeFolder(At("decoys"));
    for (int i = 0; i < 6; ++i) {
        MakeFolder(At("decoys/s" + std::to_string(i)));
        MakeFile(At("decoys/s" + std::to_string(i) + "/decoy"), 1 << 30);
    }
    bool moved = false;
    UnidentifiableFolders const fault;

    Measured const measured = Measure(At(Chain(0)), [&](QByteArray const& path) {
        if (path.endsWith("/trigger")) {
            moved = true;
            boost::filesystem::rename(At(Chain(9)), At("decoys/away"));
        }
    });

    QVERIFY(moved);
    QVERIFY(fault.Count() > 0);
    QCOMPARE(measured.bytes, sizes.SumWithout(measured.sizeless));
}

void FileUtilsSizeChangesTest::logsAFolderThatLosesItsPermissions()
{
    FileSizes sizes;
    MakeChain(At(Chain(0)), ChainLevels, sizes);
    // If this process runs as root, MeasureAsOrdinaryUser() runs as the user with the ID Nobody. Make this user the
    // owner of the folders, because only the owner may change their permissions.
    if (geteuid() == 0) {
        for (int level = 0; level < ChainLevels; ++level) {
            SetOwner(At(Chain(level)), Nobody, Nobody);
        }
    }

    Measured const measured = MeasureAsOrdinaryUser(At(Chain(0)), [&](QByteArray const& path) {
        if (path.endsWith("/trigger")) {
            Chmod(At(Chain(10)), 0000);
        }
    });

    QCOMPARE(measured.bytes, sizes.SumWithout(measured.sizeless));
    QByteArray const closed = QByteArray::fromStdString(At(Chain(10)));
    for (QByteArray const& path : measured.sizeless) {
        QVERIFY2(path == closed || path.startsWith(closed + '/'), path.constData());
    }
    struct stat status;
    Check(stat(closed.constData(), &status));
    QCOMPARE(status.st_mode & 0777U, 0U);
}

void FileUtilsSizeChangesTest::keepsDescriptorsAndCurrentFolder()
{
    FileSizes sizes;
    MakeChain(At(Chain(0)), ChainLevels, sizes);
    MakeTargets();
    Measure(At("missing"));
    QByteArray const currentBefore = CurrentFolder();
    int const descriptorsBefore = CountOpenDescriptors();

    for (char const* const name : {"", "target", "full", "pipe", "dangling", "link-to-full", "missing"}) {
        Measure(At(name));
        QCOMPARE(CountOpenDescriptors(), descriptorsBefore);
    }

    QCOMPARE(CurrentFolder(), currentBefore);
}

void FileUtilsSizeChangesTest::runsOnSeveralThreads()
{
    FileSizes sizes;
    MakeChain(At(Chain(0)), ChainLevels, sizes);
    boost::filesystem::remove(At(Chain(ChainLevels - 1)) + "/trigger");
    std::atomic<int> correctResults{0};
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back(
            [&] { correctResults += GetPathSize(ioPath(At(Chain(0)))) == sizes.SumWithout({}) ? 1 : 0; });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    QCOMPARE(correctResults.load(), 4);
}

ZQTUTIL_TEST_MAIN(FileUtilsSizeChangesTest)
#include "FileUtilsSizeChangesTest.moc"

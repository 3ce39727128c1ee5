// GetPathSize() on trees that change meanwhile, and what does not change by it.

#include <support/sandbox/FolderTestCase.h>
#include <support/sandbox/Folders.h>
#include <support/sandbox/OrdinaryUser.h>
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

/// The sizes of files by their paths, and how much of them remains when some paths are sizeless.
class Ledger
{
public:
    void MakeFile(std::string const& path, off_t size)
    {
        Zelkor::Testing::MakeFile(path, size);
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

/// A chain of folders, with files and side folders at each level, and a dangling link "trigger" in the last.
void MakeChain(std::string const& path, int levels, Ledger& ledger)
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

class FileUtilsSizeChangesTest : public Zelkor::Testing::FolderTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void whatVanishesMeanwhileIsSizelessOrCounted_data();
    void whatVanishesMeanwhileIsSizelessOrCounted();
    void folderReplacedMeanwhileIsNotFollowed();
    void treeRearrangedMeanwhileLosesOnlyWhatIsLogged_data();
    void treeRearrangedMeanwhileLosesOnlyWhatIsLogged();
    void folderClosedMeanwhileLosesOnlyWhatIsLogged();

    void descriptorsAndCurrentFolderStayAsTheyWere();
    void severalThreadsMeasureSideBySide();
};

void FileUtilsSizeChangesTest::whatVanishesMeanwhileIsSizelessOrCounted_data()
{
    QTest::addColumn<bool>("folders");
    QTest::newRow("files") << false;
    QTest::newRow("folders") << true;
}

// Which of two entries is looked at first is the file system's affair: an entry is either counted or logged, once.
void FileUtilsSizeChangesTest::whatVanishesMeanwhileIsSizelessOrCounted()
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

void FileUtilsSizeChangesTest::folderReplacedMeanwhileIsNotFollowed()
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

void FileUtilsSizeChangesTest::treeRearrangedMeanwhileLosesOnlyWhatIsLogged_data()
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

void FileUtilsSizeChangesTest::treeRearrangedMeanwhileLosesOnlyWhatIsLogged()
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

void FileUtilsSizeChangesTest::folderClosedMeanwhileLosesOnlyWhatIsLogged()
{
    Ledger ledger;
    MakeChain(At(Chain(0)), ChainLevels, ledger);
    // Only the owner may close it.
    if (geteuid() == 0) {
        for (int level = 0; level < ChainLevels; ++level) {
            Check(chown(At(Chain(level)).c_str(), Nobody, Nobody));
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

void FileUtilsSizeChangesTest::descriptorsAndCurrentFolderStayAsTheyWere()
{
    Ledger ledger;
    MakeChain(At(Chain(0)), ChainLevels, ledger);
    MakeTargets();
    Measure(At("missing"));
    QByteArray const currentBefore = CurrentFolder();
    int const descriptorsBefore = OpenDescriptors();

    for (char const* const name : {"", "target", "full", "pipe", "dangling", "link-to-full", "missing"}) {
        Measure(At(name));
        QCOMPARE(OpenDescriptors(), descriptorsBefore);
    }

    QCOMPARE(CurrentFolder(), currentBefore);
}

void FileUtilsSizeChangesTest::severalThreadsMeasureSideBySide()
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

ZQTUTIL_TEST_MAIN(FileUtilsSizeChangesTest)
#include "FileUtilsSizeChangesTest.moc"

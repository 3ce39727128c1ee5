// Runs each file operation of the library repeatedly. In the first run, the first system call fails. In the second run,
// the second system call fails, and so on, until a run finishes without a failed call. In other data rows, all later
// calls fail too, or the calls fail with another error.
//
// After each run, the test checks these statements:
// - The process has not crashed and has closed all file descriptors that it has opened.
// - Nothing outside the folder of the operation has changed.
// - The operation has returned a result that its documentation permits.

#include <support/logs/LogCapture.h>
#include <support/overrides/FailingCalls.h>
#include <support/processes/ChildProcess.h>
#include <support/sandbox/Environment.h>
#include <support/sandbox/FileTimes.h>
#include <support/sandbox/FolderTestCase.h>
#include <support/sandbox/Folders.h>
#include <support/sandbox/Users.h>

#include <Util/FileUtils.h>
#include <Util/MediaUtils.h>
#include <Util/TemporaryDir.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDataStream>
#include <QtCore/QFile>
#include <QtCore/QVariant>
#include <QtTest/QtTest>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <functional>
#include <string>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace Zelkor::Testing;
using namespace Zelkor::Util;
using Zelkor::ioPath;

namespace
{

/// The results of one run of an operation.
struct Run
{
    int failedCount = 0;    // the number of calls that failed
    QByteArray firstFailed; // the name of the function whose call failed first
    int descriptors = 0;    // the number of descriptors that the operation left open
    QStringList log;        // the texts of the logged messages
    QVariantList results;
};

QDataStream& operator<<(QDataStream& stream, Run const& run)
{
    return stream << run.failedCount << run.firstFailed << run.descriptors << run.log << run.results;
}

QDataStream& operator>>(QDataStream& stream, Run& run)
{
    return stream >> run.failedCount >> run.firstFailed >> run.descriptors >> run.log >> run.results;
}

using Operation = std::function<QVariantList()>;

/// Returns true if the documentation of the operation permits the results of a run.
using Permits = std::function<bool(Run const&)>;

Run RunWithFailures(Operation const& operation, int first, FailingCalls::Extent extent, int error)
{
    Run run;
    LogCapture const log;
    int const descriptors = CountOpenDescriptors();
    {
        FailingCalls const faults(first, extent, error);
        run.results = operation();
        run.failedCount = faults.FailedCount();
        run.firstFailed = faults.FirstFailed();
    }
    run.descriptors = CountOpenDescriptors() - descriptors;
    run.log = log.Texts();
    return run;
}

/// Returns one line for each entry below \a path. A line contains the permissions, the path and the content of the
/// entry.
QByteArrayList Describe(std::string const& path)
{
    QByteArrayList lines;
    auto const entries = ListTree(path);
    for (QByteArray const& entry : entries) {
        std::string const file = path + '/' + entry.left(entry.indexOf(" -> ")).toStdString();
        struct stat status;
        Check(lstat(file.c_str(), &status));
        lines += QByteArray::number(status.st_mode, 8) + ' ' + entry;
        if (S_ISREG(status.st_mode)) {
            lines.last() += ' ' + ReadFile(file);
        }
    }
    return lines;
}

/// Returns true if \a lines contains all \a expected lines.
bool ContainsAll(QByteArrayList const& lines, QByteArrayList const& expected)
{
    return std::all_of(expected.begin(), expected.end(), [&](QByteArray const& line) { return lines.contains(line); });
}

/// Returns true if the reported size of the folder "work" is correct. After a failed call, a smaller size is also
/// permitted if an entry that was not measured is logged.
bool PermitsSize(Run const& run)
{
    constexpr qulonglong Size = 10 + 10 + 300 + 5000 + 70000 + 900000;
    qulonglong const size = run.results[0].toULongLong();
    // The two links to folders are never measured. Ignore their messages.
    bool const isComplete = std::all_of(run.log.begin(), run.log.end(), [](QString const& line) {
        return line.endsWith(QLatin1String("/link-to-folder"));
    });
    if (run.failedCount == 0) {
        return size == Size && isComplete && run.log.size() == 2;
    }
    return size == Size || (size < Size && !isComplete);
}

bool PermitsValidity(Run const& run)
{
    auto const validity = static_cast<PathValidity>(run.results[0].toInt());
    bool const isFailure = validity == PathValidity::CannotCreate || validity == PathValidity::NotWritable;
    return validity == PathValidity::Valid || (run.failedCount > 0 && isFailure);
}

/// Lets this process open at most two more descriptors than it has now.
void LeaveTwoDescriptors()
{
    int const next = Check(dup(STDERR_FILENO));
    Check(close(next));
    rlimit limit;
    Check(getrlimit(RLIMIT_NOFILE, &limit));
    limit.rlim_cur = static_cast<rlim_t>(next) + 2;
    Check(setrlimit(RLIMIT_NOFILE, &limit));
}

} // namespace

class FaultsTest : public Zelkor::Testing::FolderTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void measuresATree_data() { FailureRows(); }
    void measuresATree();
    void measuresATreeWithFewDescriptors_data() { FailureRows(); }
    void measuresATreeWithFewDescriptors();
    void removesOldEntries_data() { FailureRows(); }
    void removesOldEntries();
    void removesOldEntriesThroughALink_data() { FailureRows(); }
    void removesOldEntriesThroughALink();
    void removesAFile_data() { FailureRows(); }
    void removesAFile();
    void checksADestinationFolder_data() { FailureRows(); }
    void checksADestinationFolder();
    void checksADestinationFolderWithTwoDots_data() { FailureRows(); }
    void checksADestinationFolderWithTwoDots();
    void keepsAnExistingDestinationFolder_data() { FailureRows(); }
    void keepsAnExistingDestinationFolder();
    void returnsAMessageForADestinationFolder_data() { FailureRows(); }
    void returnsAMessageForADestinationFolder();
    void createsATemporaryFile_data() { FailureRows(); }
    void createsATemporaryFile();
    void checksTheAccessToAFolder_data() { FailureRows(); }
    void checksTheAccessToAFolder();
    void rejectsAMissingFolder_data() { FailureRows(); }
    void rejectsAMissingFolder();
    void returnsTheFreeSpace_data() { FailureRows(); }
    void returnsTheFreeSpace();
    void findsStandardFolders_data() { FailureRows(); }
    void findsStandardFolders();
    void findsTheLabelOfADisc_data() { FailureRows(); }
    void findsTheLabelOfADisc();
    void createsATemporaryDirectory_data() { FailureRows(); }
    void createsATemporaryDirectory();
    void createsADefaultTemporaryDirectory_data() { FailureRows(); }
    void createsADefaultTemporaryDirectory();
    void removesATemporaryDirectory_data() { FailureRows(); }
    void rejectsATemporaryFolderOfAnotherUser_data() { FailureRows(); }
    void rejectsATemporaryFolderOfAnotherUser();
    void removesATemporaryDirectory();

private:
    static void FailureRows();

    /// Creates these folders:
    /// - "beside", which no operation may change;
    /// - "work", which contains files, folders and links;
    /// - "tmp", the temporary folder of the system. It contains the application's folder with old entries.
    void MakeTrees() const;

    /// Returns the description of the folder "work" before an operation.
    QByteArrayList WorkBefore() const;

    /// Returns true if the folder "work" still contains everything in \a before. If a call has failed, "work" may also
    /// contain new entries whose paths begin with \a added, because the operation could not remove them.
    bool KeepsWork(Run const& run, QByteArrayList const& before, QByteArray const& added) const;

    /// Creates a TemporaryDir for the application \a name, which may be empty, and destroys it.
    QVariantList UseTemporaryDirectory(QString const& name) const;
    bool PermitsTemporaryDirectory(Run const& run) const;

    /// Runs \a operation once for each of its system calls, and lets this call fail. Checks each run with \a permits.
    void RunAll(Operation const& operation, Permits const& permits);
};

void FaultsTest::FailureRows()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<bool>("allLaterCalls");
    struct Row
    {
        char const* name;
        int error;
    };
    for (Row const& row : {Row{"EIO", EIO}, Row{"ENOENT", ENOENT}, Row{"EMFILE", EMFILE}}) {
        QTest::addRow("one call, %s", row.name) << row.error << false;
        QTest::addRow("all later calls, %s", row.name) << row.error << true;
    }
}

void FaultsTest::MakeTrees() const
{
    MakeFolder(At("beside"));
    WriteFile(At("beside/file"), "beside");
    Chmod(At("beside/file"), 0640);
    MakeFolder(At("beside/closed"), 0700);
    WriteFile(At("beside/closed/file"), "beside closed");
    MakeLink(At("beside/link"), "file");
    MakeFolder(At("beside/empty"));

    MakeFolder(At("work"));
    MakeFile(At("work/file"), 10);
    MakeLink(At("work/link-to-file"), "file");
    MakeLink(At("work/link-to-folder"), "../beside");
    MakeFolder(At("work/empty"));
    MakeFolder(At("work/folder"));
    MakeFile(At("work/folder/new"), 300);
    MakeLink(At("work/folder/link-to-folder"), "../../beside/closed");
    MakeFolders(At("work/folder/a/b/c"));
    MakeFile(At("work/folder/a/file"), 5000);
    MakeFolder(At("work/folder/a/side"));
    MakeFile(At("work/folder/a/side/file"), 70000);
    MakeFolder(At("work/folder/a/b/side"));
    MakeFile(At("work/folder/a/b/c/file"), 900000);
    SetAge(At("work/folder/new"), -Day);
    MakeLink(At("link-to-work"), "work");

    MakeFolders(At("tmp/Studio/2/FaultsTest/old"));
    MakeFile(At("tmp/Studio/2/FaultsTest/old/file"));
    MakeLink(At("tmp/Studio/2/FaultsTest/old/link"), At("beside"));
    MakeLink(At("tmp/Studio/2/FaultsTest/link"), At("beside"));

    MakeFolders(At("tmp/Foreign/2/FaultsTest"));
    MakeFile(At("tmp/Foreign/2/FaultsTest/file"));
    if (geteuid() == RootUser) {
        SetOwner(At("tmp/Foreign"), Them);
    }
}

QByteArrayList FaultsTest::WorkBefore() const
{
    EmptyFolder(Root());
    MakeTrees();
    return Describe(At("work"));
}

bool FaultsTest::KeepsWork(Run const& run, QByteArrayList const& before, QByteArray const& added) const
{
    auto const now = Describe(At("work"));
    if (run.failedCount == 0) {
        return now == before;
    }
    for (QByteArray const& line : now) {
        QByteArray const path = line.mid(line.indexOf(' ') + 1);
        if (!before.contains(line) && !path.startsWith(added)) {
            return false;
        }
    }
    return ContainsAll(now, before);
}

QVariantList FaultsTest::UseTemporaryDirectory(QString const& name) const
{
    EnvironmentVariable const temporary("TMPDIR", QByteArray::fromStdString(At("tmp")));
    QCoreApplication::setApplicationName(name);
    QCoreApplication::setApplicationVersion(QStringLiteral("2.5"));
    TemporaryDir const directory;
    // This call must not fail, so it bypasses the functions that FailingCalls replaces.
    bool const exists = syscall(SYS_access, QFile::encodeName(directory.path()).constData(), F_OK) == 0;
    return {directory.isValid(), exists, directory.errorString(), directory.path()};
}

bool FaultsTest::PermitsTemporaryDirectory(Run const& run) const
{
    bool const isValid = run.results[0].toBool();
    bool const exists = run.results[1].toBool();
    bool const hasError = !run.results[2].toString().isEmpty();
    QString const path = run.results[3].toString();
    bool const isInside = path.startsWith(PathAt("tmp/"));
    if (run.failedCount == 0) {
        return isValid && !Exists(QFile::encodeName(path).toStdString());
    }
    return isValid ? exists && isInside && !hasError : hasError;
}

void FaultsTest::RunAll(Operation const& operation, Permits const& permits)
{
    QFETCH(int, error);
    QFETCH(bool, allLaterCalls);
    auto const extent = allLaterCalls ? FailingCalls::Extent::AllLaterCalls : FailingCalls::Extent::OneCall;
    Run run;
    for (int first = 1; first == 1 || run.failedCount > 0; ++first) {
        EmptyFolder(Root());
        MakeTrees();
        QByteArrayList const outside = Describe(At("beside"));
        try {
            run = RunInChild([&] { return RunWithFailures(operation, first, extent, error); });
        } catch (std::exception const& failure) {
            QFAIL(qPrintable(QStringLiteral("call %1: %2").arg(first).arg(QLatin1String(failure.what()))));
        }
        QString const call = QStringLiteral("call %1 (%2)").arg(first).arg(QLatin1String(run.firstFailed));
        QVERIFY2(run.descriptors == 0, qPrintable(call + QLatin1String(" leaves descriptors open")));
        QVERIFY2(Describe(At("beside")) == outside, qPrintable(call + QLatin1String(" changes another folder")));
        QVERIFY2(permits(run), qPrintable(call + QLatin1String(" has a result that is not permitted")));
        QVERIFY2(run.failedCount > 0 || first > 1, "The operation makes no system call");
    }
}

void FaultsTest::measuresATree()
{
    RunAll([this] { return QVariantList{GetPathSize(ioPath(At("work")))}; }, PermitsSize);
}

void FaultsTest::measuresATreeWithFewDescriptors()
{
    RunAll(
        [this] {
            LeaveTwoDescriptors();
            return QVariantList{GetPathSize(ioPath(At("work")))};
        },
        PermitsSize);
}

void FaultsTest::removesOldEntries()
{
    QByteArrayList const before = WorkBefore();
    RunAll(
        [this] {
            RemoveDir(PathAt("work"), 0, true);
            return QVariantList();
        },
        [&](Run const& run) {
            QByteArrayList const left = ListTree(At("work"));
            return ContainsAll(before, Describe(At("work"))) && left.contains("folder/new") &&
                   (run.failedCount > 0 || left == QByteArrayList{"folder", "folder/new"});
        });
}

void FaultsTest::removesOldEntriesThroughALink()
{
    QByteArrayList const before = WorkBefore();
    RunAll(
        [this] {
            RemoveDir(PathAt("link-to-work"), 0, true);
            return QVariantList();
        },
        [&](Run const& run) {
            QByteArrayList const left = ListTree(At("work"));
            return ContainsAll(before, Describe(At("work"))) && left.contains("folder/new") &&
                   Exists(At("link-to-work")) &&
                   (run.failedCount > 0 || left == QByteArrayList{"folder", "folder/new"});
        });
}

void FaultsTest::removesAFile()
{
    RunAll([this] { return QVariantList{RemoveFile(ioPath(At("work/file")))}; },
           [this](Run const& run) {
               bool const isRemoved = !Exists(At("work/file"));
               return run.results[0].toBool() == isRemoved && (run.failedCount > 0 || isRemoved);
           });
}

void FaultsTest::checksADestinationFolder()
{
    QByteArrayList const before = WorkBefore();
    RunAll([this] { return QVariantList{int(IsThisPathValid(PathAt("work/missing/below")))}; },
           [&](Run const& run) { return PermitsValidity(run) && KeepsWork(run, before, "missing"); });
}

void FaultsTest::checksADestinationFolderWithTwoDots()
{
    QByteArrayList const before = WorkBefore();
    RunAll([this] { return QVariantList{int(IsThisPathValid(PathAt("work/folder/a/../missing/below")))}; },
           [&](Run const& run) { return PermitsValidity(run) && KeepsWork(run, before, "folder/missing"); });
}

void FaultsTest::keepsAnExistingDestinationFolder()
{
    QByteArrayList const before = WorkBefore();
    RunAll([this] { return QVariantList{int(IsThisPathValid(PathAt("work/empty")))}; },
           [&](Run const& run) { return PermitsValidity(run) && KeepsWork(run, before, "empty/."); });
}

void FaultsTest::returnsAMessageForADestinationFolder()
{
    RunAll(
        [this] {
            QString text;
            bool const isValid = IsThisPathValid(PathAt("work/missing"), &text);
            return QVariantList{isValid, text};
        },
        [](Run const& run) {
            bool const isValid = run.results[0].toBool();
            return isValid == run.results[1].toString().isEmpty() && (run.failedCount > 0 || isValid);
        });
}

void FaultsTest::createsATemporaryFile()
{
    QByteArrayList const before = WorkBefore();
    RunAll([this] { return QVariantList{TryCreateTmpFile(PathAt("work/folder/../empty"))}; },
           [&](Run const& run) {
               bool const isCreated = run.results[0].toBool();
               return KeepsWork(run, before, "empty/.") && (run.failedCount > 0 || isCreated);
           });
}

void FaultsTest::checksTheAccessToAFolder()
{
    QByteArrayList const before = WorkBefore();
    RunAll(
        [this] {
            return QVariantList{CanCreateFileIn(PathAt("work/empty")), CanReadFileIn(PathAt("work/empty"))};
        },
        [&](Run const& run) {
            bool const areAllowed = run.results[0].toBool() && run.results[1].toBool();
            return KeepsWork(run, before, "empty/.") && (run.failedCount > 0 || areAllowed);
        });
}

void FaultsTest::rejectsAMissingFolder()
{
    QByteArrayList const before = WorkBefore();
    RunAll(
        [this] {
            RemoveDir(PathAt("work/missing"), 0, true);
            return QVariantList{CanCreateFileIn(PathAt("work/missing")),
                                CanReadFileIn(PathAt("work/missing")),
                                TryCreateTmpFile(PathAt("work/missing")),
                                RemoveFile(ioPath(At("work/missing"))),
                                Zelkor::Core::FileExists(ioPath(At("work/missing"))),
                                GetAvailableDiskSpace(ioPath(At("work/missing"))) != 0};
        },
        [&](Run const& run) { return !run.results.contains(true) && Describe(At("work")) == before; });
}

void FaultsTest::returnsTheFreeSpace()
{
    RunAll([this] { return QVariantList{GetAvailableDiskSpace(ioPath(At("work")))}; },
           [](Run const& run) {
               qlonglong const space = run.results[0].toLongLong();
               return run.failedCount > 0 ? space == 0 : space > 0;
           });
}

void FaultsTest::findsStandardFolders()
{
    RunAll(
        [] {
            return QVariantList{GetStandardPath(QStandardPaths::DesktopLocation),
                                GetZelkorLibraryPath(QStringLiteral("Library"))};
        },
        [](Run const& run) {
            return !run.results[0].toString().isEmpty() &&
                   run.results[1].toString().endsWith(QLatin1String("/Library"));
        });
}

void FaultsTest::findsTheLabelOfADisc()
{
    QByteArrayList const before = WorkBefore();
    RunAll([this] { return QVariantList{QByteArray::fromStdString(DVDLabel(ioPath(At("work/VIDEO_TS"))))}; },
           [&](Run const& run) {
               QByteArray const label = run.results[0].toByteArray();
               return (label == "VIDEO_TS" || (run.failedCount > 0 && label == "work")) &&
                      Describe(At("work")) == before;
           });
}

void FaultsTest::createsATemporaryDirectory()
{
    RunAll([this] { return UseTemporaryDirectory(QStringLiteral("Studio")); },
           [this](Run const& run) {
               return PermitsTemporaryDirectory(run) &&
                      (run.failedCount > 0 || ListTree(At("tmp/Studio/2/FaultsTest")).isEmpty());
           });
}

void FaultsTest::createsADefaultTemporaryDirectory()
{
    RunAll([this] { return UseTemporaryDirectory(QString()); },
           [this](Run const& run) { return PermitsTemporaryDirectory(run); });
}

void FaultsTest::rejectsATemporaryFolderOfAnotherUser()
{
    if (geteuid() != RootUser) {
        return;
    }
    RunAll([this] { return UseTemporaryDirectory(QStringLiteral("Foreign")); },
           [this](Run const& run) {
               QByteArrayList const entries{"2", "2/FaultsTest", "2/FaultsTest/file"};
               return !run.results[0].toBool() && ListTree(At("tmp/Foreign")) == entries;
           });
}

void FaultsTest::removesATemporaryDirectory()
{
    RunAll(
        [this] {
            EnvironmentVariable const temporary("TMPDIR", QByteArray::fromStdString(At("tmp")));
            TemporaryDir directory;
            std::string const path = QFile::encodeName(directory.path()).toStdString();
            bool const isRemoved = directory.remove();
            return QVariantList{directory.isValid(), isRemoved, QByteArray::fromStdString(path)};
        },
        [](Run const& run) {
            bool const isRemoved = run.results[1].toBool();
            std::string const path = run.results[2].toByteArray().toStdString();
            // If several calls have failed, permit any result: after calls that fail with ENOENT, remove() assumes that
            // the directory no longer exists.
            return run.failedCount > 1 || (isRemoved ? !path.empty() && !Exists(path) : run.failedCount > 0);
        });
}

ZQTUTIL_TEST_MAIN(FaultsTest)
#include "FaultsTest.moc"

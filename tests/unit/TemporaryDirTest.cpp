#include <LogCapture.h>
#include <TestCase.h>

#include <Util/TemporaryDir.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QSet>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <boost/exception/all.hpp>

#include <cstdio>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include <grp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

using Zelkor::Testing::LogCapture;
using Zelkor::Testing::LogLine;
using Zelkor::Util::TemporaryDir;

static_assert(std::is_default_constructible_v<TemporaryDir>);
static_assert(!std::is_copy_constructible_v<TemporaryDir> && !std::is_copy_assignable_v<TemporaryDir>);
static_assert(!std::is_move_constructible_v<TemporaryDir> && !std::is_move_assignable_v<TemporaryDir>);
static_assert(!std::is_polymorphic_v<TemporaryDir> && !std::is_final_v<TemporaryDir>);
static_assert(sizeof(TemporaryDir) == sizeof(std::unique_ptr<QTemporaryDir>));
static_assert(std::is_same_v<decltype(&TemporaryDir::isValid), bool (TemporaryDir::*)() const>);
static_assert(std::is_same_v<decltype(&TemporaryDir::errorString), QString (TemporaryDir::*)() const>);
static_assert(std::is_same_v<decltype(&TemporaryDir::autoRemove), bool (TemporaryDir::*)() const>);
static_assert(std::is_same_v<decltype(&TemporaryDir::setAutoRemove), void (TemporaryDir::*)(bool)>);
static_assert(std::is_same_v<decltype(&TemporaryDir::remove), bool (TemporaryDir::*)()>);
static_assert(std::is_same_v<decltype(&TemporaryDir::path), QString (TemporaryDir::*)() const>);
static_assert(std::is_same_v<decltype(&TemporaryDir::filePath), QString (TemporaryDir::*)(QString const&) const>);

/// Makes something at a path that is not taken.
using Maker = void (*)(QString const& path);
Q_DECLARE_METATYPE(Maker)

namespace
{

constexpr int Timeout = 60000;
constexpr uid_t Nobody = 65534;

char const* const playArgument = "--play";

void Check(bool done, QString const& what)
{
    if (!done) {
        throw std::runtime_error(what.toStdString());
    }
}

QByteArray Native(QString const& path)
{
    return QFile::encodeName(path);
}

bool IsThere(QString const& path)
{
    struct stat status;
    return lstat(Native(path).constData(), &status) == 0;
}

/// Whatever the library answers, nothing is touched that is not the tests' own.
void CheckIsOurs(QString const& path)
{
    QString const tmp = QDir::tempPath();
    bool const isOurs = path == tmp || path.startsWith(tmp + QLatin1Char('/'));
    Check(!tmp.isEmpty() && isOurs, QStringLiteral("not ours: ") + path);
}

void MakeFolder(QString const& path)
{
    CheckIsOurs(path);
    Check(QDir().mkpath(path), path);
}

void MakeFile(QString const& path)
{
    CheckIsOurs(path);
    QFile file(path);
    Check(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write("content") > 0, path);
}

void MakeLink(QString const& path, QString const& target)
{
    CheckIsOurs(path);
    Check(symlink(Native(target).constData(), Native(path).constData()) == 0, path);
}

void SetMode(QString const& path, mode_t mode)
{
    CheckIsOurs(path);
    Check(chmod(Native(path).constData(), mode) == 0, path);
}

void GiveTo(uid_t user, QString const& path)
{
    CheckIsOurs(path);
    Check(lchown(Native(path).constData(), user, static_cast<gid_t>(-1)) == 0, path);
}

/// Everything below \a folder, hidden things too; behind each link where it leads.
QStringList Listing(QString const& folder)
{
    QStringList entries;
    QDirIterator found(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
    while (found.hasNext()) {
        QString const path = found.next();
        QString const target = found.fileInfo().isSymLink() ? found.fileInfo().symLinkTarget() : QString();
        entries += path.mid(folder.size()) + QStringLiteral(" -> ") + target;
    }
    entries.sort();
    return entries;
}

QString Name()
{
    return QFileInfo(QCoreApplication::applicationFilePath()).completeBaseName();
}

// The other process's side: it takes the steps that its arguments name, and tells what came of them in lines of JSON.

void Tell(QJsonObject const& facts)
{
    QByteArray const line = QJsonDocument(facts).toJson(QJsonDocument::Compact) + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
    std::fflush(stdout);
}

QJsonArray Complaints(LogCapture const& log)
{
    QJsonArray complaints;
    QVector<LogLine> const lines = log.Lines();
    for (LogLine const& line : lines) {
        if (line.severity != google::GLOG_INFO) {
            complaints += QString::fromLatin1(google::GetLogSeverityName(line.severity)) + QLatin1Char(' ') +
                          line.file + QLatin1Char(' ') + line.text;
        }
    }
    return complaints;
}

QJsonObject FactsOf(TemporaryDir const& directory)
{
    return {{QStringLiteral("valid"), directory.isValid()},
            {QStringLiteral("path"), directory.path()},
            {QStringLiteral("file"), directory.filePath(QStringLiteral("file"))},
            {QStringLiteral("error"), directory.errorString()},
            {QStringLiteral("isThere"), !directory.path().isEmpty() && IsThere(directory.path())}};
}

QJsonObject FactsOf(boost::wrapexcept<std::logic_error> const& error)
{
    return {{QStringLiteral("thrown"), QString::fromUtf8(error.what())},
            {QStringLiteral("file"), QString::fromUtf8(*boost::get_error_info<boost::throw_file>(error))},
            {QStringLiteral("function"), QString::fromUtf8(*boost::get_error_info<boost::throw_function>(error))},
            {QStringLiteral("line"), *boost::get_error_info<boost::throw_line>(error)}};
}

class Play
{
public:
    void Take(QString const& step)
    {
        QString const verb = step.section(QLatin1Char('='), 0, 0);
        QString const object = step.section(QLatin1Char('='), 1);
        auto const known = Steps().find(verb);
        Check(known != Steps().end(), step);
        (this->*known->second)(object);
    }

private:
    using Step = void (Play::*)(QString const& object);

    static std::map<QString, Step> const& Steps()
    {
        static std::map<QString, Step> const steps{
            {QStringLiteral("no application"), &Play::DropApplication},
            {QStringLiteral("ordinary user"), &Play::DropPrivileges},
            {QStringLiteral("name"), &Play::SetName},
            {QStringLiteral("version"), &Play::SetVersion},
            {QStringLiteral("temporary folder"), &Play::SetTemporaryFolder},
            {QStringLiteral("make"), &Play::Make},
            {QStringLiteral("make on threads"), &Play::MakeOnThreads},
            {QStringLiteral("put file"), &Play::PutFile},
            {QStringLiteral("put locked folder"), &Play::PutLockedFolder},
            {QStringLiteral("remove"), &Play::Remove},
            {QStringLiteral("await"), &Play::Await},
        };
        return steps;
    }

    void DropApplication(QString const& /*unused*/) { application_.reset(); }

    void DropPrivileges(QString const& /*unused*/)
    {
        if (geteuid() != 0) {
            return;
        }
        QCoreApplication::applicationFilePath(); // kept; it could not be asked for later
        Check(setgroups(0, nullptr) == 0 && setgid(Nobody) == 0 && setuid(Nobody) == 0, QStringLiteral("user"));
        prctl(PR_SET_DUMPABLE, 1); // the leak sanitizer looks at the process
    }

    void SetName(QString const& name) { QCoreApplication::setApplicationName(name); }

    void SetVersion(QString const& version) { QCoreApplication::setApplicationVersion(version); }

    void SetTemporaryFolder(QString const& path) { qputenv("TMPDIR", Native(path)); }

    void Make(QString const& /*unused*/)
    {
        LogCapture const log;
        try {
            made_.push_back(std::make_unique<TemporaryDir>());
        } catch (boost::wrapexcept<std::logic_error> const& error) {
            Tell(FactsOf(error));
            return;
        }
        QJsonObject facts = FactsOf(*made_.back());
        facts[QStringLiteral("complaints")] = Complaints(log);
        Tell(facts);
    }

    void MakeOnThreads(QString const& count)
    {
        std::promise<void> start;
        std::shared_future<void> const started = start.get_future().share();
        std::vector<std::future<std::unique_ptr<TemporaryDir>>> results;
        results.reserve(count.toUInt());
        for (int i = 0; i < count.toInt(); ++i) {
            results.push_back(std::async(std::launch::async, [started] {
                started.wait();
                auto directory = std::make_unique<TemporaryDir>();
                MakeFile(directory->filePath(QStringLiteral("file")));
                return directory;
            }));
        }
        start.set_value();
        made_.reserve(results.size());
        for (auto& result : results) {
            made_.push_back(result.get());
        }
        for (auto const& directory : made_) {
            QJsonObject facts = FactsOf(*directory);
            facts[QStringLiteral("hasFile")] = IsThere(directory->filePath(QStringLiteral("file")));
            Tell(facts);
        }
    }

    void PutFile(QString const& name) { MakeFile(made_.back()->filePath(name)); }

    void PutLockedFolder(QString const& name)
    {
        QString const folder = made_.back()->filePath(name);
        MakeFolder(folder);
        MakeFile(folder + QStringLiteral("/file"));
        SetMode(folder, 0555);
    }

    void Remove(QString const& /*unused*/)
    {
        bool const removed = made_.back()->remove();
        QJsonObject facts = FactsOf(*made_.back());
        facts[QStringLiteral("removed")] = removed;
        Tell(facts);
    }

    void Await(QString const& /*unused*/)
    {
        for (int read = std::getchar(); read != '\n' && read != EOF;) {
            read = std::getchar();
        }
    }

    int argumentCount_ = 1;
    char name_[5] = "play";
    char* arguments_[2] = {name_, nullptr};
    std::unique_ptr<QCoreApplication> application_ = std::make_unique<QCoreApplication>(argumentCount_, arguments_);
    std::vector<std::unique_ptr<TemporaryDir>> made_;
};

int RunPlay(int argc, char** argv)
{
    google::InitGoogleLogging(argv[0]);
    google::AddLogSink(&Zelkor::Testing::LogWatch::Instance());
    for (int severity = google::GLOG_INFO; severity < google::NUM_SEVERITIES; ++severity) {
        google::SetLogDestination(severity, "");
    }
    int result = 0;
    try {
        Play play;
        for (int i = 2; i < argc; ++i) {
            play.Take(QString::fromUtf8(argv[i]));
        }
    } catch (std::exception const& error) {
        std::fprintf(stderr, "%s\n", error.what());
        result = 1;
    }
    google::RemoveLogSink(&Zelkor::Testing::LogWatch::Instance());
    return result;
}

/// What the other process told of a directory.
struct Made
{
    bool valid;
    QString path;
    QString file; // the path of "file" in it
    QString error;
    bool isThere;
    QStringList complaints; // warnings and errors logged meanwhile
};

Made MadeFrom(QJsonObject const& facts)
{
    return {facts.value(QStringLiteral("valid")).toBool(),
            facts.value(QStringLiteral("path")).toString(),
            facts.value(QStringLiteral("file")).toString(),
            facts.value(QStringLiteral("error")).toString(),
            facts.value(QStringLiteral("isThere")).toBool(),
            facts.value(QStringLiteral("complaints")).toVariant().toStringList()};
}

/// This program as a process of its own that takes \a steps.
class Player
{
public:
    Player(QString const& temporaryFolder, QStringList const& steps,
           QString const& program = QCoreApplication::applicationFilePath(), QString const& currentFolder = QString())
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("TMPDIR"), temporaryFolder);
        process_.setProcessEnvironment(environment);
        process_.setWorkingDirectory(currentFolder);
        process_.start(program, QStringList(QString::fromLatin1(playArgument)) + steps);
        Check(process_.waitForStarted(Timeout), process_.errorString());
    }

    ~Player() { Kill(); }
    Player(Player const&) = delete;
    Player& operator=(Player const&) = delete;

    /// The next thing it tells.
    QJsonObject Hear()
    {
        while (!process_.canReadLine() && process_.waitForReadyRead(Timeout)) {
        }
        QJsonDocument const line = QJsonDocument::fromJson(process_.readLine());
        Check(line.isObject(), Errors());
        return line.object();
    }

    Made HearMade() { return MadeFrom(Hear()); }

    /// Ends its waiting.
    void GoOn()
    {
        process_.write("\n");
        Check(process_.waitForBytesWritten(Timeout), Errors());
    }

    /// Waits for its good end, and returns what it wrote to standard error.
    QString End()
    {
        bool const ended = process_.state() == QProcess::NotRunning || process_.waitForFinished(Timeout);
        bool const well = ended && process_.exitStatus() == QProcess::NormalExit && process_.exitCode() == 0;
        QString errors = Errors();
        Check(well && process_.readAllStandardOutput().isEmpty(), errors);
        return errors;
    }

    void Kill()
    {
        process_.kill();
        process_.waitForFinished(Timeout);
    }

private:
    QString Errors()
    {
        return QStringLiteral("The other process said: ") + QString::fromUtf8(process_.readAllStandardError());
    }

    QProcess process_;
};

// What runs leave behind.

QString Outside(QString const& path)
{
    return path.section(QStringLiteral("/tmp/"), 0, -2) + QStringLiteral("/outside");
}

void MakeTree(QString const& path)
{
    MakeFolder(path + QStringLiteral("/a/b/.c"));
    MakeFile(path + QStringLiteral("/file"));
    MakeFile(path + QStringLiteral("/.hidden"));
    MakeFile(path + QStringLiteral("/a/b/.c/file"));
    MakeLink(path + QStringLiteral("/a/link"), Outside(path));
    MakeLink(path + QStringLiteral("/a/dangling"), QStringLiteral("nowhere"));
}

void MakeReadOnlyFile(QString const& path)
{
    MakeFile(path);
    SetMode(path, 0);
}

void MakeLinkToFile(QString const& path)
{
    MakeLink(path, Outside(path) + QStringLiteral("/canary"));
}

void MakeLinkToFolder(QString const& path)
{
    MakeLink(path, Outside(path));
}

void MakeLinkUp(QString const& path)
{
    MakeLink(path, QStringLiteral(".."));
}

void MakeDanglingLink(QString const& path)
{
    MakeLink(path, QStringLiteral("nowhere"));
}

void MakeLinkToItself(QString const& path)
{
    MakeLink(path, path.section(QLatin1Char('/'), -1));
}

void MakeHardLink(QString const& path)
{
    CheckIsOurs(path);
    QString const target = Outside(path) + QStringLiteral("/canary");
    Check(link(Native(target).constData(), Native(path).constData()) == 0, path);
}

void MakePipe(QString const& path)
{
    CheckIsOurs(path);
    Check(mkfifo(Native(path).constData(), 0600) == 0, path);
}

} // namespace

class TemporaryDirTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

protected:
    void SetUp() override;
    void TearDown() override;

private:
    QString At(QString const& path) const { return sandbox_->path() + QLatin1Char('/') + path; }

    Made MakeOne(QStringList const& steps = {}) const;

    /// That \a made is not valid, and says so all over.
    static void VerifyInvalid(Made const& made);
    /// That nothing is made, twice, and each time one error is logged about \a folder.
    void VerifyRefused(QStringList const& steps, QString const& folder) const;

    std::optional<QTemporaryDir> sandbox_;
    QString tmp_;             // the temporary folder,
    QString own_;             // the application's in it,
    QStringList application_; // whose name and version these steps set

private Q_SLOTS:
    void liesBelowNameAndMajorVersionAndExecutable_data();
    void liesBelowNameAndMajorVersionAndExecutable();
    void endsInSixRandomCharacters();
    void isNamedAfterTheExecutableWithoutANameOfItsOwn();
    void takesNamesAndPathsAsTheyAre_data();
    void takesNamesAndPathsAsTheyAre();
    void acceptsATemporaryFolderThatIsALink();
    void acceptsARelativeTemporaryFolder();
    void acceptsATemporaryFolderOfSomebodyElse();
    void isOnlyItsUsers();
    void isRemovedWithTheObject();
    void staysInTheFolderOfTheFirstOne();

    void liesWhereQtPutsItWithoutNameOrVersion_data();
    void liesWhereQtPutsItWithoutNameOrVersion();
    void throwsAfterOneThatWasMadeWithoutVersion();
    void mixesKindsInOneOrderOnly_data();
    void mixesKindsInOneOrderOnly();

    void removesWhatIsLeftBehind_data();
    void removesWhatIsLeftBehind();
    void leavesHiddenAndSystemEntries_data();
    void leavesHiddenAndSystemEntries();
    void leavesOtherApplicationsFolders();
    void leavesWhatItCannotRemove();
    void emptiesTheFolderOncePerProcess();
    void emptiesTheFolderOfARunningCopyOnce();
    void removesWhatAKilledProcessLeft();
    void isMadeByManyProcessesAtOnce_data();
    void isMadeByManyProcessesAtOnce();
    void isMadeOnManyThreadsAtOnce_data();
    void isMadeOnManyThreadsAtOnce();

    void refusesALink_data();
    void refusesALink();
    void refusesAFolderOfSomebodyElse_data();
    void refusesAFolderOfSomebodyElse();
    void refusesAFolderOfTheSystem();
    void refusesANameThatLeadsOut_data();
    void refusesANameThatLeadsOut();
    void isInvalidWhereAFileStands_data();
    void isInvalidWhereAFileStands();
    void isInvalidWithoutATemporaryFolder_data();
    void isInvalidWithoutATemporaryFolder();
    void takesNoPathFromTheRootWithoutATemporaryFolder();
    void isInvalidInAFolderThatCannotBeWritten_data();
    void isInvalidInAFolderThatCannotBeWritten();
    void isInvalidWithANameThatIsTooLong();

    void removesItselfUnlessToldOtherwise_data();
    void removesItselfUnlessToldOtherwise();
    void isRemovedOnDemandAsQtDoes();
    void tellsWhenItCannotBeRemoved();
    void composesPathsOfFilesAsQtDoes_data();
    void composesPathsOfFilesAsQtDoes();
    void acceptsNoAbsoluteFileName();
    void hasNoErrorWhenValid();
};

void TemporaryDirTest::SetUp()
{
    sandbox_.emplace();
    QVERIFY2(sandbox_->isValid(), qPrintable(sandbox_->errorString()));
    // Ordinary users come here too.
    SetMode(QDir::tempPath(), 0755);
    SetMode(sandbox_->path(), 0755);
    tmp_ = At(QStringLiteral("tmp"));
    own_ = tmp_ + QStringLiteral("/Studio/2/") + Name();
    application_ = QStringList{QStringLiteral("name=Studio"), QStringLiteral("version=2.5.1")};
    MakeFolder(tmp_);
    MakeFolder(At(QStringLiteral("outside/folder")));
    MakeFile(At(QStringLiteral("outside/canary")));
    MakeFile(At(QStringLiteral("outside/folder/canary")));
    QCoreApplication::setApplicationName(QStringLiteral("Studio"));
    QCoreApplication::setApplicationVersion(QStringLiteral("2.5.1"));
}

void TemporaryDirTest::TearDown()
{
    sandbox_.reset();
}

Made TemporaryDirTest::MakeOne(QStringList const& steps) const
{
    Player player(tmp_, application_ + steps + QStringList(QStringLiteral("make")));
    Made made = player.HearMade();
    player.End();
    return made;
}

void TemporaryDirTest::VerifyInvalid(Made const& made)
{
    QVERIFY(!made.valid);
    QCOMPARE(made.path, QString());
    QCOMPARE(made.file, QString());
    QVERIFY(!made.error.isEmpty());
}

void TemporaryDirTest::VerifyRefused(QStringList const& steps, QString const& folder) const
{
    QString const make = QStringLiteral("make");
    Player player(tmp_, steps + QStringList{make, make});
    for (int i = 0; i < 2; ++i) {
        Made const made = player.HearMade();
        VerifyInvalid(made);
        QCOMPARE(made.complaints.size(), 1);
        QString const complaint = made.complaints.first();
        QVERIFY2(complaint.startsWith(QStringLiteral("ERROR Util/TemporaryDir.cpp ")), qPrintable(complaint));
        QVERIFY2(complaint.contains(folder), qPrintable(complaint));
    }
    player.End();
}

void TemporaryDirTest::liesBelowNameAndMajorVersionAndExecutable_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("executable");
    QTest::addColumn<QString>("folder");
    auto const row = [](char const* title, char const* name, char const* version, char const* executable,
                        char const* folder) {
        QTest::newRow(title) << QString::fromUtf8(name) << QString::fromUtf8(version) << QString::fromUtf8(executable)
                             << QString::fromUtf8(folder);
    };
    row("all as usual", "Studio", "2.5.1", "Studio", "Studio/2/Studio");
    row("name and executable differ", "The Studio", "2.5.1", "studio-bin", "The Studio/2/studio-bin");
    row("executable with a suffix", "Studio", "2.5.1", "studio.exe", "Studio/2/studio");
    row("executable with two suffixes", "Studio", "2.5.1", "studio.x86.exe", "Studio/2/studio.x86");
    row("executable like placeholders", "Studio", "2.5.1", "%1 %2.exe", "Studio/2/%1 %2");
    row("major version only", "Studio", "7", "studio", "Studio/7/studio");
    row("two digits", "Studio", "12.0", "studio", "Studio/12/studio");
    row("no digit groups", "Studio", "1234567.1", "studio", "Studio/1234567/studio");
    row("beyond the signed range", "Studio", "4000000000.1", "studio", "Studio/4000000000/studio");
    row("leading zeros", "Studio", "007.1", "studio", "Studio/7/studio");
    row("version with a suffix", "Studio", "3-rc1", "studio", "Studio/3/studio");
    row("version without numbers", "Studio", "beta", "studio", "Studio/0/studio");
    row("version that leads up", "Studio", "../../..", "studio", "Studio/0/studio");
}

void TemporaryDirTest::liesBelowNameAndMajorVersionAndExecutable()
{
    QFETCH(QString, name);
    QFETCH(QString, version);
    QFETCH(QString, executable);
    QFETCH(QString, folder);
    QString const program = At(QStringLiteral("bin/")) + executable;
    MakeFolder(At(QStringLiteral("bin")));
    QVERIFY(QFile::copy(QCoreApplication::applicationFilePath(), program));

    Player player(tmp_, {QStringLiteral("name=") + name, QStringLiteral("version=") + version, QStringLiteral("make")},
                  program);
    Made const made = player.HearMade();
    player.End();

    QVERIFY2(made.valid, qPrintable(made.error));
    QVERIFY(made.isThere);
    QCOMPARE(QFileInfo(made.path).path(), tmp_ + QLatin1Char('/') + folder);
    QCOMPARE(made.complaints, QStringList());
}

void TemporaryDirTest::endsInSixRandomCharacters()
{
    QRegularExpression const sixCharacters(QStringLiteral("^[A-Za-z0-9]{6}$"));
    QSet<QString> names;
    QString const make = QStringLiteral("make");
    Player player(tmp_, application_ + QStringList{make, make, make, make});
    for (int i = 0; i < 4; ++i) {
        QString const name = player.HearMade().path.section(QLatin1Char('/'), -1);
        QVERIFY2(sixCharacters.match(name).hasMatch(), qPrintable(name));
        QVERIFY(name != QStringLiteral("XXXXXX"));
        names += name;
    }
    player.End();
    QCOMPARE(names.size(), 4);
}

void TemporaryDirTest::isNamedAfterTheExecutableWithoutANameOfItsOwn()
{
    Player player(tmp_, {QStringLiteral("version=2.5.1"), QStringLiteral("make")});
    Made const made = player.HearMade();
    player.End();
    // Qt itself calls the application so, after the first of its arguments.
    QCOMPARE(QFileInfo(made.path).path(), tmp_ + QStringLiteral("/play/2/") + Name());
}

void TemporaryDirTest::takesNamesAndPathsAsTheyAre_data()
{
    QTest::addColumn<QString>("tmp");
    QTest::addColumn<QString>("name");
    struct Row
    {
        char const* title;
        QString text;
    };
    Row const rows[] = {
        {"blanks", QStringLiteral("two words ")},
        {"quotes", QStringLiteral("'a' \"b\" `c`")},
        {"first placeholder", QStringLiteral("100%1")},
        {"third placeholder", QStringLiteral("%3")},
        {"all placeholders", QStringLiteral("%4 %3 %2 %1 %L1 %99 %%1")},
        {"line feed", QStringLiteral("a\nb")},
        {"backslash", QStringLiteral("a\\b")},
        {"wildcards", QStringLiteral("*?[a-z]")},
        {"six X", QStringLiteral("XXXXXX")},
        {"dollar and tilde", QStringLiteral("~$HOME")},
        {"hidden", QStringLiteral(".hidden")},
        {"beyond ASCII", QStringLiteral("\u00E4\u20AC\U0001D11E")},
        {"dots", QStringLiteral("a..b...")},
        {"subfolder", QStringLiteral("Zelkor/Studio")},
    };
    for (Row const& row : rows) {
        QTest::newRow(QByteArray("temporary folder: ").append(row.title).constData())
            << row.text << QStringLiteral("Studio");
        QTest::newRow(QByteArray("name: ").append(row.title).constData()) << QStringLiteral("plain") << row.text;
        QTest::newRow(QByteArray("both: ").append(row.title).constData()) << row.text << row.text;
    }
    QTest::newRow("name: absolute path") << QStringLiteral("plain") << QStringLiteral("/usr");
}

void TemporaryDirTest::takesNamesAndPathsAsTheyAre()
{
    QFETCH(QString, tmp);
    QFETCH(QString, name);
    QString const folder =
        QDir::cleanPath(tmp_ + QLatin1Char('/') + tmp + QLatin1Char('/') + name + QStringLiteral("/2/") + Name());
    MakeFolder(folder);
    MakeFile(folder + QStringLiteral("/leftover"));

    QString const make = QStringLiteral("make");
    Player player(tmp_ + QLatin1Char('/') + tmp,
                  {QStringLiteral("name=") + name, QStringLiteral("version=2.5.1"), make, make});
    for (int i = 0; i < 2; ++i) {
        Made const made = player.HearMade();
        QVERIFY2(made.valid, qPrintable(made.error));
        QVERIFY(made.isThere);
        QCOMPARE(QDir::cleanPath(QFileInfo(made.path).path()), folder);
    }
    player.End();

    QCOMPARE(Listing(folder), QStringList());
}

void TemporaryDirTest::acceptsATemporaryFolderThatIsALink()
{
    QString const linked = At(QStringLiteral("linked"));
    MakeLink(linked, tmp_);
    MakeFolder(own_);
    MakeFile(own_ + QStringLiteral("/leftover"));

    Player player(linked, application_ + QStringList{QStringLiteral("make"), QStringLiteral("await")});
    Made const made = player.HearMade();
    QVERIFY2(made.valid, qPrintable(made.error));
    QCOMPARE(made.complaints, QStringList());
    QCOMPARE(QDir(own_).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList(made.path.section(QLatin1Char('/'), -1)));
    player.GoOn();
    player.End();
}

void TemporaryDirTest::acceptsARelativeTemporaryFolder()
{
    Player player(QStringLiteral("tmp"), application_ + QStringList(QStringLiteral("make")),
                  QCoreApplication::applicationFilePath(), sandbox_->path());
    Made const made = player.HearMade();
    player.End();

    QVERIFY2(made.valid, qPrintable(made.error));
    QCOMPARE(QFileInfo(made.path).path(), own_);
}

void TemporaryDirTest::acceptsATemporaryFolderOfSomebodyElse()
{
    SetMode(tmp_, 01777);
    Made const made = MakeOne({QStringLiteral("ordinary user")});
    QVERIFY2(made.valid, qPrintable(made.error));
    QCOMPARE(QFileInfo(made.path).path(), own_);
    QCOMPARE(made.complaints, QStringList());
}

void TemporaryDirTest::isOnlyItsUsers()
{
    Player player(tmp_, application_ + QStringList{QStringLiteral("make"), QStringLiteral("await")});
    struct stat status;
    QCOMPARE(stat(Native(player.HearMade().path).constData(), &status), 0);
    QCOMPARE(static_cast<int>(status.st_mode & 07777), 0700);
    player.GoOn();
    player.End();
}

void TemporaryDirTest::isRemovedWithTheObject()
{
    Player player(tmp_, application_ + QStringList{QStringLiteral("make"), QStringLiteral("put file=file"),
                                                   QStringLiteral("await")});
    Made const made = player.HearMade();
    QVERIFY(IsThere(made.path));
    player.GoOn();
    player.End();
    QVERIFY(!IsThere(made.path));
    QVERIFY(IsThere(own_));
}

void TemporaryDirTest::staysInTheFolderOfTheFirstOne()
{
    Player player(tmp_, application_ + QStringList{QStringLiteral("make"), QStringLiteral("name=Other"),
                                                   QStringLiteral("version=9"),
                                                   QStringLiteral("temporary folder=") + At(QStringLiteral("outside")),
                                                   QStringLiteral("make")});
    QCOMPARE(QFileInfo(player.HearMade().path).path(), own_);
    Made const second = player.HearMade();
    player.End();
    QVERIFY(second.isThere);
    QCOMPARE(QFileInfo(second.path).path(), own_);
}

void TemporaryDirTest::liesWhereQtPutsItWithoutNameOrVersion_data()
{
    QTest::addColumn<QStringList>("steps");
    QString const noApplication = QStringLiteral("no application");
    QTest::newRow("no version") << QStringList{QStringLiteral("name=Studio")};
    QTest::newRow("version taken back") << QStringList{QStringLiteral("name=Studio"), QStringLiteral("version=2"),
                                                       QStringLiteral("version=")};
    QTest::newRow("no name") << QStringList{noApplication, QStringLiteral("version=2.5.1"), QStringLiteral("name=")};
    QTest::newRow("neither") << QStringList{noApplication, QStringLiteral("version="), QStringLiteral("name=")};
}

void TemporaryDirTest::liesWhereQtPutsItWithoutNameOrVersion()
{
    QFETCH(QStringList, steps);
    MakeFolder(own_);
    MakeFile(own_ + QStringLiteral("/leftover"));
    MakeFile(tmp_ + QStringLiteral("/leftover"));
    QStringList const before = Listing(sandbox_->path());

    QString const make = QStringLiteral("make");
    Player player(tmp_, steps + QStringList{make, make});
    for (int i = 0; i < 2; ++i) {
        Made const made = player.HearMade();
        QVERIFY2(made.valid, qPrintable(made.error));
        QVERIFY(made.isThere);
        QCOMPARE(QFileInfo(made.path).path(), tmp_);
        QCOMPARE(made.complaints, QStringList());
    }
    player.End();

    QCOMPARE(Listing(sandbox_->path()), before);
}

void TemporaryDirTest::throwsAfterOneThatWasMadeWithoutVersion()
{
    MakeFolder(own_);
    MakeFile(own_ + QStringLiteral("/leftover"));
    Player player(tmp_, {QStringLiteral("name=Studio"), QStringLiteral("make"), QStringLiteral("version=2.5.1"),
                         QStringLiteral("make")});
    QVERIFY(player.HearMade().valid);
    QJsonObject const facts = player.Hear();
    player.End();

    QString const text = facts.value(QStringLiteral("thrown")).toString();
    QCOMPARE(text.section(QLatin1Char('\n'), 0, 0),
             QStringLiteral("Using TemporaryDir before and after applicationName and applicationVersion are set"));
    QString const callStack = text.section(QLatin1Char('\n'), 1);
    QVERIFY2(callStack.contains(QStringLiteral("TemporaryDir::TemporaryDir")), qPrintable(text));
    QVERIFY2(callStack.contains(QStringLiteral("main")), qPrintable(text));
    QCOMPARE(facts.value(QStringLiteral("file")).toString(), QStringLiteral("Util/TemporaryDir.cpp"));
    QCOMPARE(facts.value(QStringLiteral("function")).toString(),
             QStringLiteral("Zelkor::Util::TemporaryDir::TemporaryDir()"));
    QVERIFY(facts.value(QStringLiteral("line")).toInt() > 0);
    QVERIFY(IsThere(own_ + QStringLiteral("/leftover")));
}

void TemporaryDirTest::mixesKindsInOneOrderOnly_data()
{
    QTest::addColumn<QString>("kinds");   // d: without version, a: with it
    QTest::addColumn<QString>("results"); // where it lies, x: thrown
    auto const row = [](char const* name, char const* kinds, char const* results) {
        QTest::newRow(name) << QString::fromLatin1(kinds) << QString::fromLatin1(results);
    };
    row("application's only", "aaa", "aaa");
    row("Qt's only", "ddd", "ddd");
    row("application's after Qt's", "da", "dx");
    row("application's after Qt's, again", "daa", "dxx");
    row("Qt's after one that was refused", "dad", "dxd");
    row("Qt's after application's", "ad", "ad");
    row("application's after both", "ada", "adx");
}

void TemporaryDirTest::mixesKindsInOneOrderOnly()
{
    QFETCH(QString, kinds);
    QFETCH(QString, results);
    QStringList steps(QStringLiteral("name=Studio"));
    for (QChar const kind : kinds) {
        steps += kind == QLatin1Char('a') ? QStringLiteral("version=2.5.1") : QStringLiteral("version=");
        steps += QStringLiteral("make");
    }
    Player player(tmp_, steps);
    QString found;
    for (int i = 0; i < kinds.size(); ++i) {
        QJsonObject const facts = player.Hear();
        QString const folder = QFileInfo(MadeFrom(facts).path).path();
        found += facts.contains(QStringLiteral("thrown")) ? QLatin1Char('x')
                 : folder == own_                         ? QLatin1Char('a')
                 : folder == tmp_                         ? QLatin1Char('d')
                                                          : QLatin1Char('?');
    }
    player.End();
    QCOMPARE(found, results);
}

void TemporaryDirTest::removesWhatIsLeftBehind_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<Maker>("make");
    auto const row = [](char const* title, Maker make, QString const& name = QStringLiteral("leftover")) {
        QTest::newRow(title) << name << make;
    };
    row("file", MakeFile);
    row("folder", MakeFolder);
    row("folder with hidden things and links", MakeTree);
    row("file without permissions", MakeReadOnlyFile);
    row("link to a file", MakeLinkToFile);
    row("link to a folder", MakeLinkToFolder);
    row("link to the folder above", MakeLinkUp);
    row("hard link", MakeHardLink);
    row("name with wildcards", MakeFile, QStringLiteral("*?[a]"));
    row("name with a line feed", MakeFile, QStringLiteral("a\nb"));
    row("name with a placeholder", MakeTree, QStringLiteral("%1"));
    row("name beyond ASCII", MakeTree, QStringLiteral("\u00E4\u20AC"));
    row("name with blanks", MakeTree, QStringLiteral(" a b "));
    row("directory of an earlier object", MakeTree, QStringLiteral("aBcDeF"));
}

void TemporaryDirTest::removesWhatIsLeftBehind()
{
    QFETCH(QString, name);
    QFETCH(Maker, make);
    MakeFolder(own_);
    QStringList const before = Listing(sandbox_->path());
    make(own_ + QLatin1Char('/') + name);
    MakeFile(own_ + QStringLiteral("/zzz"));

    Made const made = MakeOne();

    QVERIFY2(made.valid, qPrintable(made.error));
    QCOMPARE(made.complaints, QStringList());
    QCOMPARE(Listing(sandbox_->path()), before);
}

void TemporaryDirTest::leavesHiddenAndSystemEntries_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<Maker>("make");
    QTest::newRow("hidden file") << QStringLiteral(".file") << Maker(MakeFile);
    QTest::newRow("hidden folder") << QStringLiteral(".folder") << Maker(MakeTree);
    QTest::newRow("hidden link") << QStringLiteral(".link") << Maker(MakeLinkToFolder);
    QTest::newRow("dangling link") << QStringLiteral("dangling") << Maker(MakeDanglingLink);
    QTest::newRow("link to itself") << QStringLiteral("loop") << Maker(MakeLinkToItself);
    QTest::newRow("pipe") << QStringLiteral("pipe") << Maker(MakePipe);
}

void TemporaryDirTest::leavesHiddenAndSystemEntries()
{
    QFETCH(QString, name);
    QFETCH(Maker, make);
    MakeFolder(own_);
    make(own_ + QLatin1Char('/') + name);
    QStringList const before = Listing(sandbox_->path());
    MakeFile(own_ + QStringLiteral("/leftover"));

    QVERIFY(MakeOne().valid);

    QCOMPARE(Listing(sandbox_->path()), before);
}

void TemporaryDirTest::leavesOtherApplicationsFolders()
{
    MakeFolder(own_);
    for (char const* const folder : {"", "/Studio", "/Studio/2", "/Studio/1/Studio", "/Studio/2/Other", "/Other/2"}) {
        QString const path = tmp_ + QString::fromLatin1(folder);
        MakeFolder(path);
        MakeFile(path + QStringLiteral("/file"));
    }
    MakeFile(own_ + QStringLiteral("er"));
    QStringList const before = Listing(sandbox_->path());
    MakeFile(own_ + QStringLiteral("/leftover"));

    QVERIFY(MakeOne().valid);

    QCOMPARE(Listing(sandbox_->path()), before);
}

void TemporaryDirTest::leavesWhatItCannotRemove()
{
    SetMode(tmp_, 01777);
    QStringList const steps{QStringLiteral("ordinary user"), QStringLiteral("make"),
                            QStringLiteral("put locked folder=locked"), QStringLiteral("await")};
    Player killed(tmp_, application_ + steps);
    QString const left = killed.HearMade().path;
    QString const locked = left + QStringLiteral("/locked");
    QTRY_VERIFY(QFileInfo(locked).isDir() && !QFileInfo(locked).permission(QFileDevice::WriteOwner));
    killed.Kill();
    SetMode(own_, 0777);
    MakeFile(own_ + QStringLiteral("/AAA"));
    MakeFile(own_ + QStringLiteral("/zzz"));

    Made const made = MakeOne({QStringLiteral("ordinary user")});

    SetMode(locked, 0755);
    QVERIFY2(made.valid, qPrintable(made.error));
    QVERIFY(made.isThere);
    QCOMPARE(QDir(own_).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList(left.section(QLatin1Char('/'), -1)));
    QVERIFY(IsThere(locked + QStringLiteral("/file")));
}

void TemporaryDirTest::emptiesTheFolderOncePerProcess()
{
    QString const make = QStringLiteral("make");
    QString const wait = QStringLiteral("await");
    Player player(tmp_, application_ + QStringList{make, QStringLiteral("put file=file"), wait, make, wait});
    Made const first = player.HearMade();
    MakeTree(own_ + QStringLiteral("/late folder"));
    MakeFile(own_ + QStringLiteral("/late"));
    QTRY_VERIFY(IsThere(first.file));
    player.GoOn();
    Made const second = player.HearMade();
    QVERIFY(second.isThere);
    QVERIFY(second.path != first.path);
    QVERIFY(IsThere(first.file));
    QVERIFY(IsThere(own_ + QStringLiteral("/late folder/file")));
    QVERIFY(IsThere(own_ + QStringLiteral("/late")));
    player.GoOn();
    player.End();
}

void TemporaryDirTest::emptiesTheFolderOfARunningCopyOnce()
{
    QString const make = QStringLiteral("make");
    QString const wait = QStringLiteral("await");
    QStringList const steps = application_ + QStringList{make, wait, make, wait};
    Player first(tmp_, steps);
    QString const ofFirst = first.HearMade().path;
    QVERIFY(IsThere(ofFirst));

    Player second(tmp_, steps);
    QString const ofSecond = second.HearMade().path;
    QVERIFY(IsThere(ofSecond));
    QVERIFY(!IsThere(ofFirst));

    first.GoOn();
    QString const nextOfFirst = first.HearMade().path;
    second.GoOn();
    QString const nextOfSecond = second.HearMade().path;
    QVERIFY(IsThere(ofSecond));
    QVERIFY(IsThere(nextOfFirst));
    QVERIFY(IsThere(nextOfSecond));

    first.GoOn();
    first.End();
    QVERIFY(!IsThere(nextOfFirst));
    QVERIFY(IsThere(ofSecond));
    QVERIFY(IsThere(nextOfSecond));
    second.GoOn();
    second.End();
    QCOMPARE(Listing(own_), QStringList());
}

void TemporaryDirTest::removesWhatAKilledProcessLeft()
{
    QStringList const steps{QStringLiteral("make"), QStringLiteral("put file=file"), QStringLiteral("await")};
    Player killed(tmp_, application_ + steps);
    Made const left = killed.HearMade();
    QTRY_VERIFY(IsThere(left.file));
    killed.Kill();
    QVERIFY(IsThere(left.file));

    Made const made = MakeOne();

    QVERIFY(made.isThere);
    QVERIFY(!IsThere(left.path));
    QCOMPARE(Listing(own_), QStringList());
}

void TemporaryDirTest::isMadeByManyProcessesAtOnce_data()
{
    QTest::addColumn<int>("leftovers");
    QTest::newRow("no folder yet") << -1;
    QTest::newRow("leftovers") << 30;
}

void TemporaryDirTest::isMadeByManyProcessesAtOnce()
{
    QFETCH(int, leftovers);
    if (leftovers >= 0) {
        MakeFolder(own_);
    }
    for (int i = 0; i < leftovers; ++i) {
        MakeTree(own_ + QLatin1Char('/') + QString::number(i));
    }

    std::vector<std::unique_ptr<Player>> players;
    players.reserve(8);
    for (int i = 0; i < 8; ++i) {
        players.push_back(
            std::make_unique<Player>(tmp_, application_ + QStringList{QStringLiteral("await"), QStringLiteral("make"),
                                                                      QStringLiteral("await")}));
    }
    for (auto const& player : players) {
        player->GoOn();
    }
    QSet<QString> paths;
    for (auto const& player : players) {
        Made const made = player->HearMade();
        QVERIFY2(made.valid, qPrintable(made.error));
        QCOMPARE(made.complaints, QStringList());
        paths += made.path;
    }
    for (auto const& player : players) {
        player->GoOn();
        player->End();
    }

    QCOMPARE(paths.size(), 8);
    // They hindered each other perhaps; nothing that they did hinders the next.
    QVERIFY(MakeOne().valid);
    QCOMPARE(Listing(own_), QStringList());
}

void TemporaryDirTest::isMadeOnManyThreadsAtOnce_data()
{
    QTest::addColumn<int>("leftovers");
    QTest::newRow("no folder yet") << -1;
    QTest::newRow("empty folder") << 0;
    QTest::newRow("more leftovers than are listed in one go") << 4000;
}

void TemporaryDirTest::isMadeOnManyThreadsAtOnce()
{
    QFETCH(int, leftovers);
    if (leftovers >= 0) {
        MakeFolder(own_);
    }
    for (int i = 0; i < leftovers; ++i) {
        MakeFile(own_ + QStringLiteral("/leftover %1").arg(i));
    }
    Player player(tmp_, application_ + QStringList{QStringLiteral("make on threads=16"), QStringLiteral("await")});
    QStringList names;
    for (int i = 0; i < 16; ++i) {
        QJsonObject const facts = player.Hear();
        Made const made = MadeFrom(facts);
        QVERIFY2(made.valid, qPrintable(made.error));
        QVERIFY(made.isThere);
        QVERIFY(facts.value(QStringLiteral("hasFile")).toBool());
        QCOMPARE(QFileInfo(made.path).path(), own_);
        names += made.path.section(QLatin1Char('/'), -1);
    }
    names.sort();
    QCOMPARE(names.removeDuplicates(), 0);
    QStringList found = QDir(own_).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    found.sort();
    QCOMPARE(found, names);
    player.GoOn();
    player.End();
    QCOMPARE(Listing(own_), QStringList());
}

void TemporaryDirTest::refusesALink_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<QString>("target");
    char const* const levels[] = {"application", "version", "executable"};
    for (int level = 0; level < 3; ++level) {
        auto const row = [&](char const* target, char const* path) {
            QTest::newRow(QByteArray(levels[level]).append(": ").append(target).constData())
                << level << QString::fromLatin1(path);
        };
        row("link to a folder elsewhere", "outside/tree");
        row("link to a folder in the temporary folder", "tmp/tree");
        row("link to nothing", "outside/nothing");
        row("link to a file", "outside/canary");
    }
}

void TemporaryDirTest::refusesALink()
{
    QFETCH(int, level);
    QFETCH(QString, target);
    for (char const* const tree : {"outside/tree", "tmp/tree"}) {
        for (QString const& below :
             {QString(), QLatin1Char('/') + Name(), QStringLiteral("/2/") + Name()}) { // as the levels below go on
            MakeFolder(At(QString::fromLatin1(tree) + below));
            MakeFile(At(QString::fromLatin1(tree) + below + QStringLiteral("/leftover")));
        }
    }
    QString const place = own_.section(QLatin1Char('/'), 0, level - 3);
    MakeFolder(QFileInfo(place).path());
    MakeLink(place, At(target));
    QStringList const before = Listing(sandbox_->path());

    VerifyRefused(application_, place);

    QCOMPARE(Listing(sandbox_->path()), before);
}

void TemporaryDirTest::refusesAFolderOfSomebodyElse_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<uint>("owner");
    // Only a superuser can give a folder away; others have the system's folders for this.
    if (geteuid() != 0) {
        return;
    }
    QStringList const ordinary(QStringLiteral("ordinary user"));
    QTest::newRow("application: an ordinary user's") << 0 << QStringList() << uint(Nobody);
    QTest::newRow("version: an ordinary user's") << 1 << QStringList() << uint(Nobody);
    QTest::newRow("executable: an ordinary user's") << 2 << QStringList() << uint(Nobody);
    QTest::newRow("application: the superuser's") << 0 << ordinary << 0U;
    QTest::newRow("version: the superuser's") << 1 << ordinary << 0U;
    QTest::newRow("executable: the superuser's") << 2 << ordinary << 0U;
    QTest::newRow("executable: another ordinary user's") << 2 << ordinary << uint(Nobody - 1);
}

void TemporaryDirTest::refusesAFolderOfSomebodyElse()
{
    if (!QTest::currentDataTag()) {
        return;
    }
    QFETCH(int, level);
    QFETCH(QStringList, steps);
    QFETCH(uint, owner);
    MakeFolder(own_);
    MakeTree(own_ + QStringLiteral("/leftover"));
    MakeFile(own_ + QStringLiteral("/file"));
    for (int each = 0; each < 3; ++each) {
        QString const folder = own_.section(QLatin1Char('/'), 0, each - 3);
        SetMode(folder, 0777);
        GiveTo(steps.isEmpty() ? 0 : Nobody, folder);
    }
    QString const place = own_.section(QLatin1Char('/'), 0, level - 3);
    GiveTo(owner, place);
    QStringList const before = Listing(sandbox_->path());

    VerifyRefused(application_ + steps, place);

    QCOMPARE(Listing(sandbox_->path()), before);
}

void TemporaryDirTest::refusesAFolderOfTheSystem()
{
    Player player(QStringLiteral("/"), {QStringLiteral("ordinary user"), QStringLiteral("name=usr"),
                                        QStringLiteral("version=2"), QStringLiteral("make")});
    Made const made = player.HearMade();
    player.End();
    VerifyInvalid(made);
    QCOMPARE(made.complaints.size(), 1);
    QVERIFY2(made.complaints.first().startsWith(QStringLiteral("ERROR Util/TemporaryDir.cpp ")),
             qPrintable(made.complaints.first()));
    QVERIFY(!IsThere(QStringLiteral("/usr/2")));
}

void TemporaryDirTest::refusesANameThatLeadsOut_data()
{
    QTest::addColumn<QString>("name");
    for (char const* const name : {"..", "../", "../Studio", "../../Studio", "a/../../Studio", "./../Studio", "a/../..",
                                   "/..", "a//../../Studio", "../tmp/../Studio"}) {
        QTest::newRow(name) << QString::fromLatin1(name);
    }
}

void TemporaryDirTest::refusesANameThatLeadsOut()
{
    QFETCH(QString, name);
    tmp_ = At(QStringLiteral("deep/tmp"));
    for (char const* const folder : {"", "Studio/", "deep/", "deep/Studio/", "deep/tmp/a/"}) {
        QString const canaries = At(QString::fromLatin1(folder) + QStringLiteral("2/") + Name());
        MakeFolder(canaries);
        MakeFile(canaries + QStringLiteral("/canary"));
    }
    QStringList const before = Listing(sandbox_->path());

    VerifyRefused({QStringLiteral("name=") + name, QStringLiteral("version=2")}, tmp_);

    QCOMPARE(Listing(sandbox_->path()), before);
}

void TemporaryDirTest::isInvalidWhereAFileStands_data()
{
    QTest::addColumn<int>("level");
    QTest::newRow("temporary folder") << -1;
    QTest::newRow("application") << 0;
    QTest::newRow("version") << 1;
    QTest::newRow("executable") << 2;
}

void TemporaryDirTest::isInvalidWhereAFileStands()
{
    QFETCH(int, level);
    QString const place = own_.section(QLatin1Char('/'), 0, level - 3);
    QDir().rmdir(tmp_);
    MakeFolder(QFileInfo(place).path());
    MakeFile(place);
    QStringList const before = Listing(sandbox_->path());

    VerifyInvalid(MakeOne());

    QCOMPARE(Listing(sandbox_->path()), before);
}

void TemporaryDirTest::isInvalidWithoutATemporaryFolder_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("version");
    QTest::newRow("application's") << QStringLiteral("missing") << QStringLiteral("2.5.1");
    QTest::newRow("application's, the folder above is missing too")
        << QStringLiteral("missing/missing") << QStringLiteral("2.5.1");
    QTest::newRow("Qt's") << QStringLiteral("missing") << QString();
}

void TemporaryDirTest::isInvalidWithoutATemporaryFolder()
{
    QFETCH(QString, folder);
    QFETCH(QString, version);
    QString const name = sandbox_->path().section(QLatin1Char('/'), -1);
    QStringList const before = Listing(sandbox_->path());

    QString const make = QStringLiteral("make");
    Player player(At(folder), {QStringLiteral("name=") + name, QStringLiteral("version=") + version, make, make});
    VerifyInvalid(player.HearMade());
    VerifyInvalid(player.HearMade());
    player.End();

    bool const isUnderRoot = IsThere(QLatin1Char('/') + name);
    QDir::root().rmpath(name + QStringLiteral("/2/") + Name());
    QVERIFY(!isUnderRoot);
    QCOMPARE(Listing(sandbox_->path()), before);
}

void TemporaryDirTest::takesNoPathFromTheRootWithoutATemporaryFolder()
{
    QString const bait = At(QStringLiteral("bait"));
    MakeFolder(bait + QStringLiteral("/2/") + Name());
    MakeFile(bait + QStringLiteral("/2/") + Name() + QStringLiteral("/canary"));
    QStringList const before = Listing(sandbox_->path());

    Player player(At(QStringLiteral("missing")), {QStringLiteral("name=") + bait.mid(1), QStringLiteral("version=2"),
                                                  QStringLiteral("make"), QStringLiteral("await")});
    Made const made = player.HearMade();
    QCOMPARE(Listing(sandbox_->path()), before);
    player.GoOn();
    player.End();

    VerifyInvalid(made);
}

void TemporaryDirTest::isInvalidInAFolderThatCannotBeWritten_data()
{
    QTest::addColumn<int>("level");
    QTest::newRow("temporary folder") << -1;
    QTest::newRow("application") << 0;
    QTest::newRow("version") << 1;
    QTest::newRow("executable") << 2;
}

void TemporaryDirTest::isInvalidInAFolderThatCannotBeWritten()
{
    QFETCH(int, level);
    QString const place = own_.section(QLatin1Char('/'), 0, level - 3);
    MakeFolder(place);
    for (int each = 0; each <= level && geteuid() == 0; ++each) {
        GiveTo(Nobody, own_.section(QLatin1Char('/'), 0, each - 3));
    }
    MakeFile(place + QStringLiteral("/leftover"));
    SetMode(place, 0555);
    QStringList const before = Listing(sandbox_->path());

    Made const made = MakeOne({QStringLiteral("ordinary user")});

    QCOMPARE(Listing(sandbox_->path()), before);
    SetMode(place, 0755);
    VerifyInvalid(made);
}

void TemporaryDirTest::isInvalidWithANameThatIsTooLong()
{
    QStringList const before = Listing(sandbox_->path());
    application_.first() = QStringLiteral("name=") + QString(300, QLatin1Char('x'));
    VerifyInvalid(MakeOne());
    QCOMPARE(Listing(sandbox_->path()), before);
}

void TemporaryDirTest::removesItselfUnlessToldOtherwise_data()
{
    QTest::addColumn<QVector<bool>>("settings");
    QTest::addColumn<bool>("removed");
    QTest::newRow("nothing said") << QVector<bool>() << true;
    QTest::newRow("on") << QVector<bool>{true} << true;
    QTest::newRow("off") << QVector<bool>{false} << false;
    QTest::newRow("off and on again") << QVector<bool>{false, true} << true;
}

void TemporaryDirTest::removesItselfUnlessToldOtherwise()
{
    QFETCH(QVector<bool>, settings);
    QFETCH(bool, removed);
    std::optional<TemporaryDir> directory(std::in_place);
    QVERIFY(directory->autoRemove());
    for (bool const setting : settings) {
        directory->setAutoRemove(setting);
        QCOMPARE(directory->autoRemove(), setting);
    }
    QString const path = directory->path();
    MakeTree(directory->filePath(QStringLiteral("folder")));
    directory.reset();
    QCOMPARE(!IsThere(path), removed);
}

void TemporaryDirTest::isRemovedOnDemandAsQtDoes()
{
    TemporaryDir directory;
    QTemporaryDir peer;
    QString const path = directory.path();
    MakeTree(directory.filePath(QStringLiteral("folder")));
    QVERIFY(directory.remove());
    QVERIFY(!IsThere(path));
    QVERIFY(peer.remove());
    QCOMPARE(directory.isValid(), peer.isValid());
    QCOMPARE(directory.path().isEmpty(), peer.path().isEmpty());
    QCOMPARE(directory.errorString(), peer.errorString());
    QCOMPARE(directory.remove(), peer.remove());
}

void TemporaryDirTest::tellsWhenItCannotBeRemoved()
{
    SetMode(tmp_, 01777);
    Player player(tmp_, application_ + QStringList{QStringLiteral("ordinary user"), QStringLiteral("make"),
                                                   QStringLiteral("put locked folder=locked"), QStringLiteral("remove"),
                                                   QStringLiteral("await")});
    Made const made = player.HearMade();
    QJsonObject const facts = player.Hear();
    QVERIFY(!facts.value(QStringLiteral("removed")).toBool());
    QVERIFY(facts.value(QStringLiteral("isThere")).toBool());
    SetMode(made.path + QStringLiteral("/locked"), 0755);
    player.GoOn();
    player.End();
    QVERIFY(!IsThere(made.path));
}

void TemporaryDirTest::composesPathsOfFilesAsQtDoes_data()
{
    QTest::addColumn<QString>("name");
    for (char const* const name : {"", "file", "folder/file", "../file", "%1", " a b ", "\xC3\xA4\xE2\x82\xAC"}) {
        QTest::newRow(name) << QString::fromUtf8(name);
    }
}

void TemporaryDirTest::composesPathsOfFilesAsQtDoes()
{
    QFETCH(QString, name);
    TemporaryDir const directory;
    QTemporaryDir const peer;
    QCOMPARE(directory.filePath(name), directory.path() + peer.filePath(name).mid(peer.path().size()));
}

void TemporaryDirTest::acceptsNoAbsoluteFileName()
{
    TemporaryDir const directory;
    ExpectQtWarning(QRegularExpression(QStringLiteral("^QTemporaryDir::filePath: Absolute paths are not allowed")));
    QCOMPARE(directory.filePath(QStringLiteral("/file")), QString());
}

void TemporaryDirTest::hasNoErrorWhenValid()
{
    TemporaryDir const directory;
    QVERIFY(directory.isValid());
    QCOMPARE(directory.errorString(), QString());
    QVERIFY(QDir::isAbsolutePath(directory.path()));
}

int main(int argc, char** argv)
{
    if (argc > 1 && qstrcmp(argv[1], playArgument) == 0) {
        return RunPlay(argc, argv);
    }
    return Zelkor::Testing::RunTests<TemporaryDirTest>(argc, argv, false);
}

#include "TemporaryDirTest.moc"

#include <support/logs/LogCapture.h>
#include <support/sandbox/Environment.h>
#include <support/sandbox/FolderTestCase.h>
#include <support/sandbox/Folders.h>

#include <Util/FileUtils.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtCore/QUrl>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtGui/QDesktopServices>
#include <QtTest/QtTest>

#include <algorithm>
#include <csignal>
#include <exception>
#include <iterator>
#include <optional>
#include <type_traits>
#include <vector>

#include <sys/prctl.h>
#include <unistd.h>

using Zelkor::ioPath;
using namespace Zelkor::Testing;
using namespace Zelkor::Util;

static_assert(std::is_same_v<decltype(ExploreFile(ioPath())), bool>);
static_assert(std::is_same_v<decltype(ExploreFile(ioPath(), std::vector<ioPath>())), bool>);
static_assert(std::is_same_v<decltype(&ExploreSingleFile), bool (*)(QString const&)>);

namespace
{

constexpr int Timeout = 10000; // ms, for what takes milliseconds

/// Runs the current row in a process of its own, unless this is that process: it may ask for the session bus for the
/// first time, and spoil its surroundings. Returns whether it ran there.
bool RanInAnotherProcess()
{
    char const* const mark = "ZQTUTIL_TEST_PROCESS_OF_ITS_OWN";
    if (qEnvironmentVariableIsSet(mark)) {
        return false;
    }
    QString row = QString::fromLatin1(QTest::currentTestFunction());
    if (QTest::currentDataTag()) {
        row += QLatin1Char(':') + QString::fromLatin1(QTest::currentDataTag());
    }
    Environment const marked(mark, "1");
    QProcess child;
    child.setProcessChannelMode(QProcess::MergedChannels);
    child.start(QCoreApplication::applicationFilePath(), {row});
    if (!child.waitForFinished(3 * Timeout) || child.exitStatus() != QProcess::NormalExit || child.exitCode() != 0) {
        child.kill();
        child.waitForFinished(Timeout);
        QTest::qFail(child.readAll().constData(), __FILE__, __LINE__);
    }
    return true;
}

/// A session bus of this process alone.
class SessionBus
{
public:
    SessionBus()
    {
        Write(QByteArrayLiteral("<busconfig><type>session</type><listen>unix:path=") + Socket() +
              QByteArrayLiteral("</listen><auth>EXTERNAL</auth><policy context='default'>"
                                "<allow send_destination='*'/><allow eavesdrop='true'/><allow own='*'/>"
                                "</policy></busconfig>"));
        daemon_.start(QStringLiteral("dbus-daemon"), {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                                                      QStringLiteral("--config-file=") + Config()});
        while (!daemon_.canReadLine() && daemon_.waitForReadyRead(Timeout)) {
        }
        address_ = daemon_.readLine().trimmed();
        qputenv("DBUS_SESSION_BUS_ADDRESS", address_);
    }

    ~SessionBus() { Stop(); }
    SessionBus(SessionBus const&) = delete;
    SessionBus& operator=(SessionBus const&) = delete;

    QByteArray Address() const { return address_; }

    void Stop()
    {
        daemon_.kill();
        daemon_.waitForFinished(Timeout);
    }

private:
    // It ends with this process, however that ends.
    class Daemon : public QProcess
    {
        void setupChildProcess() override { prctl(PR_SET_PDEATHSIG, SIGKILL); }
    };

    QByteArray Socket() const { return QFile::encodeName(folder_.filePath(QStringLiteral("bus"))); }
    QString Config() const { return folder_.filePath(QStringLiteral("bus.conf")); }

    void Write(QByteArray const& text) const
    {
        QFile file(Config());
        file.open(QIODevice::WriteOnly);
        file.write(text);
    }

    QTemporaryDir folder_;
    Daemon daemon_;
    QByteArray address_;
};

/// A file manager on a connection of its own, in the thread of the test: it answers no sooner than events are
/// processed.
class FileManager : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    struct Call
    {
        QString interface;
        QString method;
        QString signature;
        QStringList uris;
        QString startupId;
    };

    explicit FileManager(SessionBus const& bus)
        : connection_(QDBusConnection::connectToBus(QString::fromLatin1(bus.Address()), QStringLiteral("manager")))
    {
        isThere = connection_.registerObject(Path(), this, QDBusConnection::ExportAllSlots) &&
                  connection_.registerService(Name());
    }
    ~FileManager() override
    {
        connection_.unregisterService(Name());
        connection_.unregisterObject(Path());
    }

    QDBusConnection Connection() const { return connection_; }

    bool isThere = false;
    bool refuses = false;
    bool staysSilent = false;
    QVector<Call> calls;

public Q_SLOTS:
    void ShowItems(QStringList const& uris, QString const& startupId, QDBusMessage const& message)
    {
        Answer(uris, startupId, message);
    }

    void ShowFolders(QStringList const& uris, QString const& startupId, QDBusMessage const& message)
    {
        Answer(uris, startupId, message);
    }

private:
    static QString Name() { return QStringLiteral("org.freedesktop.FileManager1"); }
    static QString Path() { return QStringLiteral("/org/freedesktop/FileManager1"); }

    void Answer(QStringList const& uris, QString const& startupId, QDBusMessage const& message)
    {
        calls.push_back({message.interface(), message.member(), message.signature(), uris, startupId});
        message.setDelayedReply(staysSilent || refuses);
        if (refuses) {
            connection_.send(message.createErrorReply(QDBusError::Failed, QStringLiteral("Not today")));
        }
    }

    QDBusConnection connection_;
};

/// What opens folders; it keeps the URLs, encoded.
class Opener : public QObject
{
    Q_OBJECT

public:
    Opener() { QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "Open"); }
    ~Opener() override { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); }

    QByteArrayList urls;

public Q_SLOTS:
    void Open(QUrl const& url) { urls += url.toEncoded(QUrl::FullyEncoded); }
};

/// Qt's word on opening something from a program without windows.
QRegularExpression NothingOpens()
{
    return QRegularExpression(QStringLiteral("QDesktopServices::openUrl"));
}

/// Waits until what the bus has for \a connection has arrived here.
bool CatchUp(QDBusConnection const& connection)
{
    QDBusMessage const call =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                                       QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId"));
    bool const answered = connection.call(call, QDBus::Block, Timeout).type() == QDBusMessage::ReplyMessage;
    QCoreApplication::sendPostedEvents();
    return answered;
}

/// Waits until the answers of \a manager have been dealt with.
bool CatchUp(FileManager const& manager)
{
    return CatchUp(manager.Connection()) && CatchUp(QDBusConnection::sessionBus());
}

bool IsUri(QByteArray const& text)
{
    static QRegularExpression const pattern(
        QStringLiteral("\\Afile:///([A-Za-z0-9._~!$&'()*+,;=:@/-]|%[0-9A-Fa-f]{2})*\\z"));
    return pattern.match(QString::fromLatin1(text)).hasMatch();
}

/// The path of a file URI, byte for byte; or why it is none.
QByteArray PathOf(QByteArray const& uri)
{
    return IsUri(uri) ? QByteArray::fromPercentEncoding(uri.mid(7)) : "not a file URI: " + uri;
}

QByteArrayList PathsOf(QStringList const& uris)
{
    QByteArrayList paths;
    for (QString const& uri : uris) {
        paths += PathOf(uri.toLatin1());
    }
    return paths;
}

QByteArrayList PathsOf(QByteArrayList const& uris)
{
    QByteArrayList paths;
    for (QByteArray const& uri : uris) {
        paths += PathOf(uri);
    }
    return paths;
}

ioPath Io(QByteArray const& path)
{
    return ioPath(path.toStdString());
}

/// The three ways to ask for the same.
enum class Asking { File, Text, FolderAndFiles };

/// What is to be shown: files, and the folder that is opened where they cannot be.
struct Question
{
    Asking asking;
    QByteArray folder;
    QByteArrayList files;
};

bool Explore(Question const& question)
{
    if (question.asking == Asking::File) {
        return ExploreFile(Io(question.files.first()));
    }
    if (question.asking == Asking::Text) {
        return ExploreSingleFile(QString::fromUtf8(question.files.first()));
    }
    std::vector<ioPath> paths;
    std::transform(question.files.begin(), question.files.end(), std::back_inserter(paths), Io);
    return ExploreFile(Io(question.folder), paths);
}

} // namespace

Q_DECLARE_METATYPE(Question)

class FileUtilsExploreTest : public Zelkor::Testing::FolderTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void fileManagerIsAskedToShowFiles_data() { AskingRows(); }
    void fileManagerIsAskedToShowFiles();
    void fileManagerIsAskedToShowTheFolderWithoutFiles();
    void anyNameReachesTheFileManager_data() { NameRows(); }
    void anyNameReachesTheFileManager();
    void relativePathReachesTheFileManagerAsAbsolute();
    void fileManagerIsNotWaitedFor();
    void fileManagerIsLookedForEachTime();
    void folderIsOpenedWhenTheFileManagerRefuses_data() { AskingRows(); }
    void folderIsOpenedWhenTheFileManagerRefuses();
    void folderIsOpenedWithoutFileManager_data() { AskingRows(); }
    void folderIsOpenedWithoutFileManager();
    void folderIsOpenedWithoutBus_data();
    void folderIsOpenedWithoutBus();
    void folderIsOpenedAfterTheBusHasGone();
    void anyFolderIsOpened_data() { NameRows(); }
    void anyFolderIsOpened();
    void nobodyToAskIsOneWarning_data() { AskingRows(); }
    void nobodyToAskIsOneWarning();
    void nobodyAfterTheBusIsOneWarning();
    void nothingIsThrownWithoutCurrentFolder_data();
    void nothingIsThrownWithoutCurrentFolder();
    void programMayEndBeforeTheAnswer();

private:
    static void AskingRows();

    /// That \a call is one of this method of a file manager, and of no start-up.
    static void VerifyCall(FileManager::Call const& call, QString const& method);

    /// That \a line warns that \a folder was not opened.
    static void VerifyWarning(LogLine const& line, QString const& folder);
};

void FileUtilsExploreTest::AskingRows()
{
    QTest::addColumn<Question>("question");
    auto const add = [](char const* name, Question const& question) { QTest::newRow(name) << question; };
    add("file", {Asking::File, "/no/folder", {"/no/folder/file"}});
    add("file at the top", {Asking::File, "/", {"/file"}});
    add("file by its text", {Asking::Text, "/no/folder", {"/no/folder/file"}});
    add("file by its text beyond ASCII", {Asking::Text, "/no/\xd0\xb8", {"/no/\xd0\xb8/\xf0\x9f\x93\x81 %20"}});
    add("file in its folder", {Asking::FolderAndFiles, "/no/folder", {"/no/folder/file"}});
    add("file in another folder", {Asking::FolderAndFiles, "/no/other", {"/no/folder/file"}});
    add("files in their order",
        {Asking::FolderAndFiles, "/no/folder", {"/no/folder/c", "/no/folder/a", "/no/folder/b"}});
    add("file named twice", {Asking::FolderAndFiles, "/no/folder", {"/no/folder/a", "/no/folder/a"}});
    add("files of several folders", {Asking::FolderAndFiles, "/no", {"/no/folder/z", "/no/a", "/y"}});
}

void FileUtilsExploreTest::VerifyCall(FileManager::Call const& call, QString const& method)
{
    QCOMPARE(call.interface, QStringLiteral("org.freedesktop.FileManager1"));
    QCOMPARE(call.method, method);
    QCOMPARE(call.signature, QStringLiteral("ass"));
    QCOMPARE(call.startupId, QString());
}

void FileUtilsExploreTest::VerifyWarning(LogLine const& line, QString const& folder)
{
    QCOMPARE(line.severity, static_cast<google::LogSeverity>(google::GLOG_WARNING));
    QCOMPARE(line.file, QStringLiteral("Util/Platforms/linux/FileUtils.cpp"));
    QVERIFY2(line.text.endsWith(folder), qPrintable(line.text));
}

void FileUtilsExploreTest::fileManagerIsAskedToShowFiles()
{
    QFETCH(Question, question);
    if (RanInAnotherProcess()) {
        return;
    }
    SessionBus const bus;
    FileManager manager(bus);
    QVERIFY(manager.isThere);
    Opener const opener;

    QVERIFY(Explore(question));

    QTRY_COMPARE_WITH_TIMEOUT(manager.calls.size(), 1, Timeout);
    VerifyCall(manager.calls[0], QStringLiteral("ShowItems"));
    QCOMPARE(PathsOf(manager.calls[0].uris), question.files);
    QVERIFY(CatchUp(manager));
    QCOMPARE(manager.calls.size(), 1);
    QCOMPARE(opener.urls, QByteArrayList());
}

void FileUtilsExploreTest::fileManagerIsAskedToShowTheFolderWithoutFiles()
{
    if (RanInAnotherProcess()) {
        return;
    }
    SessionBus const bus;
    FileManager manager(bus);
    QVERIFY(manager.isThere);
    Opener const opener;

    QVERIFY(ExploreFile(ioPath("/no/two words"), {}));

    QTRY_COMPARE_WITH_TIMEOUT(manager.calls.size(), 1, Timeout);
    VerifyCall(manager.calls[0], QStringLiteral("ShowFolders"));
    QCOMPARE(manager.calls[0].uris, QStringList{QStringLiteral("file:///no/two%20words")});
    QVERIFY(CatchUp(manager));
    QCOMPARE(manager.calls.size(), 1);
    QCOMPARE(opener.urls, QByteArrayList());
}

void FileUtilsExploreTest::anyNameReachesTheFileManager()
{
    QFETCH(QByteArray, name);
    if (RanInAnotherProcess()) {
        return;
    }
    SessionBus const bus;
    FileManager manager(bus);
    QVERIFY(manager.isThere);
    QByteArray const path = "/no/" + name + '/' + name;

    QVERIFY(ExploreFile(Io(path)));
    QVERIFY(ExploreFile(Io(path), {}));

    QTRY_COMPARE_WITH_TIMEOUT(manager.calls.size(), 2, Timeout);
    QCOMPARE(PathsOf(manager.calls[0].uris), QByteArrayList{path});
    QCOMPARE(PathsOf(manager.calls[1].uris), QByteArrayList{path});
    QVERIFY(CatchUp(manager));
}

void FileUtilsExploreTest::relativePathReachesTheFileManagerAsAbsolute()
{
    if (RanInAnotherProcess()) {
        return;
    }
    SessionBus const bus;
    FileManager manager(bus);
    QVERIFY(manager.isThere);
    MakeFolder(At("current"));
    AtFolder const here(At("current"));

    QVERIFY(ExploreSingleFile(QStringLiteral("folder/file")));
    QVERIFY(ExploreSingleFile(QStringLiteral("file")));
    QVERIFY(ExploreFile(ioPath("folder"), {}));

    QTRY_COMPARE_WITH_TIMEOUT(manager.calls.size(), 3, Timeout);
    QByteArray const current = CurrentFolder();
    QCOMPARE(PathsOf(manager.calls[0].uris), QByteArrayList{current + "/folder/file"});
    QCOMPARE(PathsOf(manager.calls[1].uris), QByteArrayList{current + "/file"});
    QCOMPARE(PathsOf(manager.calls[2].uris), QByteArrayList{current + "/folder"});
    QVERIFY(CatchUp(manager));
}

void FileUtilsExploreTest::fileManagerIsNotWaitedFor()
{
    if (RanInAnotherProcess()) {
        return;
    }
    SessionBus const bus;
    FileManager manager(bus);
    manager.staysSilent = true;
    QVERIFY(manager.isThere);
    QVERIFY(QDBusConnection::sessionBus().isConnected());
    Opener const opener;

    QElapsedTimer timer;
    timer.start();
    QVERIFY(ExploreFile(ioPath("/no/first")));
    QVERIFY(ExploreFile(ioPath("/no/second")));
    QVERIFY2(timer.elapsed() < 2000, "It waits");
    QCOMPARE(manager.calls.size(), 0);

    QTRY_COMPARE_WITH_TIMEOUT(manager.calls.size(), 2, Timeout);
    QCOMPARE(PathsOf(manager.calls[0].uris), QByteArrayList{"/no/first"});
    QCOMPARE(PathsOf(manager.calls[1].uris), QByteArrayList{"/no/second"});
    QCOMPARE(opener.urls, QByteArrayList());
}

void FileUtilsExploreTest::fileManagerIsLookedForEachTime()
{
    if (RanInAnotherProcess()) {
        return;
    }
    SessionBus const bus;
    Opener const opener;

    QVERIFY(ExploreFile(ioPath("/no/first/file")));
    QTRY_COMPARE_WITH_TIMEOUT(PathsOf(opener.urls), QByteArrayList{"/no/first"}, Timeout);
    {
        FileManager manager(bus);
        QVERIFY(manager.isThere);
        QVERIFY(ExploreFile(ioPath("/no/second/file")));
        QTRY_COMPARE_WITH_TIMEOUT(manager.calls.size(), 1, Timeout);
        QVERIFY(CatchUp(manager));
        QCOMPARE(opener.urls.size(), 1);
    }
    QVERIFY(ExploreFile(ioPath("/no/third/file")));
    QTRY_COMPARE_WITH_TIMEOUT(PathsOf(opener.urls), (QByteArrayList{"/no/first", "/no/third"}), Timeout);
}

void FileUtilsExploreTest::folderIsOpenedWhenTheFileManagerRefuses()
{
    QFETCH(Question, question);
    if (RanInAnotherProcess()) {
        return;
    }
    SessionBus const bus;
    FileManager manager(bus);
    manager.refuses = true;
    QVERIFY(manager.isThere);
    Opener const opener;

    QVERIFY(Explore(question));
    QCOMPARE(opener.urls, QByteArrayList());

    QTRY_COMPARE_WITH_TIMEOUT(PathsOf(opener.urls), QByteArrayList{question.folder}, Timeout);
    QVERIFY(CatchUp(manager));
    QCOMPARE(opener.urls.size(), 1);
    QCOMPARE(manager.calls.size(), 1);
}

void FileUtilsExploreTest::folderIsOpenedWithoutFileManager()
{
    QFETCH(Question, question);
    if (RanInAnotherProcess()) {
        return;
    }
    SessionBus const bus;
    Opener const opener;

    QVERIFY(Explore(question));
    QCOMPARE(opener.urls, QByteArrayList());

    QTRY_COMPARE_WITH_TIMEOUT(PathsOf(opener.urls), QByteArrayList{question.folder}, Timeout);
    QVERIFY(CatchUp(QDBusConnection::sessionBus()));
    QCOMPARE(opener.urls.size(), 1);
}

void FileUtilsExploreTest::folderIsOpenedWithoutBus_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::newRow("nowhere") << QByteArray("unix:path=/no/such/bus");
    QTest::newRow("no socket") << QByteArray("unix:path=/dev/null");
    QTest::newRow("nobody listens") << QByteArray("tcp:host=127.0.0.1,port=1");
    QTest::newRow("no address") << QByteArray("not an address");
    QTest::newRow("unknown kind") << QByteArray("pigeon:coop=1");
}

void FileUtilsExploreTest::folderIsOpenedWithoutBus()
{
    QFETCH(QByteArray, address);
    if (RanInAnotherProcess()) {
        return;
    }
    Environment const bus("DBUS_SESSION_BUS_ADDRESS", address);
    Opener const opener;

    QVERIFY(ExploreFile(ioPath("/no/first/file")));
    QCOMPARE(PathsOf(opener.urls), QByteArrayList{"/no/first"});
    QVERIFY(ExploreSingleFile(QStringLiteral("/no/second/file")));
    QCOMPARE(PathsOf(opener.urls), (QByteArrayList{"/no/first", "/no/second"}));
    QVERIFY(ExploreFile(ioPath("/no/third"), {ioPath("/no/other/file"), ioPath("/no/more")}));
    QCOMPARE(PathsOf(opener.urls), (QByteArrayList{"/no/first", "/no/second", "/no/third"}));
    QVERIFY(ExploreFile(ioPath("/no/fourth"), {}));
    QCOMPARE(PathsOf(opener.urls), (QByteArrayList{"/no/first", "/no/second", "/no/third", "/no/fourth"}));
}

void FileUtilsExploreTest::folderIsOpenedAfterTheBusHasGone()
{
    if (RanInAnotherProcess()) {
        return;
    }
    SessionBus bus;
    Opener const opener;
    QVERIFY(QDBusConnection::sessionBus().isConnected());
    QVERIFY(ExploreFile(ioPath("/no/first/file")));
    QTRY_COMPARE_WITH_TIMEOUT(PathsOf(opener.urls), QByteArrayList{"/no/first"}, Timeout);

    bus.Stop();
    QTRY_VERIFY_WITH_TIMEOUT(!QDBusConnection::sessionBus().isConnected(), Timeout);
    QVERIFY(ExploreFile(ioPath("/no/second/file")));

    QTRY_COMPARE_WITH_TIMEOUT(PathsOf(opener.urls), (QByteArrayList{"/no/first", "/no/second"}), Timeout);
}

void FileUtilsExploreTest::anyFolderIsOpened()
{
    QFETCH(QByteArray, name);
    if (RanInAnotherProcess()) {
        return;
    }
    Environment const bus("DBUS_SESSION_BUS_ADDRESS", "unix:path=/no/such/bus");
    Opener const opener;

    QVERIFY(ExploreFile(Io("/no/" + name + "/file")));

    QCOMPARE(PathsOf(opener.urls), QByteArrayList{"/no/" + name});
}

void FileUtilsExploreTest::nobodyToAskIsOneWarning()
{
    QFETCH(Question, question);
    if (RanInAnotherProcess()) {
        return;
    }
    Environment const bus("DBUS_SESSION_BUS_ADDRESS", "unix:path=/no/such/bus");
    LogCapture const log;
    ExpectQtWarning(NothingOpens());

    QVERIFY(!Explore(question));

    QCOMPARE(log.Lines().size(), 1);
    VerifyWarning(log.Lines()[0], QString::fromUtf8(question.folder));
}

void FileUtilsExploreTest::nobodyAfterTheBusIsOneWarning()
{
    if (RanInAnotherProcess()) {
        return;
    }
    SessionBus const bus;
    LogCapture const log;
    ExpectQtWarning(NothingOpens());

    QVERIFY(ExploreFile(ioPath("/no/folder/file")));
    QCOMPARE(log.Lines().size(), 0);

    QTRY_COMPARE_WITH_TIMEOUT(log.Lines().size(), 1, Timeout);
    VerifyWarning(log.Lines()[0], QStringLiteral("/no/folder"));
    QVERIFY(CatchUp(QDBusConnection::sessionBus()));
    QCOMPARE(log.Lines().size(), 1);
}

void FileUtilsExploreTest::nothingIsThrownWithoutCurrentFolder_data()
{
    QTest::addColumn<bool>("withBus");
    QTest::newRow("with file manager") << true;
    QTest::newRow("without bus") << false;
}

void FileUtilsExploreTest::nothingIsThrownWithoutCurrentFolder()
{
    QFETCH(bool, withBus);
    if (RanInAnotherProcess()) {
        return;
    }
    std::optional<SessionBus> bus;
    std::optional<FileManager> manager;
    if (withBus) {
        bus.emplace();
        manager.emplace(*bus);
        QVERIFY(manager->isThere);
    } else {
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/no/such/bus");
    }
    Opener const opener;
    MakeFolder(At("gone"));
    AtFolder const here(At("gone"));
    Check(rmdir(At("gone").c_str()));

    bool isAsked = false;
    try {
        isAsked = ExploreFile(ioPath("/no/folder/file"));
    } catch (std::exception const& exception) {
        QFAIL(exception.what());
    }

    QVERIFY(isAsked);
    if (manager) {
        QTRY_COMPARE_WITH_TIMEOUT(manager->calls.size(), 1, Timeout);
        QCOMPARE(PathsOf(manager->calls[0].uris), QByteArrayList{"/no/folder/file"});
        QVERIFY(CatchUp(*manager));
    } else {
        QCOMPARE(PathsOf(opener.urls), QByteArrayList{"/no/folder"});
    }
}

void FileUtilsExploreTest::programMayEndBeforeTheAnswer()
{
    if (RanInAnotherProcess()) {
        return;
    }
    SessionBus const bus;
    FileManager manager(bus);
    QVERIFY(manager.isThere);

    QVERIFY(ExploreFile(ioPath("/no/folder/file")));
    // No event is processed any more.
}

ZQTUTIL_TEST_MAIN(FileUtilsExploreTest)
#include "FileUtilsExploreTest.moc"

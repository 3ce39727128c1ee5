#include <support/Timeouts.h>
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

/// Runs the current data row in a new process, waits for this process, and returns true. When the new process calls
/// this function, it returns false.
///
/// QtDBus connects to the session bus only once per process, but each data row needs its own session bus.
bool RanInSeparateProcess()
{
    char const* const mark = "ZQTUTIL_TEST_SEPARATE_PROCESS";
    if (qEnvironmentVariableIsSet(mark)) {
        return false;
    }
    QString row = QString::fromLatin1(QTest::currentTestFunction());
    if (QTest::currentDataTag()) {
        row += QLatin1Char(':') + QString::fromLatin1(QTest::currentDataTag());
    }
    EnvironmentVariable const marked(mark, "1");
    QProcess child;
    child.setProcessChannelMode(QProcess::MergedChannels);
    child.start(QCoreApplication::applicationFilePath(), {row});
    if (!child.waitForFinished(TimeoutMs) || child.exitStatus() != QProcess::NormalExit || child.exitCode() != 0) {
        child.kill();
        child.waitForFinished(TimeoutMs);
        QTest::qFail(child.readAll().constData(), __FILE__, __LINE__);
    }
    return true;
}

/// Starts a private D-Bus daemon and makes it the session bus of this process.
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
        while (!daemon_.canReadLine() && daemon_.waitForReadyRead(TimeoutMs)) {
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
        daemon_.waitForFinished(TimeoutMs);
    }

private:
    // The system kills the daemon when this process exits or crashes.
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

/// Simulates a file manager, with its own connection to the bus. It can reply only while the test processes events.
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
        isRegistered = connection_.registerObject(Path(), this, QDBusConnection::ExportAllSlots) &&
                       connection_.registerService(Name());
    }
    ~FileManager() override
    {
        connection_.unregisterService(Name());
        connection_.unregisterObject(Path());
    }

    QDBusConnection Connection() const { return connection_; }

    bool isRegistered = false;
    bool repliesWithError = false;
    bool doesNotReply = false;
    QVector<Call> calls;

public Q_SLOTS:
    void ShowItems(QStringList const& uris, QString const& startupId, QDBusMessage const& message)
    {
        Record(uris, startupId, message);
    }

    void ShowFolders(QStringList const& uris, QString const& startupId, QDBusMessage const& message)
    {
        Record(uris, startupId, message);
    }

private:
    static QString Name() { return QStringLiteral("org.freedesktop.FileManager1"); }
    static QString Path() { return QStringLiteral("/org/freedesktop/FileManager1"); }

    void Record(QStringList const& uris, QString const& startupId, QDBusMessage const& message)
    {
        calls.push_back({message.interface(), message.member(), message.signature(), uris, startupId});
        message.setDelayedReply(doesNotReply || repliesWithError);
        if (repliesWithError) {
            connection_.send(message.createErrorReply(QDBusError::Failed, QStringLiteral("Refused by the test")));
        }
    }

    QDBusConnection connection_;
};

/// Handles the "file" URLs that are passed to QDesktopServices, so that QDesktopServices does not start a program to
/// open a folder. Records the encoded URL of each folder.
class FolderOpener : public QObject
{
    Q_OBJECT

public:
    FolderOpener() { QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "Open"); }
    ~FolderOpener() override { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); }

    QByteArrayList urls;

public Q_SLOTS:
    void Open(QUrl const& url) { urls += url.toEncoded(QUrl::FullyEncoded); }
};

/// Returns a pattern that matches the warning of QDesktopServices::openUrl() in a program without a QGuiApplication.
QRegularExpression OpenUrlWarning()
{
    return QRegularExpression(QStringLiteral("QDesktopServices::openUrl"));
}

/// Processes all messages that the bus sent to \a connection before this call. Returns false if the bus does not reply
/// within TimeoutMs.
bool ProcessMessages(QDBusConnection const& connection)
{
    QDBusMessage const call =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                                       QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId"));
    bool const answered = connection.call(call, QDBus::Block, TimeoutMs).type() == QDBusMessage::ReplyMessage;
    QCoreApplication::sendPostedEvents();
    return answered;
}

/// Processes all replies that \a manager sent before this call. Returns false if the bus does not reply within
/// TimeoutMs.
bool ProcessMessages(FileManager const& manager)
{
    return ProcessMessages(manager.Connection()) && ProcessMessages(QDBusConnection::sessionBus());
}

bool IsUri(QByteArray const& text)
{
    static QRegularExpression const pattern(
        QStringLiteral("\\Afile:///([A-Za-z0-9._~!$&'()*+,;=:@/-]|%[0-9A-Fa-f]{2})*\\z"));
    return pattern.match(QString::fromLatin1(text)).hasMatch();
}

/// Returns the path of \a uri as bytes, without percent-encoding. Returns an error message if \a uri is not a file URI.
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

/// The library functions that show files in a file manager: File means ExploreFile(path), Text means
/// ExploreSingleFile(text), and FolderAndFiles means ExploreFile(folder, files).
enum class Function { File, Text, FolderAndFiles };

/// A call of a library function that shows files in a file manager.
struct ExploreCall
{
    Function function;
    QByteArray folder; // the library opens this folder if no file manager can show the files
    QByteArrayList files;
};

bool Explore(ExploreCall const& call)
{
    if (call.function == Function::File) {
        return ExploreFile(Io(call.files.first()));
    }
    if (call.function == Function::Text) {
        return ExploreSingleFile(QString::fromUtf8(call.files.first()));
    }
    std::vector<ioPath> paths;
    std::transform(call.files.begin(), call.files.end(), std::back_inserter(paths), Io);
    return ExploreFile(Io(call.folder), paths);
}

} // namespace

Q_DECLARE_METATYPE(ExploreCall)

class FileUtilsExploreTest : public Zelkor::Testing::FolderTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void requestsFilesFromTheFileManager_data() { CallRows(); }
    void requestsFilesFromTheFileManager();
    void requestsTheFolderWithoutFiles();
    void sendsAnyNameToTheFileManager_data() { NameRows(); }
    void sendsAnyNameToTheFileManager();
    void makesARelativePathAbsolute();
    void doesNotWaitForTheFileManager();
    void searchesForAFileManagerAtEachCall();
    void opensTheFolderIfTheFileManagerFails_data() { CallRows(); }
    void opensTheFolderIfTheFileManagerFails();
    void opensTheFolderWithoutAFileManager_data() { CallRows(); }
    void opensTheFolderWithoutAFileManager();
    void opensTheFolderWithoutABus_data();
    void opensTheFolderWithoutABus();
    void opensTheFolderAfterALostConnection();
    void opensAFolderWithAnyName_data() { NameRows(); }
    void opensAFolderWithAnyName();
    void logsOneWarningWithoutABus_data() { CallRows(); }
    void logsOneWarningWithoutABus();
    void logsOneWarningWithoutAFileManager();
    void opensNoFolderWhosePathContainsANulByte();
    void doesNotThrowWithoutACurrentFolder_data();
    void doesNotThrowWithoutACurrentFolder();
    void theProgramMayExitBeforeTheReply();

private:
    static void CallRows();

    /// Verifies that \a call invoked \a method of the D-Bus interface of file managers, with an empty start-up ID.
    static void VerifyCall(FileManager::Call const& call, QString const& method);

    /// Verifies that \a line is a warning of the library and that its text ends with \a folder.
    static void VerifyWarning(LogLine const& line, QString const& folder);
};

void FileUtilsExploreTest::CallRows()
{
    QTest::addColumn<ExploreCall>("call");
    auto const add = [](char const* name, ExploreCall const& call) { QTest::newRow(name) << call; };
    add("file", {Function::File, "/no/folder", {"/no/folder/file"}});
    add("file in the root folder", {Function::File, "/", {"/file"}});
    add("file as text", {Function::Text, "/no/folder", {"/no/folder/file"}});
    add("non-ASCII file as text", {Function::Text, "/no/\xd0\xb8", {"/no/\xd0\xb8/\xf0\x9f\x93\x81 %20"}});
    add("file in its folder", {Function::FolderAndFiles, "/no/folder", {"/no/folder/file"}});
    add("file in another folder", {Function::FolderAndFiles, "/no/other", {"/no/folder/file"}});
    add("several files", {Function::FolderAndFiles, "/no/folder", {"/no/folder/c", "/no/folder/a", "/no/folder/b"}});
    add("repeated file", {Function::FolderAndFiles, "/no/folder", {"/no/folder/a", "/no/folder/a"}});
    add("files of several folders", {Function::FolderAndFiles, "/no", {"/no/folder/z", "/no/a", "/y"}});
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

void FileUtilsExploreTest::requestsFilesFromTheFileManager()
{
    QFETCH(ExploreCall, call);
    if (RanInSeparateProcess()) {
        return;
    }
    SessionBus const bus;
    FileManager manager(bus);
    QVERIFY(manager.isRegistered);
    FolderOpener const opener;

    QVERIFY(Explore(call));

    QTRY_COMPARE_WITH_TIMEOUT(manager.calls.size(), 1, TimeoutMs);
    VerifyCall(manager.calls[0], QStringLiteral("ShowItems"));
    QCOMPARE(PathsOf(manager.calls[0].uris), call.files);
    QVERIFY(ProcessMessages(manager));
    QCOMPARE(manager.calls.size(), 1);
    QCOMPARE(opener.urls, QByteArrayList());
}

void FileUtilsExploreTest::requestsTheFolderWithoutFiles()
{
    if (RanInSeparateProcess()) {
        return;
    }
    SessionBus const bus;
    FileManager manager(bus);
    QVERIFY(manager.isRegistered);
    FolderOpener const opener;

    QVERIFY(ExploreFile(ioPath("/no/two words"), {}));

    QTRY_COMPARE_WITH_TIMEOUT(manager.calls.size(), 1, TimeoutMs);
    VerifyCall(manager.calls[0], QStringLiteral("ShowFolders"));
    QCOMPARE(manager.calls[0].uris, QStringList{QStringLiteral("file:///no/two%20words")});
    QVERIFY(ProcessMessages(manager));
    QCOMPARE(manager.calls.size(), 1);
    QCOMPARE(opener.urls, QByteArrayList());
}

void FileUtilsExploreTest::sendsAnyNameToTheFileManager()
{
    QFETCH(QByteArray, name);
    if (RanInSeparateProcess()) {
        return;
    }
    SessionBus const bus;
    FileManager manager(bus);
    QVERIFY(manager.isRegistered);
    QByteArray const path = "/no/" + name + '/' + name;

    QVERIFY(ExploreFile(Io(path)));
    QVERIFY(ExploreFile(Io(path), {}));

    QTRY_COMPARE_WITH_TIMEOUT(manager.calls.size(), 2, TimeoutMs);
    QCOMPARE(PathsOf(manager.calls[0].uris), QByteArrayList{path});
    QCOMPARE(PathsOf(manager.calls[1].uris), QByteArrayList{path});
    QVERIFY(ProcessMessages(manager));
}

void FileUtilsExploreTest::makesARelativePathAbsolute()
{
    if (RanInSeparateProcess()) {
        return;
    }
    SessionBus const bus;
    FileManager manager(bus);
    QVERIFY(manager.isRegistered);
    MakeFolder(At("current"));
    WorkingFolder const workingFolder(At("current"));

    QVERIFY(ExploreSingleFile(QStringLiteral("folder/file")));
    QVERIFY(ExploreSingleFile(QStringLiteral("file")));
    QVERIFY(ExploreFile(ioPath("folder"), {}));

    QTRY_COMPARE_WITH_TIMEOUT(manager.calls.size(), 3, TimeoutMs);
    QByteArray const current = CurrentFolder();
    QCOMPARE(PathsOf(manager.calls[0].uris), QByteArrayList{current + "/folder/file"});
    QCOMPARE(PathsOf(manager.calls[1].uris), QByteArrayList{current + "/file"});
    QCOMPARE(PathsOf(manager.calls[2].uris), QByteArrayList{current + "/folder"});
    QVERIFY(ProcessMessages(manager));
}

void FileUtilsExploreTest::doesNotWaitForTheFileManager()
{
    if (RanInSeparateProcess()) {
        return;
    }
    SessionBus const bus;
    FileManager manager(bus);
    manager.doesNotReply = true;
    QVERIFY(manager.isRegistered);
    QVERIFY(QDBusConnection::sessionBus().isConnected());
    FolderOpener const opener;

    QElapsedTimer timer;
    timer.start();
    QVERIFY(ExploreFile(ioPath("/no/first")));
    QVERIFY(ExploreFile(ioPath("/no/second")));
    QVERIFY2(timer.elapsed() < 2000, "ExploreFile() has waited for a reply");
    QCOMPARE(manager.calls.size(), 0);

    QTRY_COMPARE_WITH_TIMEOUT(manager.calls.size(), 2, TimeoutMs);
    QCOMPARE(PathsOf(manager.calls[0].uris), QByteArrayList{"/no/first"});
    QCOMPARE(PathsOf(manager.calls[1].uris), QByteArrayList{"/no/second"});
    QCOMPARE(opener.urls, QByteArrayList());
}

void FileUtilsExploreTest::searchesForAFileManagerAtEachCall()
{
    if (RanInSeparateProcess()) {
        return;
    }
    SessionBus const bus;
    FolderOpener const opener;

    QVERIFY(ExploreFile(ioPath("/no/first/file")));
    QTRY_COMPARE_WITH_TIMEOUT(PathsOf(opener.urls), QByteArrayList{"/no/first"}, TimeoutMs);
    {
        FileManager manager(bus);
        QVERIFY(manager.isRegistered);
        QVERIFY(ExploreFile(ioPath("/no/second/file")));
        QTRY_COMPARE_WITH_TIMEOUT(manager.calls.size(), 1, TimeoutMs);
        QVERIFY(ProcessMessages(manager));
        QCOMPARE(opener.urls.size(), 1);
    }
    QVERIFY(ExploreFile(ioPath("/no/third/file")));
    QTRY_COMPARE_WITH_TIMEOUT(PathsOf(opener.urls), (QByteArrayList{"/no/first", "/no/third"}), TimeoutMs);
}

void FileUtilsExploreTest::opensTheFolderIfTheFileManagerFails()
{
    QFETCH(ExploreCall, call);
    if (RanInSeparateProcess()) {
        return;
    }
    SessionBus const bus;
    FileManager manager(bus);
    manager.repliesWithError = true;
    QVERIFY(manager.isRegistered);
    FolderOpener const opener;

    QVERIFY(Explore(call));
    QCOMPARE(opener.urls, QByteArrayList());

    QTRY_COMPARE_WITH_TIMEOUT(PathsOf(opener.urls), QByteArrayList{call.folder}, TimeoutMs);
    QVERIFY(ProcessMessages(manager));
    QCOMPARE(opener.urls.size(), 1);
    QCOMPARE(manager.calls.size(), 1);
}

void FileUtilsExploreTest::opensTheFolderWithoutAFileManager()
{
    QFETCH(ExploreCall, call);
    if (RanInSeparateProcess()) {
        return;
    }
    SessionBus const bus;
    FolderOpener const opener;

    QVERIFY(Explore(call));
    QCOMPARE(opener.urls, QByteArrayList());

    QTRY_COMPARE_WITH_TIMEOUT(PathsOf(opener.urls), QByteArrayList{call.folder}, TimeoutMs);
    QVERIFY(ProcessMessages(QDBusConnection::sessionBus()));
    QCOMPARE(opener.urls.size(), 1);
}

void FileUtilsExploreTest::opensTheFolderWithoutABus_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::newRow("missing socket") << QByteArray("unix:path=/no/such/bus");
    QTest::newRow("not a socket") << QByteArray("unix:path=/dev/null");
    QTest::newRow("no listener") << QByteArray("tcp:host=127.0.0.1,port=1");
    QTest::newRow("not an address") << QByteArray("not an address");
    QTest::newRow("unknown transport") << QByteArray("unknown:key=1");
}

void FileUtilsExploreTest::opensTheFolderWithoutABus()
{
    QFETCH(QByteArray, address);
    if (RanInSeparateProcess()) {
        return;
    }
    EnvironmentVariable const bus("DBUS_SESSION_BUS_ADDRESS", address);
    FolderOpener const opener;

    QVERIFY(ExploreFile(ioPath("/no/first/file")));
    QCOMPARE(PathsOf(opener.urls), QByteArrayList{"/no/first"});
    QVERIFY(ExploreSingleFile(QStringLiteral("/no/second/file")));
    QCOMPARE(PathsOf(opener.urls), (QByteArrayList{"/no/first", "/no/second"}));
    QVERIFY(ExploreFile(ioPath("/no/third"), {ioPath("/no/other/file"), ioPath("/no/more")}));
    QCOMPARE(PathsOf(opener.urls), (QByteArrayList{"/no/first", "/no/second", "/no/third"}));
    QVERIFY(ExploreFile(ioPath("/no/fourth"), {}));
    QCOMPARE(PathsOf(opener.urls), (QByteArrayList{"/no/first", "/no/second", "/no/third", "/no/fourth"}));
}

void FileUtilsExploreTest::opensTheFolderAfterALostConnection()
{
    if (RanInSeparateProcess()) {
        return;
    }
    SessionBus bus;
    FolderOpener const opener;
    QVERIFY(QDBusConnection::sessionBus().isConnected());
    QVERIFY(ExploreFile(ioPath("/no/first/file")));
    QTRY_COMPARE_WITH_TIMEOUT(PathsOf(opener.urls), QByteArrayList{"/no/first"}, TimeoutMs);

    bus.Stop();
    QTRY_VERIFY_WITH_TIMEOUT(!QDBusConnection::sessionBus().isConnected(), TimeoutMs);
    QVERIFY(ExploreFile(ioPath("/no/second/file")));

    QTRY_COMPARE_WITH_TIMEOUT(PathsOf(opener.urls), (QByteArrayList{"/no/first", "/no/second"}), TimeoutMs);
}

void FileUtilsExploreTest::opensAFolderWithAnyName()
{
    QFETCH(QByteArray, name);
    if (RanInSeparateProcess()) {
        return;
    }
    EnvironmentVariable const bus("DBUS_SESSION_BUS_ADDRESS", "unix:path=/no/such/bus");
    FolderOpener const opener;

    QVERIFY(ExploreFile(Io("/no/" + name + "/file")));

    QCOMPARE(PathsOf(opener.urls), QByteArrayList{"/no/" + name});
}

void FileUtilsExploreTest::logsOneWarningWithoutABus()
{
    QFETCH(ExploreCall, call);
    if (RanInSeparateProcess()) {
        return;
    }
    EnvironmentVariable const bus("DBUS_SESSION_BUS_ADDRESS", "unix:path=/no/such/bus");
    LogCapture const log;
    ExpectQtWarning(OpenUrlWarning());

    QVERIFY(!Explore(call));

    QCOMPARE(log.Lines().size(), 1);
    VerifyWarning(log.Lines()[0], QString::fromUtf8(call.folder));
}

void FileUtilsExploreTest::opensNoFolderWhosePathContainsANulByte()
{
    if (RanInSeparateProcess()) {
        return;
    }
    EnvironmentVariable const bus("DBUS_SESSION_BUS_ADDRESS", "unix:path=/no/such/bus");
    FolderOpener const opener;
    LogCapture const log;

    QVERIFY(!ExploreFile(ioPath(std::string("/tmp\0name", 9)), {}));

    QCOMPARE(opener.urls, QByteArrayList());
    QCOMPARE(log.Lines().size(), 1);
}

void FileUtilsExploreTest::logsOneWarningWithoutAFileManager()
{
    if (RanInSeparateProcess()) {
        return;
    }
    SessionBus const bus;
    LogCapture const log;
    ExpectQtWarning(OpenUrlWarning());

    QVERIFY(ExploreFile(ioPath("/no/folder/file")));
    QCOMPARE(log.Lines().size(), 0);

    QTRY_COMPARE_WITH_TIMEOUT(log.Lines().size(), 1, TimeoutMs);
    VerifyWarning(log.Lines()[0], QStringLiteral("/no/folder"));
    QVERIFY(ProcessMessages(QDBusConnection::sessionBus()));
    QCOMPARE(log.Lines().size(), 1);
}

void FileUtilsExploreTest::doesNotThrowWithoutACurrentFolder_data()
{
    QTest::addColumn<bool>("withBus");
    QTest::newRow("with file manager") << true;
    QTest::newRow("without bus") << false;
}

void FileUtilsExploreTest::doesNotThrowWithoutACurrentFolder()
{
    QFETCH(bool, withBus);
    if (RanInSeparateProcess()) {
        return;
    }
    std::optional<SessionBus> bus;
    std::optional<FileManager> manager;
    if (withBus) {
        bus.emplace();
        manager.emplace(*bus);
        QVERIFY(manager->isRegistered);
    } else {
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/no/such/bus");
    }
    FolderOpener const opener;
    MakeFolder(At("gone"));
    WorkingFolder const removedFolder(At("gone"));
    Check(rmdir(At("gone").c_str()));

    bool result = false;
    try {
        result = ExploreFile(ioPath("/no/folder/file"));
    } catch (std::exception const& exception) {
        QFAIL(exception.what());
    }

    QVERIFY(result);
    if (manager) {
        QTRY_COMPARE_WITH_TIMEOUT(manager->calls.size(), 1, TimeoutMs);
        QCOMPARE(PathsOf(manager->calls[0].uris), QByteArrayList{"/no/folder/file"});
        QVERIFY(ProcessMessages(*manager));
    } else {
        QCOMPARE(PathsOf(opener.urls), QByteArrayList{"/no/folder"});
    }
}

void FileUtilsExploreTest::theProgramMayExitBeforeTheReply()
{
    if (RanInSeparateProcess()) {
        return;
    }
    SessionBus const bus;
    FileManager manager(bus);
    QVERIFY(manager.isRegistered);

    QVERIFY(ExploreFile(ioPath("/no/folder/file")));
    // Return without processing events, so that the process exits before it receives the file manager's reply.
}

ZQTUTIL_TEST_MAIN(FileUtilsExploreTest)
#include "FileUtilsExploreTest.moc"

#include <LogCapture.h>
#include <OrdinaryUser.h>
#include <TestCase.h>

#include <Util/FileUtils.h>

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTranslator>
#include <QtCore/QUrl>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtGui/QDesktopServices>
#include <QtTest/QtTest>

#include <boost/core/demangle.hpp>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <ctime>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <grp.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <sys/time.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

using Zelkor::ioPath;
using Zelkor::Testing::LogCapture;
using Zelkor::Testing::LogLine;
using Zelkor::Testing::RunAsOrdinaryUser;
using namespace Zelkor::Util;

static_assert(std::is_enum_v<PathValidity> && !std::is_convertible_v<PathValidity, int>);
static_assert(std::is_same_v<std::underlying_type_t<PathValidity>, int>);
static_assert(static_cast<int>(PathValidity::Valid) == 0);
static_assert(static_cast<int>(PathValidity::Empty) == 1);
static_assert(static_cast<int>(PathValidity::Relative) == 2);
static_assert(static_cast<int>(PathValidity::NotWritable) == 3);
static_assert(static_cast<int>(PathValidity::TrailingSpace) == 4);
static_assert(static_cast<int>(PathValidity::CannotCreate) == 5);

static_assert(std::is_same_v<decltype(IsThisPathValid(QString())), PathValidity>);
static_assert(std::is_same_v<decltype(IsThisPathValid(QString(), nullptr)), bool>);
static_assert(std::is_same_v<decltype(&CanCreateFileIn), bool (*)(QString const&)>);
static_assert(std::is_same_v<decltype(&CanReadFileIn), bool (*)(QString const&)>);
static_assert(std::is_same_v<decltype(&TryCreateTmpFile), bool (*)(QString const&)>);
static_assert(std::is_same_v<decltype(&RemoveDir), void (*)(QString const&, int, bool)>);
static_assert(std::is_same_v<decltype(&GetStandardPath), QString (*)(QStandardPaths::StandardLocation)>);
static_assert(std::is_same_v<decltype(&GetZelkorLibraryPath), QString (*)(QString)>);
static_assert(std::is_same_v<decltype(ExploreFile(ioPath())), bool>);
static_assert(std::is_same_v<decltype(ExploreFile(ioPath(), std::vector<ioPath>())), bool>);
static_assert(std::is_same_v<decltype(&ExploreSingleFile), bool (*)(QString const&)>);
static_assert(std::is_same_v<decltype(&GetAvailableDiskSpace), long long (*)(ioPath const&)>);
static_assert(sizeof(GetAvailableDiskSpace({})) == 8);

namespace
{

constexpr int Timeout = 10000; // ms, for what takes milliseconds

int Check(int result)
{
    if (result < 0) {
        throw std::system_error(errno, std::generic_category());
    }
    return result;
}

class Descriptor
{
public:
    explicit Descriptor(int number)
        : number_(Check(number))
    {}
    ~Descriptor() { close(number_); }
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;

    operator int() const { return number_; }

    void Become(int number)
    {
        close(number_);
        number_ = Check(number);
    }

private:
    int number_;
};

void MakeFileAt(int folder, char const* name)
{
    Descriptor const file(openat(folder, name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
    Check(static_cast<int>(write(file, "content", 7)));
}

void MakeFile(std::string const& path)
{
    MakeFileAt(AT_FDCWD, path.c_str());
}

QByteArray Content(std::string const& path)
{
    QFile file(QFile::decodeName(path.c_str()));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be opened");
}

void MakeFolder(std::string const& path, mode_t mode = 0755)
{
    Check(mkdir(path.c_str(), 0700));
    Check(chmod(path.c_str(), mode));
}

void MakeLink(std::string const& path, std::string const& target)
{
    Check(symlink(target.c_str(), path.c_str()));
}

void MakeSocket(std::string const& path)
{
    // The name of a socket must be short.
    Descriptor const folder(open(path.substr(0, path.rfind('/')).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    std::string const name = "/proc/self/fd/" + std::to_string(folder) + path.substr(path.rfind('/'));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    name.copy(address.sun_path, sizeof address.sun_path - 1);
    Descriptor const server(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    Check(bind(server, reinterpret_cast<sockaddr*>(&address), sizeof address));
}

bool Exists(std::string const& path)
{
    struct stat status;
    return lstat(path.c_str(), &status) == 0;
}

struct CloseFolder
{
    void operator()(DIR* stream) const { closedir(stream); }
};

std::vector<std::string> NamesIn(int folder, char const* name)
{
    std::unique_ptr<DIR, CloseFolder> const stream(
        fdopendir(Check(openat(folder, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC))));
    std::vector<std::string> names;
    while (dirent const* const entry = readdir(stream.get())) {
        names.emplace_back(entry->d_name);
    }
    names.erase(std::remove_if(names.begin(), names.end(), [](auto const& n) { return n == "." || n == ".."; }),
                names.end());
    return names;
}

bool IsFolderAt(int folder, std::string const& name)
{
    struct stat status;
    return fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
}

// Trees may be deeper than a path can tell: subfolders are moved up to the top before they are emptied in turn.
void Empty(std::string const& path)
{
    Descriptor const top(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    int moved = 0;
    for (std::vector<std::string> names = NamesIn(top, "."); !names.empty(); names = NamesIn(top, ".")) {
        for (std::string const& name : names) {
            if (!IsFolderAt(top, name)) {
                Check(unlinkat(top, name.c_str(), 0));
                continue;
            }
            Check(fchmodat(top, name.c_str(), 0700, 0));
            Descriptor const folder(openat(top, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
            for (std::string const& below : NamesIn(folder, ".")) {
                if (IsFolderAt(folder, below)) {
                    Check(fchmodat(folder, below.c_str(), 0700, 0));
                    Check(renameat(folder, below.c_str(), top, ("\x01moved" + std::to_string(moved++)).c_str()));
                } else {
                    Check(unlinkat(folder, below.c_str(), 0));
                }
            }
            Check(unlinkat(top, name.c_str(), AT_REMOVEDIR));
        }
    }
}

void ListTree(std::string const& path, std::string const& prefix, QByteArrayList& found)
{
    for (std::string const& name : NamesIn(AT_FDCWD, path.c_str())) {
        found += QByteArray::fromStdString(prefix + name);
        if (IsFolderAt(AT_FDCWD, path + '/' + name)) {
            ListTree(path + '/' + name, prefix + name + '/', found);
        }
    }
}

/// The paths of everything below, sorted, without entering links.
QByteArrayList TreeOf(std::string const& path)
{
    QByteArrayList found;
    ListTree(path, "", found);
    std::sort(found.begin(), found.end());
    return found;
}

int OpenDescriptors()
{
    return static_cast<int>(NamesIn(AT_FDCWD, "/proc/self/fd").size());
}

QByteArray CurrentFolder()
{
    char path[PATH_MAX];
    return getcwd(path, sizeof path);
}

class AtFolder
{
public:
    explicit AtFolder(std::string const& path)
        : before_(open(".", O_PATH | O_DIRECTORY | O_CLOEXEC))
    {
        Check(chdir(path.c_str()));
    }
    ~AtFolder()
    {
        if (fchdir(before_) != 0) {
            qFatal("The current folder is lost");
        }
    }
    AtFolder(AtFolder const&) = delete;
    AtFolder& operator=(AtFolder const&) = delete;

private:
    Descriptor before_;
};

/// Sets a variable of the environment while it lives.
class Environment
{
public:
    Environment(char const* name, QByteArray const& value)
        : name_(name)
        , wasSet_(qEnvironmentVariableIsSet(name))
        , before_(qgetenv(name))
    {
        qputenv(name, value);
        tzset();
    }
    ~Environment()
    {
        if (wasSet_) {
            qputenv(name_, before_);
        } else {
            qunsetenv(name_);
        }
        tzset();
    }
    Environment(Environment const&) = delete;
    Environment& operator=(Environment const&) = delete;

private:
    char const* name_;
    bool wasSet_;
    QByteArray before_;
};

// Time

using Milliseconds = long long; // since 1970, or between two moments

constexpr Milliseconds Second = 1000;
constexpr Milliseconds Hour = 3600 * Second;
constexpr Milliseconds Day = 24 * Hour;

Milliseconds Now()
{
    timespec now;
    Check(clock_gettime(CLOCK_REALTIME, &now));
    return Milliseconds{now.tv_sec} * 1000 + now.tv_nsec / 1000000;
}

timespec TimeOf(Milliseconds moment, long nanoseconds)
{
    Milliseconds const seconds = (moment >= 0 ? moment : moment - 999) / 1000;
    return {static_cast<time_t>(seconds), static_cast<long>(moment - seconds * 1000) * 1000000 + nanoseconds};
}

/// Dates the file, the folder or the link itself.
void Date(int folder, char const* name, Milliseconds moment, long nanoseconds = 0)
{
    timespec const times[] = {TimeOf(moment, nanoseconds), TimeOf(moment, nanoseconds)};
    Check(utimensat(folder, name, times, AT_SYMLINK_NOFOLLOW));
}

void Date(std::string const& path, Milliseconds moment, long nanoseconds = 0)
{
    Date(AT_FDCWD, path.c_str(), moment, nanoseconds);
}

/// What a tree is made of: "file", "folder/", "pipe|", "socket=", "device%", "link@target"; and how old it is.
struct Entry
{
    char const* description;
    Milliseconds age;
};

std::string MakeEntry(std::string const& description)
{
    std::size_t const end = description.find_first_of("|=%@");
    std::string const path = description.substr(0, end);
    if (end == std::string::npos) {
        description.back() == '/' ? MakeFolder(description) : MakeFile(description);
        return description.back() == '/' ? description.substr(0, description.size() - 1) : description;
    }
    switch (description[end]) {
    case '|':
        Check(mkfifo(path.c_str(), 0644));
        break;
    case '=':
        MakeSocket(path);
        break;
    case '%':
        Check(mknod(path.c_str(), S_IFCHR | 0644, makedev(1, 3)));
        break;
    default:
        MakeLink(path, description.substr(end + 1));
    }
    return path;
}

/// Makes all, then dates all, since making an entry changes its folder's date.
void MakeTree(std::string const& root, std::vector<Entry> const& entries)
{
    Milliseconds const now = Now();
    std::vector<std::string> paths;
    for (Entry const& entry : entries) {
        paths.push_back(MakeEntry(root + '/' + entry.description));
    }
    for (std::size_t i = 0; i < entries.size(); ++i) {
        Date(paths[i], now - entries[i].age);
    }
}

constexpr Milliseconds Old = 100 * Day;
constexpr Milliseconds New = 0;

// Other users

struct Identity
{
    uid_t user;
    uid_t effectiveUser;
    gid_t group;
    gid_t effectiveGroup;
    std::vector<gid_t> groups;
};

constexpr uid_t Root = 0;
constexpr uid_t Us = 1001;
constexpr uid_t Them = 1002;
constexpr gid_t OurGroup = 2001;
constexpr gid_t TheirGroup = 2002;

/// Runs \a work in a child process, after \a prepare, and returns its result.
QByteArray RunInFork(std::function<void()> const& prepare, std::function<QByteArray()> const& work)
{
    int ends[2];
    Check(pipe(ends));
    pid_t const child = Check(fork());
    if (child == 0) {
        close(ends[0]);
        alarm(60);
        prepare();
        QByteArray const result = work();
        _exit(write(ends[1], result.constData(), static_cast<std::size_t>(result.size())) == result.size() ? 0 : 1);
    }
    close(ends[1]);
    QFile input;
    input.open(ends[0], QIODevice::ReadOnly, QFileDevice::AutoCloseHandle);
    QByteArray const result = input.readAll();
    int status = 0;
    if (Check(waitpid(child, &status, 0)) != child || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        throw std::runtime_error("The child process failed");
    }
    return result;
}

/// Needs root, who alone may become anybody.
QByteArray RunAs(Identity const& who, std::function<QByteArray()> const& work)
{
    auto const become = [&] {
        Check(setgroups(who.groups.size(), who.groups.data()));
        Check(setresgid(who.group, who.effectiveGroup, who.effectiveGroup));
        Check(setresuid(who.user, who.effectiveUser, who.effectiveUser));
    };
    return RunInFork(become, work);
}

QByteArray Text(bool value)
{
    return value ? "yes" : "no";
}

QByteArray Text(PathValidity value)
{
    return QByteArray::number(static_cast<int>(value));
}

void Tell(char const* path, QByteArray const& text)
{
    Descriptor const file(open(path, O_WRONLY | O_CLOEXEC));
    Check(static_cast<int>(write(file, text.constData(), static_cast<std::size_t>(text.size()))));
}

/// From now on what is mounted is seen by this process alone. In a container that takes a user namespace.
void EnterOwnMounts()
{
    QByteArray const user = "0 " + QByteArray::number(geteuid()) + " 1";
    QByteArray const group = "0 " + QByteArray::number(getegid()) + " 1";
    if (unshare(CLONE_NEWNS) != 0) {
        Check(unshare(CLONE_NEWUSER | CLONE_NEWNS));
        Tell("/proc/self/setgroups", "deny");
        Tell("/proc/self/uid_map", user);
        Tell("/proc/self/gid_map", group);
    }
    Check(mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr));
}

/// Runs \a work in a child process that has a file system of its own at \a path.
QByteArray RunWithMount(std::string const& path, char const* options, std::function<QByteArray()> const& work)
{
    auto const mountIt = [&] {
        EnterOwnMounts();
        Check(mount("none", path.c_str(), "tmpfs", 0, options));
    };
    return RunInFork(mountIt, work);
}

// What the system answers, while a test says so

struct Answers
{
    std::atomic<Milliseconds> now{0}; // 0: the real time
    std::atomic<int> looksAtTheClock{0};
    std::atomic<struct statvfs const*> volume{nullptr};
    std::optional<QStringList> locations; // for every standard location but documents
    QStringList documents;
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
        Fixed().volume = nullptr;
        Fixed().locations.reset();
        Fixed().documents.clear();
    }
};

constexpr long SubMilliseconds = 700000; // of the fixed clock, in nanoseconds

/// The next definition of a C or C++ function after this program's.
template <class Function>
Function Next(char const* symbol)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, symbol));
}

/// What was thrown last: its class, and what() as a `std::exception`.
struct Thrown
{
    QByteArray type;
    QByteArray what;
};

Thrown& LastThrown()
{
    static thread_local Thrown thrown;
    return thrown;
}

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

Q_DECL_EXPORT int statvfs(char const* path, struct statvfs* volume) noexcept
{
    static auto const next = Next<int (*)(char const*, struct statvfs*)>("statvfs");
    struct statvfs const* const fixed = Fixed().volume;
    if (!fixed) {
        return next(path, volume);
    }
    *volume = *fixed;
    return 0;
}

} // extern "C"

// The compiler has declared it already, with parameters of its own.
[[noreturn]] Q_DECL_EXPORT void NoteAndThrow(void* object, std::type_info* type,
                                             void (*destroy)(void*)) __asm__("__cxa_throw");

void NoteAndThrow(void* object, std::type_info* type, void (*destroy)(void*))
{
    static auto const next = Next<void (*)(void*, std::type_info*, void (*)(void*))>("__cxa_throw");
    void* base = object;
    bool const isException = typeid(std::exception).__do_catch(type, &base, 1);
    LastThrown() = {QByteArray::fromStdString(boost::core::demangle(type->name())),
                    isException ? static_cast<std::exception*>(base)->what() : "not an exception"};
    next(object, type, destroy);
    std::terminate();
}

QStringList QStandardPaths::standardLocations(StandardLocation location)
{
    static auto const next =
        Next<QStringList (*)(StandardLocation)>("_ZN14QStandardPaths17standardLocationsENS_16StandardLocationE");
    if (!Fixed().locations) {
        return next(location);
    }
    return location == DocumentsLocation ? Fixed().documents : *Fixed().locations;
}

namespace
{

// The file manager and the desktop

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

bool Explore(Asking asking, QByteArray const& folder, QByteArrayList const& files)
{
    if (asking == Asking::File) {
        return ExploreFile(Io(files.first()));
    }
    if (asking == Asking::Text) {
        return ExploreSingleFile(QString::fromUtf8(files.first()));
    }
    std::vector<ioPath> paths;
    std::transform(files.begin(), files.end(), std::back_inserter(paths), Io);
    return ExploreFile(Io(folder), paths);
}

class Uppercase : public QTranslator
{
    Q_OBJECT

public:
    bool isEmpty() const override { return false; }

    QString translate(char const* context, char const* source, char const*, int) const override
    {
        return QByteArray(context) == QByteArray("QObject")
                   ? QStringLiteral(" \t\n") + QString::fromUtf8(source).toUpper() + QStringLiteral("\r\n  ")
                   : QString();
    }
};

QString Message(PathValidity validity)
{
    switch (validity) {
    case PathValidity::Valid:
        break;
    case PathValidity::Empty:
        return QStringLiteral("Destination folder path cannot be empty");
    case PathValidity::Relative:
        return QStringLiteral("Destination folder path must be absolute");
    case PathValidity::NotWritable:
        return QStringLiteral("Can't access the specified destination folder");
    case PathValidity::TrailingSpace:
        return QStringLiteral("Last letter in folder name mustn't be space");
    case PathValidity::CannotCreate:
        return QStringLiteral("The specified destination is not available");
    }
    return QString();
}

} // namespace

Q_DECLARE_METATYPE(std::vector<Entry>)
Q_DECLARE_METATYPE(Identity)
Q_DECLARE_METATYPE(Asking)
Q_DECLARE_METATYPE(PathValidity)

class FileUtilsFoldersTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    // IsThisPathValid
    void pathThatIsNotAbsoluteIsNotValid_data();
    void pathThatIsNotAbsoluteIsNotValid();
    void absolutePathIsCheckedAndNothingIsLeft_data();
    void absolutePathIsCheckedAndNothingIsLeft();
    void pathOf4000CharactersIsValid();
    void emptyParentsOfTheCheckedPathAreRemoved();
    void existingFolderStaysThoughEmpty();
    void ordinaryUserIsToldWhatIsClosed_data();
    void ordinaryUserIsToldWhatIsClosed();
    void folderIsNotWritableWhenClosedToTheRealUser();
    void messageTellsTheReason_data() { ReasonRows(); }
    void messageTellsTheReason();
    void messageIsTranslatedAndTrimmed_data() { ReasonRows(); }
    void messageIsTranslatedAndTrimmed();
    void messageTravelsInAnErrorOfTheFunction();
    void validPathLeavesTheTextAlone();
    void fullVolumeIsNotValid();

    // CanCreateFileIn, CanReadFileIn, TryCreateTmpFile
    void filesCanBeCreatedByPermissionOwnerAndGroup_data();
    void filesCanBeCreatedByPermissionOwnerAndGroup();
    void filesCanBeCreatedInWhatIsAFolder_data() { FolderRows(); }
    void filesCanBeCreatedInWhatIsAFolder();
    void filesCannotBeCreatedOnAFullOrReadOnlyVolume_data();
    void filesCannotBeCreatedOnAFullOrReadOnlyVolume();
    void filesCanBeReadWhereTheFolderIsReadable_data();
    void filesCanBeReadWhereTheFolderIsReadable();
    void rootReadsFilesInAnyFolder();
    void temporaryFileIsTriedInWhatIsAFolder_data() { FolderRows(); }
    void temporaryFileIsTriedInWhatIsAFolder();
    void temporaryFileLooksAtNoPermissions_data();
    void temporaryFileLooksAtNoPermissions();
    void temporaryFileInAnyNameLeavesNothing_data() { NameRows(); }
    void temporaryFileInAnyNameLeavesNothing();

    // RemoveDir
    void whatIsOldEnoughIsRemoved_data();
    void whatIsOldEnoughIsRemoved();
    void ageIsExactToTheMillisecond_data();
    void ageIsExactToTheMillisecond();
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

    // GetStandardPath, GetZelkorLibraryPath
    void firstCandidateThatIsNotEmptyIsTaken_data();
    void firstCandidateThatIsNotEmptyIsTaken();
    void homeIsTheLastResort_data();
    void homeIsTheLastResort();
    void standardPathIsTheDesktopsOwn_data();
    void standardPathIsTheDesktopsOwn();
    void linkIsResolvedOnce_data();
    void linkIsResolvedOnce();
    void libraryIsBelowTheFilms_data();
    void libraryIsBelowTheFilms();

    // ExploreFile, ExploreSingleFile
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

    // GetAvailableDiskSpace
    void spaceIsWhatTheVolumeTells_data();
    void spaceIsWhatTheVolumeTells();
    void spaceIsWhatThisUserMayFill_data();
    void spaceIsWhatThisUserMayFill();
    void spaceOfWhatCannotBeReadIsNone_data();
    void spaceOfWhatCannotBeReadIsNone();

private:
    void SetUp() override;
    void TearDown() override;

    static void NameRows();
    static void ReasonRows();
    static void FolderRows();
    static void AskingRows();
    static void AskingRow(char const* name, Asking asking, QByteArray const& folder, QByteArrayList const& files);

    void MakeFoldersOfFolderRows() const;
    void MakeDeepTree(std::string const& path, int levels, bool withNewFile) const;

    std::string Root() const { return folder_->path().toStdString(); }
    /// The path of \a name in this test's folder.
    std::string At(std::string const& name) const { return Root() + '/' + name; }
    QString PathAt(QByteArray const& name) const { return QFile::decodeName(At(name.toStdString()).c_str()); }

    std::optional<QTemporaryDir> folder_;
};

void FileUtilsFoldersTest::SetUp()
{
    folder_.emplace();
    QVERIFY2(folder_->isValid(), qPrintable(folder_->errorString()));
    // Ordinary users come here too.
    Check(chmod(QDir::tempPath().toUtf8().constData(), 0755));
    Check(chmod(Root().c_str(), 0755));
}

void FileUtilsFoldersTest::TearDown()
{
    Empty(Root());
    folder_.reset();
}

void FileUtilsFoldersTest::NameRows()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("plain") << QByteArray("plain");
    QTest::newRow("spaces") << QByteArray("  two words ");
    QTest::newRow("line feed") << QByteArray("\nfirst\n\nsecond");
    QTest::newRow("quotes") << QByteArray("'single' \"double\" `back`");
    QTest::newRow("backslash") << QByteArray("a\\b\\\\c\\");
    QTest::newRow("no UTF-8") << QByteArray("\xff\xfe\x80 \xc3\x28 \xed\xa0\x80");
    QTest::newRow("letters beyond ASCII") << QByteArray("\xd0\xb8\xd0\xbc\xd1\x8f \xf0\x9f\x93\x81");
    QTest::newRow("decomposed letter") << QByteArray("e\xcc\x81");
    QTest::newRow("format placeholders") << QByteArray("%1% %s %n %1 %20 %");
    QTest::newRow("what URIs are parted by") << QByteArray("a#b?c&d=e;f:g@h+i");
    QTest::newRow("what URIs cannot hold") << QByteArray("[a]{b}|c^d<e>f");
    QTest::newRow("patterns") << QByteArray("*?[a-z]$HOME~");
    QTest::newRow("hyphen") << QByteArray("-rf");
    QTest::newRow("control characters") << QByteArray("\x01\x1b[31m\t\r\x7f");
    QTest::newRow("as long as it may be") << QByteArray(255, 'n');
    QTest::newRow("random suffix") << QByteArray("aXXXXXXb.XXXXXX");
    QTest::newRow("three dots") << QByteArray("...");
    QTest::newRow("hidden") << QByteArray(".hidden");
}

// IsThisPathValid

void FileUtilsFoldersTest::pathThatIsNotAbsoluteIsNotValid_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<PathValidity>("validity");
    QTest::newRow("null") << QString() << PathValidity::Empty;
    QTest::newRow("empty") << QStringLiteral("") << PathValidity::Empty;

    struct Row
    {
        char const* title;
        char const* path;
    };
    // clang-format off
    Row const rows[] = {
        {"blank", " "},
        {"blanks", "   "},
        {"tab", "\t"},
        {"name", "name"},
        {"name with blank at end", "name "},
        {"name with blank before slash", "a /b"},
        {"names", "name/below"},
        {"folder that is there", "existing"},
        {"folder that is there with slash", "existing/"},
        {"dot", "."},
        {"two dots", ".."},
        {"from the current folder", "./name"},
        {"from the folder above", "../name"},
        {"home", "~"},
        {"in home", "~/name"},
        {"blank in front", " /tmp"},
        {"line feed in front", "\n/tmp"},
        {"drive", "C:\\name"},
        {"drive with slash", "C:/name"},
        {"network", "\\\\server\\share"},
        {"backslash", "\\tmp"},
        {"URL", "file:///tmp"},
        {"placeholder", "%1"},
    };
    // clang-format on
    for (Row const& row : rows) {
        QTest::newRow(row.title) << QString::fromLatin1(row.path) << PathValidity::Relative;
    }
}

void FileUtilsFoldersTest::pathThatIsNotAbsoluteIsNotValid()
{
    QFETCH(QString, path);
    QFETCH(PathValidity, validity);
    MakeFolder(At("existing"));
    AtFolder const here(Root());

    QCOMPARE(IsThisPathValid(path), validity);

    QString text = QStringLiteral("before");
    QVERIFY(!IsThisPathValid(path, &text));
    QCOMPARE(text, Message(validity));
    QVERIFY(!IsThisPathValid(path, nullptr));
    QCOMPARE(TreeOf(Root()), QByteArrayList{"existing"});
}

void FileUtilsFoldersTest::absolutePathIsCheckedAndNothingIsLeft_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<PathValidity>("validity");

    struct Row
    {
        char const* title;
        QByteArray name;
        PathValidity validity;
    };
    // clang-format off
    Row const rows[] = {
        {"missing", "missing", PathValidity::Valid},
        {"missing with slash", "missing/", PathValidity::Valid},
        {"missing below missing", "missing/two/three", PathValidity::Valid},
        {"double slashes", "missing//two///three", PathValidity::Valid},
        {"missing in folder", "folder/missing", PathValidity::Valid},
        {"missing behind link", "link/missing", PathValidity::Valid},
        {"double quotes", "a \"name\" in quotes", PathValidity::Valid},
        {"single quote", "it's", PathValidity::Valid},
        {"line feed", "first\nsecond\n", PathValidity::Valid},
        {"placeholder", "%1", PathValidity::Valid},
        {"no UTF-8", "\xff\xfe", PathValidity::Valid},
        {"letters beyond ASCII", "\xd0\xb8\xd0\xbc\xd1\x8f", PathValidity::Valid},
        {"backslash", "a\\b", PathValidity::Valid},
        {"blank inside", "two words", PathValidity::Valid},
        {"blank in front", " name", PathValidity::Valid},
        {"blank in front of each", " a/ b", PathValidity::Valid},
        {"blank after backslash", "a\\ b", PathValidity::Valid},
        {"tab at end", "name\t", PathValidity::Valid},
        {"tab before slash", "name\t/below", PathValidity::Valid},
        {"no-break space at end", "name\xc2\xa0", PathValidity::Valid},
        {"255 bytes", QByteArray(255, 'n'), PathValidity::Valid},
        {"256 bytes", QByteArray(256, 'n'), PathValidity::CannotCreate},
        {"255 bytes of 85 letters", QByteArray("\xe2\x82\xac").repeated(85), PathValidity::Valid},
        {"258 bytes of 86 letters", QByteArray("\xe2\x82\xac").repeated(86), PathValidity::CannotCreate},
        {"5000 characters", QByteArray("123456789/").repeated(500), PathValidity::CannotCreate},

        {"folder", "folder", PathValidity::Valid},
        {"folder with slash", "folder/", PathValidity::Valid},
        {"folder with dot", "folder/.", PathValidity::Valid},
        {"folder above", "folder/..", PathValidity::Valid},
        {"link to folder", "link", PathValidity::Valid},
        {"folder with blank at end", "blank ", PathValidity::Valid},
        {"folder with blank before slash", "blank /inside", PathValidity::Valid},
        {"folder with blank before backslash", "blank \\name", PathValidity::Valid},

        {"file", "file", PathValidity::NotWritable},
        {"link to file", "link-to-file", PathValidity::NotWritable},
        {"pipe", "pipe", PathValidity::NotWritable},

        {"blank at end", "name ", PathValidity::TrailingSpace},
        {"two blanks at end", "name  ", PathValidity::TrailingSpace},
        {"nothing but blank", " ", PathValidity::TrailingSpace},
        {"blank before slash", "name /below", PathValidity::TrailingSpace},
        {"blank before last slash", "name /", PathValidity::TrailingSpace},
        {"blank before backslash", "name \\below", PathValidity::TrailingSpace},
        {"missing below folder with blank", "blank /missing", PathValidity::TrailingSpace},
        {"blank before it is tried", "file/name ", PathValidity::TrailingSpace},
        {"blank in name too long", QByteArray(256, 'n') + ' ', PathValidity::TrailingSpace},

        {"below file", "file/missing", PathValidity::CannotCreate},
        {"dangling link", "dangling", PathValidity::CannotCreate},
        {"below dangling link", "dangling/missing", PathValidity::CannotCreate},
        {"link to itself", "loop", PathValidity::CannotCreate},
    };
    // clang-format on
    for (Row const& row : rows) {
        QTest::newRow(row.title) << row.name << row.validity;
    }
}

void FileUtilsFoldersTest::absolutePathIsCheckedAndNothingIsLeft()
{
    QFETCH(QByteArray, name);
    QFETCH(PathValidity, validity);
    MakeTree(Root(), {{"folder/", New},
                      {"folder/kept", New},
                      {"blank /", New},
                      {"blank /inside/", New},
                      {"blank \\name/", New},
                      {"file", New},
                      {"pipe|", New},
                      {"link@folder", New},
                      {"link-to-file@file", New},
                      {"dangling@nowhere", New},
                      {"loop@loop", New}});
    QByteArrayList const before = TreeOf(Root());

    QCOMPARE(IsThisPathValid(PathAt(name)), validity);
    QCOMPARE(TreeOf(Root()), before);

    QString text = QStringLiteral("before");
    QCOMPARE(IsThisPathValid(PathAt(name), &text), validity == PathValidity::Valid);
    QCOMPARE(text, validity == PathValidity::Valid ? QStringLiteral("before") : Message(validity));
    QCOMPARE(IsThisPathValid(PathAt(name), nullptr), validity == PathValidity::Valid);
    QCOMPARE(TreeOf(Root()), before);
    QCOMPARE(Content(At("file")), QByteArray("content"));
}

void FileUtilsFoldersTest::pathOf4000CharactersIsValid()
{
    MakeFile(At("kept"));
    QString path = PathAt("") + QStringLiteral("123456789/").repeated(400);
    path.truncate(4000);

    QCOMPARE(IsThisPathValid(path), PathValidity::Valid);

    QCOMPARE(TreeOf(Root()), QByteArrayList{"kept"});
}

void FileUtilsFoldersTest::emptyParentsOfTheCheckedPathAreRemoved()
{
    MakeTree(Root(), {{"kept/", New}, {"kept/empty/", New}, {"kept/file", New}});

    QCOMPARE(IsThisPathValid(PathAt("kept/empty/missing/too")), PathValidity::Valid);

    QCOMPARE(TreeOf(Root()), (QByteArrayList{"kept", "kept/file"}));
}

void FileUtilsFoldersTest::existingFolderStaysThoughEmpty()
{
    MakeTree(Root(), {{"empty/", New}, {"empty/empty/", New}});

    QCOMPARE(IsThisPathValid(PathAt("empty/empty")), PathValidity::Valid);

    QCOMPARE(TreeOf(Root()), (QByteArrayList{"empty", "empty/empty"}));
}

void FileUtilsFoldersTest::ordinaryUserIsToldWhatIsClosed_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<PathValidity>("validity");
    QTest::newRow("own folder") << QByteArray("own") << PathValidity::Valid;
    QTest::newRow("missing in own folder") << QByteArray("own/missing/too") << PathValidity::Valid;
    QTest::newRow("own folder without write permission") << QByteArray("own-closed") << PathValidity::NotWritable;
    QTest::newRow("folder of another user") << QByteArray("others") << PathValidity::NotWritable;
    QTest::newRow("folder open to all") << QByteArray("open") << PathValidity::Valid;
    QTest::newRow("folder open to the group") << QByteArray("groups") << PathValidity::Valid;
    QTest::newRow("folder that can be written and not entered") << QByteArray("blocked") << PathValidity::NotWritable;
    QTest::newRow("root of the system") << QByteArray("/") << PathValidity::NotWritable;
    QTest::newRow("missing in folder of another user") << QByteArray("others/missing") << PathValidity::CannotCreate;
    QTest::newRow("missing in own closed folder") << QByteArray("own-closed/missing") << PathValidity::CannotCreate;
    QTest::newRow("deep in folder of another user") << QByteArray("others/a/b/c") << PathValidity::CannotCreate;
    QTest::newRow("below what cannot be looked into") << QByteArray("hidden/folder") << PathValidity::CannotCreate;
    QTest::newRow("blank before it is tried") << QByteArray("others/missing ") << PathValidity::TrailingSpace;
}

void FileUtilsFoldersTest::ordinaryUserIsToldWhatIsClosed()
{
    QFETCH(QByteArray, name);
    QFETCH(PathValidity, validity);
    struct Folder
    {
        char const* name;
        uid_t owner;
        gid_t group;
        mode_t mode;
    };
    for (Folder const& folder : {Folder{"own", Us, OurGroup, 0755}, Folder{"own-closed", Us, OurGroup, 0555},
                                 Folder{"others", Them, TheirGroup, 0755}, Folder{"open", Them, TheirGroup, 0777},
                                 Folder{"groups", Them, OurGroup, 0775}, Folder{"blocked", Them, TheirGroup, 0772},
                                 Folder{"hidden", Them, TheirGroup, 0700}}) {
        MakeFolder(At(folder.name));
        MakeFile(At(std::string(folder.name) + "/kept"));
        Check(chown(At(folder.name).c_str(), folder.owner, folder.group));
        Check(chmod(At(folder.name).c_str(), folder.mode));
    }
    MakeFolder(At("hidden/folder"));
    QByteArrayList const before = TreeOf(Root());
    QString const path = name.startsWith('/') ? QString::fromLatin1(name) : PathAt(name);

    QByteArray const found = RunAs({Us, Us, OurGroup, OurGroup, {}}, [&] {
        QString text;
        bool const isValid = IsThisPathValid(path, &text);
        return Text(IsThisPathValid(path)) + Text(isValid) + text.toUtf8();
    });

    QCOMPARE(found, Text(validity) + Text(validity == PathValidity::Valid) + Message(validity).toUtf8());
    QCOMPARE(TreeOf(Root()), before);
}

void FileUtilsFoldersTest::folderIsNotWritableWhenClosedToTheRealUser()
{
    MakeFolder(At("folder"));
    Check(chown(At("folder").c_str(), ::Root, TheirGroup));
    Check(chmod(At("folder").c_str(), 0757));

    QByteArray const found = RunAs({Them, Us, TheirGroup, OurGroup, {}}, [&] {
        return Text(CanCreateFileIn(PathAt("folder"))) + ' ' + Text(IsThisPathValid(PathAt("folder")));
    });

    QCOMPARE(found, "yes " + Text(PathValidity::NotWritable));
}

void FileUtilsFoldersTest::ReasonRows()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QString>("message");
    QTest::newRow("empty") << QByteArray() << Message(PathValidity::Empty);
    QTest::newRow("relative") << QByteArray("name") << Message(PathValidity::Relative);
    QTest::newRow("not writable") << QByteArray("/dev/null") << Message(PathValidity::NotWritable);
    QTest::newRow("trailing space") << QByteArray("/no/such /name") << Message(PathValidity::TrailingSpace);
    QTest::newRow("cannot be created") << QByteArray("/dev/null/name") << Message(PathValidity::CannotCreate);
}

void FileUtilsFoldersTest::messageTellsTheReason()
{
    QFETCH(QByteArray, path);
    QFETCH(QString, message);

    QString text = QStringLiteral("before");
    QVERIFY(!IsThisPathValid(QString::fromLatin1(path), &text));

    QCOMPARE(text, message);
}

void FileUtilsFoldersTest::messageIsTranslatedAndTrimmed()
{
    QFETCH(QByteArray, path);
    QFETCH(QString, message);
    Uppercase translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));

    QString text;
    bool const isValid = IsThisPathValid(QString::fromLatin1(path), &text);
    QCoreApplication::removeTranslator(&translator);

    QVERIFY(!isValid);
    QCOMPARE(text, message.toUpper());
}

void FileUtilsFoldersTest::messageTravelsInAnErrorOfTheFunction()
{
    LastThrown() = {};
    QString text;

    QVERIFY(!IsThisPathValid(QString(), &text));

    QCOMPARE(LastThrown().type, QByteArray("Zelkor::Util::IsThisPathValid(QString const&, QString*)::Error"));
    QCOMPARE(LastThrown().what, QByteArray(std::exception().what()));

    LastThrown() = {};
    QVERIFY(IsThisPathValid(PathAt(""), &text));
    QCOMPARE(LastThrown().type, QByteArray());
}

void FileUtilsFoldersTest::validPathLeavesTheTextAlone()
{
    MakeFile(At("kept"));
    QString text = QStringLiteral(" before ");
    QVERIFY(IsThisPathValid(PathAt("missing"), &text));
    QVERIFY(IsThisPathValid(PathAt(""), &text));
    QCOMPARE(text, QStringLiteral(" before "));
}

void FileUtilsFoldersTest::fullVolumeIsNotValid()
{
    MakeFolder(At("volume"));

    QByteArray const found = RunWithMount(At("volume"), "nr_inodes=2,mode=0777", [&] {
        QByteArray const withRoom = Text(IsThisPathValid(PathAt("volume"))) + Text(IsThisPathValid(PathAt("volume/a")));
        MakeFile(At("volume/last"));
        return withRoom + Text(IsThisPathValid(PathAt("volume"))) + Text(IsThisPathValid(PathAt("volume/a")));
    });

    QCOMPARE(found, QByteArray("0035"));
}

// CanCreateFileIn, CanReadFileIn, TryCreateTmpFile

void FileUtilsFoldersTest::filesCanBeCreatedByPermissionOwnerAndGroup_data()
{
    QTest::addColumn<uid_t>("owner");
    QTest::addColumn<gid_t>("group");
    QTest::addColumn<uint>("mode");
    QTest::addColumn<Identity>("who");
    QTest::addColumn<bool>("can");

    Identity const us{Us, Us, OurGroup, OurGroup, {}};
    Identity const root{::Root, ::Root, 0, 0, {}};
    std::vector<gid_t> hundredGroups;
    for (gid_t group = 3000; group < 3099; ++group) {
        hundredGroups.push_back(group);
    }
    hundredGroups.push_back(TheirGroup);
    auto const as = [&](std::vector<gid_t> groups) { return Identity{Us, Us, OurGroup, OurGroup, std::move(groups)}; };

    struct Row
    {
        char const* title;
        uid_t owner;
        gid_t group;
        mode_t mode;
        Identity who;
        bool can;
    };
    // clang-format off
    Row const rows[] = {
        {"open to all",                        Them, TheirGroup, 0777, us, true},
        {"open to others alone",               Them, TheirGroup, 0703, us, true},
        {"open to all with sticky bit",        Them, TheirGroup, 01777, us, true},
        {"open to others, not to be entered",  Them, TheirGroup, 0772, us, false},
        {"open to others, not to the group",   Them, OurGroup,   0757, us, false},
        {"open to others, not to the owner",   Us,   OurGroup,   0577, us, false},
        {"readable to others",                 Them, TheirGroup, 0755, us, false},
        {"closed to others",                   Them, TheirGroup, 0700, us, false},

        {"open to the effective group",        Them, OurGroup,   0770, us, true},
        {"open to the effective group, closed to owner", Them, OurGroup, 0070, us, true},
        {"open to the one further group",      Them, TheirGroup, 0770, as({TheirGroup}), true},
        {"open to the first further group",    Them, TheirGroup, 0770, as({TheirGroup, 2003, 2004}), true},
        {"open to the last further group",     Them, TheirGroup, 0770, as({2003, 2004, TheirGroup}), true},
        {"open to the last of 100 groups",     Them, TheirGroup, 0770, as(hundredGroups), true},
        {"open to the effective group besides further ones", Them, OurGroup, 0770, as({TheirGroup}), true},
        {"open to another group",              Them, TheirGroup, 0770, us, false},
        {"open to another group than the further ones", Them, TheirGroup, 0770, as({2003, 2004}), false},
        {"open to the real group alone",       Them, TheirGroup, 0770, {Us, Us, TheirGroup, OurGroup, {}}, false},
        {"open to the group, not to be entered", Them, OurGroup, 0760, us, false},
        {"readable to the group",              Them, OurGroup,   0750, us, false},
        {"readable to the further group",      Them, TheirGroup, 0750, as({TheirGroup}), false},

        {"own",                                Us,   OurGroup,   0755, us, true},
        {"own alone",                          Us,   OurGroup,   0700, us, true},
        {"own of another group",               Us,   TheirGroup, 0700, us, true},
        {"own, open to another group",         Us,   TheirGroup, 0770, us, true},
        {"own, not readable",                  Us,   OurGroup,   0300, us, true},
        {"own, not to be entered",             Us,   OurGroup,   0600, us, false},
        {"own without write permission",       Us,   OurGroup,   0555, us, false},
        {"own without any permission",         Us,   OurGroup,   0000, us, false},
        {"own, open to the group alone",       Us,   OurGroup,   0570, us, false},
        {"own by the real user alone",         Us,   OurGroup,   0755, {Us, Them, OurGroup, OurGroup, {}}, false},

        {"root, own",                          ::Root, 0,        0755, root, true},
        {"root, of another user",              Them, TheirGroup, 0755, root, false},
        {"root, of another user alone",        Them, TheirGroup, 0700, root, false},
        {"root, open to all",                  Them, TheirGroup, 0777, root, true},
        {"root, open to others alone",         Them, TheirGroup, 0702, root, true},
        {"root, open to the effective group",  Them, 0,          0775, root, true},
        {"root, open to another group",        Them, TheirGroup, 0775, root, false},
        {"root, open to a further group",      Them, TheirGroup, 0775, {::Root, ::Root, 0, 0, {TheirGroup}}, true},
        {"root, open to the real group alone", Them, TheirGroup, 0775, {::Root, ::Root, TheirGroup, 0, {}}, false},
        {"root for us, own by the real user",  Us,   TheirGroup, 0755, {Us, ::Root, 0, 0, {}}, false},
        {"root for us, own by the effective user", ::Root, 0,    0755, {Us, ::Root, OurGroup, 0, {}}, false},
    };
    // clang-format on
    for (Row const& row : rows) {
        QTest::newRow(row.title) << row.owner << row.group << row.mode << row.who << row.can;
    }
}

void FileUtilsFoldersTest::filesCanBeCreatedByPermissionOwnerAndGroup()
{
    QFETCH(uid_t, owner);
    QFETCH(gid_t, group);
    QFETCH(uint, mode);
    QFETCH(Identity, who);
    QFETCH(bool, can);
    MakeFolder(At("folder"));
    Check(chown(At("folder").c_str(), owner, group));
    Check(chmod(At("folder").c_str(), mode));

    QByteArray const found = RunAs(who, [&] { return Text(CanCreateFileIn(PathAt("folder"))); });

    QCOMPARE(found, Text(can));
    QCOMPARE(TreeOf(Root()), QByteArrayList{"folder"});
}

void FileUtilsFoldersTest::FolderRows()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("can");
    QTest::newRow("folder") << QByteArray("folder") << true;
    QTest::newRow("folder with slash") << QByteArray("folder/") << true;
    QTest::newRow("folder with dot") << QByteArray("folder/.") << true;
    QTest::newRow("folder above") << QByteArray("folder/..") << true;
    QTest::newRow("link to a folder") << QByteArray("link") << true;
    QTest::newRow("link to a link to a folder") << QByteArray("link-to-link") << true;
    QTest::newRow("missing") << QByteArray("missing") << false;
    QTest::newRow("dangling link") << QByteArray("dangling") << false;
    QTest::newRow("file") << QByteArray("file") << false;
    QTest::newRow("file open to all") << QByteArray("open-file") << false;
    QTest::newRow("link to a file") << QByteArray("link-to-file") << false;
    QTest::newRow("pipe") << QByteArray("pipe") << false;
    QTest::newRow("below a file") << QByteArray("file/name") << false;
    QTest::newRow("name that is too long") << QByteArray(256, 'n') << false;
}

void FileUtilsFoldersTest::MakeFoldersOfFolderRows() const
{
    MakeTree(Root(), {{"folder/", New},
                      {"file", New},
                      {"open-file", New},
                      {"pipe|", New},
                      {"link@folder", New},
                      {"link-to-link@link", New},
                      {"link-to-file@file", New},
                      {"dangling@nowhere", New}});
    Check(chmod(At("open-file").c_str(), 0777));
}

void FileUtilsFoldersTest::filesCanBeCreatedInWhatIsAFolder()
{
    QFETCH(QByteArray, name);
    QFETCH(bool, can);
    MakeFoldersOfFolderRows();
    QByteArrayList const before = TreeOf(Root());

    QCOMPARE(CanCreateFileIn(PathAt(name)), can);
    AtFolder const here(Root());
    QCOMPARE(CanCreateFileIn(QString::fromLatin1(name)), can);

    QCOMPARE(TreeOf(Root()), before);
}

void FileUtilsFoldersTest::filesCannotBeCreatedOnAFullOrReadOnlyVolume_data()
{
    QTest::addColumn<bool>("byTrying");
    QTest::newRow("CanCreateFileIn") << false;
    QTest::newRow("TryCreateTmpFile") << true;
}

void FileUtilsFoldersTest::filesCannotBeCreatedOnAFullOrReadOnlyVolume()
{
    QFETCH(bool, byTrying);
    MakeFolder(At("volume"));
    auto const ask = [&] {
        return Text(byTrying ? TryCreateTmpFile(PathAt("volume")) : CanCreateFileIn(PathAt("volume")));
    };

    for (char const* const mode : {"nr_inodes=2,mode=0777", "nr_inodes=2,mode=0775", "nr_inodes=2,mode=0755"}) {
        QByteArray const found = RunWithMount(At("volume"), mode, [&] {
            QByteArray answers = ask();
            MakeFile(At("volume/last"));
            answers += ' ' + ask();
            Check(unlink(At("volume/last").c_str()));
            answers += ' ' + ask();
            Check(mount("none", At("volume").c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr));
            return answers + ' ' + ask();
        });
        QCOMPARE(found, QByteArray("yes no yes no"));
    }
}

void FileUtilsFoldersTest::filesCanBeReadWhereTheFolderIsReadable_data()
{
    QTest::addColumn<uid_t>("owner");
    QTest::addColumn<gid_t>("group");
    QTest::addColumn<uint>("mode");
    QTest::addColumn<bool>("can");
    // clang-format off
    QTest::newRow("open to others")                 << Them << TheirGroup << 0005U << true;
    QTest::newRow("closed to others")               << Them << TheirGroup << 0772U << false;
    QTest::newRow("others may list alone")          << Them << TheirGroup << 0774U << false;
    QTest::newRow("others may enter alone")         << Them << TheirGroup << 0771U << false;
    QTest::newRow("open to the group")              << Them << OurGroup   << 0050U << true;
    QTest::newRow("closed to the group alone")      << Them << OurGroup   << 0707U << false;
    QTest::newRow("own")                            << Us   << OurGroup   << 0500U << true;
    QTest::newRow("own, closed to the owner alone") << Us   << OurGroup   << 0277U << false;
    // clang-format on
}

void FileUtilsFoldersTest::filesCanBeReadWhereTheFolderIsReadable()
{
    QFETCH(uid_t, owner);
    QFETCH(gid_t, group);
    QFETCH(uint, mode);
    QFETCH(bool, can);
    MakeFolder(At("folder"));
    MakeLink(At("link"), "folder");
    Check(chown(At("folder").c_str(), owner, group));
    Check(chmod(At("folder").c_str(), mode));

    QByteArray const found = RunAs({Us, Us, OurGroup, OurGroup, {}}, [&] {
        return Text(CanReadFileIn(PathAt("folder"))) + ' ' + Text(CanReadFileIn(PathAt("link/")));
    });

    QCOMPARE(found, Text(can) + ' ' + Text(can));
}

void FileUtilsFoldersTest::rootReadsFilesInAnyFolder()
{
    MakeFoldersOfFolderRows();
    Check(chmod(At("folder").c_str(), 0000));
    for (char const* const name : {"folder", "folder/", "link"}) {
        QVERIFY2(CanReadFileIn(PathAt(name)), name);
    }
    for (char const* const name : {"missing", "dangling", "file", "open-file", "link-to-file", "pipe"}) {
        QVERIFY2(!CanReadFileIn(PathAt(name)), name);
    }
}

void FileUtilsFoldersTest::temporaryFileIsTriedInWhatIsAFolder()
{
    QFETCH(QByteArray, name);
    QFETCH(bool, can);
    MakeFoldersOfFolderRows();
    QByteArrayList const before = TreeOf(Root());

    QCOMPARE(TryCreateTmpFile(PathAt(name)), can);
    AtFolder const here(Root());
    QCOMPARE(TryCreateTmpFile(QString::fromLatin1(name)), can);

    QCOMPARE(TreeOf(Root()), before);
}

void FileUtilsFoldersTest::temporaryFileLooksAtNoPermissions_data()
{
    QTest::addColumn<uid_t>("user");
    QTest::addColumn<uint>("mode");
    QTest::addColumn<bool>("can");
    QTest::newRow("root in a folder of another user") << ::Root << 0700U << true;
    QTest::newRow("root in a read-only folder") << ::Root << 0000U << true;
    QTest::newRow("ordinary user in a folder of another user") << Us << 0755U << false;
    QTest::newRow("ordinary user in a folder open to all") << Us << 0777U << true;
    QTest::newRow("owner in a read-only folder") << Them << 0555U << false;
    QTest::newRow("owner in a folder that cannot be listed") << Them << 0300U << true;
}

void FileUtilsFoldersTest::temporaryFileLooksAtNoPermissions()
{
    QFETCH(uid_t, user);
    QFETCH(uint, mode);
    QFETCH(bool, can);
    MakeFolder(At("folder"));
    Check(chown(At("folder").c_str(), Them, TheirGroup));
    Check(chmod(At("folder").c_str(), mode));

    QByteArray const found =
        RunAs({user, user, OurGroup, OurGroup, {}}, [&] { return Text(TryCreateTmpFile(PathAt("folder"))); });

    QCOMPARE(found, Text(can));
    QCOMPARE(TreeOf(Root()), QByteArrayList{"folder"});
}

void FileUtilsFoldersTest::temporaryFileInAnyNameLeavesNothing()
{
    QFETCH(QByteArray, name);
    // What is no UTF-8 cannot be named by a QString.
    QByteArray const encoded = QFile::encodeName(QFile::decodeName(name));
    MakeFolder(At(encoded.left(255).toStdString()));
    int const descriptors = OpenDescriptors();

    QVERIFY(TryCreateTmpFile(PathAt(encoded.left(255))));
    QVERIFY(CanCreateFileIn(PathAt(encoded.left(255))));

    QCOMPARE(TreeOf(Root()), QByteArrayList{encoded.left(255)});
    QCOMPARE(OpenDescriptors(), descriptors);
}

// RemoveDir

void FileUtilsFoldersTest::whatIsOldEnoughIsRemoved_data()
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

void FileUtilsFoldersTest::whatIsOldEnoughIsRemoved()
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
                        {"1960", -10 * 365 * Day - 1}};
    for (char const* const slash : {"", "/"}) {
        for (Row const& row : rows) {
            Date(MakeEntry(At(row.name) + slash), row.moment);
        }

        RemoveDir(PathAt(""), days, false);

        QCOMPARE(TreeOf(Root()).join(' '), left);
        Empty(Root());
    }
}

void FileUtilsFoldersTest::ageIsExactToTheMillisecond_data()
{
    QTest::addColumn<int>("days");
    for (int const days : {0, 1, 30, -1, 20000}) {
        QTest::newRow(qPrintable(QString::number(days))) << days;
    }
}

void FileUtilsFoldersTest::ageIsExactToTheMillisecond()
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

void FileUtilsFoldersTest::daysAreThoseOfTheCalendar_data()
{
    QTest::addColumn<Milliseconds>("now");
    QTest::addColumn<Milliseconds>("threshold");
    // The clocks went forward on 2021-03-28 and back on 2021-10-31, both at 01:00 UTC.
    QTest::newRow("day of 23 hours") << 1616925600 * Second << (1616925600 * Second - 23 * Hour);
    QTest::newRow("day of 24 hours") << 1617012000 * Second << (1617012000 * Second - 24 * Hour);
    QTest::newRow("day of 25 hours") << 1635681600 * Second << (1635681600 * Second - 25 * Hour);
}

void FileUtilsFoldersTest::daysAreThoseOfTheCalendar()
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

void FileUtilsFoldersTest::everyKindIsRemovedByItsOwnAge_data()
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

void FileUtilsFoldersTest::everyKindIsRemovedByItsOwnAge()
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

void FileUtilsFoldersTest::treeIsRemovedByAge_data()
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

void FileUtilsFoldersTest::treeIsRemovedByAge()
{
    QFETCH(std::vector<Entry>, entries);
    QFETCH(QByteArrayList, left);
    MakeTree(Root(), entries);

    RemoveDir(PathAt(""), 1, false);

    QCOMPARE(TreeOf(Root()), left);
}

void FileUtilsFoldersTest::folderItselfIsRemovedWhenAskedAndEmpty_data()
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

void FileUtilsFoldersTest::folderItselfIsRemovedWhenAskedAndEmpty()
{
    QFETCH(Milliseconds, ageOfFolder);
    QFETCH(Milliseconds, ageOfFile);
    QFETCH(bool, removeFolderItself);
    QFETCH(QByteArrayList, left);
    MakeTree(Root(), {{"folder/", ageOfFolder}, {"folder/file", ageOfFile}});

    RemoveDir(PathAt("folder"), 1, removeFolderItself);

    QCOMPARE(TreeOf(Root()), left);
}

void FileUtilsFoldersTest::linkToAFolderIsLeftWithAllBehindIt_data()
{
    QTest::addColumn<QByteArray>("path");
    for (char const* const path : {"link", "link/", "link//", "link/.", "link/./", ".//link//.//", "link-to-link",
                                   "link-to-link/", "old/link", "old/link/"}) {
        QTest::newRow(path) << QByteArray(path);
    }
}

void FileUtilsFoldersTest::linkToAFolderIsLeftWithAllBehindIt()
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

void FileUtilsFoldersTest::pathThroughALinkLeadsWhereTheSystemSays()
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

void FileUtilsFoldersTest::pathThatIsNoFolderIsLeftAlone_data()
{
    QTest::addColumn<QByteArray>("path");
    for (char const* const path : {"missing", "missing/", "missing/below", "file", "file/", "file/below", "pipe",
                                   "dangling", "dangling/", "loop", "link-to-file"}) {
        QTest::newRow(path) << QByteArray(path);
    }
    QTest::newRow("name that is too long") << QByteArray(256, 'n');
    QTest::newRow("path that is too long") << QByteArray("folder/").repeated(1000);
}

void FileUtilsFoldersTest::pathThatIsNoFolderIsLeftAlone()
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

void FileUtilsFoldersTest::emptyPathIsNotTheCurrentFolder_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("removeFolderItself");
    for (bool const removeFolderItself : {false, true}) {
        QTest::addRow("null, %d", removeFolderItself) << QString() << removeFolderItself;
        QTest::addRow("empty, %d", removeFolderItself) << QStringLiteral("") << removeFolderItself;
    }
}

void FileUtilsFoldersTest::emptyPathIsNotTheCurrentFolder()
{
    QFETCH(QString, path);
    QFETCH(bool, removeFolderItself);
    MakeTree(Root(), {{"current/", Old}, {"current/file", Old}, {"current/empty/", Old}});
    QByteArrayList const before = TreeOf(Root());
    AtFolder const here(At("current"));

    RemoveDir(path, 0, removeFolderItself);

    QCOMPARE(TreeOf(Root()), before);
}

void FileUtilsFoldersTest::pathWithNulIsNotCutShort()
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

void FileUtilsFoldersTest::anyWritingOfThePathWorks_data()
{
    QTest::addColumn<QByteArray>("path");
    for (char const* const path :
         {"folder", "folder/", "folder//", "./folder", "folder/.", "folder/./", ".//folder", "folder/../folder",
          "beside/../folder/", "link-to-top/folder", "link-to-top/folder/"}) {
        QTest::newRow(path) << QByteArray(path);
    }
}

void FileUtilsFoldersTest::anyWritingOfThePathWorks()
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

void FileUtilsFoldersTest::anyNameIsRemoved()
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

void FileUtilsFoldersTest::whatCannotBeRemovedStopsNothing_data()
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

void FileUtilsFoldersTest::whatCannotBeRemovedStopsNothing()
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

void FileUtilsFoldersTest::manyEntriesAreAllRemoved()
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
void FileUtilsFoldersTest::MakeDeepTree(std::string const& path, int levels, bool withNewFile) const
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

void FileUtilsFoldersTest::treeDeeperThanAnyPathIsRemovedWithFewDescriptors_data()
{
    QTest::addColumn<bool>("withNewFile");
    QTest::newRow("all old") << false;
    QTest::newRow("new file in the last folder") << true;
}

void FileUtilsFoldersTest::treeDeeperThanAnyPathIsRemovedWithFewDescriptors()
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

void FileUtilsFoldersTest::descriptorsAndCurrentFolderStayAsTheyWere()
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

// GetStandardPath, GetZelkorLibraryPath

void FileUtilsFoldersTest::firstCandidateThatIsNotEmptyIsTaken_data()
{
    QTest::addColumn<QStringList>("locations");
    QTest::addColumn<QStringList>("documents");
    QTest::addColumn<QString>("found");
    QString const a = QStringLiteral("/no/a");
    QString const b = QStringLiteral("/no/b");
    QString const d = QStringLiteral("/no/documents");
    QString const e = QStringLiteral("/no/more documents");
    QTest::newRow("first") << QStringList{a, b} << QStringList{d} << a;
    QTest::newRow("second, after an empty one") << QStringList{QString(), a, b} << QStringList{d} << a;
    QTest::newRow("third, after empty ones") << QStringList{QString(), QStringLiteral(""), b} << QStringList{d} << b;
    QTest::newRow("documents, without any") << QStringList() << QStringList{d, e} << d;
    QTest::newRow("documents, after empty ones") << QStringList{QString(), QString()} << QStringList{d, e} << d;
    QTest::newRow("second documents") << QStringList{QString()} << QStringList{QString(), e} << e;
    QTest::newRow("blank is not empty") << QStringList{QStringLiteral(" ")} << QStringList{d} << QStringLiteral(" ");
}

void FileUtilsFoldersTest::firstCandidateThatIsNotEmptyIsTaken()
{
    QFETCH(QStringList, locations);
    QFETCH(QStringList, documents);
    QFETCH(QString, found);
    RealAnswers const realAfterwards;
    Fixed().documents = documents;
    Fixed().locations = locations;

    QCOMPARE(GetStandardPath(QStandardPaths::MusicLocation), found);
}

void FileUtilsFoldersTest::homeIsTheLastResort_data()
{
    QTest::addColumn<QStringList>("locations");
    QTest::newRow("nothing") << QStringList();
    QTest::newRow("empty ones") << QStringList{QString(), QStringLiteral("")};
}

void FileUtilsFoldersTest::homeIsTheLastResort()
{
    QFETCH(QStringList, locations);
    MakeTree(Root(), {{"home/", New}, {"link@home", New}});
    RealAnswers const realAfterwards;
    Fixed().locations = locations;
    Fixed().documents = locations;
    for (char const* const name : {"home", "link"}) {
        Environment const home("HOME", QByteArray::fromStdString(At(name)));
        QCOMPARE(GetStandardPath(QStandardPaths::MusicLocation), PathAt("home"));
    }
}

void FileUtilsFoldersTest::standardPathIsTheDesktopsOwn_data()
{
    QTest::addColumn<int>("location");
    QTest::addColumn<QByteArray>("setting");
    QTest::addColumn<QByteArray>("path"); // below the home folder
    QTest::newRow("films, not set") << int{QStandardPaths::MoviesLocation} << QByteArray() << QByteArray("/Videos");
    QTest::newRow("films, set below home")
        << int{QStandardPaths::MoviesLocation} << QByteArray("XDG_VIDEOS_DIR=\"$HOME/My \xd0\x9a films\"")
        << QByteArray("/My \xd0\x9a films");
    QTest::newRow("music, set") << int{QStandardPaths::MusicLocation} << QByteArray("XDG_MUSIC_DIR=\"$HOME/sounds\"")
                                << QByteArray("/sounds");
    QTest::newRow("documents, set") << int{QStandardPaths::DocumentsLocation}
                                    << QByteArray("XDG_DOCUMENTS_DIR=\"$HOME/papers\"") << QByteArray("/papers");
    QTest::newRow("desktop, others set") << int{QStandardPaths::DesktopLocation}
                                         << QByteArray("XDG_DOCUMENTS_DIR=\"$HOME/papers\"") << QByteArray("/Desktop");
    QTest::newRow("home") << int{QStandardPaths::HomeLocation} << QByteArray() << QByteArray();
    QTest::newRow("unknown to the system is documents")
        << 31 << QByteArray("XDG_DOCUMENTS_DIR=\"$HOME/papers\"") << QByteArray("/papers");
    QTest::newRow("first of several") << int{QStandardPaths::GenericConfigLocation} << QByteArray()
                                      << QByteArray("/settings");
}

void FileUtilsFoldersTest::standardPathIsTheDesktopsOwn()
{
    QFETCH(int, location);
    QFETCH(QByteArray, setting);
    QFETCH(QByteArray, path);
    MakeFolder(At("home"));
    MakeFolder(At("home/settings"));
    Environment const home("HOME", QByteArray::fromStdString(At("home")));
    Environment const settings("XDG_CONFIG_HOME", QByteArray::fromStdString(At("home/settings")));
    QFile file(PathAt("home/settings/user-dirs.dirs"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(setting + '\n');
    file.close();

    QCOMPARE(GetStandardPath(static_cast<QStandardPaths::StandardLocation>(location)), PathAt("home" + path));

    QCOMPARE(TreeOf(At("home")), (QByteArrayList{"settings", "settings/user-dirs.dirs"}));
}

void FileUtilsFoldersTest::linkIsResolvedOnce_data()
{
    QTest::addColumn<QByteArray>("candidate");
    QTest::addColumn<QByteArray>("found");
    QTest::newRow("missing") << QByteArray("missing") << QByteArray("missing");
    QTest::newRow("folder") << QByteArray("folder") << QByteArray("folder");
    QTest::newRow("file") << QByteArray("file") << QByteArray("file");
    QTest::newRow("link") << QByteArray("link") << QByteArray("folder");
    QTest::newRow("link up and down") << QByteArray("folder/up") << QByteArray("folder");
    QTest::newRow("link to a link") << QByteArray("link-to-link") << QByteArray("link");
    QTest::newRow("dangling link") << QByteArray("dangling") << QByteArray("nowhere");
    QTest::newRow("link to a file") << QByteArray("link-to-file") << QByteArray("file");
    QTest::newRow("folder behind a link") << QByteArray("link/below") << QByteArray("link/below");
}

void FileUtilsFoldersTest::linkIsResolvedOnce()
{
    QFETCH(QByteArray, candidate);
    QFETCH(QByteArray, found);
    MakeTree(Root(), {{"folder/", New},
                      {"folder/below/", New},
                      {"folder/up@../folder", New},
                      {"file", New},
                      {"link@folder", New},
                      {"link-to-link@link", New},
                      {"link-to-file@file", New},
                      {"dangling@nowhere", New}});
    std::string const absolute = At("absolute");
    MakeLink(absolute, At(candidate.toStdString()));
    RealAnswers const realAfterwards;

    Fixed().locations = QStringList{PathAt(candidate)};
    QCOMPARE(GetStandardPath(QStandardPaths::MusicLocation), PathAt(found));

    Fixed().locations = QStringList{PathAt("absolute")};
    QCOMPARE(GetStandardPath(QStandardPaths::MusicLocation), PathAt(candidate));
}

void FileUtilsFoldersTest::libraryIsBelowTheFilms_data()
{
    QTest::addColumn<QByteArray>("subPath");
    QTest::addColumn<QByteArray>("tail");
    QTest::newRow("name") << QByteArray("Library") << QByteArray("/Library");
    QTest::newRow("names") << QByteArray("Library/2021") << QByteArray("/Library/2021");
    QTest::newRow("empty") << QByteArray() << QByteArray("/");
    QTest::newRow("placeholder") << QByteArray("%1 ") << QByteArray("/%1 ");
    QTest::newRow("as it is given") << QByteArray("/../a//b/") << QByteArray("//../a//b/");
}

void FileUtilsFoldersTest::libraryIsBelowTheFilms()
{
    QFETCH(QByteArray, subPath);
    QFETCH(QByteArray, tail);
    MakeFolder(At("home"));
    MakeFolder(At("films"));
    Environment const home("HOME", QByteArray::fromStdString(At("home")));
    Environment const settings("XDG_CONFIG_HOME", QByteArray::fromStdString(At("none")));

    QCOMPARE(GetZelkorLibraryPath(QString::fromLatin1(subPath)), PathAt("home/Videos" + tail));

    MakeLink(At("home/Videos"), "../films");
    QCOMPARE(GetZelkorLibraryPath(QString::fromLatin1(subPath)), PathAt("films" + tail));
}

// ExploreFile, ExploreSingleFile

void FileUtilsFoldersTest::AskingRow(char const* name, Asking asking, QByteArray const& folder,
                                     QByteArrayList const& files)
{
    QTest::newRow(name) << asking << folder << files;
}

void FileUtilsFoldersTest::AskingRows()
{
    QTest::addColumn<Asking>("asking");
    QTest::addColumn<QByteArray>("folder");
    QTest::addColumn<QByteArrayList>("files");
    AskingRow("file", Asking::File, "/no/folder", {"/no/folder/file"});
    AskingRow("file at the top", Asking::File, "/", {"/file"});
    AskingRow("file by its text", Asking::Text, "/no/folder", {"/no/folder/file"});
    AskingRow("file by its text beyond ASCII", Asking::Text, "/no/\xd0\xb8", {"/no/\xd0\xb8/\xf0\x9f\x93\x81 %20"});
    AskingRow("file in its folder", Asking::FolderAndFiles, "/no/folder", {"/no/folder/file"});
    AskingRow("file in another folder", Asking::FolderAndFiles, "/no/other", {"/no/folder/file"});
    AskingRow("files in their order", Asking::FolderAndFiles, "/no/folder",
              {"/no/folder/c", "/no/folder/a", "/no/folder/b"});
    AskingRow("file named twice", Asking::FolderAndFiles, "/no/folder", {"/no/folder/a", "/no/folder/a"});
    AskingRow("files of several folders", Asking::FolderAndFiles, "/no", {"/no/folder/z", "/no/a", "/y"});
}

void FileUtilsFoldersTest::fileManagerIsAskedToShowFiles()
{
    QFETCH(Asking, asking);
    QFETCH(QByteArray, folder);
    QFETCH(QByteArrayList, files);
    if (RanInAnotherProcess()) {
        return;
    }
    SessionBus const bus;
    FileManager manager(bus);
    QVERIFY(manager.isThere);
    Opener const opener;

    QVERIFY(Explore(asking, folder, files));

    QTRY_COMPARE_WITH_TIMEOUT(manager.calls.size(), 1, Timeout);
    QCOMPARE(manager.calls[0].interface, QStringLiteral("org.freedesktop.FileManager1"));
    QCOMPARE(manager.calls[0].method, QStringLiteral("ShowItems"));
    QCOMPARE(manager.calls[0].signature, QStringLiteral("ass"));
    QCOMPARE(PathsOf(manager.calls[0].uris), files);
    QCOMPARE(manager.calls[0].startupId, QString());
    QVERIFY(CatchUp(manager));
    QCOMPARE(manager.calls.size(), 1);
    QCOMPARE(opener.urls, QByteArrayList());
}

void FileUtilsFoldersTest::fileManagerIsAskedToShowTheFolderWithoutFiles()
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
    QCOMPARE(manager.calls[0].interface, QStringLiteral("org.freedesktop.FileManager1"));
    QCOMPARE(manager.calls[0].method, QStringLiteral("ShowFolders"));
    QCOMPARE(manager.calls[0].signature, QStringLiteral("ass"));
    QCOMPARE(manager.calls[0].uris, QStringList{QStringLiteral("file:///no/two%20words")});
    QCOMPARE(manager.calls[0].startupId, QString());
    QVERIFY(CatchUp(manager));
    QCOMPARE(manager.calls.size(), 1);
    QCOMPARE(opener.urls, QByteArrayList());
}

void FileUtilsFoldersTest::anyNameReachesTheFileManager()
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

void FileUtilsFoldersTest::relativePathReachesTheFileManagerAsAbsolute()
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

void FileUtilsFoldersTest::fileManagerIsNotWaitedFor()
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

void FileUtilsFoldersTest::fileManagerIsLookedForEachTime()
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

void FileUtilsFoldersTest::folderIsOpenedWhenTheFileManagerRefuses()
{
    QFETCH(Asking, asking);
    QFETCH(QByteArray, folder);
    QFETCH(QByteArrayList, files);
    if (RanInAnotherProcess()) {
        return;
    }
    SessionBus const bus;
    FileManager manager(bus);
    manager.refuses = true;
    QVERIFY(manager.isThere);
    Opener const opener;

    QVERIFY(Explore(asking, folder, files));
    QCOMPARE(opener.urls, QByteArrayList());

    QTRY_COMPARE_WITH_TIMEOUT(PathsOf(opener.urls), QByteArrayList{folder}, Timeout);
    QVERIFY(CatchUp(manager));
    QCOMPARE(opener.urls.size(), 1);
    QCOMPARE(manager.calls.size(), 1);
}

void FileUtilsFoldersTest::folderIsOpenedWithoutFileManager()
{
    QFETCH(Asking, asking);
    QFETCH(QByteArray, folder);
    QFETCH(QByteArrayList, files);
    if (RanInAnotherProcess()) {
        return;
    }
    SessionBus const bus;
    Opener const opener;

    QVERIFY(Explore(asking, folder, files));
    QCOMPARE(opener.urls, QByteArrayList());

    QTRY_COMPARE_WITH_TIMEOUT(PathsOf(opener.urls), QByteArrayList{folder}, Timeout);
    QVERIFY(CatchUp(QDBusConnection::sessionBus()));
    QCOMPARE(opener.urls.size(), 1);
}

void FileUtilsFoldersTest::folderIsOpenedWithoutBus_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::newRow("nowhere") << QByteArray("unix:path=/no/such/bus");
    QTest::newRow("no socket") << QByteArray("unix:path=/dev/null");
    QTest::newRow("nobody listens") << QByteArray("tcp:host=127.0.0.1,port=1");
    QTest::newRow("no address") << QByteArray("not an address");
    QTest::newRow("unknown kind") << QByteArray("pigeon:coop=1");
}

void FileUtilsFoldersTest::folderIsOpenedWithoutBus()
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

void FileUtilsFoldersTest::folderIsOpenedAfterTheBusHasGone()
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

void FileUtilsFoldersTest::anyFolderIsOpened()
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

void FileUtilsFoldersTest::nobodyToAskIsOneWarning()
{
    QFETCH(Asking, asking);
    QFETCH(QByteArray, folder);
    QFETCH(QByteArrayList, files);
    if (RanInAnotherProcess()) {
        return;
    }
    Environment const bus("DBUS_SESSION_BUS_ADDRESS", "unix:path=/no/such/bus");
    LogCapture const log;
    ExpectQtWarning(NothingOpens());

    QVERIFY(!Explore(asking, folder, files));

    QCOMPARE(log.Lines().size(), 1);
    QCOMPARE(log.Lines()[0].severity, static_cast<google::LogSeverity>(google::GLOG_WARNING));
    QCOMPARE(log.Lines()[0].file, QStringLiteral("Util/Platforms/linux/FileUtils.cpp"));
    QVERIFY2(log.Lines()[0].text.endsWith(QString::fromUtf8(folder)), qPrintable(log.Lines()[0].text));
}

void FileUtilsFoldersTest::nobodyAfterTheBusIsOneWarning()
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
    QCOMPARE(log.Lines()[0].severity, static_cast<google::LogSeverity>(google::GLOG_WARNING));
    QCOMPARE(log.Lines()[0].file, QStringLiteral("Util/Platforms/linux/FileUtils.cpp"));
    QVERIFY2(log.Lines()[0].text.endsWith(QStringLiteral("/no/folder")), qPrintable(log.Lines()[0].text));
    QVERIFY(CatchUp(QDBusConnection::sessionBus()));
    QCOMPARE(log.Lines().size(), 1);
}

void FileUtilsFoldersTest::nothingIsThrownWithoutCurrentFolder_data()
{
    QTest::addColumn<bool>("withBus");
    QTest::newRow("with file manager") << true;
    QTest::newRow("without bus") << false;
}

void FileUtilsFoldersTest::nothingIsThrownWithoutCurrentFolder()
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

void FileUtilsFoldersTest::programMayEndBeforeTheAnswer()
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

// GetAvailableDiskSpace

void FileUtilsFoldersTest::spaceIsWhatTheVolumeTells_data()
{
    QTest::addColumn<QByteArray>("options");
    QTest::addColumn<qlonglong>("size");
    QTest::newRow("1 MiB") << QByteArray("size=1m") << 0x10'0000LL;
    QTest::newRow("more than 4 GiB") << QByteArray("size=5g") << 0x1'4000'0000LL;
    QTest::newRow("more than 4 billion GiB") << QByteArray("nr_blocks=0x100000000000") << 0x100'0000'0000'0000LL;
}

void FileUtilsFoldersTest::spaceIsWhatTheVolumeTells()
{
    QFETCH(QByteArray, options);
    QFETCH(qlonglong, size);
    MakeFolder(At("volume"));
    MakeLink(At("link"), "volume");

    QByteArray const found = RunWithMount(At("volume"), options.constData(), [&] {
        AtFolder const here(At("volume"));
        auto const space = [&](std::string const& path) {
            return QByteArray::number(size - GetAvailableDiskSpace(ioPath(path))) + ' ';
        };
        QByteArray spaces = space(At("volume")) + space(At("link")) + space(".");
        MakeFile("file");
        spaces += space(At("volume")) + space(At("volume/file")) + space("file");
        MakeFile("second");
        return spaces + space(At("volume"));
    });

    QCOMPARE(found, QByteArray("0 0 0 4096 4096 4096 8192 "));
}

void FileUtilsFoldersTest::spaceIsWhatThisUserMayFill_data()
{
    QTest::addColumn<qlonglong>("blocksForUsers");
    QTest::addColumn<qlonglong>("blockSize");
    QTest::addColumn<qlonglong>("space");
    QTest::newRow("some") << 3LL << 512LL << 1536LL;
    QTest::newRow("none") << 0LL << 4096LL << 0LL;
    QTest::newRow("more than 32 bits of blocks") << 0x2'0000'0000LL << 4096LL << 0x2000'0000'0000LL;
    QTest::newRow("more than 32 bits of bytes") << 0x0fff'ffffLL << 4096LL << 0xff'ffff'f000LL;
}

void FileUtilsFoldersTest::spaceIsWhatThisUserMayFill()
{
    QFETCH(qlonglong, blocksForUsers);
    QFETCH(qlonglong, blockSize);
    QFETCH(qlonglong, space);
    struct statvfs volume = {};
    volume.f_bavail = static_cast<fsblkcnt_t>(blocksForUsers);
    volume.f_bfree = volume.f_bavail + 4;
    volume.f_blocks = volume.f_bavail + 10;
    volume.f_frsize = static_cast<unsigned long>(blockSize);
    volume.f_bsize = volume.f_frsize * 8;
    RealAnswers const realAfterwards;
    Fixed().volume = &volume;

    QCOMPARE(GetAvailableDiskSpace(ioPath(Root())), space);
}

void FileUtilsFoldersTest::spaceOfWhatCannotBeReadIsNone_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("missing") << QByteArray("missing");
    QTest::newRow("below missing") << QByteArray("missing/below");
    QTest::newRow("dangling link") << QByteArray("dangling");
    QTest::newRow("below a file") << QByteArray("file/name");
    QTest::newRow("in a closed folder") << QByteArray("closed/file");
    QTest::newRow("name that is too long") << QByteArray(256, 'n');
}

void FileUtilsFoldersTest::spaceOfWhatCannotBeReadIsNone()
{
    QFETCH(QByteArray, name);
    MakeTree(Root(), {{"file", New}, {"dangling@nowhere", New}, {"closed/", New}, {"closed/file", New}});
    Check(chmod(At("closed").c_str(), 0700));

    QByteArray const found = RunAsOrdinaryUser([&] {
        return QByteArray::number(GetAvailableDiskSpace(ioPath(At(name.toStdString())))) + ' ' +
               QByteArray::number(GetAvailableDiskSpace(ioPath()));
    });

    QCOMPARE(found, QByteArray("0 0"));
}

ZQTUTIL_TEST_MAIN(FileUtilsFoldersTest)
#include "FileUtilsFoldersTest.moc"

// What QtLogHandler does to a whole process: at its first use, at its end, and with what Qt aborts for.

#include <support/TestCase.h>
#include <support/processes/Plays.h>

#include <Util/QtLogHandler.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <csignal>
#include <functional>
#include <future>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

#include <glog/logging.h>

using Zelkor::Testing::Play;
using Zelkor::Testing::StartPlay;
using Zelkor::Util::QtLogHandler;

namespace
{

constexpr int Timeout = 60000;

// The plays. Each writes to standard output what is logged and what the handlers get, as it happens.

void Tell(std::string const& line)
{
    std::string const whole = line + '\n';
    if (write(STDOUT_FILENO, whole.data(), whole.size()) != static_cast<ssize_t>(whole.size())) {
        _exit(2);
    }
}

class TellingSink : public google::LogSink
{
public:
    void send(google::LogSeverity severity, char const* /*fullFilename*/, char const* /*baseFilename*/, int /*line*/,
              google::LogMessageTime const& /*time*/, char const* message, size_t messageSize) override
    {
        Tell(std::string("log ") + google::GetLogSeverityName(severity) + ' ' + std::string(message, messageSize));
    }
};

void PreviousHandler(QtMsgType /*type*/, QMessageLogContext const& /*context*/, QString const& text)
{
    Tell("previous " + text.toStdString());
}

void OtherHandler(QtMsgType /*type*/, QMessageLogContext const& /*context*/, QString const& text)
{
    Tell("other " + text.toStdString());
}

void WarningHandler(QtMsgType type, QMessageLogContext const& context, QString const& text)
{
    PreviousHandler(type, context, text);
    QMessageLogger().warning("from the handler");
}

void LoggingHandler(QtMsgType type, QMessageLogContext const& context, QString const& text)
{
    LOG(WARNING) << "from the handler";
    PreviousHandler(type, context, text);
}

/// Does something when static objects are destroyed.
class AtExit
{
public:
    explicit AtExit(std::function<void()> act)
        : act_(std::move(act))
    {}
    ~AtExit() { act_(); }
    AtExit(AtExit const&) = delete;
    AtExit& operator=(AtExit const&) = delete;

private:
    std::function<void()> act_;
};

void Warn(char const* text)
{
    QMessageLogger().warning("%s", text);
}

void PlayFirstUse()
{
    qInstallMessageHandler(PreviousHandler);
    Warn("before");
    QtLogHandler& handler = QtLogHandler::GetInstance();
    Warn("after");
    handler.Uninstall();
    Warn("at the end");
}

void PlayFirstUseOnManyThreads()
{
    constexpr int Count = 16;
    qInstallMessageHandler(PreviousHandler);
    std::promise<void> start;
    std::shared_future<void> const started = start.get_future().share();
    std::vector<std::future<QtLogHandler*>> results;
    results.reserve(Count);
    for (int i = 0; i < Count; ++i) {
        results.push_back(std::async(std::launch::async, [started] {
            started.wait();
            return &QtLogHandler::GetInstance();
        }));
    }
    start.set_value();
    bool same = true;
    for (auto& result : results) {
        same = result.get() == &QtLogHandler::GetInstance() && same;
    }
    Tell(same ? "same" : "different");
    Warn("after");
    QtLogHandler::GetInstance().Uninstall();
    Warn("at the end");
}

void PlayNoHandlerBefore()
{
    QtLogHandler::GetInstance();
    Warn("text");
}

void PlayExit()
{
    qInstallMessageHandler(PreviousHandler);
    static AtExit const afterTheHandler([] {
        Tell(QCoreApplication::instance() ? "application" : "no application");
        Warn("after the handler");
    });
    QtLogHandler::GetInstance();
    static AtExit const beforeTheHandler([] { Warn("before the handler"); });
    Warn("while it runs");
}

void PlayExitWithAnotherOnTop()
{
    qInstallMessageHandler(PreviousHandler);
    static QtMessageHandler replaced = nullptr;
    static AtExit const afterTheHandler([] {
        Warn("through Qt");
        replaced(QtWarningMsg, QMessageLogContext(), QStringLiteral("through the other"));
    });
    QtLogHandler::GetInstance();
    replaced = qInstallMessageHandler(OtherHandler);
}

void PlayExitUninstalled()
{
    qInstallMessageHandler(PreviousHandler);
    static AtExit const afterTheHandler([] { Warn("after the handler"); });
    QtLogHandler::GetInstance().Uninstall();
    qInstallMessageHandler(OtherHandler);
}

/// \a dropped: a filter drops the message.
void EndFatally(bool dropped)
{
    rlimit const noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    qInstallMessageHandler(PreviousHandler);
    QtLogHandler::GetInstance().AddFilter([dropped](QString const&) { return !dropped; });
    static AtExit const atExit([] { Tell("exit"); });
    QMessageLogger().fatal("the end");
}

void PlayFatal()
{
    EndFatally(false);
}

void PlayFatalDropped()
{
    EndFatally(true);
}

void PlayWarningTextFilter()
{
    qInstallMessageHandler(PreviousHandler);
    QtLogHandler::GetInstance().AddFilter([](QString const&) {
        Warn("from the filter");
        return true;
    });
    Warn("text");
    Warn("text");
}

void PlayWarningFullFilter()
{
    qInstallMessageHandler(PreviousHandler);
    QtLogHandler::GetInstance().AddFilter([](QtMsgType, QMessageLogContext const&, QString const&) {
        Warn("from the filter");
        return true;
    });
    Warn("text");
    Warn("text");
}

void PlayWarningHandler()
{
    qInstallMessageHandler(WarningHandler);
    QtLogHandler::GetInstance();
    Warn("text");
    Warn("text");
}

void PlayLoggingHandler()
{
    qInstallMessageHandler(LoggingHandler);
    QtLogHandler::GetInstance();
    Warn("text");
}

constexpr Play plays[] = {
    {"first use", PlayFirstUse},
    {"first use on many threads", PlayFirstUseOnManyThreads},
    {"no handler before", PlayNoHandlerBefore},
    {"exit", PlayExit},
    {"exit with another on top", PlayExitWithAnotherOnTop},
    {"exit uninstalled", PlayExitUninstalled},
    {"fatal", PlayFatal},
    {"fatal dropped", PlayFatalDropped},
    {"warning text filter", PlayWarningTextFilter},
    {"warning full filter", PlayWarningFullFilter},
    {"warning handler", PlayWarningHandler},
    {"logging handler", PlayLoggingHandler},
};

int RunPlay(int argc, char** argv)
{
    google::InitGoogleLogging(argv[0]);
    for (int severity = google::GLOG_INFO; severity < google::NUM_SEVERITIES; ++severity) {
        google::SetLogDestination(severity, "");
    }
    google::SetStderrLogging(google::GLOG_FATAL);
    static auto* const sink = new TellingSink; // outlives all other static objects
    google::AddLogSink(sink);
    return Zelkor::Testing::RunPlay(argc, argv, plays);
}

/// What became of a process that ran a play.
struct Outcome
{
    QStringList told;
    QString errors; // what it wrote to standard error
    bool crashed;
    int code;
};

/// Runs a play in a process of its own.
Outcome Run(char const* play)
{
    QProcess process;
    StartPlay(process, play);
    if (!process.waitForFinished(Timeout)) {
        return {{QStringLiteral("hangs")}, QString(), false, -1};
    }
    QString const told = QString::fromUtf8(process.readAllStandardOutput());
    return {told.split(QLatin1Char('\n'), Qt::SkipEmptyParts), QString::fromUtf8(process.readAllStandardError()),
            process.exitStatus() == QProcess::CrashExit, process.exitCode()};
}

} // namespace

class QtLogHandlerProcessTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void worksFromTheFirstUseToTheEnd_data()
    {
        QTest::addColumn<QByteArray>("play");
        QTest::addColumn<QStringList>("told");
        auto const row = [](char const* name, char const* play, std::initializer_list<char const*> told) {
            QStringList lines;
            for (char const* const line : told) {
                lines += QString::fromLatin1(line);
            }
            QTest::newRow(name) << QByteArray(play) << lines;
        };
        row("installs itself at the first use", "first use",
            {"previous before", "log WARNING undefined:0 after", "previous after", "previous at the end"});
        row("is made once by many threads", "first use on many threads",
            {"same", "log WARNING undefined:0 after", "previous after", "previous at the end"});
        row("lets the previous handler log", "logging handler",
            {"log WARNING undefined:0 text", "log WARNING from the handler", "previous text"});
        row("works until it is destroyed", "exit",
            {"log WARNING undefined:0 while it runs", "previous while it runs",
             "log WARNING undefined:0 before the handler", "previous before the handler", "no application",
             "previous after the handler"});
        row("leaves messages after it to the previous handler", "exit with another on top",
            {"previous through Qt", "previous through the other"});
        row("leaves another handler when uninstalled", "exit uninstalled", {"other after the handler"});
    }

    void worksFromTheFirstUseToTheEnd()
    {
        QFETCH(QByteArray, play);
        QFETCH(QStringList, told);
        Outcome const outcome = Run(play.constData());
        QCOMPARE(outcome.told, told);
        QCOMPARE(outcome.errors, QString());
        QVERIFY(!outcome.crashed);
        QCOMPARE(outcome.code, 0);
    }

    void handsOnToQtsOwnHandler()
    {
        Outcome const outcome = Run("no handler before");
        QCOMPARE(outcome.told, QStringList(QStringLiteral("log WARNING undefined:0 text")));
        QCOMPARE(outcome.errors, QStringLiteral("text\n"));
        QCOMPARE(outcome.code, 0);
    }

    void leavesMessagesOfWhatItCallsToQt_data()
    {
        QTest::addColumn<QByteArray>("play");
        QTest::addColumn<QString>("message");
        QTest::newRow("text filter") << QByteArray("warning text filter") << QStringLiteral("from the filter");
        QTest::newRow("full filter") << QByteArray("warning full filter") << QStringLiteral("from the filter");
        QTest::newRow("previous handler") << QByteArray("warning handler") << QStringLiteral("from the handler");
    }

    void leavesMessagesOfWhatItCallsToQt()
    {
        QFETCH(QByteArray, play);
        QFETCH(QString, message);
        Outcome const outcome = Run(play.constData());
        QString const logged = QStringLiteral("log WARNING undefined:0 text");
        QString const forwarded = QStringLiteral("previous text");
        QCOMPARE(outcome.told, QStringList({logged, forwarded, logged, forwarded}));
        QCOMPARE(outcome.errors.count(message), 2);
        QCOMPARE(outcome.code, 0);
    }

    void leavesItToQtToAbort_data()
    {
        QTest::addColumn<QByteArray>("play");
        QTest::addColumn<QStringList>("told");
        QTest::newRow("logs and forwards before")
            << QByteArray("fatal")
            << QStringList({QStringLiteral("log ERROR undefined:0 the end"), QStringLiteral("previous the end")});
        QTest::newRow("no filter keeps Qt from it") << QByteArray("fatal dropped") << QStringList();
    }

    void leavesItToQtToAbort()
    {
        QFETCH(QByteArray, play);
        QFETCH(QStringList, told);
        Outcome const outcome = Run(play.constData());
        QCOMPARE(outcome.told, told);
        QVERIFY(outcome.crashed);
        QCOMPARE(outcome.code, SIGABRT);
    }
};

int main(int argc, char** argv)
{
    return Zelkor::Testing::IsPlay(argc, argv) ? RunPlay(argc, argv)
                                               : Zelkor::Testing::RunTests<QtLogHandlerProcessTest>(argc, argv, false);
}

#include "QtLogHandlerProcessTest.moc"

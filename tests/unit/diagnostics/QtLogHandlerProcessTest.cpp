// Tests QtLogHandler at its first use, at the exit of the process, and with fatal messages. Each test runs in a
// separate process, because the handler is a singleton that exists until exit.

#include <support/TestCase.h>
#include <support/Timeouts.h>
#include <support/processes/ChildMain.h>

#include <Util/QtLogHandler.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <csignal>
#include <functional>
#include <future>
#include <string>
#include <utility>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

#include <glog/logging.h>

using Zelkor::Testing::ChildMain;
using Zelkor::Testing::StartChildMain;
using Zelkor::Testing::TimeoutMs;
using Zelkor::Util::QtLogHandler;

namespace
{

// --- Functions and classes that are used in child processes

/// Prints \a text as a line. The output is not buffered, so the line is printed even if the process crashes afterwards.
void PrintLine(std::string const& text)
{
    std::string const line = text + '\n';
    if (write(STDOUT_FILENO, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
        _exit(2);
    }
}

class PrintingSink : public google::LogSink
{
public:
    void send(google::LogSeverity severity, char const* /*fullFilename*/, char const* /*baseFilename*/, int /*line*/,
              google::LogMessageTime const& /*time*/, char const* message, size_t messageSize) override
    {
        PrintLine(std::string("log ") + google::GetLogSeverityName(severity) + ": " +
                  std::string(message, messageSize));
    }
};

void PreviousHandler(QtMsgType /*type*/, QMessageLogContext const& /*context*/, QString const& text)
{
    PrintLine("previous handler: " + text.toStdString());
}

void OtherHandler(QtMsgType /*type*/, QMessageLogContext const& /*context*/, QString const& text)
{
    PrintLine("other handler: " + text.toStdString());
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

/// Calls a function in its destructor. Static objects of this class run code at exit.
class AtExit
{
public:
    explicit AtExit(std::function<void()> function)
        : function_(std::move(function))
    {}
    ~AtExit() { function_(); }
    AtExit(AtExit const&) = delete;
    AtExit& operator=(AtExit const&) = delete;

private:
    std::function<void()> function_;
};

void Warn(char const* text)
{
    QMessageLogger().warning("%s", text);
}

void UseAndUninstall()
{
    qInstallMessageHandler(PreviousHandler);
    Warn("before the first use");
    QtLogHandler& handler = QtLogHandler::GetInstance();
    Warn("after the first use");
    handler.Uninstall();
    Warn("after uninstall");
}

void UseOnManyThreads()
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
    bool isSame = true;
    for (auto& result : results) {
        isSame = result.get() == &QtLogHandler::GetInstance() && isSame;
    }
    PrintLine(isSame ? "same instance" : "different instances");
    Warn("after the first use");
    QtLogHandler::GetInstance().Uninstall();
    Warn("after uninstall");
}

void UseWithoutPreviousHandler()
{
    QtLogHandler::GetInstance();
    Warn("text");
}

void WarnAtExit()
{
    qInstallMessageHandler(PreviousHandler);
    // This object is constructed before the log handler and is therefore destroyed after the log handler.
    static AtExit const afterTheHandler([] {
        PrintLine(QCoreApplication::instance() ? "application" : "no application");
        Warn("after the handler");
    });
    QtLogHandler::GetInstance();
    static AtExit const beforeTheHandler([] { Warn("before the handler"); });
    Warn("before exit");
}

void ExitWithOtherHandlerInstalled()
{
    qInstallMessageHandler(PreviousHandler);
    static QtMessageHandler replacedHandler = nullptr;
    static AtExit const afterTheHandler([] {
        Warn("by Qt");
        replacedHandler(QtWarningMsg, QMessageLogContext(), QStringLiteral("by the other handler"));
    });
    QtLogHandler::GetInstance();
    replacedHandler = qInstallMessageHandler(OtherHandler);
}

void ExitAfterUninstall()
{
    qInstallMessageHandler(PreviousHandler);
    static AtExit const afterTheHandler([] { Warn("after the handler"); });
    QtLogHandler::GetInstance().Uninstall();
    qInstallMessageHandler(OtherHandler);
}

void SendFatalMessage(bool isDroppedByAFilter)
{
    rlimit const noCoreDump{0, 0};
    setrlimit(RLIMIT_CORE, &noCoreDump);
    qInstallMessageHandler(PreviousHandler);
    QtLogHandler::GetInstance().AddFilter([isDroppedByAFilter](QString const&) { return !isDroppedByAFilter; });
    static AtExit const atExit([] { PrintLine("exit"); });
    QMessageLogger().fatal("fatal text");
}

void AbortWithFatalMessage()
{
    SendFatalMessage(false);
}

void AbortWithDroppedFatalMessage()
{
    SendFatalMessage(true);
}

void WarnInTextFilter()
{
    qInstallMessageHandler(PreviousHandler);
    QtLogHandler::GetInstance().AddFilter([](QString const&) {
        Warn("from the filter");
        return true;
    });
    Warn("text");
    Warn("text");
}

void WarnInFullFilter()
{
    qInstallMessageHandler(PreviousHandler);
    QtLogHandler::GetInstance().AddFilter([](QtMsgType, QMessageLogContext const&, QString const&) {
        Warn("from the filter");
        return true;
    });
    Warn("text");
    Warn("text");
}

void WarnInPreviousHandler()
{
    qInstallMessageHandler(WarningHandler);
    QtLogHandler::GetInstance();
    Warn("text");
    Warn("text");
}

void LogInPreviousHandler()
{
    qInstallMessageHandler(LoggingHandler);
    QtLogHandler::GetInstance();
    Warn("text");
}

constexpr ChildMain childMains[] = {
    {"UseAndUninstall", UseAndUninstall},
    {"UseOnManyThreads", UseOnManyThreads},
    {"UseWithoutPreviousHandler", UseWithoutPreviousHandler},
    {"WarnAtExit", WarnAtExit},
    {"ExitWithOtherHandlerInstalled", ExitWithOtherHandlerInstalled},
    {"ExitAfterUninstall", ExitAfterUninstall},
    {"AbortWithFatalMessage", AbortWithFatalMessage},
    {"AbortWithDroppedFatalMessage", AbortWithDroppedFatalMessage},
    {"WarnInTextFilter", WarnInTextFilter},
    {"WarnInFullFilter", WarnInFullFilter},
    {"WarnInPreviousHandler", WarnInPreviousHandler},
    {"LogInPreviousHandler", LogInPreviousHandler},
};

int RunChildMain(int argc, char** argv)
{
    google::InitGoogleLogging(argv[0]);
    for (int severity = google::GLOG_INFO; severity < google::NUM_SEVERITIES; ++severity) {
        google::SetLogDestination(severity, "");
    }
    google::SetStderrLogging(google::GLOG_FATAL);
    static auto* const sink = new PrintingSink; // never destroyed, because messages are logged until the process ends
    google::AddLogSink(sink);
    return Zelkor::Testing::RunChildMain(argc, argv, childMains);
}

// --- Helpers of the tests

/// The result of a child process.
struct Result
{
    QByteArray output;
    QByteArray errorOutput;
    QProcess::ExitStatus exitStatus;
    int exitCode; // the exit code, or the signal number if the process crashed
};

Result RunChildProcess(char const* childMain)
{
    QProcess process;
    StartChildMain(process, childMain);
    bool const isFinished = process.waitForFinished(TimeoutMs);
    return {isFinished ? process.readAllStandardOutput() : QByteArray("timeout"), process.readAllStandardError(),
            process.exitStatus(), process.exitCode()};
}

void VerifySuccess(Result const& result)
{
    QCOMPARE(result.exitStatus, QProcess::NormalExit);
    QCOMPARE(result.exitCode, 0);
}

} // namespace

class QtLogHandlerProcessTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void installsItselfAtTheFirstUse()
    {
        Result const result = RunChildProcess("UseAndUninstall");
        QCOMPARE(result.output, QByteArray("previous handler: before the first use\n"
                                           "log WARNING: undefined:0 after the first use\n"
                                           "previous handler: after the first use\n"
                                           "previous handler: after uninstall\n"));
        QCOMPARE(result.errorOutput, QByteArray());
        VerifySuccess(result);
    }

    void isCreatedOnceByManyThreads()
    {
        Result const result = RunChildProcess("UseOnManyThreads");
        QCOMPARE(result.output, QByteArray("same instance\n"
                                           "log WARNING: undefined:0 after the first use\n"
                                           "previous handler: after the first use\n"
                                           "previous handler: after uninstall\n"));
        QCOMPARE(result.errorOutput, QByteArray());
        VerifySuccess(result);
    }

    void allowsThePreviousHandlerToLog()
    {
        Result const result = RunChildProcess("LogInPreviousHandler");
        QCOMPARE(result.output, QByteArray("log WARNING: undefined:0 text\n"
                                           "log WARNING: from the handler\n"
                                           "previous handler: text\n"));
        QCOMPARE(result.errorOutput, QByteArray());
        VerifySuccess(result);
    }

    void handlesMessagesUntilItsDestruction()
    {
        Result const result = RunChildProcess("WarnAtExit");
        QCOMPARE(result.output, QByteArray("log WARNING: undefined:0 before exit\n"
                                           "previous handler: before exit\n"
                                           "log WARNING: undefined:0 before the handler\n"
                                           "previous handler: before the handler\n"
                                           "no application\n"
                                           "previous handler: after the handler\n"));
        QCOMPARE(result.errorOutput, QByteArray());
        VerifySuccess(result);
    }

    void passesMessagesAfterItsDestructionToThePreviousHandler()
    {
        Result const result = RunChildProcess("ExitWithOtherHandlerInstalled");
        QCOMPARE(result.output, QByteArray("previous handler: by Qt\n"
                                           "previous handler: by the other handler\n"));
        QCOMPARE(result.errorOutput, QByteArray());
        VerifySuccess(result);
    }

    void keepsAnotherHandlerAtExitAfterUninstall()
    {
        Result const result = RunChildProcess("ExitAfterUninstall");
        QCOMPARE(result.output, QByteArray("other handler: after the handler\n"));
        QCOMPARE(result.errorOutput, QByteArray());
        VerifySuccess(result);
    }

    void forwardsToTheDefaultHandlerOfQt()
    {
        Result const result = RunChildProcess("UseWithoutPreviousHandler");
        QCOMPARE(result.output, QByteArray("log WARNING: undefined:0 text\n"));
        QCOMPARE(result.errorOutput, QByteArray("text\n"));
        VerifySuccess(result);
    }

    void doesNotHandleMessagesOfFiltersAndHandlers_data()
    {
        QTest::addColumn<QByteArray>("childMain");
        QTest::addColumn<QByteArray>("message");
        QTest::newRow("text filter") << QByteArray("WarnInTextFilter") << QByteArray("from the filter");
        QTest::newRow("full filter") << QByteArray("WarnInFullFilter") << QByteArray("from the filter");
        QTest::newRow("previous handler") << QByteArray("WarnInPreviousHandler") << QByteArray("from the handler");
    }

    void doesNotHandleMessagesOfFiltersAndHandlers()
    {
        QFETCH(QByteArray, childMain);
        QFETCH(QByteArray, message);
        Result const result = RunChildProcess(childMain.constData());
        QCOMPARE(result.output, QByteArray("log WARNING: undefined:0 text\n"
                                           "previous handler: text\n"
                                           "log WARNING: undefined:0 text\n"
                                           "previous handler: text\n"));
        // While a message handler runs, Qt does not call it again on the same thread. Qt prints the new message to
        // standard error instead.
        QCOMPARE(result.errorOutput.count(message), 2);
        VerifySuccess(result);
    }

    void logsAndForwardsAFatalMessageBeforeQtAborts()
    {
        Result const result = RunChildProcess("AbortWithFatalMessage");
        QCOMPARE(result.output, QByteArray("log ERROR: undefined:0 fatal text\n"
                                           "previous handler: fatal text\n"));
        QCOMPARE(result.exitStatus, QProcess::CrashExit);
        QCOMPARE(result.exitCode, SIGABRT);
    }

    void abortsAlthoughAFilterDropsTheMessage()
    {
        Result const result = RunChildProcess("AbortWithDroppedFatalMessage");
        QCOMPARE(result.output, QByteArray());
        QCOMPARE(result.exitStatus, QProcess::CrashExit);
        QCOMPARE(result.exitCode, SIGABRT);
    }
};

int main(int argc, char** argv)
{
    return Zelkor::Testing::IsChildMain(argc, argv)
               ? RunChildMain(argc, argv)
               : Zelkor::Testing::RunTests<QtLogHandlerProcessTest>(argc, argv, false);
}

#include "QtLogHandlerProcessTest.moc"

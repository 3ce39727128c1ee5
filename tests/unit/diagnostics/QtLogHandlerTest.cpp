#include <support/TestCase.h>
#include <support/logs/LogCapture.h>

#include <Util/QtLogHandler.h>

#include <QtTest/QtTest>

#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <type_traits>
#include <vector>

#include <glog/logging.h>

using Zelkor::Testing::LogCapture;
using Zelkor::Testing::LogLine;
using Zelkor::Util::QtLogHandler;

static_assert(!std::is_default_constructible_v<QtLogHandler>);
static_assert(!std::is_copy_constructible_v<QtLogHandler> && !std::is_copy_assignable_v<QtLogHandler>);
static_assert(!std::is_move_constructible_v<QtLogHandler> && !std::is_move_assignable_v<QtLogHandler>);
static_assert(!std::is_polymorphic_v<QtLogHandler> && !std::is_final_v<QtLogHandler>);
static_assert(sizeof(QtLogHandler) == sizeof(std::unique_ptr<int>));
static_assert(std::is_same_v<decltype(&QtLogHandler::GetInstance), QtLogHandler& (*)()>);
static_assert(std::is_same_v<decltype(&QtLogHandler::Install), void (QtLogHandler::*)()>);
static_assert(std::is_same_v<decltype(&QtLogHandler::Uninstall), void (QtLogHandler::*)()>);
static_assert(std::is_same_v<QtLogHandler::TextFilter, std::function<bool(QString const&)>>);
static_assert(std::is_same_v<QtLogHandler::FullFilter,
                             std::function<bool(QtMsgType, QMessageLogContext const&, QString const&)>>);

Q_DECLARE_METATYPE(QtMsgType)

namespace
{

/// A value that is not an enumerator of QtMsgType. QtInfoMsg is the largest enumerator.
constexpr auto UnknownMsg = static_cast<QtMsgType>(QtInfoMsg + 1);

/// Returns the installed message handler.
QtMessageHandler InstalledHandler()
{
    QtMessageHandler const installed = qInstallMessageHandler(nullptr);
    qInstallMessageHandler(installed);
    return installed;
}

/// A message that was forwarded to the previous handler or passed to a filter of the type FullFilter.
struct Message
{
    QtMsgType type;
    QMessageLogContext const* context;
    QString const* address;
    QString text;
};

// QtLogHandler is a singleton and filters cannot be removed. Therefore, all tests share the previous handler and the
// filters. This structure records the calls to the handler and of the filters. It also contains the callbacks that the
// handler and the filters run. Each test can set these callbacks.
struct SharedState
{
    std::mutex guard;
    std::vector<Message> forwarded;
    QStringList filterCalls;
    std::function<void(Message const&)> onForward;
    std::function<bool(QString const& filter, QString const& text)> filter;
    std::function<void(QtMsgType type, QMessageLogContext const& context, QString const& text)> onFullFilter;
};

SharedState& Shared()
{
    static SharedState state;
    return state;
}

void Record(QtMsgType type, QMessageLogContext const& context, QString const& text)
{
    SharedState& state = Shared();
    Message const message{type, &context, &text, text};
    if (state.onForward) {
        state.onForward(message);
    }
    std::lock_guard<std::mutex> const lock(state.guard);
    state.forwarded.push_back(message);
}

void IgnoreMessage(QtMsgType /*type*/, QMessageLogContext const& /*context*/, QString const& /*text*/) {}

bool CallFilter(char const* name, QString const& text)
{
    SharedState& state = Shared();
    if (!state.filter) {
        return true;
    }
    state.filterCalls += QString::fromLatin1(name);
    return state.filter(QString::fromLatin1(name), text);
}

QtLogHandler::TextFilter MakeTextFilter(char const* name)
{
    return [name](QString const& text) { return CallFilter(name, text); };
}

QtLogHandler::FullFilter MakeFullFilter(char const* name)
{
    return [name](QtMsgType type, QMessageLogContext const& context, QString const& text) {
        if (Shared().onFullFilter) {
            Shared().onFullFilter(type, context, text);
        }
        return CallFilter(name, text);
    };
}

void AddFilters(QtLogHandler& handler)
{
    handler.AddFilter(MakeTextFilter("text 1"));
    handler.AddFilter(QtLogHandler::TextFilter());
    handler.AddFilter(QtLogHandler::FullFilter());
    handler.AddFilter(MakeFullFilter("full 1"));
    handler.AddFilter(MakeFullFilter("full 2"));
    handler.AddFilter(MakeTextFilter("text 2"));
    handler.AddFilter(QtLogHandler::FullFilter());
    handler.AddFilter(MakeFullFilter("full 3"));
    handler.AddFilter(QtLogHandler::TextFilter());
    handler.AddFilter(MakeTextFilter("text 3"));
}

QtLogHandler& Handler()
{
    static QtLogHandler& handler = [&]() -> QtLogHandler& {
        QtLogHandler& instance = QtLogHandler::GetInstance();
        AddFilters(instance);
        return instance;
    }();
    return handler;
}

void Send(QtMsgType type, QString const& text)
{
    // Call the handler directly instead of through Qt, because Qt aborts the process after a fatal message.
    InstalledHandler()(type, QMessageLogContext(), text);
}

} // namespace

class QtLogHandlerTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

protected:
    void SetUp() override
    {
        Handler().Uninstall();
        testHandler_ = qInstallMessageHandler(Record);
        Handler().SetEnabledLogFileNameAndLineNumber(true);
        Handler().SetEnabledForwardIntoPreviousHandler(true);
        Handler().Install();
    }

    void TearDown() override
    {
        Handler().Uninstall();
        qInstallMessageHandler(testHandler_);
        SharedState& state = Shared();
        state.forwarded.clear();
        state.filterCalls.clear();
        state.onForward = nullptr;
        state.filter = nullptr;
        state.onFullFilter = nullptr;
    }

private:
    static QStringList ForwardedTexts()
    {
        QStringList texts;
        for (Message const& message : Shared().forwarded) {
            texts += message.text;
        }
        return texts;
    }

    QtMessageHandler testHandler_ = nullptr;

private Q_SLOTS:
    void isASingleton() { QCOMPARE(&QtLogHandler::GetInstance(), &QtLogHandler::GetInstance()); }

    void logsAtTheSeverityOfTheType_data()
    {
        QTest::addColumn<QtMsgType>("type");
        QTest::addColumn<int>("severity");
        QTest::newRow("debug") << QtDebugMsg << google::GLOG_INFO;
        QTest::newRow("info") << QtInfoMsg << google::GLOG_INFO;
        QTest::newRow("warning") << QtWarningMsg << google::GLOG_WARNING;
        QTest::newRow("critical") << QtCriticalMsg << google::GLOG_ERROR;
        QTest::newRow("fatal") << QtFatalMsg << google::GLOG_ERROR;
    }

    void logsAtTheSeverityOfTheType()
    {
        QFETCH(QtMsgType, type);
        QFETCH(int, severity);
        LogCapture const log;
        Send(type, QStringLiteral("text"));
        QCOMPARE(log.Lines().size(), 1);
        QCOMPARE(log.Lines().first().severity, severity);
        QCOMPARE(log.Texts(), QStringList(QStringLiteral("undefined:0 text")));
        QCOMPARE(Shared().forwarded.size(), std::size_t(1));
        QCOMPARE(Shared().forwarded.front().type, type);
        QCOMPARE(Shared().forwarded.front().text, QStringLiteral("text"));
    }

    void logsMessagesOfTheQtFunctions()
    {
        LogCapture const log;
        QMessageLogger const logger("folder/file.cpp", 42, "function");
        logger.debug("debug %d", 1);
        logger.info("info");
        logger.warning() << "warning" << 2;
        logger.critical("critical");
        QCOMPARE(log.Texts(),
                 QStringList({QStringLiteral("folder/file.cpp:42 debug 1"), QStringLiteral("folder/file.cpp:42 info"),
                              QStringLiteral("folder/file.cpp:42 warning 2"),
                              QStringLiteral("folder/file.cpp:42 critical")}));
        QVector<int> severities;
        QVector<LogLine> const lines = log.Lines();
        for (LogLine const& line : lines) {
            severities += line.severity;
        }
        QCOMPARE(severities,
                 QVector<int>({google::GLOG_INFO, google::GLOG_INFO, google::GLOG_WARNING, google::GLOG_ERROR}));
        QCOMPARE(ForwardedTexts(), QStringList({QStringLiteral("debug 1"), QStringLiteral("info"),
                                                QStringLiteral("warning 2"), QStringLiteral("critical")}));
    }

    void forwardsAnUnknownTypeWithoutLoggingIt()
    {
        LogCapture const log;
        Send(UnknownMsg, QStringLiteral("text"));
        QCOMPARE(log.Texts(), QStringList());
        QCOMPARE(ForwardedTexts(), QStringList(QStringLiteral("text")));
        QCOMPARE(Shared().forwarded.front().type, UnknownMsg);
    }

    void logsWithItsOwnSourceLocation()
    {
        LogCapture const log;
        QMessageLogger("folder/file.cpp", 42, "function").warning("text");
        QCOMPARE(log.Lines().size(), 1);
        QCOMPARE(log.Lines().first().file, QStringLiteral("Util/QtLogHandler.cpp"));
        QVERIFY(log.Lines().first().line > 0);
    }

    void prependsTheSourceLocationOfTheMessage_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<int>("line");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("logged");
        auto const row = [](char const* name, QByteArray const& file, int line, char const* text, char const* logged) {
            QTest::newRow(name) << file << line << QString::fromUtf8(text) << QString::fromUtf8(logged);
        };
        row("file and line", "main.cpp", 42, "text", "main.cpp:42 text");
        row("file with folders", "../src/a b/main.cpp", 1, "text", "../src/a b/main.cpp:1 text");
        row("no file and no line", QByteArray(), 0, "text", "undefined:0 text");
        row("line only", QByteArray(), 42, "text", "undefined:42 text");
        row("file only", "main.cpp", 0, "text", "main.cpp:0 text");
        row("large line", "main.cpp", 2147483647, "text", "main.cpp:2147483647 text");
        row("negative line", "main.cpp", -1, "text", "main.cpp:-1 text");
        row("empty text", "main.cpp", 42, "", "main.cpp:42 ");
        row("place markers", "%1/%2.cpp", 42, "%1 %2 %3 %n %s", "%1/%2.cpp:42 %1 %2 %3 %n %s");
        row("non-ASCII text", "\xC3\xA4.cpp", 42, "\xE2\x82\xAC \xF0\x9D\x84\x9E",
            "\xC3\xA4.cpp:42 \xE2\x82\xAC \xF0\x9D\x84\x9E");
        row("several lines", "main.cpp", 42, "a\nb\n\nc", "main.cpp:42 a\nb\n\nc");
        row("leading and trailing spaces", "main.cpp", 42, "  text  ", "main.cpp:42   text  ");
    }

    void prependsTheSourceLocationOfTheMessage()
    {
        QFETCH(QByteArray, file);
        QFETCH(int, line);
        QFETCH(QString, text);
        QFETCH(QString, logged);
        LogCapture const log;
        QMessageLogContext const context(file.isNull() ? nullptr : file.constData(), line, "function", "category");
        qt_message_output(QtWarningMsg, context, text);
        QCOMPARE(log.Texts(), QStringList(logged));
        QCOMPARE(ForwardedTexts(), QStringList(text));
    }

    void omitsTheSourceLocationWhenDisabled()
    {
        LogCapture const log;
        QMessageLogger const logger("main.cpp", 42, "function");
        Handler().SetEnabledLogFileNameAndLineNumber(false);
        logger.warning("off");
        Handler().SetEnabledLogFileNameAndLineNumber(false);
        logger.warning("%%1");
        Handler().SetEnabledLogFileNameAndLineNumber(true);
        logger.warning("on");
        QCOMPARE(log.Texts(),
                 QStringList({QStringLiteral("off"), QStringLiteral("%1"), QStringLiteral("main.cpp:42 on")}));
    }

    void logsTheTextUpToANul_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("logged");
        QTest::newRow("NUL inside the text")
            << QString(QStringLiteral("a") + QChar(0) + QStringLiteral("b")) << QStringLiteral("main.cpp:42 a");
        QTest::newRow("NUL at the start") << QString(QChar(0) + QStringLiteral("b")) << QStringLiteral("main.cpp:42 ");
    }

    void logsTheTextUpToANul()
    {
        QFETCH(QString, text);
        QFETCH(QString, logged);
        LogCapture const log;
        qt_message_output(QtWarningMsg, QMessageLogContext("main.cpp", 42, "function", "category"), text);
        QCOMPARE(log.Texts(), QStringList(logged));
        QCOMPARE(ForwardedTexts(), QStringList(text));
    }

    void forwardsTheReceivedMessage()
    {
        LogCapture const log;
        QMessageLogContext const context("main.cpp", 42, "function", "category");
        QString const text = QStringLiteral("text");
        qt_message_output(QtCriticalMsg, context, text);
        QCOMPARE(Shared().forwarded.size(), std::size_t(1));
        Message const& message = Shared().forwarded.front();
        QCOMPARE(message.type, QtCriticalMsg);
        QCOMPARE(message.context, &context);
        QCOMPARE(message.address, &text);
    }

    void forwardsAfterLogging()
    {
        LogCapture const log;
        QStringList loggedBefore;
        Shared().onForward = [&](Message const&) { loggedBefore = log.Texts(); };
        Send(QtWarningMsg, QStringLiteral("text"));
        QCOMPARE(loggedBefore, QStringList(QStringLiteral("undefined:0 text")));
    }

    void doesNotForwardWhenForwardingIsDisabled()
    {
        LogCapture const log;
        Handler().SetEnabledForwardIntoPreviousHandler(false);
        Send(QtWarningMsg, QStringLiteral("off"));
        Send(UnknownMsg, QStringLiteral("unknown"));
        QCOMPARE(ForwardedTexts(), QStringList());
        Handler().SetEnabledForwardIntoPreviousHandler(true);
        Send(QtWarningMsg, QStringLiteral("on"));
        QCOMPARE(ForwardedTexts(), QStringList(QStringLiteral("on")));
        QCOMPARE(log.Texts(), QStringList({QStringLiteral("undefined:0 off"), QStringLiteral("undefined:0 on")}));
    }

    void restoresThePreviousHandlerWhenForwardingIsDisabled()
    {
        Handler().SetEnabledForwardIntoPreviousHandler(false);
        Handler().Uninstall();
        QVERIFY(InstalledHandler() == Record);
    }

    void callsFullFiltersBeforeTextFilters()
    {
        LogCapture const log;
        Shared().filter = [](QString const&, QString const&) { return true; };
        Send(QtWarningMsg, QStringLiteral("text"));
        QCOMPARE(Shared().filterCalls,
                 QStringList({QStringLiteral("full 1"), QStringLiteral("full 2"), QStringLiteral("full 3"),
                              QStringLiteral("text 1"), QStringLiteral("text 2"), QStringLiteral("text 3")}));
        QCOMPARE(log.Texts(), QStringList(QStringLiteral("undefined:0 text")));
        QCOMPARE(ForwardedTexts(), QStringList(QStringLiteral("text")));
    }

    void stopsAtTheFirstFilterThatDropsTheMessage_data()
    {
        QTest::addColumn<QString>("dropping");
        QTest::addColumn<int>("callCount");
        QTest::newRow("full 1") << QStringLiteral("full 1") << 1;
        QTest::newRow("full 2") << QStringLiteral("full 2") << 2;
        QTest::newRow("full 3") << QStringLiteral("full 3") << 3;
        QTest::newRow("text 1") << QStringLiteral("text 1") << 4;
        QTest::newRow("text 2") << QStringLiteral("text 2") << 5;
        QTest::newRow("text 3") << QStringLiteral("text 3") << 6;
    }

    void stopsAtTheFirstFilterThatDropsTheMessage()
    {
        QFETCH(QString, dropping);
        QFETCH(int, callCount);
        LogCapture const log;
        Shared().filter = [&](QString const& filter, QString const& text) {
            return filter != dropping || text != QStringLiteral("dropped");
        };
        Send(QtWarningMsg, QStringLiteral("dropped"));
        QCOMPARE(Shared().filterCalls.size(), callCount);
        QCOMPARE(Shared().filterCalls.last(), dropping);
        QCOMPARE(log.Texts(), QStringList());
        QCOMPARE(ForwardedTexts(), QStringList());
        Send(QtWarningMsg, QStringLiteral("kept"));
        QCOMPARE(log.Texts(), QStringList(QStringLiteral("undefined:0 kept")));
        QCOMPARE(ForwardedTexts(), QStringList(QStringLiteral("kept")));
    }

    void doesNotCallTextFiltersAfterAFullFilterDropsTheMessage()
    {
        LogCapture const log;
        QtMsgType current = QtDebugMsg;
        Shared().onFullFilter = [&](QtMsgType type, QMessageLogContext const&, QString const&) { current = type; };
        Shared().filter = [&](QString const&, QString const&) { return current != QtWarningMsg; };
        QMessageLogger().warning("warning");
        QCOMPARE(Shared().filterCalls, QStringList(QStringLiteral("full 1")));
        QMessageLogger().critical("critical");
        QCOMPARE(log.Texts(), QStringList(QStringLiteral("undefined:0 critical")));
        QCOMPARE(ForwardedTexts(), QStringList(QStringLiteral("critical")));
    }

    void passesTheMessageToFiltersUnchanged()
    {
        LogCapture const log;
        QMessageLogContext const context("main.cpp", 42, "function", "category");
        QString const text = QStringLiteral("a") + QChar(0) + QStringLiteral("\u20AC%1");
        std::vector<Message> fullFilterMessages;
        QStringList texts;
        Shared().onFullFilter = [&](QtMsgType type, QMessageLogContext const& passedContext,
                                    QString const& passedText) {
            fullFilterMessages.push_back({type, &passedContext, &passedText, passedText});
        };
        Shared().filter = [&](QString const&, QString const& passedText) {
            texts += passedText;
            return true;
        };
        qt_message_output(QtInfoMsg, context, text);
        QCOMPARE(fullFilterMessages.size(), std::size_t(3));
        for (Message const& message : fullFilterMessages) {
            QCOMPARE(message.type, QtInfoMsg);
            QCOMPARE(message.context, &context);
            QCOMPARE(message.text, text);
        }
        QCOMPARE(texts, QStringList({text, text, text, text, text, text}));
    }

    void passesMessagesOfAnUnknownTypeToFilters()
    {
        LogCapture const log;
        Shared().filter = [](QString const&, QString const&) { return false; };
        Send(UnknownMsg, QStringLiteral("text"));
        QCOMPARE(Shared().filterCalls, QStringList(QStringLiteral("full 1")));
        QCOMPARE(ForwardedTexts(), QStringList());
    }

    void ignoresMessagesAfterUninstall()
    {
        LogCapture const log;
        Shared().filter = [](QString const&, QString const&) { return false; };
        Handler().Uninstall();
        QMessageLogger().warning("text");
        QCOMPARE(log.Texts(), QStringList());
        QCOMPARE(Shared().filterCalls, QStringList());
        QCOMPARE(ForwardedTexts(), QStringList(QStringLiteral("text")));
    }

    void ignoresASecondUninstall()
    {
        Handler().Uninstall();
        qInstallMessageHandler(IgnoreMessage);
        Handler().Uninstall();
        QVERIFY(InstalledHandler() == IgnoreMessage);
    }

    void ignoresASecondInstall()
    {
        LogCapture const log;
        Handler().Install();
        Handler().Install();
        QMessageLogger().warning("text");
        QCOMPARE(log.Texts(), QStringList(QStringLiteral("undefined:0 text")));
        QCOMPARE(ForwardedTexts(), QStringList(QStringLiteral("text")));
        Handler().Uninstall();
        QVERIFY(InstalledHandler() == Record);
    }

    void doesNotReplaceAnotherHandlerWhenInstalledAlready()
    {
        qInstallMessageHandler(IgnoreMessage);
        Handler().Install();
        QVERIFY(InstalledHandler() == IgnoreMessage);
    }

    void replacesAnotherHandlerWithThePreviousOneOnUninstall()
    {
        qInstallMessageHandler(IgnoreMessage);
        Handler().Uninstall();
        QVERIFY(InstalledHandler() == Record);
    }

    void forwardsWhenCalledAfterUninstall()
    {
        LogCapture const log;
        QtMessageHandler const handler = InstalledHandler();
        Handler().Uninstall();
        qInstallMessageHandler(IgnoreMessage);
        handler(QtWarningMsg, QMessageLogContext(), QStringLiteral("text"));
        QCOMPARE(log.Texts(), QStringList(QStringLiteral("undefined:0 text")));
        QCOMPARE(ForwardedTexts(), QStringList(QStringLiteral("text")));
        QVERIFY(InstalledHandler() == IgnoreMessage);
    }

    void forwardsToTheHandlerReplacedLast()
    {
        LogCapture const log;
        Handler().Uninstall();
        qInstallMessageHandler(IgnoreMessage);
        Handler().Install();
        QMessageLogger().warning("text");
        QCOMPARE(log.Texts(), QStringList(QStringLiteral("undefined:0 text")));
        QCOMPARE(ForwardedTexts(), QStringList());
        Handler().Uninstall();
        QVERIFY(InstalledHandler() == IgnoreMessage);
    }

    void keepsFiltersAndSettingsAfterReinstallation()
    {
        LogCapture const log;
        Shared().filter = [](QString const&, QString const& text) { return text != QStringLiteral("dropped"); };
        Handler().SetEnabledLogFileNameAndLineNumber(false);
        Handler().SetEnabledForwardIntoPreviousHandler(false);
        Handler().Uninstall();
        Handler().Install();
        QMessageLogger().warning("dropped");
        QMessageLogger().warning("kept");
        QCOMPARE(log.Texts(), QStringList(QStringLiteral("kept")));
        QCOMPARE(ForwardedTexts(), QStringList());
    }

    void acceptsFiltersAndSettingsWhileUninstalled()
    {
        LogCapture const log;
        Handler().Uninstall();
        Handler().SetEnabledLogFileNameAndLineNumber(false);
        Handler().SetEnabledForwardIntoPreviousHandler(false);
        Handler().AddFilter([](QString const& text) { return text != QStringLiteral("dropped by the new filter"); });
        Handler().Install();
        QMessageLogger().warning("dropped by the new filter");
        QMessageLogger().warning("kept");
        QCOMPARE(log.Texts(), QStringList(QStringLiteral("kept")));
        QCOMPARE(ForwardedTexts(), QStringList());
    }

    void doesNotForwardToItself()
    {
        LogCapture const log;
        QtMessageHandler const handler = InstalledHandler();
        Handler().Uninstall();
        qInstallMessageHandler(handler);
        Handler().Install();
        QMessageLogger().warning("text");
        QCOMPARE(log.Texts(), QStringList(QStringLiteral("undefined:0 text")));
    }

    void handlesMessagesOfManyThreads()
    {
        constexpr int Threads = 8;
        constexpr int Messages = 100;
        LogCapture const log;
        std::promise<void> start;
        std::shared_future<void> const started = start.get_future().share();
        std::vector<std::thread> threads;
        threads.reserve(Threads);
        for (int thread = 0; thread < Threads; ++thread) {
            threads.emplace_back([started, thread] {
                started.wait();
                for (int i = 0; i < Messages; ++i) {
                    QMessageLogger("main.cpp", i, "function").info("of thread %d", thread);
                }
            });
        }
        start.set_value();
        for (std::thread& thread : threads) {
            thread.join();
        }

        QStringList const logged = log.Texts();
        QCOMPARE(logged.size(), Threads * Messages);
        QCOMPARE(ForwardedTexts().size(), Threads * Messages);
        for (int thread = 0; thread < Threads; ++thread) {
            QString const text = QStringLiteral("of thread %1").arg(thread);
            QStringList expected;
            for (int i = 0; i < Messages; ++i) {
                expected += QStringLiteral("main.cpp:%1 ").arg(i) + text;
            }
            QCOMPARE(logged.filter(text), expected);
            QCOMPARE(ForwardedTexts().count(text), Messages);
        }
    }
};

ZQTUTIL_TEST_MAIN(QtLogHandlerTest)

#include "QtLogHandlerTest.moc"

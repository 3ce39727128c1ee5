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

/// The least type that Qt does not know.
constexpr auto UnknownMsg = static_cast<QtMsgType>(QtInfoMsg + 1);

/// The handler that is installed.
QtMessageHandler InstalledHandler()
{
    QtMessageHandler const installed = qInstallMessageHandler(nullptr);
    qInstallMessageHandler(installed);
    return installed;
}

// The earlier handler and the filters are the same in all tests and do what a test wishes.

/// A message that was handed on.
struct Message
{
    QtMsgType type;
    QMessageLogContext const* context;
    QString const* address;
    QString text;
};

struct Stage
{
    std::mutex guard;
    std::vector<Message> forwarded;
    QStringList filterCalls;
    std::function<void(Message const&)> atForward;
    std::function<bool(QString const& filter, QString const& text)> filter;
    std::function<void(QtMsgType type, QMessageLogContext const& context, QString const& text)> inFullFilter;
};

Stage& TheStage()
{
    static Stage stage;
    return stage;
}

void Record(QtMsgType type, QMessageLogContext const& context, QString const& text)
{
    Stage& stage = TheStage();
    Message const message{type, &context, &text, text};
    if (stage.atForward) {
        stage.atForward(message);
    }
    std::lock_guard<std::mutex> const lock(stage.guard);
    stage.forwarded.push_back(message);
}

void IgnoreMessage(QtMsgType /*type*/, QMessageLogContext const& /*context*/, QString const& /*text*/) {}

bool AskFilter(char const* name, QString const& text)
{
    Stage& stage = TheStage();
    if (!stage.filter) {
        return true;
    }
    stage.filterCalls += QString::fromLatin1(name);
    return stage.filter(QString::fromLatin1(name), text);
}

QtLogHandler::TextFilter MakeTextFilter(char const* name)
{
    return [name](QString const& text) { return AskFilter(name, text); };
}

QtLogHandler::FullFilter MakeFullFilter(char const* name)
{
    return [name](QtMsgType type, QMessageLogContext const& context, QString const& text) {
        if (TheStage().inFullFilter) {
            TheStage().inFullFilter(type, context, text);
        }
        return AskFilter(name, text);
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
    // Straight to the handler: Qt would abort after a fatal one.
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
        outer_ = qInstallMessageHandler(Record);
        Handler().SetEnabledLogFileNameAndLineNumber(true);
        Handler().SetEnabledForwardIntoPreviousHandler(true);
        Handler().Install();
    }

    void TearDown() override
    {
        Handler().Uninstall();
        qInstallMessageHandler(outer_);
        Stage& stage = TheStage();
        stage.forwarded.clear();
        stage.filterCalls.clear();
        stage.atForward = nullptr;
        stage.filter = nullptr;
        stage.inFullFilter = nullptr;
    }

private:
    static QStringList ForwardedTexts()
    {
        QStringList texts;
        for (Message const& message : TheStage().forwarded) {
            texts += message.text;
        }
        return texts;
    }

    QtMessageHandler outer_ = nullptr;

private Q_SLOTS:
    void isOneForTheProcess() { QCOMPARE(&QtLogHandler::GetInstance(), &QtLogHandler::GetInstance()); }

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
        QCOMPARE(TheStage().forwarded.size(), std::size_t(1));
        QCOMPARE(TheStage().forwarded.front().type, type);
        QCOMPARE(TheStage().forwarded.front().text, QStringLiteral("text"));
    }

    void receivesWhatQtsFunctionsReport()
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
        QCOMPARE(TheStage().forwarded.front().type, UnknownMsg);
    }

    void logsUnderItsOwnPosition()
    {
        LogCapture const log;
        QMessageLogger("folder/file.cpp", 42, "function").warning("text");
        QCOMPARE(log.Lines().size(), 1);
        QCOMPARE(log.Lines().first().file, QStringLiteral("Util/QtLogHandler.cpp"));
        QVERIFY(log.Lines().first().line > 0);
    }

    void putsTheMessagesPositionBeforeItsText_data()
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
        row("neither", QByteArray(), 0, "text", "undefined:0 text");
        row("line only", QByteArray(), 42, "text", "undefined:42 text");
        row("file only", "main.cpp", 0, "text", "main.cpp:0 text");
        row("large line", "main.cpp", 2147483647, "text", "main.cpp:2147483647 text");
        row("negative line", "main.cpp", -1, "text", "main.cpp:-1 text");
        row("no text", "main.cpp", 42, "", "main.cpp:42 ");
        row("place markers", "%1/%2.cpp", 42, "%1 %2 %3 %n %s", "%1/%2.cpp:42 %1 %2 %3 %n %s");
        row("beyond ASCII", "\xC3\xA4.cpp", 42, "\xE2\x82\xAC \xF0\x9D\x84\x9E",
            "\xC3\xA4.cpp:42 \xE2\x82\xAC \xF0\x9D\x84\x9E");
        row("several lines", "main.cpp", 42, "a\nb\n\nc", "main.cpp:42 a\nb\n\nc");
        row("blanks", "main.cpp", 42, "  text  ", "main.cpp:42   text  ");
    }

    void putsTheMessagesPositionBeforeItsText()
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

    void logsTheTextAloneWhenTold()
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
        QTest::newRow("inside") << QString(QStringLiteral("a") + QChar(0) + QStringLiteral("b"))
                                << QStringLiteral("main.cpp:42 a");
        QTest::newRow("first") << QString(QChar(0) + QStringLiteral("b")) << QStringLiteral("main.cpp:42 ");
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

    void forwardsTheMessageItReceived()
    {
        LogCapture const log;
        QMessageLogContext const context("main.cpp", 42, "function", "category");
        QString const text = QStringLiteral("text");
        qt_message_output(QtCriticalMsg, context, text);
        QCOMPARE(TheStage().forwarded.size(), std::size_t(1));
        Message const& message = TheStage().forwarded.front();
        QCOMPARE(message.type, QtCriticalMsg);
        QCOMPARE(message.context, &context);
        QCOMPARE(message.address, &text);
    }

    void forwardsAfterLogging()
    {
        LogCapture const log;
        QStringList loggedBefore;
        TheStage().atForward = [&](Message const&) { loggedBefore = log.Texts(); };
        Send(QtWarningMsg, QStringLiteral("text"));
        QCOMPARE(loggedBefore, QStringList(QStringLiteral("undefined:0 text")));
    }

    void forwardsNothingWhenTold()
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

    void putsThePreviousHandlerBackWithoutForwarding()
    {
        Handler().SetEnabledForwardIntoPreviousHandler(false);
        Handler().Uninstall();
        QVERIFY(InstalledHandler() == Record);
    }

    void asksFullFiltersThenTextFiltersInTheirOrder()
    {
        LogCapture const log;
        TheStage().filter = [](QString const&, QString const&) { return true; };
        Send(QtWarningMsg, QStringLiteral("text"));
        QCOMPARE(TheStage().filterCalls,
                 QStringList({QStringLiteral("full 1"), QStringLiteral("full 2"), QStringLiteral("full 3"),
                              QStringLiteral("text 1"), QStringLiteral("text 2"), QStringLiteral("text 3")}));
        QCOMPARE(log.Texts(), QStringList(QStringLiteral("undefined:0 text")));
        QCOMPARE(ForwardedTexts(), QStringList(QStringLiteral("text")));
    }

    void endsAtTheFirstFilterThatDrops_data()
    {
        QTest::addColumn<QString>("dropping");
        QTest::addColumn<int>("asked");
        QTest::newRow("full 1") << QStringLiteral("full 1") << 1;
        QTest::newRow("full 2") << QStringLiteral("full 2") << 2;
        QTest::newRow("full 3") << QStringLiteral("full 3") << 3;
        QTest::newRow("text 1") << QStringLiteral("text 1") << 4;
        QTest::newRow("text 2") << QStringLiteral("text 2") << 5;
        QTest::newRow("text 3") << QStringLiteral("text 3") << 6;
    }

    void endsAtTheFirstFilterThatDrops()
    {
        QFETCH(QString, dropping);
        QFETCH(int, asked);
        LogCapture const log;
        TheStage().filter = [&](QString const& filter, QString const& text) {
            return filter != dropping || text != QStringLiteral("dropped");
        };
        Send(QtWarningMsg, QStringLiteral("dropped"));
        QCOMPARE(TheStage().filterCalls.size(), asked);
        QCOMPARE(TheStage().filterCalls.last(), dropping);
        QCOMPARE(log.Texts(), QStringList());
        QCOMPARE(ForwardedTexts(), QStringList());
        Send(QtWarningMsg, QStringLiteral("kept"));
        QCOMPARE(log.Texts(), QStringList(QStringLiteral("undefined:0 kept")));
        QCOMPARE(ForwardedTexts(), QStringList(QStringLiteral("kept")));
    }

    void dropsByTypeBeforeTextFiltersAreAsked()
    {
        LogCapture const log;
        QtMsgType current = QtDebugMsg;
        TheStage().inFullFilter = [&](QtMsgType type, QMessageLogContext const&, QString const&) { current = type; };
        TheStage().filter = [&](QString const&, QString const&) { return current != QtWarningMsg; };
        QMessageLogger().warning("warning");
        QCOMPARE(TheStage().filterCalls, QStringList(QStringLiteral("full 1")));
        QMessageLogger().critical("critical");
        QCOMPARE(log.Texts(), QStringList(QStringLiteral("undefined:0 critical")));
        QCOMPARE(ForwardedTexts(), QStringList(QStringLiteral("critical")));
    }

    void showsFiltersTheMessageAsItCame()
    {
        LogCapture const log;
        QMessageLogContext const context("main.cpp", 42, "function", "category");
        QString const text = QStringLiteral("a") + QChar(0) + QStringLiteral("\u20AC%1");
        std::vector<Message> seen;
        QStringList texts;
        TheStage().inFullFilter = [&](QtMsgType type, QMessageLogContext const& its, QString const& itsText) {
            seen.push_back({type, &its, &itsText, itsText});
        };
        TheStage().filter = [&](QString const&, QString const& itsText) {
            texts += itsText;
            return true;
        };
        qt_message_output(QtInfoMsg, context, text);
        QCOMPARE(seen.size(), std::size_t(3));
        for (Message const& message : seen) {
            QCOMPARE(message.type, QtInfoMsg);
            QCOMPARE(message.context, &context);
            QCOMPARE(message.text, text);
        }
        QCOMPARE(texts, QStringList({text, text, text, text, text, text}));
    }

    void showsFiltersMessagesOfAnUnknownType()
    {
        LogCapture const log;
        TheStage().filter = [](QString const&, QString const&) { return false; };
        Send(UnknownMsg, QStringLiteral("text"));
        QCOMPARE(TheStage().filterCalls, QStringList(QStringLiteral("full 1")));
        QCOMPARE(ForwardedTexts(), QStringList());
    }

    void doesNothingMoreWhenUninstalled()
    {
        LogCapture const log;
        TheStage().filter = [](QString const&, QString const&) { return false; };
        Handler().Uninstall();
        QMessageLogger().warning("text");
        QCOMPARE(log.Texts(), QStringList());
        QCOMPARE(TheStage().filterCalls, QStringList());
        QCOMPARE(ForwardedTexts(), QStringList(QStringLiteral("text")));
    }

    void uninstallsOnce()
    {
        Handler().Uninstall();
        qInstallMessageHandler(IgnoreMessage);
        Handler().Uninstall();
        QVERIFY(InstalledHandler() == IgnoreMessage);
    }

    void installsOnce()
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

    void leavesAnotherHandlerWhenInstalledAlready()
    {
        qInstallMessageHandler(IgnoreMessage);
        Handler().Install();
        QVERIFY(InstalledHandler() == IgnoreMessage);
    }

    void putsThePreviousHandlerInTheOthersPlace()
    {
        qInstallMessageHandler(IgnoreMessage);
        Handler().Uninstall();
        QVERIFY(InstalledHandler() == Record);
    }

    void keepsThePreviousHandlerForThoseWhoStillCallIt()
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

    void forwardsToTheHandlerThatItReplacedLast()
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

    void keepsFiltersAndSwitchesOverUninstallAndInstall()
    {
        LogCapture const log;
        TheStage().filter = [](QString const&, QString const& text) { return text != QStringLiteral("dropped"); };
        Handler().SetEnabledLogFileNameAndLineNumber(false);
        Handler().SetEnabledForwardIntoPreviousHandler(false);
        Handler().Uninstall();
        Handler().Install();
        QMessageLogger().warning("dropped");
        QMessageLogger().warning("kept");
        QCOMPARE(log.Texts(), QStringList(QStringLiteral("kept")));
        QCOMPARE(ForwardedTexts(), QStringList());
    }

    void takesFiltersAndSwitchesWhileUninstalled()
    {
        LogCapture const log;
        Handler().Uninstall();
        Handler().SetEnabledLogFileNameAndLineNumber(false);
        Handler().SetEnabledForwardIntoPreviousHandler(false);
        Handler().AddFilter([](QString const& text) { return text != QStringLiteral("taken while uninstalled"); });
        Handler().Install();
        QMessageLogger().warning("taken while uninstalled");
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

    void handlesMessagesOfManyThreadsAtOnce()
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

#include <support/TestCase.h>

#include <support/logs/LogCapture.h>
#include <support/overrides/QueueOrder.h>

#include <QtCore/QLocale>
#include <QtCore/QTemporaryDir>
#include <QtGui/QScreen>
#include <QtTest/QtTest>
#include <QtWidgets/QApplication>

#include <algorithm>
#include <clocale>
#include <ctime>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace Zelkor::Testing
{
namespace
{

struct QtMessages
{
    std::mutex guard;
    std::vector<QRegularExpression> expected;
    QStringList unexpected;
    QtMessageHandler next = nullptr;
};

QtMessages& Messages()
{
    static QtMessages messages;
    return messages;
}

/// Returns true for harmless messages of the platform plugins. The offscreen plugin warns about calls that it does not
/// support. The xcb plugin warns when a window is destroyed while its frame is queried, and when a window is shown
/// again before the X server has reported that it was hidden.
bool IsPlatformNoise(QString const& text)
{
    static QRegularExpression const pattern(QStringLiteral(
        "^This plugin does not support (propagateSizeHints\\(\\)|raise\\(\\)|grabbing the keyboard)$"
        "|^QXcbConnection: XCB error: 3 \\(BadWindow\\), .* major code: 15 \\(QueryTree\\), minor code: 0$"
        "|^internal error:  void QXcbWindow::setNetWmStateOnUnmappedWindow\\(\\) called on mapped window$"));
    return pattern.match(text).hasMatch();
}

void HandleQtMessage(QtMsgType type, QMessageLogContext const& context, QString const& text)
{
    if (IsPlatformNoise(text)) {
        return;
    }
    QtMessages& messages = Messages();
    if (type == QtWarningMsg || type == QtCriticalMsg) {
        std::lock_guard<std::mutex> const lock(messages.guard);
        auto const match =
            std::find_if(messages.expected.begin(), messages.expected.end(),
                         [&](QRegularExpression const& pattern) { return pattern.match(text).hasMatch(); });
        if (match != messages.expected.end()) {
            messages.expected.erase(match);
            return;
        }
        messages.unexpected += text;
    }
    if (messages.next) {
        messages.next(type, context, text);
    }
}

/// Checks that the number of screens is the value of the environment variable ZQTUTIL_TEST_SCREENS, and that the
/// screens do not overlap. Does nothing if the variable is not set. Without this check, the tests for several screens
/// would also pass on a single screen.
void VerifyScreens()
{
    int const expected = qEnvironmentVariableIntValue("ZQTUTIL_TEST_SCREENS");
    if (expected == 0) {
        return;
    }
    QCOMPARE(QGuiApplication::platformName(), QStringLiteral("xcb"));
    auto const screens = QGuiApplication::screens();
    QCOMPARE(screens.size(), expected);
    for (QScreen const* const screen : screens) {
        QCOMPARE(screen->virtualSiblings(), screens);
        for (QScreen const* const other : screens) {
            QCOMPARE(screen->geometry().intersects(other->geometry()), screen == other);
        }
    }
}

void PinEnvironment(QString const& folder)
{
    QByteArray const home = QFile::encodeName(folder);
    for (char const* const name : {"HOME", "TMPDIR", "XDG_RUNTIME_DIR"}) {
        qputenv(name, home);
    }
    for (char const* const name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"}) {
        qunsetenv(name);
    }
    qputenv("LC_ALL", "C.UTF-8");
    qputenv("TZ", "UTC");
    tzset();
    std::setlocale(LC_ALL, "");
    QLocale::setDefault(QLocale::c());
}

void StartLogging(char const* program)
{
    google::InitGoogleLogging(program);
    for (int severity = google::GLOG_INFO; severity < google::NUM_SEVERITIES; ++severity) {
        google::SetLogDestination(severity, ""); // an empty name disables the log file
    }
    google::SetStderrLogging(google::GLOG_FATAL);
    google::AddLogSink(&LogWatch::Instance());
}

} // namespace

void TestCase::ExpectQtWarning(QRegularExpression const& pattern)
{
    std::lock_guard<std::mutex> const lock(Messages().guard);
    Messages().expected.push_back(pattern);
}

void TestCase::initTestCase()
{
    // QtTest has already installed its own message handler. HandleQtMessage() drops expected warnings and harmless
    // messages of the platform plugins, and forwards all other messages to QtTest's handler.
    Messages().next = qInstallMessageHandler(HandleQtMessage);
    VerifyScreens();
}

void TestCase::init()
{
    SetUp();
}

void TestCase::cleanup()
{
    TearDown();
    QStringList failures;
    {
        std::lock_guard<std::mutex> const lock(Messages().guard);
        for (QString const& text : std::exchange(Messages().unexpected, {})) {
            failures += QStringLiteral("unexpected Qt warning: ") + text;
        }
        for (QRegularExpression const& pattern : std::exchange(Messages().expected, {})) {
            failures += QStringLiteral("missing Qt warning: ") + pattern.pattern();
        }
    }
    QVector<LogLine> const unexpected = LogWatch::Instance().TakeUnexpected();
    for (LogLine const& line : unexpected) {
        failures += QStringLiteral("unexpected log line: ") + line.text;
    }
    QVERIFY2(failures.isEmpty(), qPrintable(failures.join(QLatin1Char('\n'))));
}

void TestCase::cleanupTestCase()
{
    qInstallMessageHandler(Messages().next);
}

int RunTests(int argc, char** argv, bool withWidgets, QObject* (*makeTest)())
{
    QTemporaryDir const folder;
    if (!folder.isValid()) {
        qFatal("No temporary folder: %s", qPrintable(folder.errorString()));
    }
    PinEnvironment(folder.path());
    StartLogging(argv[0]);
    AnnotateQueueOrderForThreadSanitizer();

    std::unique_ptr<QCoreApplication> const application(withWidgets ? new QApplication(argc, argv)
                                                                    : new QCoreApplication(argc, argv));
    std::unique_ptr<QObject> const test(makeTest());
    int const failures = QTest::qExec(test.get(), argc, argv);
    google::RemoveLogSink(&LogWatch::Instance());
    return failures;
}

} // namespace Zelkor::Testing

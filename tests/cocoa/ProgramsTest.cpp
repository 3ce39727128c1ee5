// The programs of the test bed, as the library runs them.

#include "Programs.h"

#include <TestBed.h>
#include <support/TestCase.h>

#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <cstdlib>
#include <memory>

#include <sys/wait.h>

using Zelkor::Testing::Programs;
namespace TestBed = Zelkor::TestBed;

namespace
{

QLatin1String const Launchctl("launchctl");
QLatin1String const Open("open");
QLatin1String const Tccutil("tccutil");

/// The exit code of a command of the shell.
int Run(char const* command)
{
    int const status = std::system(command);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

class ProgramsTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void launchctlLoadsAndUnloads()
    {
        QString const list = folder_->filePath(QStringLiteral("an agent.plist"));
        QFile file(list);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("<plist><dict>\n<key>Other</key>\n<string>no</string>\n"
                   "<key>Label</key>\n<string>a_b_c_d</string>\n</dict></plist>");
        file.close();
        programs_->SetJobs("PID\tStatus\tLabel\n1\t0\txa_b_c_d\n");

        QCOMPARE(QProcess::execute(QStringLiteral("launchctl"), {QStringLiteral("load"), QStringLiteral("-w"), list}),
                 0);
        QCOMPARE(programs_->State(Launchctl), QByteArray("PID\tStatus\tLabel\n1\t0\txa_b_c_d\n-\t0\ta_b_c_d\n"));
        QCOMPARE(QProcess::execute(QStringLiteral("launchctl"), {QStringLiteral("load"), QStringLiteral("-w"), list}),
                 0);
        QCOMPARE(programs_->State(Launchctl).count("\ta_b_c_d\n"), 1);
        QCOMPARE(QProcess::execute(QStringLiteral("launchctl"), {QStringLiteral("unload"), QStringLiteral("-w"), list}),
                 0);
        QCOMPARE(programs_->State(Launchctl), QByteArray("PID\tStatus\tLabel\n1\t0\txa_b_c_d\n"));
        QString const calls = QStringLiteral("load|-w|%1|load|-w|%1|unload|-w|%1|");
        QCOMPARE(programs_->LaunchctlCalls(), calls.arg(list));
    }

    void launchctlFails_data()
    {
        QTest::addColumn<QByteArray>("command");
        QTest::newRow("no such list") << QByteArray("launchctl load -w /no/such.plist");
        QTest::newRow("not for good") << QByteArray("launchctl load /dev/null");
        QTest::newRow("no verb") << QByteArray("launchctl");
    }

    void launchctlFails()
    {
        QFETCH(QByteArray, command);
        QCOMPARE(Run(command.constData()), 1);
        QCOMPARE(programs_->State(Launchctl), QByteArray());
    }

    void openTakesFilesAndAddresses()
    {
        QCOMPARE(Run("open /"), 0);
        QCOMPARE(Run("open x-apple.systempreferences:com.apple.preference.security?Privacy_Camera"), 0);
        QCOMPARE(Run("open /no/such.app --args a"), 1);
        QCOMPARE(Run("open nothing"), 1);
        QCOMPARE(programs_->State(Open),
                 QByteArray("/\nx-apple.systempreferences:com.apple.preference.security?Privacy_Camera\n"));
        QCOMPARE(programs_->Calls(Open).split('\n').value(2), QByteArray("/no/such.app|--args|a|"));
    }

    void tccutilForgetsADecision()
    {
        programs_->SetState(Tccutil, "ScreenCapture com.zelkor.Studio\nScreenCapture com.zelkor.Studio3\n"
                                     "Accessibility com.zelkor.Studio\n");
        QCOMPARE(Run("/usr/bin/tccutil reset ScreenCapture com.zelkor.Studio"), 0);
        QCOMPARE(programs_->State(Tccutil),
                 QByteArray("ScreenCapture com.zelkor.Studio3\nAccessibility com.zelkor.Studio\n"));
        QCOMPARE(programs_->Calls(Tccutil), QByteArray("reset|ScreenCapture|com.zelkor.Studio|\n"));
        QVERIFY(Run("/usr/bin/tccutil reset") != 0);
    }

    void fullPathsLeadToTheSamePrograms()
    {
        QCOMPARE(Run("/bin/launchctl list"), 0);
        QCOMPARE(Run("/usr/bin/open / >/dev/null; exit 3"), 3);
        QCOMPARE(programs_->Calls(Launchctl), QByteArray("list|\n"));
        QCOMPARE(programs_->Calls(Open), QByteArray("/|\n"));
    }

    void thereAreNoneAfterwards()
    {
        programs_.reset();
        QCOMPARE(Run("/usr/bin/open / 2>/dev/null"), 127);
        QCOMPARE(Run("/usr/bin/tccutil reset a b 2>/dev/null"), 127);
    }

    void otherCommandsAreTheSystemsOwn()
    {
        QCOMPARE(Run("exit 5"), 5);
        QVERIFY(std::system(nullptr) != 0);
    }

protected:
    void SetUp() override
    {
        TestBed::Reset();
        folder_ = std::make_unique<QTemporaryDir>();
        programs_ = std::make_unique<Programs>();
    }

    void TearDown() override
    {
        programs_.reset();
        folder_.reset();
    }

private:
    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<Programs> programs_;
};

ZQTUTIL_TEST_MAIN(ProgramsTest)

#include "ProgramsTest.moc"

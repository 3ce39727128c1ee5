// Tests of the fake programs of the test bed. The tests start the programs in the same ways as the library.

#include "Programs.h"

#include <TestBed.h>
#include <support/TestCase.h>

#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <cstdlib>
#include <memory>

#include <sys/wait.h>

using Zelkor::Testing::Arguments;
using Zelkor::Testing::LoadArguments;
using Zelkor::Testing::Programs;
using Zelkor::Testing::UnloadArguments;
namespace TestBed = Zelkor::TestBed;

namespace
{

QLatin1String const Launchctl("launchctl");
QLatin1String const Open("open");
QLatin1String const Tccutil("tccutil");

/// Runs \a command in a shell and returns its exit code.
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
        QCOMPARE(programs_->LaunchctlCalls(),
                 (QList<Arguments>{LoadArguments(list), LoadArguments(list), UnloadArguments(list)}));
    }

    void launchctlRejectsInvalidArguments_data()
    {
        QTest::addColumn<QByteArray>("command");
        QTest::newRow("missing property list") << QByteArray("launchctl load -w /no/such.plist");
        QTest::newRow("missing option -w") << QByteArray("launchctl load /dev/null");
        QTest::newRow("missing subcommand") << QByteArray("launchctl");
    }

    void launchctlRejectsInvalidArguments()
    {
        QFETCH(QByteArray, command);
        QCOMPARE(Run(command.constData()), 1);
        QCOMPARE(programs_->State(Launchctl), QByteArray());
    }

    void openAcceptsFilesAndUrls()
    {
        QCOMPARE(Run("open /"), 0);
        QCOMPARE(Run("open x-apple.systempreferences:com.apple.preference.security?Privacy_Camera"), 0);
        QCOMPARE(Run("open /no/such.app --args a"), 1);
        QCOMPARE(Run("open nothing"), 1);
        QCOMPARE(programs_->State(Open),
                 QByteArray("/\nx-apple.systempreferences:com.apple.preference.security?Privacy_Camera\n"));
        QCOMPARE(programs_->Calls(Open).value(2),
                 (Arguments{QStringLiteral("/no/such.app"), QStringLiteral("--args"), QStringLiteral("a")}));
    }

    void tccutilRemovesADecision()
    {
        programs_->SetState(Tccutil, "ScreenCapture com.zelkor.Studio\nScreenCapture com.zelkor.Studio3\n"
                                     "Accessibility com.zelkor.Studio\n");
        QCOMPARE(Run("/usr/bin/tccutil reset ScreenCapture com.zelkor.Studio"), 0);
        QCOMPARE(programs_->State(Tccutil),
                 QByteArray("ScreenCapture com.zelkor.Studio3\nAccessibility com.zelkor.Studio\n"));
        QCOMPARE(programs_->Calls(Tccutil), (QList<Arguments>{{QStringLiteral("reset"), QStringLiteral("ScreenCapture"),
                                                               QStringLiteral("com.zelkor.Studio")}}));
        QVERIFY(Run("/usr/bin/tccutil reset") != 0);
    }

    void fullPathsRunTheFakePrograms()
    {
        QCOMPARE(Run("/bin/launchctl list"), 0);
        QCOMPARE(Run("/usr/bin/open / >/dev/null; exit 3"), 3);
        QCOMPARE(programs_->Calls(Launchctl), QList<Arguments>{{QStringLiteral("list")}});
        QCOMPARE(programs_->Calls(Open), QList<Arguments>{{QStringLiteral("/")}});
    }

    void fullPathsFailWithoutFakePrograms()
    {
        programs_.reset();
        QCOMPARE(Run("/usr/bin/open / 2>/dev/null"), 127);
        QCOMPARE(Run("/usr/bin/tccutil reset a b 2>/dev/null"), 127);
    }

    void otherCommandsAreNotReplaced()
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

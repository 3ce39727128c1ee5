#include "Programs.h"

#include <support/TestCase.h>
#include <support/Timeouts.h>
#include <support/logs/LogCapture.h>
#include <support/overrides/SettingsKeys.h>
#include <support/sandbox/Folders.h>
#include <support/sandbox/Users.h>

#include <Util/Platforms/mac/LaunchctlStartupImpl.h>

#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include <future>
#include <memory>
#include <type_traits>

#include <sys/stat.h>

using Zelkor::Testing::Arguments;
using Zelkor::Testing::Check;
using Zelkor::Testing::CountOpenDescriptors;
using Zelkor::Testing::LoadArguments;
using Zelkor::Testing::LogCapture;
using Zelkor::Testing::LogLine;
using Zelkor::Testing::Programs;
using Zelkor::Testing::RunAsOrdinaryUser;
using Zelkor::Testing::TakeSettingsKeys;
using Zelkor::Testing::Timeout;
using Zelkor::Testing::UnloadArguments;
using Zelkor::Util::LaunchctlStartupImpl;
namespace TestBed = Zelkor::TestBed;

static_assert(!std::is_polymorphic_v<LaunchctlStartupImpl> && sizeof(LaunchctlStartupImpl) == sizeof(void*));

namespace
{

QString const Identifier = QStringLiteral("Zelkor_Studio_3.1.2_Agent");
QString const FileName = QStringLiteral("com.zelkor.studio3.agent.startup.plist");
QString const Executable = QStringLiteral("/Applications/X.app/Contents/MacOS/X");

QString AgentsFolder()
{
    return QDir::homePath() + QStringLiteral("/Library/LaunchAgents/");
}

/// Reads the property list \a path with Python's plistlib and returns it as JSON with sorted keys.
QByteArray ReadAsJson(QString const& path)
{
    QProcess python;
    python.start(QStringLiteral("python3"),
                 {QStringLiteral("-c"),
                  QStringLiteral("import plistlib,sys,json;"
                                 "print(json.dumps(plistlib.load(open(sys.argv[1],'rb')),sort_keys=True))"),
                  path});
    python.waitForFinished();
    return python.readAllStandardOutput().trimmed();
}

} // namespace

class LaunchctlStartupImplTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void writesAndLoadsAnAgent()
    {
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {QStringLiteral("--hidden"), QStringLiteral("a b")}));
        QString const path = AgentsFolder() + FileName;
        QCOMPARE(ReadAsJson(path), QByteArray("{\"KeepAlive\": false, \"Label\": \"Zelkor_Studio_3.1.2_Agent\", "
                                              "\"ProgramArguments\": [\"open\", \"/Applications/X.app\", \"--args\", "
                                              "\"--hidden\", \"a b\"], \"RunAtLoad\": true}"));
        QTRY_COMPARE(programs_->LaunchctlCalls(), (QList<Arguments>{LoadArguments(path)}));
    }

    void setsTheKeysInOrder()
    {
        TakeSettingsKeys();
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QCOMPARE(TakeSettingsKeys(), (QStringList{QStringLiteral("RunAtLoad"), QStringLiteral("KeepAlive"),
                                                  QStringLiteral("Label"), QStringLiteral("ProgramArguments")}));
        QTRY_COMPARE(programs_->LaunchctlCalls().size(), 1);
    }

    void writesTheAgentBeforeLoadingIt()
    {
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QTRY_COMPARE(programs_->LaunchctlCalls().size(), 1);
        // The fake launchctl reads the agent's label from the property list. This check therefore succeeds only if the
        // property list was complete when launchctl was called.
        QVERIFY(startup_->IsInStartup(Identifier));
    }

    void doesNotWaitForLaunchctl()
    {
        std::promise<void> done;
        auto returnedBeforeLaunchctl = std::async(std::launch::async, [lock = programs_->Lock(), &done]() mutable {
            bool const isDone = done.get_future().wait_for(Timeout) == std::future_status::ready;
            lock.reset();
            return isDone;
        });
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QVERIFY(startup_->RemoveFromStartup(Identifier));
        QCOMPARE(programs_->LaunchctlCalls(), QList<Arguments>());
        done.set_value();
        QVERIFY(returnedBeforeLaunchctl.get());
        QTRY_COMPARE(programs_->LaunchctlCalls().size(), 2);
    }

    void doesNotRewriteAKnownAgent()
    {
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QString const path = AgentsFolder() + FileName;
        QByteArray const before = ReadAsJson(path);
        QVERIFY(startup_->AddToStartup(Identifier, QStringLiteral("/Other.app/Contents/MacOS/X"), {}));
        QCOMPARE(ReadAsJson(path), before);
        QTRY_COMPARE(programs_->LaunchctlCalls(), (QList<Arguments>{LoadArguments(path), LoadArguments(path)}));
    }

    void rewritesAnAgentWithoutFile()
    {
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QVERIFY(QFile::remove(AgentsFolder() + FileName));
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QVERIFY(QFile::exists(AgentsFolder() + FileName));
        QTRY_COMPARE(programs_->LaunchctlCalls().size(), 2);
    }

    void overwritesTheFileOfAnUnknownAgent()
    {
        MakeAgent(FileName, QStringLiteral("another"));
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QString const path = AgentsFolder() + FileName;
        QCOMPARE(ReadAsJson(path), QByteArray("{\"KeepAlive\": false, \"Label\": \"Zelkor_Studio_3.1.2_Agent\", "
                                              "\"ProgramArguments\": [\"open\", \"/Applications/X.app\", \"--args\"], "
                                              "\"RunAtLoad\": true}"));
        QTRY_COMPARE(programs_->LaunchctlCalls(), (QList<Arguments>{LoadArguments(path)}));
    }

    void loadsAKnownAgentOfAnyLabel_data()
    {
        QTest::addColumn<QString>("label");
        QTest::newRow("three parts") << QStringLiteral("a_b_c");
        QTest::newRow("label of another vendor") << QStringLiteral("org.example.agent");
        QTest::newRow("empty label") << QString();
    }

    void loadsAKnownAgentOfAnyLabel()
    {
        QFETCH(QString, label);
        QString const path = MakeAgent(QStringLiteral("other.plist"), label);
        startup_->UpdatePlistList();
        LogCapture const log;
        QVERIFY(startup_->AddToStartup(label, Executable, {}));
        QCOMPARE(log.Texts(), QStringList());
        QTRY_COMPARE(programs_->LaunchctlCalls(), (QList<Arguments>{LoadArguments(path)}));
        QCOMPARE(QDir(AgentsFolder()).entryList(QDir::Files), QStringList{QStringLiteral("other.plist")});
    }

    void loadsAndUnloadsTheFileReadBefore()
    {
        QString const path = MakeAgent(QStringLiteral("an agent.plist"), Identifier);
        QByteArray const before = ReadAsJson(path);
        startup_->UpdatePlistList();
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QTRY_COMPARE(programs_->LaunchctlCalls(), (QList<Arguments>{LoadArguments(path)}));
        QCOMPARE(ReadAsJson(path), before);
        QVERIFY(!QFile::exists(AgentsFolder() + FileName));
        QVERIFY(startup_->RemoveFromStartup(Identifier));
        QTRY_COMPARE(programs_->LaunchctlCalls(), (QList<Arguments>{LoadArguments(path), UnloadArguments(path)}));
    }

    void loadsAnAgentAlthoughAFolderHasItsName()
    {
        QString const path = AgentsFolder() + FileName;
        QVERIFY(QDir().mkpath(path));
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QTRY_COMPARE(programs_->LaunchctlCalls(), (QList<Arguments>{LoadArguments(path)}));
        QVERIFY(QFileInfo(path).isDir());
    }

    void loadsAnAgentAlthoughTheFolderIsReadOnly()
    {
        QString const path = AgentsFolder() + FileName;
        Check(chmod(QFile::encodeName(QDir::homePath()).constData(), 0755));
        Check(chmod(QFile::encodeName(AgentsFolder()).constData(), 0555));
        programs_->GrantAccessToEveryone();
        QVERIFY(RunAsOrdinaryUser([this] { return startup_->AddToStartup(Identifier, Executable, {}); }));
        QTRY_COMPARE(programs_->LaunchctlCalls(), (QList<Arguments>{LoadArguments(path)}));
        QVERIFY(!QFile::exists(path));
    }

    void rejectsOtherIdentifiers_data()
    {
        QTest::addColumn<QString>("identifier");
        QTest::newRow("three parts") << QStringLiteral("a_b_c");
        QTest::newRow("five parts") << QStringLiteral("a_b_c_d_e");
    }

    void rejectsOtherIdentifiers()
    {
        QFETCH(QString, identifier);
        LogCapture const log;
        QVERIFY(!startup_->AddToStartup(identifier, Executable, {}));
        QCOMPARE(log.Lines().size(), 1);
        LogLine const line = log.Lines().first();
        QCOMPARE(line.severity, google::GLOG_WARNING);
        QCOMPARE(line.file, QStringLiteral("Util/Platforms/mac/LaunchctlStartupImpl.mm"));
        QCOMPARE(line.line, 120); // must not change: support searches the log for this line number
        QCOMPARE(line.text,
                 QStringLiteral("bool Zelkor::Util::LaunchctlStartupImpl::AddToStartup(const QString &, "
                                "const QString &, const QStringList &): Invalid application identificator."));
        QCOMPARE(QDir(AgentsFolder()).entryList(QDir::Files), QStringList());
    }

    void failsWhenLaunchctlIsMissing()
    {
        qputenv("PATH", "/nowhere");
        QVERIFY(!startup_->AddToStartup(Identifier, Executable, {}));
        QVERIFY(QFile::exists(AgentsFolder() + FileName));
        QVERIFY(!startup_->RemoveFromStartup(Identifier));
    }

    void findsLoadedAgentsInTheListOfLaunchctl()
    {
        programs_->SetJobs("PID\tStatus\tLabel\n1\t0\t" + Identifier.toUtf8() + "\n2\t0\tother");
        QVERIFY(startup_->IsInStartup(Identifier));
        QVERIFY(startup_->IsInStartup(QStringLiteral("other")));
        QVERIFY(!startup_->IsInStartup(QStringLiteral("Status")));
        programs_->SetJobs("axb\n");
        QVERIFY(startup_->IsInStartup(QStringLiteral("a.b")));
    }

    void readsALongList()
    {
        programs_->SetJobs(QByteArray("1\t0\tsomething\n").repeated(20000) + "1\t0\tlast\n");
        QVERIFY(startup_->IsInStartup(QStringLiteral("last")));
    }

    void treatsAListThatIsNotUtf8AsEmpty()
    {
        programs_->SetJobs("\xff\n" + Identifier.toUtf8() + "\n");
        QVERIFY(!startup_->IsInStartup(Identifier));
    }

    void logsAFailureToListAgents()
    {
        TestBed::SetProgramsFolder(QStringLiteral("/nowhere"));
        LogCapture const log;
        QVERIFY(!startup_->IsInStartup(Identifier));
        QCOMPARE(log.Lines().size(), 1);
        LogLine const line = log.Lines().first();
        QCOMPARE(line.severity, google::GLOG_ERROR);
        QCOMPARE(line.file, QStringLiteral("Util/Platforms/mac/LaunchctlStartupImpl.mm"));
        QCOMPARE(line.line, 63); // must not change: support searches the log for this line number
        QVERIFY(
            line.text.startsWith(QStringLiteral("QString Zelkor::Util::(anonymous namespace)::GetAppsFromLaunchctl(): "
                                                "Exception while launchctl running: ")));
        QVERIFY(line.text.contains(QStringLiteral("/nowhere/launchctl")));
    }

    void listsLoadedAgentsOfTheFolder()
    {
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QVERIFY(startup_->AddToStartup(QStringLiteral("Zelkor_Editor_1.0_Agent"), Executable, {}));
        QTRY_COMPARE(programs_->LaunchctlCalls().size(), 2);
        programs_->SetJobs("1\t0\t" + Identifier.toUtf8() +
                           "\n1\t0\tZelkor_Editor_1.0_Agent\n1\t0\tZelkor_Missing_1.0_Agent\n");
        LaunchctlStartupImpl other;
        QCOMPARE(other.GetAppsInStartup(), QStringList());
        other.UpdatePlistList();
        QCOMPARE(other.GetAppsInStartup(), (QStringList{QStringLiteral("Zelkor_Editor_1.0_Agent"), Identifier}));

        programs_->SetJobs("1\t0\t" + Identifier.toUtf8() + "\n");
        QCOMPARE(other.GetAppsInStartup(), QStringList{Identifier});
        QVERIFY(QFile::remove(AgentsFolder() + FileName));
        other.UpdatePlistList();
        QCOMPARE(other.GetAppsInStartup(), QStringList());
    }

    void runsLaunchctlOnceForAllAgents()
    {
        QStringList labels;
        for (QString const& name : {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}) {
            labels += QStringLiteral("org.example.") + name;
            MakeAgent(name + QStringLiteral(".plist"), labels.last());
        }
        startup_->UpdatePlistList();
        QCOMPARE(programs_->Calls(QLatin1String("launchctl")), QList<Arguments>());
        programs_->SetJobs("1\t0\torg.example.a\n1\t0\torg.example.b\n1\t0\torg.example.c\n");
        QCOMPARE(startup_->GetAppsInStartup(), labels);
        QCOMPARE(programs_->Calls(QLatin1String("launchctl")), QList<Arguments>{{QStringLiteral("list")}});
    }

    void listsALabelOnce()
    {
        MakeAgent(QStringLiteral("one.plist"), Identifier);
        MakeAgent(QStringLiteral("two.plist"), Identifier);
        programs_->SetJobs("1\t0\t" + Identifier.toUtf8() + "\n");
        startup_->UpdatePlistList();
        QCOMPARE(startup_->GetAppsInStartup(), QStringList{Identifier});
    }

    void ignoresOtherFiles()
    {
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QTRY_COMPARE(programs_->LaunchctlCalls().size(), 1);
        for (char const* const name : {"agent", "agent.plist.old"}) {
            QString const copy = AgentsFolder() + QLatin1String(name);
            QVERIFY(QFile::rename(AgentsFolder() + FileName, copy));
            startup_->UpdatePlistList();
            QCOMPARE(startup_->GetAppsInStartup(), QStringList());
            QVERIFY(QFile::rename(copy, AgentsFolder() + FileName));
        }
        startup_->UpdatePlistList();
        QCOMPARE(startup_->GetAppsInStartup(), QStringList{Identifier});
    }

    void reportsAnAgentWithoutLabelAsLoaded()
    {
        QFile file(AgentsFolder() + QStringLiteral("other.plist"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("<plist><dict><key>RunAtLoad</key><true/></dict></plist>");
        file.close();
        startup_->UpdatePlistList();
        QCOMPARE(startup_->GetAppsInStartup(), QStringList{QString()});
    }

    void closesItsDescriptors()
    {
        QVERIFY(!startup_->IsInStartup(Identifier));
        int const before = CountOpenDescriptors();
        for (int i = 0; i < 3; ++i) {
            QVERIFY(!startup_->IsInStartup(Identifier));
        }
        QCOMPARE(CountOpenDescriptors(), before);
    }

    void unloadsAKnownAgent()
    {
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QString const path = AgentsFolder() + FileName;
        QTRY_COMPARE(programs_->LaunchctlCalls(), (QList<Arguments>{LoadArguments(path)}));
        QVERIFY(startup_->RemoveFromStartup(Identifier));
        QTRY_COMPARE(programs_->LaunchctlCalls(), (QList<Arguments>{LoadArguments(path), UnloadArguments(path)}));
        QVERIFY(QFile::exists(path));
        QVERIFY(startup_->RemoveFromStartup(Identifier));
        QTRY_COMPARE(programs_->LaunchctlCalls(),
                     (QList<Arguments>{LoadArguments(path), UnloadArguments(path), UnloadArguments(path)}));
    }

    void doesNotUnloadAnUnknownAgent()
    {
        QVERIFY(!startup_->RemoveFromStartup(Identifier));
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QVERIFY(!startup_->RemoveFromStartup(QStringLiteral("Zelkor_Other_1.0_Agent")));
        QTRY_COMPARE(programs_->LaunchctlCalls().size(), 1);
    }

protected:
    void SetUp() override
    {
        TestBed::Reset();
        QDir(AgentsFolder()).removeRecursively();
        QVERIFY(QDir().mkpath(AgentsFolder()));
        programs_ = std::make_unique<Programs>();
        startup_ = std::make_unique<LaunchctlStartupImpl>();
    }

    void TearDown() override
    {
        startup_.reset();
        programs_.reset();
    }

private:
    /// Creates an agent in the user's folder and returns its path. The property list of the agent contains only a
    /// label.
    static QString MakeAgent(QString const& name, QString const& label)
    {
        QString path = AgentsFolder() + name;
        QFile file(path);
        file.open(QIODevice::WriteOnly);
        file.write("<plist><dict>\n<key>Label</key>\n<string>" + label.toUtf8() + "</string>\n</dict></plist>\n");
        return path;
    }

    std::unique_ptr<Programs> programs_;
    std::unique_ptr<LaunchctlStartupImpl> startup_;
};

ZQTUTIL_TEST_MAIN(LaunchctlStartupImplTest)

#include "LaunchctlStartupImplTest.moc"

#include "Programs.h"

#include <support/TestCase.h>
#include <support/logs/LogCapture.h>
#include <support/overrides/NextFunction.h>
#include <support/sandbox/Folders.h>
#include <support/sandbox/OrdinaryUser.h>

#include <Util/Platforms/mac/LaunchctlStartupImpl.h>

#include <QtCore/QProcess>
#include <QtCore/QSettings>
#include <QtTest/QtTest>

#include <chrono>
#include <future>
#include <memory>
#include <type_traits>

#include <sys/stat.h>

using Zelkor::Testing::Check;
using Zelkor::Testing::LogCapture;
using Zelkor::Testing::LogLine;
using Zelkor::Testing::OpenDescriptors;
using Zelkor::Testing::Programs;
using Zelkor::Testing::RunAsOrdinaryUser;
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

/// The keys that were set in settings, in order.
QStringList& SetKeys()
{
    static QStringList keys;
    return keys;
}

/// What Python's plistlib reads of a property list.
QByteArray ReadByPlistlib(QString const& path)
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

// In the way of Qt's own: the source under test calls this.
void QSettings::setValue(QString const& key, QVariant const& value)
{
    static auto const next = Zelkor::Testing::NextFunction<void (*)(QSettings*, QString const&, QVariant const&)>(
        "_ZN9QSettings8setValueERK7QStringRK8QVariant");
    SetKeys() += key;
    next(this, key, value);
}

class LaunchctlStartupImplTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void writesAndLoadsAnAgent()
    {
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {QStringLiteral("--hidden"), QStringLiteral("a b")}));
        QString const path = AgentsFolder() + FileName;
        QCOMPARE(ReadByPlistlib(path),
                 QByteArray("{\"KeepAlive\": false, \"Label\": \"Zelkor_Studio_3.1.2_Agent\", "
                            "\"ProgramArguments\": [\"open\", \"/Applications/X.app\", \"--args\", "
                            "\"--hidden\", \"a b\"], \"RunAtLoad\": true}"));
        QTRY_COMPARE(programs_->LaunchctlCalls(), QStringLiteral("load|-w|%1|").arg(path));
    }

    void setsTheKeysInOrder()
    {
        SetKeys().clear();
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QCOMPARE(SetKeys(), (QStringList{QStringLiteral("RunAtLoad"), QStringLiteral("KeepAlive"),
                                         QStringLiteral("Label"), QStringLiteral("ProgramArguments")}));
        QTRY_COMPARE(programs_->LaunchctlCalls().count(QStringLiteral("load|")), 1);
    }

    void writesBeforeItLoads()
    {
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QTRY_COMPARE(programs_->LaunchctlCalls().count(QStringLiteral("load|")), 1);
        QVERIFY(startup_->IsInStartup(Identifier)); // launchctl has read the label
    }

    void doesNotWaitForLaunchctl()
    {
        std::promise<void> done;
        auto wasDoneFirst = std::async(std::launch::async, [hold = programs_->Hold(), &done]() mutable {
            bool const isDone = done.get_future().wait_for(std::chrono::seconds(10)) == std::future_status::ready;
            hold.reset();
            return isDone;
        });
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QVERIFY(startup_->RemoveFromStartup(Identifier));
        QCOMPARE(programs_->LaunchctlCalls(), QString());
        done.set_value();
        QVERIFY(wasDoneFirst.get());
        QTRY_COMPARE(programs_->LaunchctlCalls().count(QStringLiteral("load|")), 2);
    }

    void doesNotRewriteAKnownAgent()
    {
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QString const path = AgentsFolder() + FileName;
        QByteArray const before = ReadByPlistlib(path);
        QVERIFY(startup_->AddToStartup(Identifier, QStringLiteral("/Other.app/Contents/MacOS/X"), {}));
        QCOMPARE(ReadByPlistlib(path), before);
        QTRY_COMPARE(programs_->LaunchctlCalls(), QStringLiteral("load|-w|%1|load|-w|%1|").arg(path));
    }

    void writesAnAgentAgainWhoseFileIsGone()
    {
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QVERIFY(QFile::remove(AgentsFolder() + FileName));
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QVERIFY(QFile::exists(AgentsFolder() + FileName));
        QTRY_COMPARE(programs_->LaunchctlCalls().count(QStringLiteral("load|")), 2);
    }

    void writesAnAgentAgainThatItDoesNotKnow()
    {
        MakeAgent(FileName, QStringLiteral("another"));
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QString const path = AgentsFolder() + FileName;
        QCOMPARE(ReadByPlistlib(path),
                 QByteArray("{\"KeepAlive\": false, \"Label\": \"Zelkor_Studio_3.1.2_Agent\", "
                            "\"ProgramArguments\": [\"open\", \"/Applications/X.app\", \"--args\"], "
                            "\"RunAtLoad\": true}"));
        QTRY_COMPARE(programs_->LaunchctlCalls(), QStringLiteral("load|-w|%1|").arg(path));
    }

    void loadsAKnownAgentOfAnyLabel_data()
    {
        QTest::addColumn<QString>("label");
        QTest::newRow("three parts") << QStringLiteral("a_b_c");
        QTest::newRow("another maker's") << QStringLiteral("org.example.agent");
        QTest::newRow("none") << QString();
    }

    void loadsAKnownAgentOfAnyLabel()
    {
        QFETCH(QString, label);
        QString const path = MakeAgent(QStringLiteral("other.plist"), label);
        startup_->UpdatePlistList();
        LogCapture const log;
        QVERIFY(startup_->AddToStartup(label, Executable, {}));
        QCOMPARE(log.Texts(), QStringList());
        QTRY_COMPARE(programs_->LaunchctlCalls(), QStringLiteral("load|-w|%1|").arg(path));
        QCOMPARE(QDir(AgentsFolder()).entryList(QDir::Files), QStringList{QStringLiteral("other.plist")});
    }

    void loadsAndUnloadsTheFileThatItHasRead()
    {
        QString const path = MakeAgent(QStringLiteral("an agent.plist"), Identifier);
        QByteArray const before = ReadByPlistlib(path);
        startup_->UpdatePlistList();
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QTRY_COMPARE(programs_->LaunchctlCalls(), QStringLiteral("load|-w|%1|").arg(path));
        QCOMPARE(ReadByPlistlib(path), before);
        QVERIFY(!QFile::exists(AgentsFolder() + FileName));
        QVERIFY(startup_->RemoveFromStartup(Identifier));
        QTRY_COMPARE(programs_->LaunchctlCalls(), QStringLiteral("load|-w|%1|unload|-w|%1|").arg(path));
    }

    void loadsAnAgentThatAFolderIsInTheWayOf()
    {
        QString const path = AgentsFolder() + FileName;
        QVERIFY(QDir().mkpath(path));
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QTRY_COMPARE(programs_->LaunchctlCalls(), QStringLiteral("load|-w|%1|").arg(path));
        QVERIFY(QFileInfo(path).isDir());
    }

    void loadsAnAgentOfAReadOnlyFolder()
    {
        QString const path = AgentsFolder() + FileName;
        Check(chmod(QFile::encodeName(QDir::homePath()).constData(), 0755));
        Check(chmod(QFile::encodeName(AgentsFolder()).constData(), 0555));
        programs_->AdmitEverybody();
        QByteArray const added = RunAsOrdinaryUser(
            [this] { return QByteArray::number(int(startup_->AddToStartup(Identifier, Executable, {}))); });
        QCOMPARE(added, QByteArray("1"));
        QTRY_COMPARE(programs_->LaunchctlCalls(), QStringLiteral("load|-w|%1|").arg(path));
        QVERIFY(!QFile::exists(path));
    }

    void refusesOtherIdentifiers_data()
    {
        QTest::addColumn<QString>("identifier");
        QTest::newRow("three parts") << QStringLiteral("a_b_c");
        QTest::newRow("five parts") << QStringLiteral("a_b_c_d_e");
    }

    void refusesOtherIdentifiers()
    {
        QFETCH(QString, identifier);
        LogCapture const log;
        QVERIFY(!startup_->AddToStartup(identifier, Executable, {}));
        QCOMPARE(log.Lines().size(), 1);
        LogLine const line = log.Lines().first();
        QCOMPARE(line.severity, google::GLOG_WARNING);
        QCOMPARE(line.file, QStringLiteral("Util/Platforms/mac/LaunchctlStartupImpl.mm"));
        QCOMPARE(line.line, 120);
        QCOMPARE(line.text,
                 QStringLiteral("bool Zelkor::Util::LaunchctlStartupImpl::AddToStartup(const QString &, "
                                "const QString &, const QStringList &): Invalid application identificator."));
        QCOMPARE(QDir(AgentsFolder()).entryList(QDir::Files), QStringList());
    }

    void failsWhenLaunchctlCannotBeStarted()
    {
        qputenv("PATH", "/nowhere");
        QVERIFY(!startup_->AddToStartup(Identifier, Executable, {}));
        QVERIFY(QFile::exists(AgentsFolder() + FileName)); // written all the same
        QVERIFY(!startup_->RemoveFromStartup(Identifier));
    }

    void asksLaunchctlWhatIsLoaded()
    {
        programs_->SetJobs("PID\tStatus\tLabel\n1\t0\t" + Identifier.toUtf8() + "\n2\t0\tother");
        QVERIFY(startup_->IsInStartup(Identifier));
        QVERIFY(startup_->IsInStartup(QStringLiteral("other")));
        QVERIFY(!startup_->IsInStartup(QStringLiteral("Status")));
        programs_->SetJobs("axb\n");
        QVERIFY(startup_->IsInStartup(QStringLiteral("a.b")));
    }

    void readsLongLists()
    {
        programs_->SetJobs(QByteArray("1\t0\tsomething\n").repeated(20000) + "1\t0\tlast\n");
        QVERIFY(startup_->IsInStartup(QStringLiteral("last")));
    }

    void takesAListThatIsNoUtf8ForEmpty()
    {
        programs_->SetJobs("\xff\n" + Identifier.toUtf8() + "\n");
        QVERIFY(!startup_->IsInStartup(Identifier));
    }

    void logsThatTheListFails()
    {
        TestBed::SetProgramsFolder(QStringLiteral("/nowhere"));
        LogCapture const log;
        QVERIFY(!startup_->IsInStartup(Identifier));
        QCOMPARE(log.Lines().size(), 1);
        LogLine const line = log.Lines().first();
        QCOMPARE(line.severity, google::GLOG_ERROR);
        QCOMPARE(line.file, QStringLiteral("Util/Platforms/mac/LaunchctlStartupImpl.mm"));
        QCOMPARE(line.line, 63);
        QVERIFY(
            line.text.startsWith(QStringLiteral("QString Zelkor::Util::(anonymous namespace)::GetAppsFromLaunchctl(): "
                                                "Exception while launchctl running: ")));
        QVERIFY(line.text.contains(QStringLiteral("/nowhere/launchctl")));
    }

    void knowsTheAgentsOfTheFolder()
    {
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QVERIFY(startup_->AddToStartup(QStringLiteral("Zelkor_Editor_1.0_Agent"), Executable, {}));
        QTRY_COMPARE(programs_->LaunchctlCalls().count(QStringLiteral("load|")), 2);
        programs_->SetJobs("1\t0\t" + Identifier.toUtf8() +
                           "\n1\t0\tZelkor_Editor_1.0_Agent\n1\t0\tZelkor_Gone_1.0_Agent\n");
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

    void asksLaunchctlOnceAboutAllAgents()
    {
        QStringList labels;
        for (QString const& name : {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}) {
            labels += QStringLiteral("org.example.") + name;
            MakeAgent(name + QStringLiteral(".plist"), labels.last());
        }
        startup_->UpdatePlistList();
        QCOMPARE(programs_->Calls(QLatin1String("launchctl")), QByteArray());
        programs_->SetJobs("1\t0\torg.example.a\n1\t0\torg.example.b\n1\t0\torg.example.c\n");
        QCOMPARE(startup_->GetAppsInStartup(), labels);
        QCOMPARE(programs_->Calls(QLatin1String("launchctl")), QByteArray("list|\n"));
    }

    void listsALabelOnce()
    {
        MakeAgent(QStringLiteral("one.plist"), Identifier);
        MakeAgent(QStringLiteral("two.plist"), Identifier);
        programs_->SetJobs("1\t0\t" + Identifier.toUtf8() + "\n");
        startup_->UpdatePlistList();
        QCOMPARE(startup_->GetAppsInStartup(), QStringList{Identifier});
    }

    void takesNoOtherFileForAnAgent()
    {
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QTRY_COMPARE(programs_->LaunchctlCalls().count(QStringLiteral("load|")), 1);
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

    void takesAnAgentWithoutLabelForLoaded()
    {
        QFile file(AgentsFolder() + QStringLiteral("other.plist"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("<plist><dict><key>RunAtLoad</key><true/></dict></plist>");
        file.close();
        startup_->UpdatePlistList();
        QCOMPARE(startup_->GetAppsInStartup(), QStringList{QString()});
    }

    void leavesNoDescriptorsOpen()
    {
        QVERIFY(!startup_->IsInStartup(Identifier));
        int const before = OpenDescriptors();
        for (int i = 0; i < 3; ++i) {
            QVERIFY(!startup_->IsInStartup(Identifier));
        }
        QCOMPARE(OpenDescriptors(), before);
    }

    void unloadsAKnownAgent()
    {
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QString const path = AgentsFolder() + FileName;
        QTRY_COMPARE(programs_->LaunchctlCalls(), QStringLiteral("load|-w|%1|").arg(path));
        QVERIFY(startup_->RemoveFromStartup(Identifier));
        QTRY_COMPARE(programs_->LaunchctlCalls(), QStringLiteral("load|-w|%1|unload|-w|%1|").arg(path));
        QVERIFY(QFile::exists(path));
        QVERIFY(startup_->RemoveFromStartup(Identifier));
        QTRY_COMPARE(programs_->LaunchctlCalls().count(QStringLiteral("unload")), 2);
    }

    void unloadsNothingUnknown()
    {
        QVERIFY(!startup_->RemoveFromStartup(Identifier));
        QVERIFY(startup_->AddToStartup(Identifier, Executable, {}));
        QVERIFY(!startup_->RemoveFromStartup(QStringLiteral("Zelkor_Other_1.0_Agent")));
        QTRY_COMPARE(programs_->LaunchctlCalls().count(QStringLiteral("load")), 1);
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
    /// An agent in the user's folder that has nothing but a label; its path.
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

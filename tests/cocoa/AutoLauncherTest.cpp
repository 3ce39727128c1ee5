#include "Bundles.h"
#include "Programs.h"

#include <TestBed.h>
#include <support/TestCase.h>
#include <support/logs/LogCapture.h>

#include <Util/AutoLauncher.h>

#include <QtTest/QtTest>

#include <memory>
#include <type_traits>

using Zelkor::Testing::Arguments;
using Zelkor::Testing::Bundles;
using Zelkor::Testing::LoadArguments;
using Zelkor::Testing::LogCapture;
using Zelkor::Testing::Programs;
using Zelkor::Testing::UnloadArguments;
using Zelkor::Util::AutoLauncherImplType;
using Zelkor::Util::GetAutoLauncherImpl;
using Zelkor::Util::IAutoLauncher;
namespace TestBed = Zelkor::TestBed;

static_assert(std::is_abstract_v<IAutoLauncher> && std::has_virtual_destructor_v<IAutoLauncher>);
static_assert(std::is_same_v<decltype(&GetAutoLauncherImpl), std::shared_ptr<IAutoLauncher> (*)(AutoLauncherImplType)>);
static_assert(std::is_same_v<decltype(&IAutoLauncher::IsInStartup), bool (IAutoLauncher::*)(QString const&)>);
static_assert(std::is_same_v<decltype(&IAutoLauncher::AddToStartup),
                             bool (IAutoLauncher::*)(QString const&, QString const&, QStringList const&)>);
static_assert(std::is_same_v<decltype(&IAutoLauncher::RemoveFromStartup), bool (IAutoLauncher::*)(QString const&)>);
static_assert(std::is_same_v<decltype(&IAutoLauncher::GetStartupApplications), QStringList (IAutoLauncher::*)()>);

namespace
{

QString const Identifier = QStringLiteral("zelkor_Studio_3.1.0_Agent");
QString const Executable = QStringLiteral("/Applications/X.app/Contents/MacOS/X");

QDir AgentsFolder()
{
    return QDir(QDir::homePath() + QStringLiteral("/Library/LaunchAgents/"));
}

} // namespace

class AutoLauncherTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void addsALoginItemFirst()
    {
        helper_ = bundles_->MakeStudio();
        QVERIFY(!launcher_->IsInStartup(Identifier));
        QVERIFY(launcher_->AddToStartup(Identifier, Executable, {QStringLiteral("--ignored")}));
        QCOMPARE(TestBed::LoginItemUrls().size(), 1);
        QCOMPARE(AgentsFolder().entryList(QDir::Files), QStringList());
        QVERIFY(launcher_->IsInStartup(Identifier));
        QCOMPARE(launcher_->GetStartupApplications(), QStringList{Identifier});

        QVERIFY(launcher_->RemoveFromStartup(Identifier));
        QCOMPARE(TestBed::LoginItemUrls().size(), 0);
        QVERIFY(!launcher_->IsInStartup(Identifier));
        QCOMPARE(programs_->LaunchctlCalls(), QList<Arguments>());
    }

    void recognizesItsOwnChanges()
    {
        helper_ = bundles_->MakeStudio();
        for (int i = 0; i < 2; ++i) {
            QVERIFY(launcher_->AddToStartup(Identifier, Executable, {}));
            QCOMPARE(TestBed::LoginItemUrls().size(), 1);
            QVERIFY(launcher_->RemoveFromStartup(Identifier));
            QCOMPARE(TestBed::LoginItemUrls().size(), 0);
        }
    }

    void runsLaunchctlOnlyWithoutALoginItem()
    {
        helper_ = bundles_->MakeStudio();
        QVERIFY(launcher_->AddToStartup(Identifier, Executable, {}));
        QVERIFY(launcher_->IsInStartup(Identifier));
        QCOMPARE(programs_->Calls(QLatin1String("launchctl")), QList<Arguments>());
        QVERIFY(!launcher_->IsInStartup(QStringLiteral("zelkor_Other_1.0.0_Agent")));
        QCOMPARE(programs_->Calls(QLatin1String("launchctl")), QList<Arguments>{{QStringLiteral("list")}});
    }

    void addsALaunchAgentWithoutAHelper()
    {
        QVERIFY(launcher_->AddToStartup(Identifier, Executable, {QStringLiteral("--hidden")}));
        QStringList const files = AgentsFolder().entryList(QDir::Files);
        QCOMPARE(files, QStringList{QStringLiteral("com.zelkor.studio3.agent.startup.plist")});
        QString const path = AgentsFolder().absoluteFilePath(files.first());
        QTRY_COMPARE(programs_->LaunchctlCalls(), QList<Arguments>{LoadArguments(path)});
        QFile agent(path);
        QVERIFY(agent.open(QIODevice::ReadOnly));
        QByteArray const text = agent.readAll();
        QVERIFY(text.contains("<string>/Applications/X.app</string>"));
        QVERIFY(text.contains("<string>--hidden</string>"));
        QVERIFY(launcher_->IsInStartup(Identifier));
        QCOMPARE(launcher_->GetStartupApplications(), QStringList{Identifier});

        QVERIFY(launcher_->RemoveFromStartup(Identifier));
        QTRY_COMPARE(programs_->LaunchctlCalls(), (QList<Arguments>{LoadArguments(path), UnloadArguments(path)}));
        QVERIFY(!launcher_->IsInStartup(Identifier));
        QCOMPARE(launcher_->GetStartupApplications(), QStringList());
    }

    void findsChangesByOthers()
    {
        auto const other = GetAutoLauncherImpl(AutoLauncherImplType::Default);
        QString const agent = QStringLiteral("zelkor_Editor_1.0_Agent");
        QVERIFY(other->AddToStartup(agent, Executable, {}));
        QTRY_COMPARE(programs_->LaunchctlCalls().size(), 1);
        helper_ = bundles_->MakeStudio();
        QVERIFY(other->AddToStartup(Identifier, Executable, {}));
        // The result of GetStartupApplications() lists all login items first, then all agents.
        QCOMPARE(launcher_->GetStartupApplications(), (QStringList{Identifier, agent}));

        auto const third = GetAutoLauncherImpl(AutoLauncherImplType::Default);
        QVERIFY(third->IsInStartup(Identifier));
        QVERIFY(third->RemoveFromStartup(agent));
        QTRY_COMPARE(programs_->LaunchctlCalls().size(), 2);
        QCOMPARE(programs_->LaunchctlCalls().last().first(), QStringLiteral("unload"));
    }

    void removesTheLoginItemFirst()
    {
        QVERIFY(launcher_->AddToStartup(Identifier, Executable, {}));
        QTRY_COMPARE(programs_->LaunchctlCalls().size(), 1);
        helper_ = bundles_->MakeStudio();
        QVERIFY(launcher_->AddToStartup(Identifier, Executable, {}));
        QVERIFY(launcher_->RemoveFromStartup(Identifier));
        QCOMPARE(TestBed::LoginItemUrls().size(), 0);
        QVERIFY(launcher_->IsInStartup(Identifier));
        QCOMPARE(programs_->LaunchctlCalls().size(), 1); // only the call that loaded the agent
        QVERIFY(launcher_->RemoveFromStartup(Identifier));
        QTRY_COMPARE(programs_->LaunchctlCalls().size(), 2);
        QCOMPARE(programs_->LaunchctlCalls().last().first(), QStringLiteral("unload"));
    }

    void listsALoginItemWithAnAgentTwice()
    {
        QVERIFY(launcher_->AddToStartup(Identifier, Executable, {}));
        QTRY_COMPARE(programs_->LaunchctlCalls().size(), 1);
        helper_ = bundles_->MakeStudio();
        QVERIFY(launcher_->AddToStartup(Identifier, Executable, {}));
        QCOMPARE(launcher_->GetStartupApplications(), (QStringList{Identifier, Identifier}));
    }

    void failsWhenLoginItemAndAgentFail()
    {
        {
            LogCapture const log;
            QVERIFY(!launcher_->AddToStartup(QStringLiteral("three_parts_only"), Executable, {}));
            QCOMPARE(log.Texts().size(), 1);
        }
        QVERIFY(!launcher_->RemoveFromStartup(Identifier));
    }

    void keepsItsCacheWhenAnAdditionFails()
    {
        helper_ = bundles_->MakeStudio();
        QVERIFY(launcher_->AddToStartup(Identifier, Executable, {}));
        RemoveWithAnotherLauncher();
        {
            LogCapture const log;
            QVERIFY(!launcher_->AddToStartup(QStringLiteral("three_parts_only"), Executable, {}));
            QCOMPARE(log.Texts().size(), 1);
        }
        // This call adds nothing, because the launcher's cached list still contains the removed login item.
        QVERIFY(launcher_->AddToStartup(Identifier, Executable, {}));
        QCOMPARE(TestBed::LoginItemUrls(), QStringList());
        QCOMPARE(AgentsFolder().entryList(QDir::Files), QStringList());
    }

    void keepsItsCacheWhenARemovalFails()
    {
        helper_ = bundles_->MakeStudio();
        QVERIFY(launcher_->AddToStartup(Identifier, Executable, {}));
        RemoveWithAnotherLauncher();
        QVERIFY(!launcher_->RemoveFromStartup(QStringLiteral("zelkor_Other_1.0.0_Agent")));
        QVERIFY(launcher_->AddToStartup(Identifier, Executable, {}));
        QCOMPARE(TestBed::LoginItemUrls(), QStringList());
        QCOMPARE(AgentsFolder().entryList(QDir::Files), QStringList());
    }

    void addsWithoutReadingFirst()
    {
        helper_ = bundles_->MakeStudio();
        TestBed::AddLoginItem(helper_);
        // The first call adds a duplicate, because the launcher has not read the existing login items yet. The
        // launcher then reads them, so the second call adds nothing.
        QVERIFY(launcher_->AddToStartup(Identifier, Executable, {}));
        QCOMPARE(TestBed::LoginItemUrls().size(), 2);
        QVERIFY(launcher_->AddToStartup(Identifier, Executable, {}));
        QCOMPARE(TestBed::LoginItemUrls().size(), 2);
    }

    void removesWithoutReadingFirst()
    {
        auto const other = GetAutoLauncherImpl(AutoLauncherImplType::Default);
        QVERIFY(other->AddToStartup(Identifier, Executable, {}));
        QTRY_COMPARE(programs_->LaunchctlCalls().size(), 1);
        helper_ = bundles_->MakeStudio();
        TestBed::AddLoginItem(helper_);
        QVERIFY(!launcher_->RemoveFromStartup(Identifier));
        QCOMPARE(TestBed::LoginItemUrls().size(), 1);
        QVERIFY(launcher_->IsInStartup(Identifier)); // reads the login items
        QVERIFY(launcher_->RemoveFromStartup(Identifier));
        QCOMPARE(TestBed::LoginItemUrls().size(), 0);
        QVERIFY(launcher_->RemoveFromStartup(Identifier)); // unloads the agent
        QTRY_COMPARE(programs_->LaunchctlCalls().size(), 2);
        QCOMPARE(programs_->LaunchctlCalls().last().first(), QStringLiteral("unload"));
    }

    void ignoresLoginItemsOfOtherVendors()
    {
        bundles_->Make(QStringLiteral("O.app"), QStringLiteral("com.other.Studio"), QStringLiteral("1.0.0"));
        TestBed::AddLoginItem(bundles_->Make(QStringLiteral("O.app/Contents/Library/LoginItems/H.app"),
                                             QStringLiteral("com.other.Agent"), QStringLiteral("1")));
        QCOMPARE(launcher_->GetStartupApplications(), QStringList());
    }

    void behavesTheSameForEveryType()
    {
        helper_ = bundles_->MakeStudio();
        for (int const type : {0, 1, 99}) {
            auto const launcher = GetAutoLauncherImpl(static_cast<AutoLauncherImplType>(type));
            QVERIFY(launcher->AddToStartup(Identifier, Executable, {}));
            QVERIFY(launcher->IsInStartup(Identifier));
            QVERIFY(launcher->RemoveFromStartup(Identifier));
        }
    }

protected:
    void SetUp() override
    {
        TestBed::Reset();
        QDir(AgentsFolder()).removeRecursively();
        QVERIFY(QDir().mkpath(AgentsFolder().path()));
        bundles_ = std::make_unique<Bundles>();
        TestBed::SetMainBundle(
            bundles_->Make(QStringLiteral("Plain.app"), QStringLiteral("com.zelkor.Plain"), QStringLiteral("1.0")));
        programs_ = std::make_unique<Programs>();
        launcher_ = GetAutoLauncherImpl(AutoLauncherImplType::Default);
    }

    void TearDown() override
    {
        launcher_.reset();
        programs_.reset();
        bundles_.reset();
        QCOMPARE(TestBed::LiveObjects(), 0);
        TestBed::Reset();
    }

private:
    /// Removes the login item through another launcher. The launcher under test keeps its cached list.
    static void RemoveWithAnotherLauncher()
    {
        auto const other = GetAutoLauncherImpl(AutoLauncherImplType::Default);
        QVERIFY(other->IsInStartup(Identifier));
        QVERIFY(other->RemoveFromStartup(Identifier));
        QCOMPARE(TestBed::LoginItemUrls(), QStringList());
    }

    std::unique_ptr<Bundles> bundles_;
    std::unique_ptr<Programs> programs_;
    std::shared_ptr<IAutoLauncher> launcher_;
    QString helper_;
};

ZQTUTIL_TEST_MAIN(AutoLauncherTest)

#include "AutoLauncherTest.moc"

#include "Bundles.h"

#include <TestBed.h>
#include <support/TestCase.h>
#include <support/sandbox/Folders.h>

#include <Util/Platforms/mac/LoginItemStartupImpl.h>

#include <QtTest/QtTest>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include <fcntl.h>

using Zelkor::Testing::Bundles;
using Zelkor::Testing::NamesIn;
using Zelkor::Testing::WorkingFolder;
using Zelkor::Util::LoginItemStartupImpl;
namespace TestBed = Zelkor::TestBed;

static_assert(!std::is_polymorphic_v<LoginItemStartupImpl> && sizeof(LoginItemStartupImpl) == sizeof(void*));

namespace
{

QString const Vendor = QStringLiteral("zelkor");
QString const Identifier = QStringLiteral("zelkor_Studio_3.1.0_Agent");

/// Returns the URL of the folder \a path as login items contain it: percent-encoded, with a slash at the end.
QString UrlOf(QString const& path)
{
    return QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded) + QLatin1Char('/');
}

} // namespace

class LoginItemStartupImplTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void reconstructsTheIdentifier_data()
    {
        QTest::addColumn<QString>("application");
        QTest::addColumn<QString>("version");
        QTest::addColumn<QString>("helper");
        QTest::addColumn<QStringList>("identifiers");
        QString const helper = QStringLiteral("com.zelkor.Agent");
        QTest::newRow("product with its major version")
            << QStringLiteral("com.zelkor.Studio3") << QStringLiteral("3.1") << helper << QStringList{Identifier};
        QTest::newRow("plain product") << QStringLiteral("com.zelkor.Studio") << QStringLiteral("4.0.0") << helper
                                       << QStringList{QStringLiteral("zelkor_Studio_4.0.0_Agent")};
        QTest::newRow("version of one part") << QStringLiteral("com.zelkor.Studio") << QStringLiteral("4") << helper
                                             << QStringList{QStringLiteral("zelkor_Studio_4.0_Agent")};
        QTest::newRow("helper of another vendor") << QStringLiteral("com.zelkor.Studio") << QStringLiteral("4")
                                                  << QStringLiteral("com.other.Agent") << QStringList();
        QTest::newRow("vendor in different case") << QStringLiteral("com.zelkor.Studio") << QStringLiteral("4")
                                                  << QStringLiteral("com.Zelkor.Agent") << QStringList();
        QTest::newRow("helper identifier with two parts") << QStringLiteral("com.zelkor.Studio") << QStringLiteral("4")
                                                          << QStringLiteral("zelkor.Agent") << QStringList();
        QTest::newRow("helper without property list")
            << QStringLiteral("com.zelkor.Studio") << QStringLiteral("4") << QString() << QStringList();
        QTest::newRow("application without property list")
            << QString() << QString() << helper << QStringList{QStringLiteral("zelkor__.0_Agent")};
    }

    void reconstructsTheIdentifier()
    {
        QFETCH(QString, application);
        QFETCH(QString, version);
        QFETCH(QString, helper);
        QFETCH(QStringList, identifiers);
        QString const main = bundles_->Make(QStringLiteral("Some App.app"), application, version);
        TestBed::AddLoginItem(bundles_->Make(QStringLiteral("Some App.app/Contents/Library/LoginItems/H.app"), helper,
                                             QStringLiteral("1")));
        startup_->UpdateStartupItems(Vendor);
        QCOMPARE(startup_->GetItemsAtStartup(), identifiers);
        for (QString const& identifier : identifiers) {
            QVERIFY(startup_->IsInStartup(identifier));
        }
        QCOMPARE(TestBed::LiveObjects(), 0);
    }

    void treatsAVersionThatIsNotATextAsEmpty_data()
    {
        QTest::addColumn<QString>("version");
        QTest::newRow("integer") << QStringLiteral("<integer>5</integer>");
        QTest::newRow("real") << QStringLiteral("<real>5.1</real>");
        QTest::newRow("boolean") << QStringLiteral("<true/>");
        QTest::newRow("list creation") << QStringLiteral("<array><string>5</string></array>");
        QTest::newRow("data") << QStringLiteral("<data>NS4x</data>");
    }

    void treatsAVersionThatIsNotATextAsEmpty()
    {
        QFETCH(QString, version);
        bundles_->MakeWithVersionElement(QStringLiteral("X.app"), QStringLiteral("com.zelkor.Studio"), version);
        TestBed::AddLoginItem(bundles_->Make(QStringLiteral("X.app/Contents/Library/LoginItems/H.app"),
                                             QStringLiteral("com.zelkor.Agent"), QStringLiteral("1")));
        startup_->UpdateStartupItems(Vendor);
        QCOMPARE(startup_->GetItemsAtStartup(), QStringList{QStringLiteral("zelkor_Studio_.0_Agent")});
        QCOMPARE(TestBed::LiveObjects(), 0);
    }

    void skipsItemsOfMissingFolders()
    {
        helper_ = bundles_->MakeStudio();
        TestBed::AddLoginItem(QStringLiteral("/gone/H.app"), false);
        TestBed::AddLoginItem(QStringLiteral("/gone/H.app"));
        TestBed::AddLoginItem(helper_);
        startup_->UpdateStartupItems(Vendor);
        QCOMPARE(startup_->GetItemsAtStartup(), QStringList{Identifier});
        QCOMPARE(TestBed::LiveObjects(), 0);
    }

    void skipsItemsThatDoNotResolve()
    {
        helper_ = bundles_->MakeStudio();
        TestBed::AddLoginItem(helper_, false);
        startup_->UpdateStartupItems(Vendor);
        QCOMPARE(startup_->GetItemsAtStartup(), QStringList());
        QCOMPARE(TestBed::LiveObjects(), 0);
    }

    void acceptsAnyFolderAsTheApplication()
    {
        QString const helper = bundles_->Make(QStringLiteral("some/folder/and/another/H.app"),
                                              QStringLiteral("com.zelkor.Agent"), QStringLiteral("1"));
        TestBed::AddLoginItem(helper);
        startup_->UpdateStartupItems(Vendor);
        QCOMPARE(startup_->GetItemsAtStartup(), QStringList{QStringLiteral("zelkor__.0_Agent")});
        QCOMPARE(TestBed::LiveObjects(), 0);
    }

    void skipsItemsWithTooShortPaths()
    {
        QString const helper =
            bundles_->Make(QStringLiteral("H.app"), QStringLiteral("com.zelkor.Agent"), QStringLiteral("1"));
        {
            WorkingFolder const here(helper.toStdString());
            TestBed::AddLoginItem(QStringLiteral("/proc/self/cwd")); // the path is too short to contain an application
            startup_->UpdateStartupItems(Vendor);
            QCOMPARE(startup_->GetItemsAtStartup(), QStringList());
        }
        WorkingFolder const above(QFileInfo(helper).path().toStdString());
        // The library removes the last four components from a helper's path to get the path of the main application.
        // This path has only four components, so the result is the root folder.
        TestBed::AddLoginItem(QStringLiteral("/proc/self/cwd/H.app"));
        startup_->UpdateStartupItems(Vendor);
        QCOMPARE(startup_->GetItemsAtStartup(), QStringList{QStringLiteral("zelkor__.0_Agent")});
        QCOMPARE(TestBed::LiveObjects(), 0);
    }

    void usesTheLaterOfTwoItems()
    {
        QStringList helpers;
        for (QString const& name : {QStringLiteral("First.app"), QStringLiteral("Second.app")}) {
            bundles_->Make(name, QStringLiteral("com.zelkor.Studio3"), QStringLiteral("3.1"));
            helpers += bundles_->Make(name + QStringLiteral("/Contents/Library/LoginItems/Agent.app"),
                                      QStringLiteral("com.zelkor.Agent"), QStringLiteral("1"));
            TestBed::AddLoginItem(helpers.last());
        }
        startup_->UpdateStartupItems(Vendor);
        QCOMPARE(startup_->GetItemsAtStartup(), QStringList{Identifier});
        QVERIFY(startup_->RemoveFromLoginItems(Identifier));
        QCOMPARE(TestBed::LoginItemUrls(), QStringList{UrlOf(helpers.first())});
        QCOMPARE(TestBed::LiveObjects(), 0);
    }

    void ignoresTheVendorOfTheApplication()
    {
        TestBed::SetMainBundle(
            bundles_->Make(QStringLiteral("Studio.app"), QStringLiteral("com.other.Studio3"), QStringLiteral("3.1")));
        bundles_->Make(QStringLiteral("Studio.app/Contents/Library/LoginItems/Agent.app"),
                       QStringLiteral("com.zelkor.Agent"), QStringLiteral("1.0"));
        QVERIFY(startup_->AddToLoginItems(Identifier));
        startup_->UpdateStartupItems(Vendor);
        QCOMPARE(startup_->GetItemsAtStartup(), QStringList{Identifier});
        QCOMPARE(TestBed::LiveObjects(), 0);
    }

    void acceptsNonAsciiNames()
    {
        TestBed::SetMainBundle(bundles_->Make(QStringLiteral("Mein St\u00FCdio \u2116 3.app"),
                                              QStringLiteral("com.zelkor.Studio3"), QStringLiteral("3.1")));
        QString const helper = bundles_->Make(
            QStringLiteral("Mein St\u00FCdio \u2116 3.app/Contents/Library/LoginItems/Der \u0416gent  .app"),
            QStringLiteral("com.zelkor.Agent"), QStringLiteral("1"));
        QVERIFY(startup_->AddToLoginItems(Identifier));
        QCOMPARE(TestBed::LoginItemUrls(), QStringList{UrlOf(helper)});
        startup_->UpdateStartupItems(Vendor);
        QCOMPARE(startup_->GetItemsAtStartup(), QStringList{Identifier});
        QVERIFY(startup_->RemoveFromLoginItems(Identifier));
        QCOMPARE(TestBed::LoginItemUrls(), QStringList());
        QCOMPARE(TestBed::LiveObjects(), 0);
    }

    void clearsItsItemsWhenTheListFails_data()
    {
        QTest::addColumn<int>("call");
        QTest::newRow("list creation") << int(TestBed::LoginItemsCall::Create);
        QTest::newRow("snapshot") << int(TestBed::LoginItemsCall::Snapshot);
    }

    void clearsItsItemsWhenTheListFails()
    {
        QFETCH(int, call);
        helper_ = bundles_->MakeStudio();
        TestBed::AddLoginItem(helper_);
        startup_->UpdateStartupItems(Vendor);
        QVERIFY(startup_->IsInStartup(Identifier));

        TestBed::FailLoginItems(TestBed::LoginItemsCall(call));
        QVERIFY(!startup_->RemoveFromLoginItems(Identifier));
        startup_->UpdateStartupItems(Vendor);
        QCOMPARE(startup_->GetItemsAtStartup(), QStringList());
        QCOMPARE(TestBed::LiveObjects(), 0);
    }

    void addsTheHelperOfTheMainBundle()
    {
        helper_ = bundles_->MakeStudio();
        bundles_->Make(QStringLiteral("Studio.app/Contents/Library/LoginItems/Another.APP"),
                       QStringLiteral("com.zelkor.Other"), QStringLiteral("1"));
        TestBed::AddLoginItem(QStringLiteral("/first"));
        QVERIFY(startup_->AddToLoginItems(Identifier));
        QCOMPARE(TestBed::LoginItemUrls(), (QStringList{QStringLiteral("file:///first/"), UrlOf(helper_)}));
        QVERIFY(!startup_->IsInStartup(Identifier)); // the list is updated only by UpdateStartupItems()
        startup_->UpdateStartupItems(Vendor);
        QVERIFY(startup_->IsInStartup(Identifier));

        QVERIFY(startup_->AddToLoginItems(Identifier)); // adds nothing: the helper is already a login item
        QCOMPARE(TestBed::LoginItemUrls().size(), 2);

        // The name of this bundle's folder is "Another.APP". The library ignores the case of the suffix.
        QVERIFY(startup_->AddToLoginItems(QStringLiteral("a_b_c_Other")));
        QCOMPARE(TestBed::LoginItemUrls().size(), 3);
        QCOMPARE(TestBed::LiveObjects(), 0);
    }

    void addsNothingWithoutMainBundle_data()
    {
        QTest::addColumn<int>("call");
        QTest::newRow("main bundle") << int(TestBed::MainBundleCall::Get);
        QTest::newRow("URL of the main bundle") << int(TestBed::MainBundleCall::CopyUrl);
    }

    void addsNothingWithoutMainBundle()
    {
        QFETCH(int, call);
        helper_ = bundles_->MakeStudio();
        // Without a main bundle, the library must not search for the helper in the current folder. The test therefore
        // runs in a folder in which such a search would find the helper.
        WorkingFolder const bundle(QDir::cleanPath(helper_ + QStringLiteral("/../../../..")).toStdString());
        QVERIFY(QFileInfo(QStringLiteral("Contents/Library/LoginItems/Agent.app")).isDir());
        TestBed::FailMainBundle(TestBed::MainBundleCall(call));
        QVERIFY(!startup_->AddToLoginItems(Identifier));
        QCOMPARE(TestBed::LoginItemUrls(), QStringList());
        QCOMPARE(TestBed::LiveObjects(), 0);

        TestBed::FailMainBundle(TestBed::MainBundleCall::None);
        QVERIFY(startup_->AddToLoginItems(Identifier));
    }

    void doesNotReadTheListForAKnownItem()
    {
        helper_ = bundles_->MakeStudio();
        TestBed::AddLoginItem(helper_);
        startup_->UpdateStartupItems(Vendor);
        TestBed::FailLoginItems(TestBed::LoginItemsCall::Create);
        TestBed::FailMainBundle(TestBed::MainBundleCall::Get);
        QVERIFY(startup_->AddToLoginItems(Identifier));
        QCOMPARE(TestBed::LoginItemUrls().size(), 1);
        QCOMPARE(TestBed::LiveObjects(), 0);
    }

    void addsTheFirstMatchingHelperOfTheFolder()
    {
        TestBed::SetMainBundle(
            bundles_->Make(QStringLiteral("Studio.app"), QStringLiteral("com.zelkor.Studio3"), QStringLiteral("3.1")));
        QString const folder = QStringLiteral("Studio.app/Contents/Library/LoginItems/");
        QString path;
        for (char const letter : std::string("kcphadmobgnelfij")) {
            path = bundles_->Make(folder + QLatin1Char(letter) + QStringLiteral(".app"), QString(), QString());
        }
        path = QFileInfo(path).path();
        // The library must use the order in which the file system lists the folder. The test uses two bundles that the
        // file system does not list in alphabetical order.
        std::vector<std::string> const names = NamesIn(AT_FDCWD, path.toUtf8().constData());
        auto const first = std::adjacent_find(names.begin(), names.end(), std::greater<>());
        QVERIFY(first != names.end());
        for (auto name = first; name != first + 2; ++name) {
            bundles_->Make(folder + QString::fromStdString(*name), QStringLiteral("com.zelkor.Agent"),
                           QStringLiteral("1"));
        }
        QVERIFY(startup_->AddToLoginItems(Identifier));
        QCOMPARE(TestBed::LoginItemUrls(),
                 QStringList{UrlOf(path + QLatin1Char('/') + QString::fromStdString(*first))});
        QCOMPARE(TestBed::LiveObjects(), 0);
    }

    void addsApplicationBundlesOnly()
    {
        TestBed::SetMainBundle(
            bundles_->Make(QStringLiteral("Studio.app"), QStringLiteral("com.zelkor.Studio3"), QStringLiteral("3.1")));
        for (char const* const name : {"Agent", "Agent.bundle", "Agent.app.old", "Agentapp"}) {
            bundles_->Make(QStringLiteral("Studio.app/Contents/Library/LoginItems/") + QLatin1String(name),
                           QStringLiteral("com.zelkor.Agent"), QStringLiteral("1"));
        }
        QVERIFY(!startup_->AddToLoginItems(Identifier));
        QCOMPARE(TestBed::LoginItemUrls(), QStringList());
        QCOMPARE(TestBed::LiveObjects(), 0);
    }

    void rejectsOtherIdentifiers_data()
    {
        QTest::addColumn<QString>("identifier");
        QTest::newRow("missing helper") << QStringLiteral("zelkor_Studio_3.1.0_Other");
        QTest::newRow("different case") << QStringLiteral("zelkor_Studio_3.1.0_agent");
        QTest::newRow("three parts") << QStringLiteral("zelkor_Studio_3.1.0");
        QTest::newRow("empty") << QString();
    }

    void rejectsOtherIdentifiers()
    {
        QFETCH(QString, identifier);
        helper_ = bundles_->MakeStudio();
        QVERIFY(!startup_->AddToLoginItems(identifier));
        QCOMPARE(TestBed::LoginItemUrls(), QStringList());
        QCOMPARE(TestBed::LiveObjects(), 0);
    }

    void failsWhenTheItemCannotBeAdded_data()
    {
        QTest::addColumn<int>("call");
        QTest::newRow("list creation") << int(TestBed::LoginItemsCall::Create);
        QTest::newRow("insertion") << int(TestBed::LoginItemsCall::Insert);
    }

    void failsWhenTheItemCannotBeAdded()
    {
        QFETCH(int, call);
        helper_ = bundles_->MakeStudio();
        TestBed::FailLoginItems(TestBed::LoginItemsCall(call));
        QVERIFY(!startup_->AddToLoginItems(Identifier));
        QCOMPARE(TestBed::LiveObjects(), 0);
    }

    void removesAnItem()
    {
        helper_ = bundles_->MakeStudio();
        TestBed::AddLoginItem(QStringLiteral("/first"));
        TestBed::AddLoginItem(QStringLiteral("/second"), false);
        TestBed::AddLoginItem(helper_);
        QVERIFY(!startup_->RemoveFromLoginItems(Identifier)); // the list is empty before UpdateStartupItems()
        startup_->UpdateStartupItems(Vendor);
        QVERIFY(!startup_->RemoveFromLoginItems(QStringLiteral("zelkor_Other_1.0.0_Agent")));
        QVERIFY(startup_->RemoveFromLoginItems(Identifier));
        QCOMPARE(TestBed::LoginItemUrls(),
                 (QStringList{QStringLiteral("file:///first/"), QStringLiteral("file:///second/")}));
        QVERIFY(startup_->IsInStartup(Identifier)); // the list is updated only by UpdateStartupItems()
        QVERIFY(!startup_->RemoveFromLoginItems(Identifier));
        QCOMPARE(TestBed::LiveObjects(), 0);
    }

    void removesTheExactPathOnly()
    {
        helper_ = bundles_->MakeStudio();
        QStringList const others = {helper_ + QStringLiteral("2"), helper_ + QStringLiteral("/Contents"),
                                    helper_.chopped(1), helper_.toUpper()};
        for (QString const& other : others) {
            TestBed::AddLoginItem(other);
        }
        TestBed::AddLoginItem(helper_);
        startup_->UpdateStartupItems(Vendor);
        QVERIFY(startup_->RemoveFromLoginItems(Identifier));
        QStringList urls;
        for (QString const& other : others) {
            urls += UrlOf(other);
        }
        QCOMPARE(TestBed::LoginItemUrls(), urls);
        QCOMPARE(TestBed::LiveObjects(), 0);
    }

    void removesTheFirstMatchOnly()
    {
        helper_ = bundles_->MakeStudio();
        TestBed::AddLoginItem(helper_);
        TestBed::AddLoginItem(helper_);
        startup_->UpdateStartupItems(Vendor);
        QVERIFY(startup_->RemoveFromLoginItems(Identifier));
        QCOMPARE(TestBed::LoginItemUrls().size(), 1);
    }

    void failsWhenTheItemCannotBeRemoved_data()
    {
        QTest::addColumn<int>("call");
        QTest::newRow("list creation") << int(TestBed::LoginItemsCall::Create);
        QTest::newRow("snapshot") << int(TestBed::LoginItemsCall::Snapshot);
        QTest::newRow("removal") << int(TestBed::LoginItemsCall::Remove);
    }

    void failsWhenTheItemCannotBeRemoved()
    {
        QFETCH(int, call);
        helper_ = bundles_->MakeStudio();
        TestBed::AddLoginItem(helper_);
        startup_->UpdateStartupItems(Vendor);
        TestBed::FailLoginItems(TestBed::LoginItemsCall(call));
        QVERIFY(!startup_->RemoveFromLoginItems(Identifier));
        QCOMPARE(TestBed::LoginItemUrls().size(), 1);
        QCOMPARE(TestBed::LiveObjects(), 0);
    }

    void readsUrlsOfOlderSystems()
    {
        helper_ = bundles_->MakeStudio();
        TestBed::AddLoginItem(helper_);
        TestBed::SetSystemVersion(QStringLiteral("10.8.5"));
        startup_->UpdateStartupItems(Vendor);
        // Before macOS 10.9, the library expects a host name in the URL of each login item. The URLs of the test bed
        // contain no host name, so the library does not recognise the login item.
        QVERIFY(!startup_->IsInStartup(Identifier));
        for (QString const& version : {QStringLiteral("10.9"), QStringLiteral("10.9.0"), QStringLiteral("11.2")}) {
            TestBed::SetSystemVersion(version);
            startup_->UpdateStartupItems(Vendor);
            QVERIFY(startup_->IsInStartup(Identifier));
        }
    }

protected:
    void SetUp() override
    {
        TestBed::Reset();
        bundles_ = std::make_unique<Bundles>();
        startup_ = std::make_unique<LoginItemStartupImpl>();
    }

    void TearDown() override
    {
        startup_.reset();
        bundles_.reset();
        QCOMPARE(TestBed::LiveObjects(), 0);
        TestBed::Reset();
    }

private:
    std::unique_ptr<Bundles> bundles_;
    std::unique_ptr<LoginItemStartupImpl> startup_;
    QString helper_;
};

ZQTUTIL_TEST_MAIN(LoginItemStartupImplTest)

#include "LoginItemStartupImplTest.moc"

#include <support/TestCase.h>

#include <Util/Platforms/mac/LoginItem.h>

#include <QtTest/QtTest>

using namespace Zelkor::Util;

class LoginItemTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void returnsAPartOfABundleIdentifier_data()
    {
        QTest::addColumn<QString>("identifier");
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("part");
        QTest::newRow("vendor") << QStringLiteral("com.zelkor.Studio3") << 1 << QStringLiteral("zelkor");
        QTest::newRow("product") << QStringLiteral("com.zelkor.Studio3") << 2 << QStringLiteral("Studio3");
        QTest::newRow("four parts") << QStringLiteral("com.zelkor.Studio.Agent") << 2 << QStringLiteral("Studio");
        QTest::newRow("two parts") << QStringLiteral("com.zelkor") << 1 << QString();
        QTest::newRow("empty second part") << QStringLiteral("com..x") << 1 << QString();
        QTest::newRow("empty first parts") << QStringLiteral("..x") << 2 << QStringLiteral("x");
        QTest::newRow("empty") << QString() << 1 << QString();
    }

    void returnsAPartOfABundleIdentifier()
    {
        QFETCH(QString, identifier);
        QFETCH(int, index);
        QFETCH(QString, part);
        QCOMPARE(BundleIdentifierPart(identifier, index), part);
    }

    void appendsZeroToShortVersions_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QString>("completed");
        QTest::newRow("one part") << QStringLiteral("5") << QStringLiteral("5.0");
        QTest::newRow("two parts") << QStringLiteral("5.1") << QStringLiteral("5.1.0");
        QTest::newRow("three parts") << QStringLiteral("5.1.2") << QStringLiteral("5.1.2");
        QTest::newRow("four parts") << QStringLiteral("5.1.2.3") << QStringLiteral("5.1.2.3");
        QTest::newRow("empty") << QString() << QStringLiteral(".0");
    }

    void appendsZeroToShortVersions()
    {
        QFETCH(QString, version);
        QFETCH(QString, completed);
        QCOMPARE(CompletedBundleVersion(version), completed);
    }

    void removesTheMajorVersionFromAProduct_data()
    {
        QTest::addColumn<QString>("product");
        QTest::addColumn<QString>("version");
        QTest::addColumn<QString>("result");
        QTest::newRow("product with major version")
            << QStringLiteral("Studio3") << QStringLiteral("3.1.0") << QStringLiteral("Studio");
        QTest::newRow("product without major version")
            << QStringLiteral("Studio") << QStringLiteral("4.0.0") << QStringLiteral("Studio");
        QTest::newRow("several occurrences")
            << QStringLiteral("St3dio3") << QStringLiteral("3.0.0") << QStringLiteral("Stdio");
        QTest::newRow("occurrence inside only")
            << QStringLiteral("St3dio") << QStringLiteral("3.0.0") << QStringLiteral("St3dio");
        QTest::newRow("longer number") << QStringLiteral("Studio13") << QStringLiteral("3.0.0")
                                       << QStringLiteral("Studio1");
        QTest::newRow("different case") << QStringLiteral("Studiob") << QStringLiteral("B.1.0")
                                        << QStringLiteral("Studiob");
        QTest::newRow("empty major version")
            << QStringLiteral("Studio") << QStringLiteral(".0") << QStringLiteral("Studio");
    }

    void removesTheMajorVersionFromAProduct()
    {
        QFETCH(QString, product);
        QFETCH(QString, version);
        QFETCH(QString, result);
        QCOMPARE(ProductWithoutMajorVersion(product, version), result);
    }

    void returnsThePathOfTheMainBundle_data()
    {
        QTest::addColumn<QString>("item");
        QTest::addColumn<QString>("bundle");
        QTest::newRow("login item in a bundle")
            << QStringLiteral("/A/X.app/Contents/Library/LoginItems/H.app/") << QStringLiteral("/A/X.app/");
        QTest::newRow("login item near the root") << QStringLiteral("/a/b/c/d/") << QStringLiteral("/");
        QTest::newRow("short path") << QStringLiteral("/a/b/c/") << QString();
        QTest::newRow("empty") << QString() << QString();
    }

    void returnsThePathOfTheMainBundle()
    {
        QFETCH(QString, item);
        QFETCH(QString, bundle);
        QCOMPARE(MainBundlePathOf(item), bundle);
    }

    void convertsUrlsToPaths_data()
    {
        QTest::addColumn<QString>("url");
        QTest::addColumn<bool>("namesLocalhost");
        QTest::addColumn<QString>("path");
        QTest::newRow("10.9 or later") << QStringLiteral("file:///A/X.app/") << false << QStringLiteral("/A/X.app/");
        QTest::newRow("before 10.9") << QStringLiteral("file://localhost/A/") << true << QStringLiteral("/A/");
        QTest::newRow("before 10.9, without host")
            << QStringLiteral("file:///A/") << true << QStringLiteral("file:///A/");
        QTest::newRow("several occurrences") << QStringLiteral("file:///a/file://b") << false << QStringLiteral("/a/b");
    }

    void convertsUrlsToPaths()
    {
        QFETCH(QString, url);
        QFETCH(bool, namesLocalhost);
        QFETCH(QString, path);
        QCOMPARE(PathOfUrlText(url, namesLocalhost), path);
    }

    void returnsTheHelperProduct_data()
    {
        QTest::addColumn<QString>("identifier");
        QTest::addColumn<QString>("helper");
        QTest::newRow("four parts") << QStringLiteral("a_b_c_d") << QStringLiteral("d");
        QTest::newRow("five parts") << QStringLiteral("a_b_c_d_e") << QStringLiteral("d");
        QTest::newRow("three parts") << QStringLiteral("a_b_c") << QString();
        QTest::newRow("empty part") << QStringLiteral("a__c_d") << QStringLiteral("d");
    }

    void returnsTheHelperProduct()
    {
        QFETCH(QString, identifier);
        QFETCH(QString, helper);
        QCOMPARE(HelperProductOf(identifier), helper);
    }
};

ZQTUTIL_TEST_MAIN(LoginItemTest)

#include "LoginItemTest.moc"

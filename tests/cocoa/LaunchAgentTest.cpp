#include <support/TestCase.h>

#include <Util/Platforms/mac/LaunchAgent.h>

#include <QtTest/QtTest>

using Zelkor::Util::BundlePathOf;
using Zelkor::Util::LaunchAgentFileName;
using Zelkor::Util::LoadedJobPattern;

class LaunchAgentTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void returnsTheFileName_data()
    {
        QTest::addColumn<QString>("identifier");
        QTest::addColumn<QString>("name");
        QTest::newRow("usual identifier")
            << QStringLiteral("Zelkor_Studio_3.1.2_Agent") << QStringLiteral("com.zelkor.studio3.agent.startup.plist");
        QTest::newRow("version with a capital")
            << QStringLiteral("A_B_Beta.1_C") << QStringLiteral("com.a.bBeta.c.startup.plist");
        QTest::newRow("version without dot")
            << QStringLiteral("a_b_12_c") << QStringLiteral("com.a.b12.c.startup.plist");
        QTest::newRow("empty second part") << QStringLiteral("a__b_c") << QStringLiteral("com.a.b.c.startup.plist");
        QTest::newRow("all parts empty") << QStringLiteral("___") << QStringLiteral("com....startup.plist");
        QTest::newRow("non-Latin letters")
            << QStringLiteral("\u0416_\u00D6_1_X") << QStringLiteral("com.\u0436.\u00F61.x.startup.plist");
    }

    void returnsTheFileName()
    {
        QFETCH(QString, identifier);
        QFETCH(QString, name);
        QCOMPARE(LaunchAgentFileName(identifier), name);
    }

    void rejectsOtherIdentifiers_data()
    {
        QTest::addColumn<QString>("identifier");
        QTest::newRow("empty") << QString();
        QTest::newRow("one part") << QStringLiteral("a");
        QTest::newRow("three parts") << QStringLiteral("a_b_c");
        QTest::newRow("five parts") << QStringLiteral("a_b_c_d_e");
        QTest::newRow("empty part at the end") << QStringLiteral("a_b_c_d_");
        QTest::newRow("different separator") << QStringLiteral("a-b-c-d");
    }

    void rejectsOtherIdentifiers()
    {
        QFETCH(QString, identifier);
        QVERIFY(LaunchAgentFileName(identifier).isNull());
    }

    void findsLoadedJobs_data()
    {
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("list");
        QTest::addColumn<bool>("loaded");
        QTest::newRow("label at the end of a line")
            << QStringLiteral("a.b") << QStringLiteral("12\t0\ta.b\n13\t0\tc\n") << true;
        QTest::newRow("label at the end of the list") << QStringLiteral("a.b") << QStringLiteral("12\t0\ta.b") << true;
        QTest::newRow("label inside a line") << QStringLiteral("a.b") << QStringLiteral("12\t0\ta.b.c\n") << false;
        QTest::newRow("suffix of a longer label") << QStringLiteral("a.b") << QStringLiteral("1\t0\tx.a.b\n") << true;
        QTest::newRow("dot as wildcard") << QStringLiteral("a.b") << QStringLiteral("1\t0\taxb\n") << true;
        QTest::newRow("different case") << QStringLiteral("a.b") << QStringLiteral("1\t0\tA.B\n") << false;
        QTest::newRow("empty list") << QStringLiteral("a.b") << QString() << false;
        QTest::newRow("empty label") << QString() << QString() << true;
        QTest::newRow("carriage return after the label") << QStringLiteral("a.b") << QStringLiteral("a.b\r\n") << false;
    }

    void findsLoadedJobs()
    {
        QFETCH(QString, label);
        QFETCH(QString, list);
        QFETCH(bool, loaded);
        QCOMPARE(list.contains(LoadedJobPattern(label)), loaded);
        QCOMPARE(LoadedJobPattern(label).pattern(), label + QStringLiteral("(\n|$)"));
    }

    void returnsTheBundlePath_data()
    {
        QTest::addColumn<QString>("executable");
        QTest::addColumn<QString>("bundle");
        QTest::newRow("executable in a bundle")
            << QStringLiteral("/Applications/X.app/Contents/MacOS/X") << QStringLiteral("/Applications/X.app");
        QTest::newRow("executable outside a bundle") << QStringLiteral("/opt/x/run") << QStringLiteral("/opt/x/ru");
        QTest::newRow("two Contents folders") << QStringLiteral("/Contents/X.app/Contents/MacOS/X") << QString();
        QTest::newRow("line feed in the path")
            << QStringLiteral("/a/Contents\n/X.app/Contents/MacOS/X") << QStringLiteral("/a/Contents\n/X.app");
        QTest::newRow("folder name with prefix Contents") << QStringLiteral("/a/ContentsOf/x") << QStringLiteral("/a");
        QTest::newRow("different case of Contents")
            << QStringLiteral("/a/contents/x") << QStringLiteral("/a/contents/");
        QTest::newRow("one character") << QStringLiteral("x") << QString();
        QTest::newRow("empty") << QString() << QString();
    }

    void returnsTheBundlePath()
    {
        QFETCH(QString, executable);
        QFETCH(QString, bundle);
        QCOMPARE(BundlePathOf(executable), bundle);
    }
};

ZQTUTIL_TEST_MAIN(LaunchAgentTest)

#include "LaunchAgentTest.moc"

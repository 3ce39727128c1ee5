// Where temporary directories lie, and how they go.

#include <support/processes/Plays.h>
#include <support/sandbox/TemporaryFolders.h>
#include <unit/files/TemporaryDirPlay.h>
#include <unit/files/TemporaryDirTestCase.h>

#include <Util/TemporaryDir.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QSet>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <memory>
#include <optional>
#include <type_traits>

#include <sys/stat.h>

using Zelkor::Util::TemporaryDir;
using namespace Zelkor::Testing;

static_assert(std::is_default_constructible_v<TemporaryDir>);
static_assert(!std::is_copy_constructible_v<TemporaryDir> && !std::is_copy_assignable_v<TemporaryDir>);
static_assert(!std::is_move_constructible_v<TemporaryDir> && !std::is_move_assignable_v<TemporaryDir>);
static_assert(!std::is_polymorphic_v<TemporaryDir> && !std::is_final_v<TemporaryDir>);
static_assert(sizeof(TemporaryDir) == sizeof(std::unique_ptr<QTemporaryDir>));
static_assert(std::is_same_v<decltype(&TemporaryDir::isValid), bool (TemporaryDir::*)() const>);
static_assert(std::is_same_v<decltype(&TemporaryDir::errorString), QString (TemporaryDir::*)() const>);
static_assert(std::is_same_v<decltype(&TemporaryDir::autoRemove), bool (TemporaryDir::*)() const>);
static_assert(std::is_same_v<decltype(&TemporaryDir::setAutoRemove), void (TemporaryDir::*)(bool)>);
static_assert(std::is_same_v<decltype(&TemporaryDir::remove), bool (TemporaryDir::*)()>);
static_assert(std::is_same_v<decltype(&TemporaryDir::path), QString (TemporaryDir::*)() const>);
static_assert(std::is_same_v<decltype(&TemporaryDir::filePath), QString (TemporaryDir::*)(QString const&) const>);

class TemporaryDirTest : public TemporaryDirTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void liesBelowNameAndMajorVersionAndExecutable_data();
    void liesBelowNameAndMajorVersionAndExecutable();
    void endsInSixRandomCharacters();
    void isNamedAfterTheExecutableWithoutANameOfItsOwn();
    void takesNamesAndPathsAsTheyAre_data();
    void takesNamesAndPathsAsTheyAre();
    void acceptsATemporaryFolderThatIsALink();
    void acceptsARelativeTemporaryFolder();
    void acceptsATemporaryFolderOfSomebodyElse();
    void isOnlyItsUsers();
    void isRemovedWithTheObject();
    void staysInTheFolderOfTheFirstOne();

    void liesWhereQtPutsItWithoutNameOrVersion_data();
    void liesWhereQtPutsItWithoutNameOrVersion();
    void throwsAfterOneThatWasMadeWithoutVersion();
    void mixesKindsInOneOrderOnly_data();
    void mixesKindsInOneOrderOnly();

    void removesItselfUnlessToldOtherwise_data();
    void removesItselfUnlessToldOtherwise();
    void isRemovedOnDemandAsQtDoes();
    void tellsWhenItCannotBeRemoved();
    void composesPathsOfFilesAsQtDoes_data();
    void composesPathsOfFilesAsQtDoes();
    void acceptsNoAbsoluteFileName();
    void hasNoErrorWhenValid();
};

void TemporaryDirTest::liesBelowNameAndMajorVersionAndExecutable_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("executable");
    QTest::addColumn<QString>("folder");
    auto const row = [](char const* title, char const* name, char const* version, char const* executable,
                        char const* folder) {
        QTest::newRow(title) << QString::fromUtf8(name) << QString::fromUtf8(version) << QString::fromUtf8(executable)
                             << QString::fromUtf8(folder);
    };
    row("all as usual", "Studio", "2.5.1", "Studio", "Studio/2/Studio");
    row("name and executable differ", "The Studio", "2.5.1", "studio-bin", "The Studio/2/studio-bin");
    row("executable with a suffix", "Studio", "2.5.1", "studio.exe", "Studio/2/studio");
    row("executable with two suffixes", "Studio", "2.5.1", "studio.x86.exe", "Studio/2/studio.x86");
    row("executable like place markers", "Studio", "2.5.1", "%1 %2.exe", "Studio/2/%1 %2");
    row("major version only", "Studio", "7", "studio", "Studio/7/studio");
    row("two digits", "Studio", "12.0", "studio", "Studio/12/studio");
    row("no digit groups", "Studio", "1234567.1", "studio", "Studio/1234567/studio");
    row("beyond the signed range", "Studio", "4000000000.1", "studio", "Studio/4000000000/studio");
    row("leading zeros", "Studio", "007.1", "studio", "Studio/7/studio");
    row("version with a suffix", "Studio", "3-rc1", "studio", "Studio/3/studio");
    row("version without numbers", "Studio", "beta", "studio", "Studio/0/studio");
    row("version that leads up", "Studio", "../../..", "studio", "Studio/0/studio");
}

void TemporaryDirTest::liesBelowNameAndMajorVersionAndExecutable()
{
    QFETCH(QString, name);
    QFETCH(QString, version);
    QFETCH(QString, executable);
    QFETCH(QString, folder);
    QString const program = At(QStringLiteral("bin/")) + executable;
    MakeFolder(At(QStringLiteral("bin")));
    QVERIFY(QFile::copy(QCoreApplication::applicationFilePath(), program));

    Player player(tmp_, {QStringLiteral("name=") + name, QStringLiteral("version=") + version, QStringLiteral("make")},
                  program);
    Made const made = player.HearMade();
    player.End();

    QVERIFY2(made.valid, qPrintable(made.error));
    QVERIFY(made.isThere);
    QCOMPARE(QFileInfo(made.path).path(), tmp_ + QLatin1Char('/') + folder);
    QCOMPARE(made.complaints, QStringList());
}

void TemporaryDirTest::endsInSixRandomCharacters()
{
    QRegularExpression const sixCharacters(QStringLiteral("^[A-Za-z0-9]{6}$"));
    QSet<QString> names;
    QString const make = QStringLiteral("make");
    Player player(tmp_, application_ + QStringList{make, make, make, make});
    for (int i = 0; i < 4; ++i) {
        QString const name = player.HearMade().path.section(QLatin1Char('/'), -1);
        QVERIFY2(sixCharacters.match(name).hasMatch(), qPrintable(name));
        QVERIFY(name != QStringLiteral("XXXXXX"));
        names += name;
    }
    player.End();
    QCOMPARE(names.size(), 4);
}

void TemporaryDirTest::isNamedAfterTheExecutableWithoutANameOfItsOwn()
{
    Player player(tmp_, {QStringLiteral("version=2.5.1"), QStringLiteral("make")});
    Made const made = player.HearMade();
    player.End();
    // Qt itself calls the application so, after the first of its arguments.
    QCOMPARE(QFileInfo(made.path).path(), tmp_ + QStringLiteral("/play/2/") + Name());
}

void TemporaryDirTest::takesNamesAndPathsAsTheyAre_data()
{
    QTest::addColumn<QString>("tmp");
    QTest::addColumn<QString>("name");
    struct Row
    {
        char const* title;
        QString text;
    };
    Row const rows[] = {
        {"blanks", QStringLiteral("two words ")},
        {"quotes", QStringLiteral("'a' \"b\" `c`")},
        {"first place marker", QStringLiteral("100%1")},
        {"third place marker", QStringLiteral("%3")},
        {"all place markers", QStringLiteral("%4 %3 %2 %1 %L1 %99 %%1")},
        {"line feed", QStringLiteral("a\nb")},
        {"backslash", QStringLiteral("a\\b")},
        {"wildcards", QStringLiteral("*?[a-z]")},
        {"six X", QStringLiteral("XXXXXX")},
        {"dollar and tilde", QStringLiteral("~$HOME")},
        {"hidden", QStringLiteral(".hidden")},
        {"beyond ASCII", QStringLiteral("\u00E4\u20AC\U0001D11E")},
        {"dots", QStringLiteral("a..b...")},
        {"subfolder", QStringLiteral("Zelkor/Studio")},
    };
    for (Row const& row : rows) {
        QTest::newRow(QByteArray("temporary folder: ").append(row.title).constData())
            << row.text << QStringLiteral("Studio");
        QTest::newRow(QByteArray("name: ").append(row.title).constData()) << QStringLiteral("plain") << row.text;
        QTest::newRow(QByteArray("both: ").append(row.title).constData()) << row.text << row.text;
    }
    QTest::newRow("name: absolute path") << QStringLiteral("plain") << QStringLiteral("/usr");
}

void TemporaryDirTest::takesNamesAndPathsAsTheyAre()
{
    QFETCH(QString, tmp);
    QFETCH(QString, name);
    QString const folder =
        QDir::cleanPath(tmp_ + QLatin1Char('/') + tmp + QLatin1Char('/') + name + QStringLiteral("/2/") + Name());
    MakeFolder(folder);
    MakeFile(folder + QStringLiteral("/leftover"));

    QString const make = QStringLiteral("make");
    Player player(tmp_ + QLatin1Char('/') + tmp,
                  {QStringLiteral("name=") + name, QStringLiteral("version=2.5.1"), make, make});
    for (int i = 0; i < 2; ++i) {
        Made const made = player.HearMade();
        QVERIFY2(made.valid, qPrintable(made.error));
        QVERIFY(made.isThere);
        QCOMPARE(QDir::cleanPath(QFileInfo(made.path).path()), folder);
    }
    player.End();

    QCOMPARE(Listing(folder), QStringList());
}

void TemporaryDirTest::acceptsATemporaryFolderThatIsALink()
{
    QString const linked = At(QStringLiteral("linked"));
    MakeLink(linked, tmp_);
    MakeFolder(own_);
    MakeFile(own_ + QStringLiteral("/leftover"));

    Player player(linked, application_ + QStringList{QStringLiteral("make"), QStringLiteral("await")});
    Made const made = player.HearMade();
    QVERIFY2(made.valid, qPrintable(made.error));
    QCOMPARE(made.complaints, QStringList());
    QCOMPARE(QDir(own_).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList(made.path.section(QLatin1Char('/'), -1)));
    player.GoOn();
    player.End();
}

void TemporaryDirTest::acceptsARelativeTemporaryFolder()
{
    Player player(QStringLiteral("tmp"), application_ + QStringList(QStringLiteral("make")),
                  QCoreApplication::applicationFilePath(), Sandbox());
    Made const made = player.HearMade();
    player.End();

    QVERIFY2(made.valid, qPrintable(made.error));
    QCOMPARE(QFileInfo(made.path).path(), own_);
}

void TemporaryDirTest::acceptsATemporaryFolderOfSomebodyElse()
{
    Chmod(tmp_, 01777);
    Made const made = MakeOne({QStringLiteral("ordinary user")});
    QVERIFY2(made.valid, qPrintable(made.error));
    QCOMPARE(QFileInfo(made.path).path(), own_);
    QCOMPARE(made.complaints, QStringList());
}

void TemporaryDirTest::isOnlyItsUsers()
{
    Player player(tmp_, application_ + QStringList{QStringLiteral("make"), QStringLiteral("await")});
    struct stat status;
    QCOMPARE(stat(QFile::encodeName(player.HearMade().path).constData(), &status), 0);
    QCOMPARE(static_cast<int>(status.st_mode & 07777), 0700);
    player.GoOn();
    player.End();
}

void TemporaryDirTest::isRemovedWithTheObject()
{
    Player player(tmp_, application_ + QStringList{QStringLiteral("make"), QStringLiteral("put file=file"),
                                                   QStringLiteral("await")});
    Made const made = player.HearMade();
    QVERIFY(Exists(made.path));
    player.GoOn();
    player.End();
    QVERIFY(!Exists(made.path));
    QVERIFY(Exists(own_));
}

void TemporaryDirTest::staysInTheFolderOfTheFirstOne()
{
    Player player(tmp_, application_ + QStringList{QStringLiteral("make"), QStringLiteral("name=Other"),
                                                   QStringLiteral("version=9"),
                                                   QStringLiteral("temporary folder=") + At(QStringLiteral("outside")),
                                                   QStringLiteral("make")});
    QCOMPARE(QFileInfo(player.HearMade().path).path(), own_);
    Made const second = player.HearMade();
    player.End();
    QVERIFY(second.isThere);
    QCOMPARE(QFileInfo(second.path).path(), own_);
}

void TemporaryDirTest::liesWhereQtPutsItWithoutNameOrVersion_data()
{
    QTest::addColumn<QStringList>("steps");
    QString const noApplication = QStringLiteral("no application");
    QTest::newRow("no version") << QStringList{QStringLiteral("name=Studio")};
    QTest::newRow("version taken back") << QStringList{QStringLiteral("name=Studio"), QStringLiteral("version=2"),
                                                       QStringLiteral("version=")};
    QTest::newRow("no name") << QStringList{noApplication, QStringLiteral("version=2.5.1"), QStringLiteral("name=")};
    QTest::newRow("neither") << QStringList{noApplication, QStringLiteral("version="), QStringLiteral("name=")};
}

void TemporaryDirTest::liesWhereQtPutsItWithoutNameOrVersion()
{
    QFETCH(QStringList, steps);
    MakeFolder(own_);
    MakeFile(own_ + QStringLiteral("/leftover"));
    MakeFile(tmp_ + QStringLiteral("/leftover"));
    QStringList const before = Listing(Sandbox());

    QString const make = QStringLiteral("make");
    Player player(tmp_, steps + QStringList{make, make});
    for (int i = 0; i < 2; ++i) {
        Made const made = player.HearMade();
        QVERIFY2(made.valid, qPrintable(made.error));
        QVERIFY(made.isThere);
        QCOMPARE(QFileInfo(made.path).path(), tmp_);
        QCOMPARE(made.complaints, QStringList());
    }
    player.End();

    QCOMPARE(Listing(Sandbox()), before);
}

void TemporaryDirTest::throwsAfterOneThatWasMadeWithoutVersion()
{
    MakeFolder(own_);
    MakeFile(own_ + QStringLiteral("/leftover"));
    Player player(tmp_, {QStringLiteral("name=Studio"), QStringLiteral("make"), QStringLiteral("version=2.5.1"),
                         QStringLiteral("make")});
    QVERIFY(player.HearMade().valid);
    QJsonObject const facts = player.Hear();
    player.End();

    QString const text = facts.value(QStringLiteral("thrown")).toString();
    QCOMPARE(text.section(QLatin1Char('\n'), 0, 0),
             QStringLiteral("Using TemporaryDir before and after applicationName and applicationVersion are set"));
    QString const callStack = text.section(QLatin1Char('\n'), 1);
    QVERIFY2(callStack.contains(QStringLiteral("TemporaryDir::TemporaryDir")), qPrintable(text));
    QVERIFY2(callStack.contains(QStringLiteral("main")), qPrintable(text));
    QCOMPARE(facts.value(QStringLiteral("file")).toString(), QStringLiteral("Util/TemporaryDir.cpp"));
    QCOMPARE(facts.value(QStringLiteral("function")).toString(),
             QStringLiteral("Zelkor::Util::TemporaryDir::TemporaryDir()"));
    QVERIFY(facts.value(QStringLiteral("line")).toInt() > 0);
    QVERIFY(Exists(own_ + QStringLiteral("/leftover")));
}

void TemporaryDirTest::mixesKindsInOneOrderOnly_data()
{
    QTest::addColumn<QString>("kinds");   // d: without version, a: with it
    QTest::addColumn<QString>("results"); // where it lies, x: thrown
    auto const row = [](char const* name, char const* kinds, char const* results) {
        QTest::newRow(name) << QString::fromLatin1(kinds) << QString::fromLatin1(results);
    };
    row("application's only", "aaa", "aaa");
    row("Qt's only", "ddd", "ddd");
    row("application's after Qt's", "da", "dx");
    row("application's after Qt's, again", "daa", "dxx");
    row("Qt's after one that was refused", "dad", "dxd");
    row("Qt's after application's", "ad", "ad");
    row("application's after both", "ada", "adx");
}

void TemporaryDirTest::mixesKindsInOneOrderOnly()
{
    QFETCH(QString, kinds);
    QFETCH(QString, results);
    QStringList steps(QStringLiteral("name=Studio"));
    for (QChar const kind : kinds) {
        steps += kind == QLatin1Char('a') ? QStringLiteral("version=2.5.1") : QStringLiteral("version=");
        steps += QStringLiteral("make");
    }
    Player player(tmp_, steps);
    QString found;
    for (int i = 0; i < kinds.size(); ++i) {
        QJsonObject const facts = player.Hear();
        QString const folder = QFileInfo(MadeFrom(facts).path).path();
        found += facts.contains(QStringLiteral("thrown")) ? QLatin1Char('x')
                 : folder == own_                         ? QLatin1Char('a')
                 : folder == tmp_                         ? QLatin1Char('d')
                                                          : QLatin1Char('?');
    }
    player.End();
    QCOMPARE(found, results);
}

void TemporaryDirTest::removesItselfUnlessToldOtherwise_data()
{
    QTest::addColumn<QVector<bool>>("settings");
    QTest::addColumn<bool>("removed");
    QTest::newRow("nothing said") << QVector<bool>() << true;
    QTest::newRow("on") << QVector<bool>{true} << true;
    QTest::newRow("off") << QVector<bool>{false} << false;
    QTest::newRow("off and on again") << QVector<bool>{false, true} << true;
}

void TemporaryDirTest::removesItselfUnlessToldOtherwise()
{
    QFETCH(QVector<bool>, settings);
    QFETCH(bool, removed);
    std::optional<TemporaryDir> directory(std::in_place);
    QVERIFY(directory->autoRemove());
    for (bool const setting : settings) {
        directory->setAutoRemove(setting);
        QCOMPARE(directory->autoRemove(), setting);
    }
    QString const path = directory->path();
    MakeTree(directory->filePath(QStringLiteral("folder")));
    directory.reset();
    QCOMPARE(!Exists(path), removed);
}

void TemporaryDirTest::isRemovedOnDemandAsQtDoes()
{
    TemporaryDir directory;
    QTemporaryDir peer;
    QString const path = directory.path();
    MakeTree(directory.filePath(QStringLiteral("folder")));
    QVERIFY(directory.remove());
    QVERIFY(!Exists(path));
    QVERIFY(peer.remove());
    QCOMPARE(directory.isValid(), peer.isValid());
    QCOMPARE(directory.path().isEmpty(), peer.path().isEmpty());
    QCOMPARE(directory.errorString(), peer.errorString());
    QCOMPARE(directory.remove(), peer.remove());
}

void TemporaryDirTest::tellsWhenItCannotBeRemoved()
{
    Chmod(tmp_, 01777);
    Player player(tmp_, application_ + QStringList{QStringLiteral("ordinary user"), QStringLiteral("make"),
                                                   QStringLiteral("put locked folder=locked"), QStringLiteral("remove"),
                                                   QStringLiteral("await")});
    Made const made = player.HearMade();
    QJsonObject const facts = player.Hear();
    QVERIFY(!facts.value(QStringLiteral("removed")).toBool());
    QVERIFY(facts.value(QStringLiteral("isThere")).toBool());
    Chmod(made.path + QStringLiteral("/locked"), 0755);
    player.GoOn();
    player.End();
    QVERIFY(!Exists(made.path));
}

void TemporaryDirTest::composesPathsOfFilesAsQtDoes_data()
{
    QTest::addColumn<QString>("name");
    for (char const* const name : {"", "file", "folder/file", "../file", "%1", " a b ", "\xC3\xA4\xE2\x82\xAC"}) {
        QTest::newRow(name) << QString::fromUtf8(name);
    }
}

void TemporaryDirTest::composesPathsOfFilesAsQtDoes()
{
    QFETCH(QString, name);
    TemporaryDir const directory;
    QTemporaryDir const peer;
    QCOMPARE(directory.filePath(name), directory.path() + peer.filePath(name).mid(peer.path().size()));
}

void TemporaryDirTest::acceptsNoAbsoluteFileName()
{
    TemporaryDir const directory;
    ExpectQtWarning(QRegularExpression(QStringLiteral("^QTemporaryDir::filePath: Absolute paths are not allowed")));
    QCOMPARE(directory.filePath(QStringLiteral("/file")), QString());
}

void TemporaryDirTest::hasNoErrorWhenValid()
{
    TemporaryDir const directory;
    QVERIFY(directory.isValid());
    QCOMPARE(directory.errorString(), QString());
    QVERIFY(QDir::isAbsolutePath(directory.path()));
}

int main(int argc, char** argv)
{
    return IsPlay(argc, argv) ? TakeSteps(argc, argv) : RunTests<TemporaryDirTest>(argc, argv, false);
}

#include "TemporaryDirTest.moc"

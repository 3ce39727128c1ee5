// Tests of the location of the directory that TemporaryDir creates. The directory is created either in the
// application's folder or in Qt's folder for temporary files.

#include <support/ProgrammingError.h>
#include <support/Timeouts.h>
#include <support/processes/ChildMain.h>
#include <support/processes/ChildProcess.h>
#include <support/sandbox/Folders.h>
#include <support/sandbox/Users.h>
#include <unit/files/TemporaryDirTestCase.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtCore/QSet>
#include <QtTest/QtTest>

#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <sys/stat.h>

using Zelkor::Util::TemporaryDir;
using namespace Zelkor::Testing;

using Setter = void (*)();
Q_DECLARE_METATYPE(Setter)

namespace
{

std::string CleanPath(std::string const& path)
{
    return QDir::cleanPath(QString::fromStdString(path)).toStdString();
}

/// Creates two TemporaryDir objects that exist at the same time. Returns their states.
QVector<DirectoryState> CreateTwoDirectories()
{
    LogCapture const firstLog;
    TemporaryDir const first;
    LogCapture const secondLog;
    TemporaryDir const second;
    return {StateOf(first, firstLog), StateOf(second, secondLog)};
}

/// Destroys the QCoreApplication of a child process. Without a QCoreApplication, Qt has no default application name.
void DestroyApplication()
{
    delete QCoreApplication::instance();
}

/// Reads the application's name and version from the command line, sets them in QCoreApplication, and creates a
/// TemporaryDir. If the TemporaryDir is valid and its directory exists, prints the path of the directory.
void PrintDirectory()
{
    QStringList const arguments = QCoreApplication::arguments();
    QCoreApplication::setApplicationName(arguments.at(3));
    QCoreApplication::setApplicationVersion(arguments.at(4));
    TemporaryDir const directory;
    if (directory.isValid() && QFile::exists(directory.path())) {
        std::printf("%s", qPrintable(directory.path()));
    }
}

constexpr ChildMain childMains[] = {{"print directory", PrintDirectory}};

} // namespace

class TemporaryDirTest : public TemporaryDirTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void isBelowNameMajorVersionAndProgram_data();
    void isBelowNameMajorVersionAndProgram();
    void hasANameOfSixRandomCharacters();
    void usesQtsDefaultApplicationName();
    void takesNamesAndPathsLiterally_data();
    void takesNamesAndPathsLiterally();
    void acceptsATemporaryFolderThatIsALink();
    void acceptsARelativeTemporaryFolder();
    void acceptsATemporaryFolderOfAnotherUser();
    void acceptsATemporaryFolderThatCannotBeListed();
    void isAccessibleToItsOwnerOnly();
    void isRemovedByTheDestructor();
    void keepsTheFolderOfTheFirstDirectory();
    void returnsFalseIfRemovalFails();
    void removesADirectoryThatCannotBeListed();
    void keepsADifferentFolderAtItsPath();

    void usesQtsFolderWithoutNameOrVersion_data();
    void usesQtsFolderWithoutNameOrVersion();
    void throwsIfTheVersionIsSetAfterTheFirstDirectory();
    void acceptsALaterChangeOfTheVersionOnlyIfItIsReset_data();
    void acceptsALaterChangeOfTheVersionOnlyIfItIsReset();
};

void TemporaryDirTest::isBelowNameMajorVersionAndProgram_data()
{
    QTest::addColumn<std::string>("name");
    QTest::addColumn<std::string>("version");
    QTest::addColumn<std::string>("program");
    QTest::addColumn<std::string>("folder");
    auto const row = [](char const* title, std::string const& name, std::string const& version,
                        std::string const& program,
                        std::string const& folder) { QTest::newRow(title) << name << version << program << folder; };
    row("usual names", "Studio", "2.5.1", "Studio", "Studio/2/Studio");
    row("different name and program", "The Studio", "2.5.1", "studio-bin", "The Studio/2/studio-bin");
    row("program with a suffix", "Studio", "2.5.1", "studio.exe", "Studio/2/studio");
    row("program with two suffixes", "Studio", "2.5.1", "studio.x86.exe", "Studio/2/studio.x86");
    row("program with place markers", "Studio", "2.5.1", "%1 %2.exe", "Studio/2/%1 %2");
    row("major version only", "Studio", "7", "studio", "Studio/7/studio");
    row("two digits", "Studio", "12.0", "studio", "Studio/12/studio");
    row("no digit grouping", "Studio", "1234567.1", "studio", "Studio/1234567/studio");
    row("beyond the signed range", "Studio", "4000000000.1", "studio", "Studio/4000000000/studio");
    row("leading zeros", "Studio", "007.1", "studio", "Studio/7/studio");
    row("version with a suffix", "Studio", "3-rc1", "studio", "Studio/3/studio");
    row("version without numbers", "Studio", "beta", "studio", "Studio/0/studio");
    row("version with parent folders", "Studio", "../../..", "studio", "Studio/0/studio");
}

void TemporaryDirTest::isBelowNameMajorVersionAndProgram()
{
    QFETCH(std::string, name);
    QFETCH(std::string, version);
    QFETCH(std::string, program);
    QFETCH(std::string, folder);
    MakeFolder(At("bin"));
    QString const copy = QString::fromStdString(At("bin/" + program));
    QVERIFY(QFile::copy(QCoreApplication::applicationFilePath(), copy));

    // The application's folder depends on the file name of the program. A forked child process would have the file name
    // of this program. Therefore, start a copy of this program with another file name.
    QProcess process;
    StartChildMain(process, copy, "print directory", {QString::fromStdString(name), QString::fromStdString(version)});
    QVERIFY(process.waitForFinished(TimeoutMs));

    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(process.readAllStandardError(), QByteArray()); // the child process must not log anything
    QCOMPARE(ParentOf(process.readAllStandardOutput().toStdString()), tmp_ + '/' + folder);
}

void TemporaryDirTest::hasANameOfSixRandomCharacters()
{
    QStringList const names = RunInChild([] {
        QStringList result;
        for (int i = 0; i < 4; ++i) {
            TemporaryDir const directory;
            result += directory.path().section(QLatin1Char('/'), -1);
        }
        return result;
    });

    QRegularExpression const sixCharacters(QStringLiteral("^[A-Za-z0-9]{6}$"));
    for (QString const& name : names) {
        QVERIFY2(sixCharacters.match(name).hasMatch(), qPrintable(name));
        QVERIFY(name != QStringLiteral("XXXXXX"));
    }
    QCOMPARE(QSet<QString>(names.begin(), names.end()).size(), 4);
}

void TemporaryDirTest::usesQtsDefaultApplicationName()
{
    DirectoryState const state = RunInChild([] {
        DestroyApplication();
        int argc = 1;
        char program[] = "/bin/first-argument";
        char* argv[] = {program, nullptr};
        QCoreApplication const application(argc, argv);
        SetApplication("", "2.5.1");
        return CreateDirectory();
    });

    QCOMPARE(ParentOf(state.path), tmp_ + "/first-argument/2/" + ProgramName());
}

void TemporaryDirTest::takesNamesAndPathsLiterally_data()
{
    QTest::addColumn<std::string>("tmp");
    QTest::addColumn<std::string>("name");
    struct Row
    {
        char const* title;
        std::string text;
    };
    Row const rows[] = {
        {"blanks", "two words "},
        {"quotes", "'a' \"b\" `c`"},
        {"first place marker", "100%1"},
        {"third place marker", "%3"},
        {"all place markers", "%4 %3 %2 %1 %L1 %99 %%1"},
        {"line feed", "a\nb"},
        {"backslash", "a\\b"},
        {"wildcards", "*?[a-z]"},
        {"six X", "XXXXXX"},
        {"dollar and tilde", "~$HOME"},
        {"hidden", ".hidden"},
        {"non-ASCII", "\u00E4\u20AC\U0001D11E"},
        {"dots", "a..b..."},
        {"subfolder", "Zelkor/Studio"},
    };
    for (Row const& row : rows) {
        QTest::addRow("temporary folder: %s", row.title) << row.text << std::string("Studio");
        QTest::addRow("name: %s", row.title) << std::string("plain") << row.text;
        QTest::addRow("both: %s", row.title) << row.text << row.text;
    }
    QTest::newRow("name: absolute path") << std::string("plain") << std::string("/usr");
}

void TemporaryDirTest::takesNamesAndPathsLiterally()
{
    QFETCH(std::string, tmp);
    QFETCH(std::string, name);
    std::string const temporaryFolder = tmp_ + '/' + tmp;
    std::string const folder = CleanPath(temporaryFolder + '/' + name + "/2/" + ProgramName());
    MakeFolders(folder);
    MakeFile(folder + "/leftover");

    auto const states = RunInChild([&] {
        qputenv("TMPDIR", QByteArray::fromStdString(temporaryFolder));
        SetApplication(name, "2.5.1");
        return CreateTwoDirectories();
    });

    for (DirectoryState const& state : states) {
        QVERIFY2(state.isValid, state.error.c_str());
        QVERIFY(state.exists);
        QCOMPARE(CleanPath(ParentOf(state.path)), folder);
    }
    QCOMPARE(ListTree(folder), QByteArrayList());
}

void TemporaryDirTest::acceptsATemporaryFolderThatIsALink()
{
    std::string const link = At("linked");
    MakeLink(link, tmp_);
    MakeFolders(appFolder_);
    MakeFile(appFolder_ + "/leftover");

    ChildProcess child([&](ChildProcess::Parent const& parent) {
        qputenv("TMPDIR", QByteArray::fromStdString(link));
        LogCapture const log;
        TemporaryDir const directory;
        parent.Send(StateOf(directory, log));
        parent.WaitForContinue();
    });
    auto const state = child.Receive<DirectoryState>();
    QByteArrayList const found = ListTree(appFolder_);
    child.Continue();
    child.Finish();

    QVERIFY2(state.isValid, state.error.c_str());
    QCOMPARE(state.problems, QStringList());
    QCOMPARE(found, QByteArrayList{QByteArray::fromStdString(NameOf(state.path))});
}

void TemporaryDirTest::acceptsARelativeTemporaryFolder()
{
    DirectoryState const state = RunInChild([&] {
        WorkingFolder const current(Root());
        qputenv("TMPDIR", "tmp");
        return CreateDirectory();
    });

    QVERIFY2(state.isValid, state.error.c_str());
    QCOMPARE(ParentOf(state.path), appFolder_);
}

void TemporaryDirTest::acceptsATemporaryFolderOfAnotherUser()
{
    Chmod(tmp_, 01777);

    DirectoryState const state = RunAsOrdinaryUser(CreateDirectory);

    QVERIFY2(state.isValid, state.error.c_str());
    QCOMPARE(ParentOf(state.path), appFolder_);
    QCOMPARE(state.problems, QStringList());
}

void TemporaryDirTest::acceptsATemporaryFolderThatCannotBeListed()
{
    Chmod(tmp_, 01333);

    DirectoryState const state = RunAsOrdinaryUser(CreateDirectory);

    Chmod(tmp_, 01777);
    QVERIFY2(state.isValid, state.error.c_str());
    QCOMPARE(ParentOf(state.path), appFolder_);
}

void TemporaryDirTest::isAccessibleToItsOwnerOnly()
{
    uint const mode = RunInChild([] {
        TemporaryDir const directory;
        struct stat status;
        Check(stat(directory.path().toStdString().c_str(), &status));
        return uint(status.st_mode);
    });

    QCOMPARE(mode & 07777U, 0700U);
}

void TemporaryDirTest::isRemovedByTheDestructor()
{
    ChildProcess child([](ChildProcess::Parent const& parent) {
        LogCapture const log;
        TemporaryDir const directory;
        DirectoryState const state = StateOf(directory, log);
        MakeFile(state.file);
        parent.Send(state);
        parent.WaitForContinue();
    });
    auto const state = child.Receive<DirectoryState>();
    QVERIFY(Exists(state.file));

    child.Continue();
    child.Finish();

    QVERIFY(!Exists(state.path));
    QVERIFY(Exists(appFolder_));
}

void TemporaryDirTest::keepsTheFolderOfTheFirstDirectory()
{
    auto const states = RunInChild([&] {
        DirectoryState const first = CreateDirectory();
        SetApplication("Other", "9");
        qputenv("TMPDIR", QByteArray::fromStdString(outside_));
        return QVector<DirectoryState>{first, CreateDirectory()};
    });

    QCOMPARE(ParentOf(states[0].path), appFolder_);
    QVERIFY(states[1].exists);
    QCOMPARE(ParentOf(states[1].path), appFolder_);
}

void TemporaryDirTest::returnsFalseIfRemovalFails()
{
    Chmod(tmp_, 01777);

    ChildProcess child([](ChildProcess::Parent const& parent) {
        BecomeOrdinaryUser();
        TemporaryDir directory;
        std::string const path = directory.path().toStdString();
        MakeFolder(path + "/locked");
        MakeFile(path + "/locked/file");
        Chmod(path + "/locked", 0555);
        parent.Send(QByteArray::fromStdString(path));
        parent.Send(directory.remove());
        parent.WaitForContinue();
    });
    std::string const path = child.Receive<QByteArray>().toStdString();
    QVERIFY(!child.Receive<bool>());
    QVERIFY(Exists(path));

    Chmod(path + "/locked", 0755);
    child.Continue();
    child.Finish();
    QVERIFY(!Exists(path));
}

void TemporaryDirTest::removesADirectoryThatCannotBeListed()
{
    Chmod(tmp_, 01777);

    bool const isRemoved = RunAsOrdinaryUser([] {
        TemporaryDir directory;
        std::string const path = directory.path().toStdString();
        Chmod(path, 0);
        return directory.remove() && !Exists(path);
    });

    QVERIFY(isRemoved);
}

void TemporaryDirTest::keepsADifferentFolderAtItsPath()
{
    QVector<bool> const results = RunInChild([] {
        LogCapture const log;
        QString const warning = QStringLiteral("Cannot remove the temporary directory ");
        TemporaryDir directory;
        std::string const path = directory.path().toStdString();
        Check(std::rename(path.c_str(), (path + ".moved").c_str()));
        MakeFolder(path);
        MakeFile(path + "/file");

        bool const isRemoved = directory.remove();
        QStringList const problems = StateOf(directory, log).problems;
        QStringList const expected{QStringLiteral("WARNING Util/TemporaryDir.cpp ") + warning + directory.path()};
        return QVector<bool>{isRemoved, Exists(path + "/file"), problems == expected};
    });

    QCOMPARE(results, (QVector<bool>{false, true, true}));
}

void TemporaryDirTest::usesQtsFolderWithoutNameOrVersion_data()
{
    QTest::addColumn<Setter>("setApplication");
    auto const row = [](char const* title, Setter setApplication) { QTest::newRow(title) << setApplication; };
    row("no version", [] { SetApplication("Studio", ""); });
    row("version set and reset", [] {
        SetApplication("Studio", "2");
        SetApplication("Studio", "");
    });
    row("no name", [] {
        DestroyApplication();
        SetApplication("", "2.5.1");
    });
    row("neither", [] {
        DestroyApplication();
        SetApplication("", "");
    });
}

void TemporaryDirTest::usesQtsFolderWithoutNameOrVersion()
{
    QFETCH(Setter, setApplication);
    MakeFolders(appFolder_);
    MakeFile(appFolder_ + "/leftover");
    MakeFile(tmp_ + "/leftover");
    QByteArrayList const before = ListTree(Root());

    auto const states = RunInChild([&] {
        setApplication();
        return CreateTwoDirectories();
    });

    for (DirectoryState const& state : states) {
        QVERIFY2(state.isValid, state.error.c_str());
        QVERIFY(state.exists);
        QCOMPARE(ParentOf(state.path), tmp_);
        QCOMPARE(state.problems, QStringList());
    }
    QCOMPARE(ListTree(Root()), before);
}

void TemporaryDirTest::throwsIfTheVersionIsSetAfterTheFirstDirectory()
{
    MakeFolders(appFolder_);
    MakeFile(appFolder_ + "/leftover");

    QStringList const error = RunInChild([] {
        SetApplication("Studio", "");
        TemporaryDir const first;
        SetApplication("Studio", "2.5.1");
        ProgrammingError const caught = CatchProgrammingError<std::logic_error>([] { TemporaryDir const second; });
        return QStringList{caught.message, caught.callStack, caught.file, caught.function,
                           QString::number(caught.line)};
    });

    QCOMPARE(error[0],
             QStringLiteral("Using TemporaryDir before and after applicationName and applicationVersion are set"));
    QVERIFY2(error[1].contains(QStringLiteral("TemporaryDir::TemporaryDir")), qPrintable(error[1]));
    QVERIFY2(error[1].contains(QStringLiteral("main")), qPrintable(error[1]));
    QCOMPARE(error[2], QStringLiteral("Util/TemporaryDir.cpp"));
    QCOMPARE(error[3], QStringLiteral("Zelkor::Util::TemporaryDir::TemporaryDir()"));
    QVERIFY(error[4].toInt() > 0);
    QVERIFY(Exists(appFolder_ + "/leftover"));
}

void TemporaryDirTest::acceptsALaterChangeOfTheVersionOnlyIfItIsReset_data()
{
    QTest::addColumn<QStringList>("versions"); // for each directory: the application's version at creation time
    QTest::addColumn<QStringList>("results");  // for each directory: the folder that contains it, or "exception"
    QString const version = QStringLiteral("2.5.1");
    QString const none;
    QString const application = QStringLiteral("application's folder");
    QString const qt = QStringLiteral("Qt's folder");
    QString const exception = QStringLiteral("exception");
    QTest::newRow("always set") << QStringList{version, version, version}
                                << QStringList{application, application, application};
    QTest::newRow("never set") << QStringList{none, none, none} << QStringList{qt, qt, qt};
    QTest::newRow("set later") << QStringList{none, version} << QStringList{qt, exception};
    QTest::newRow("set later, two attempts")
        << QStringList{none, version, version} << QStringList{qt, exception, exception};
    QTest::newRow("set later and reset") << QStringList{none, version, none} << QStringList{qt, exception, qt};
    QTest::newRow("reset") << QStringList{version, none} << QStringList{application, qt};
    QTest::newRow("reset and set again") << QStringList{version, none, version}
                                         << QStringList{application, qt, exception};
}

void TemporaryDirTest::acceptsALaterChangeOfTheVersionOnlyIfItIsReset()
{
    QFETCH(QStringList, versions);
    QFETCH(QStringList, results);

    QStringList const found = RunInChild([&] {
        QStringList folders;
        std::vector<std::unique_ptr<TemporaryDir>> directories;
        for (QString const& version : versions) {
            QCoreApplication::setApplicationVersion(version);
            try {
                directories.push_back(std::make_unique<TemporaryDir>());
            } catch (std::logic_error const&) {
                folders += QStringLiteral("exception");
                continue;
            }
            std::string const folder = ParentOf(directories.back()->path().toStdString());
            folders += folder == appFolder_ ? QStringLiteral("application's folder")
                       : folder == tmp_     ? QStringLiteral("Qt's folder")
                                            : QString::fromStdString(folder);
        }
        return folders;
    });

    QCOMPARE(found, results);
}

int main(int argc, char** argv)
{
    return IsChildMain(argc, argv) ? RunChildMain(argc, argv, childMains)
                                   : RunTests<TemporaryDirTest>(argc, argv, false);
}

#include "TemporaryDirTest.moc"

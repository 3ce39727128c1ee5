#include <support/PathMessage.h>
#include <support/overrides/LastException.h>
#include <support/sandbox/FolderTestCase.h>
#include <support/sandbox/Folders.h>
#include <support/sandbox/Mounts.h>
#include <support/sandbox/Users.h>

#include <Util/FileUtils.h>

#include <QtCore/QTranslator>
#include <QtTest/QtTest>

#include <exception>
#include <string>
#include <type_traits>

#include <sys/stat.h>
#include <unistd.h>

using namespace Zelkor::Testing;
using namespace Zelkor::Util;

static_assert(std::is_enum_v<PathValidity> && !std::is_convertible_v<PathValidity, int>);
static_assert(std::is_same_v<std::underlying_type_t<PathValidity>, int>);
static_assert(static_cast<int>(PathValidity::Valid) == 0);
static_assert(static_cast<int>(PathValidity::Empty) == 1);
static_assert(static_cast<int>(PathValidity::Relative) == 2);
static_assert(static_cast<int>(PathValidity::NotWritable) == 3);
static_assert(static_cast<int>(PathValidity::TrailingSpace) == 4);
static_assert(static_cast<int>(PathValidity::CannotCreate) == 5);
static_assert(std::is_same_v<decltype(IsThisPathValid(QString())), PathValidity>);
static_assert(std::is_same_v<decltype(IsThisPathValid(QString(), nullptr)), bool>);

namespace
{

/// Translates each text of the translation context "QObject" to upper case, and adds white space before and after the
/// translation.
class UpperCaseTranslator : public QTranslator
{
    Q_OBJECT

public:
    bool isEmpty() const override { return false; }

    QString translate(char const* context, char const* source, char const*, int) const override
    {
        return QByteArray(context) == QByteArray("QObject")
                   ? QStringLiteral(" \t\n") + QString::fromUtf8(source).toUpper() + QStringLiteral("\r\n  ")
                   : QString();
    }
};

} // namespace

Q_DECLARE_METATYPE(PathValidity)

class FileUtilsPathTest : public Zelkor::Testing::FolderTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void rejectsAPathThatIsNotAbsolute_data();
    void rejectsAPathThatIsNotAbsolute();
    void checksAnAbsolutePathAndRemovesItsFolders_data();
    void checksAnAbsolutePathAndRemovesItsFolders();
    void acceptsAPathOf4000Characters();
    void removesEmptyParentsOfTheCheckedPath();
    void removesOnlyItsOwnFoldersFromAPathWithTwoDots_data();
    void removesOnlyItsOwnFoldersFromAPathWithTwoDots();
    void removesItsFoldersIfAPathCannotBeCreated_data();
    void removesItsFoldersIfAPathCannotBeCreated();
    void checksTheFolderThatTwoDotsAfterALinkMean();
    void keepsAnExistingEmptyFolder();
    void checksThePermissionsOfAnOrdinaryUser_data();
    void checksThePermissionsOfAnOrdinaryUser();
    void checksThePermissionsOfTheRealUser();
    void returnsAMessageWithTheReason_data() { ReasonRows(); }
    void returnsAMessageWithTheReason();
    void translatesAndTrimsTheMessage_data() { ReasonRows(); }
    void translatesAndTrimsTheMessage();
    void throwsALocalErrorInternally();
    void doesNotChangeTheTextForAValidPath();
    void rejectsAFullVolume();

private:
    static void ReasonRows();
};

void FileUtilsPathTest::rejectsAPathThatIsNotAbsolute_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<PathValidity>("validity");
    QTest::newRow("null") << QString() << PathValidity::Empty;
    QTest::newRow("empty") << QStringLiteral("") << PathValidity::Empty;

    struct Row
    {
        char const* title;
        char const* path;
    };
    // clang-format off
    Row const rows[] = {
        {"blank", " "},
        {"several blanks", "   "},
        {"tab", "\t"},
        {"name", "name"},
        {"name with blank at end", "name "},
        {"name with blank before slash", "a /b"},
        {"names", "name/below"},
        {"existing folder", "existing"},
        {"existing folder with slash", "existing/"},
        {"dot", "."},
        {"two dots", ".."},
        {"relative to the current folder", "./name"},
        {"relative to the parent folder", "../name"},
        {"home", "~"},
        {"in home", "~/name"},
        {"blank in front", " /tmp"},
        {"line feed in front", "\n/tmp"},
        {"drive", "C:\\name"},
        {"drive with slash", "C:/name"},
        {"network", "\\\\server\\share"},
        {"backslash", "\\tmp"},
        {"URL", "file:///tmp"},
        {"place marker", "%1"},
    };
    // clang-format on
    for (Row const& row : rows) {
        QTest::newRow(row.title) << QString::fromLatin1(row.path) << PathValidity::Relative;
    }
}

void FileUtilsPathTest::rejectsAPathThatIsNotAbsolute()
{
    QFETCH(QString, path);
    QFETCH(PathValidity, validity);
    MakeFolder(At("existing"));
    WorkingFolder const current(Root());

    QCOMPARE(IsThisPathValid(path), validity);

    QString text = QStringLiteral("before");
    QVERIFY(!IsThisPathValid(path, &text));
    QCOMPARE(text, PathMessage(validity));
    QVERIFY(!IsThisPathValid(path, nullptr));
    QCOMPARE(ListTree(Root()), QByteArrayList{"existing"});
}

void FileUtilsPathTest::checksAnAbsolutePathAndRemovesItsFolders_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<PathValidity>("validity");

    struct Row
    {
        char const* title;
        QByteArray name;
        PathValidity validity;
    };
    // clang-format off
    Row const rows[] = {
        {"missing", "missing", PathValidity::Valid},
        {"missing with slash", "missing/", PathValidity::Valid},
        {"missing below missing", "missing/two/three", PathValidity::Valid},
        {"double slashes", "missing//two///three", PathValidity::Valid},
        {"missing in folder", "folder/missing", PathValidity::Valid},
        {"missing behind link", "link/missing", PathValidity::Valid},
        {"double quotes", "a \"name\" in quotes", PathValidity::Valid},
        {"single quote", "it's", PathValidity::Valid},
        {"line feed", "first\nsecond\n", PathValidity::Valid},
        {"place marker", "%1", PathValidity::Valid},
        {"invalid UTF-8", "\xff\xfe", PathValidity::Valid},
        {"non-ASCII letters", "\xd0\xb8\xd0\xbc\xd1\x8f", PathValidity::Valid},
        {"backslash", "a\\b", PathValidity::Valid},
        {"blank inside", "two words", PathValidity::Valid},
        {"blank in front", " name", PathValidity::Valid},
        {"blank in front of each name", " a/ b", PathValidity::Valid},
        {"blank after backslash", "a\\ b", PathValidity::Valid},
        {"tab at end", "name\t", PathValidity::Valid},
        {"tab before slash", "name\t/below", PathValidity::Valid},
        {"no-break space at end", "name\xc2\xa0", PathValidity::Valid},
        {"255 bytes", QByteArray(255, 'n'), PathValidity::Valid},
        {"256 bytes", QByteArray(256, 'n'), PathValidity::CannotCreate},
        {"255 bytes of 85 letters", QByteArray("\xe2\x82\xac").repeated(85), PathValidity::Valid},
        {"258 bytes of 86 letters", QByteArray("\xe2\x82\xac").repeated(86), PathValidity::CannotCreate},
        {"5000 characters", QByteArray("123456789/").repeated(500), PathValidity::CannotCreate},

        {"folder", "folder", PathValidity::Valid},
        {"folder with slash", "folder/", PathValidity::Valid},
        {"folder with dot", "folder/.", PathValidity::Valid},
        {"parent folder", "folder/..", PathValidity::Valid},
        {"link to folder", "link", PathValidity::Valid},
        {"folder with blank at end", "blank ", PathValidity::Valid},
        {"folder with blank before slash", "blank /inside", PathValidity::Valid},
        {"folder with blank before backslash", "blank \\name", PathValidity::Valid},

        {"file", "file", PathValidity::NotWritable},
        {"link to file", "link-to-file", PathValidity::NotWritable},
        {"pipe", "pipe", PathValidity::NotWritable},

        {"blank at end", "name ", PathValidity::TrailingSpace},
        {"two blanks at end", "name  ", PathValidity::TrailingSpace},
        {"blank only", " ", PathValidity::TrailingSpace},
        {"blank before slash", "name /below", PathValidity::TrailingSpace},
        {"blank before last slash", "name /", PathValidity::TrailingSpace},
        {"blank before backslash", "name \\below", PathValidity::TrailingSpace},
        {"missing below folder with blank", "blank /missing", PathValidity::TrailingSpace},
        {"blank in a path that cannot be created", "file/name ", PathValidity::TrailingSpace},
        {"blank in a name that is too long", QByteArray(256, 'n') + ' ', PathValidity::TrailingSpace},

        {"below file", "file/missing", PathValidity::CannotCreate},
        {"dangling link", "dangling", PathValidity::CannotCreate},
        {"below dangling link", "dangling/missing", PathValidity::CannotCreate},
        {"link to itself", "loop", PathValidity::CannotCreate},
    };
    // clang-format on
    for (Row const& row : rows) {
        QTest::newRow(row.title) << row.name << row.validity;
    }
}

void FileUtilsPathTest::checksAnAbsolutePathAndRemovesItsFolders()
{
    QFETCH(QByteArray, name);
    QFETCH(PathValidity, validity);
    MakeFolder(At("folder"));
    MakeFile(At("folder/kept"));
    MakeFolder(At("blank "));
    MakeFolder(At("blank /inside"));
    MakeFolder(At("blank \\name"));
    MakeFile(At("file"));
    MakePipe(At("pipe"));
    MakeLink(At("link"), "folder");
    MakeLink(At("link-to-file"), "file");
    MakeLink(At("dangling"), "nowhere");
    MakeLink(At("loop"), "loop");
    QByteArrayList const before = ListTree(Root());

    QCOMPARE(IsThisPathValid(PathAt(name)), validity);
    QCOMPARE(ListTree(Root()), before);

    QString text = QStringLiteral("before");
    QCOMPARE(IsThisPathValid(PathAt(name), &text), validity == PathValidity::Valid);
    QCOMPARE(text, validity == PathValidity::Valid ? QStringLiteral("before") : PathMessage(validity));
    QCOMPARE(IsThisPathValid(PathAt(name), nullptr), validity == PathValidity::Valid);
    QCOMPARE(ListTree(Root()), before);
    QCOMPARE(ReadFile(At("file")), QByteArray("content"));
}

void FileUtilsPathTest::acceptsAPathOf4000Characters()
{
    MakeFile(At("kept"));
    QString path = PathAt("") + QStringLiteral("123456789/").repeated(400);
    path.truncate(4000);

    QCOMPARE(IsThisPathValid(path), PathValidity::Valid);

    QCOMPARE(ListTree(Root()), QByteArrayList{"kept"});
}

void FileUtilsPathTest::removesEmptyParentsOfTheCheckedPath()
{
    MakeFolder(At("kept"));
    MakeFolder(At("kept/empty"));
    MakeFile(At("kept/file"));

    QCOMPARE(IsThisPathValid(PathAt("kept/empty/missing/too")), PathValidity::Valid);

    QCOMPARE(ListTree(Root()), (QByteArrayList{"kept", "kept/file"}));
}

void FileUtilsPathTest::removesOnlyItsOwnFoldersFromAPathWithTwoDots_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<PathValidity>("validity");
    QTest::newRow("missing after a link") << QByteArray("b/link/../x") << PathValidity::Valid;
    QTest::newRow("missing after a link, with slashes") << QByteArray("b//link/..//x//") << PathValidity::Valid;
    QTest::newRow("several missing after a link") << QByteArray("b/link/../y/z") << PathValidity::Valid;
    QTest::newRow("missing before and after two dots") << QByteArray("missing/../other") << PathValidity::Valid;
    QTest::newRow("two dots after missing") << QByteArray("missing/..") << PathValidity::Valid;
    QTest::newRow("missing, up and down again") << QByteArray("missing/../missing/below") << PathValidity::Valid;
    QTest::newRow("missing below an empty folder") << QByteArray("empty/../empty/missing") << PathValidity::Valid;
    QTest::newRow("two dots after a file") << QByteArray("file/../x") << PathValidity::CannotCreate;
    QTest::newRow("file after missing") << QByteArray("missing/../file/x") << PathValidity::CannotCreate;
    QTest::newRow("two dots after a dangling link") << QByteArray("dangling/../x") << PathValidity::CannotCreate;
    QTest::newRow("name of three dots") << QByteArray("...") << PathValidity::Valid;
}

void FileUtilsPathTest::removesOnlyItsOwnFoldersFromAPathWithTwoDots()
{
    QFETCH(QByteArray, name);
    QFETCH(PathValidity, validity);
    MakeFolder(At("a"));
    MakeFolder(At("a/target"));
    MakeFolder(At("b"));
    MakeFolder(At("b/x"));
    MakeFolder(At("b/y"));
    MakeFolder(At("b/y/z"));
    MakeLink(At("b/link"), "../a/target");
    MakeFolder(At("empty"));
    MakeFile(At("file"));
    MakeLink(At("dangling"), "nowhere");
    QByteArrayList const before = ListTree(Root());

    QCOMPARE(IsThisPathValid(PathAt(name)), validity);

    QCOMPARE(ListTree(Root()), before);
}

void FileUtilsPathTest::removesItsFoldersIfAPathCannotBeCreated_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("three folders") << QByteArray("volume/a/b/c");
    QTest::newRow("three folders with two dots") << QByteArray("volume/a/../b/c/d");
    QTest::newRow("name that is too long") << "volume/a/" + QByteArray(256, 'n');
}

void FileUtilsPathTest::removesItsFoldersIfAPathCannotBeCreated()
{
    QFETCH(QByteArray, name);
    MakeFolder(At("volume"));

    // The volume has room for two folders only.
    QByteArrayList const left = RunWithMount(At("volume"), "nr_inodes=3,mode=0777", [&] {
        PathValidity const validity = IsThisPathValid(PathAt(name));
        QByteArrayList result{validity == PathValidity::CannotCreate ? "refused" : "accepted"};
        return result + ListTree(At("volume"));
    });

    QCOMPARE(left, QByteArrayList{"refused"});
}

void FileUtilsPathTest::checksTheFolderThatTwoDotsAfterALinkMean()
{
    MakeFolder(At("theirs"));
    MakeFolder(At("theirs/target"));
    MakeFolder(At("ours"));
    MakeLink(At("ours/link"), "../theirs/target");
    SetOwner(At("ours"), Us, OurGroup);
    Chmod(At("theirs"), 0755);
    Identity const us{Us, Us, OurGroup, OurGroup, {}};
    QString const path = PathAt("ours/link/..");

    QVector<bool> const forUs = RunAs(us, [&] { return QVector<bool>{TryCreateTmpFile(path), CanCreateFileIn(path)}; });
    PathValidity const validity = RunAs(us, [&] { return IsThisPathValid(path); });

    QCOMPARE(forUs, (QVector<bool>{false, false}));
    QCOMPARE(validity, PathValidity::NotWritable);
}

void FileUtilsPathTest::keepsAnExistingEmptyFolder()
{
    MakeFolder(At("empty"));
    MakeFolder(At("empty/empty"));

    QCOMPARE(IsThisPathValid(PathAt("empty/empty")), PathValidity::Valid);

    QCOMPARE(ListTree(Root()), (QByteArrayList{"empty", "empty/empty"}));
}

void FileUtilsPathTest::checksThePermissionsOfAnOrdinaryUser_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<PathValidity>("validity");
    QTest::newRow("own folder") << QByteArray("own") << PathValidity::Valid;
    QTest::newRow("missing in own folder") << QByteArray("own/missing/too") << PathValidity::Valid;
    QTest::newRow("own folder without write permission") << QByteArray("own-closed") << PathValidity::NotWritable;
    QTest::newRow("folder of another user") << QByteArray("others") << PathValidity::NotWritable;
    QTest::newRow("folder open to all") << QByteArray("open") << PathValidity::Valid;
    QTest::newRow("folder open to the group") << QByteArray("groups") << PathValidity::Valid;
    QTest::newRow("writable folder without search permission") << QByteArray("blocked") << PathValidity::NotWritable;
    QTest::newRow("root folder") << QByteArray("/") << PathValidity::NotWritable;
    QTest::newRow("missing in folder of another user") << QByteArray("others/missing") << PathValidity::CannotCreate;
    QTest::newRow("missing in own folder without write permission")
        << QByteArray("own-closed/missing") << PathValidity::CannotCreate;
    QTest::newRow("deep in folder of another user") << QByteArray("others/a/b/c") << PathValidity::CannotCreate;
    QTest::newRow("in a folder without permissions") << QByteArray("hidden/folder") << PathValidity::CannotCreate;
    QTest::newRow("blank in a path that cannot be created")
        << QByteArray("others/missing ") << PathValidity::TrailingSpace;
}

void FileUtilsPathTest::checksThePermissionsOfAnOrdinaryUser()
{
    QFETCH(QByteArray, name);
    QFETCH(PathValidity, validity);
    struct Folder
    {
        char const* name;
        uid_t owner;
        gid_t group;
        mode_t mode;
    };
    for (Folder const& folder : {Folder{"own", Us, OurGroup, 0755}, Folder{"own-closed", Us, OurGroup, 0555},
                                 Folder{"others", Them, TheirGroup, 0755}, Folder{"open", Them, TheirGroup, 0777},
                                 Folder{"groups", Them, OurGroup, 0775}, Folder{"blocked", Them, TheirGroup, 0772},
                                 Folder{"hidden", Them, TheirGroup, 0700}}) {
        MakeFolder(At(folder.name));
        MakeFile(At(std::string(folder.name) + "/kept"));
        SetOwner(At(folder.name), folder.owner, folder.group);
        Chmod(At(folder.name), folder.mode);
    }
    MakeFolder(At("hidden/folder"));
    QByteArrayList const before = ListTree(Root());
    QString const path = name.startsWith('/') ? QString::fromLatin1(name) : PathAt(name);

    Identity const us{Us, Us, OurGroup, OurGroup, {}};
    QCOMPARE(RunAs(us, [&] { return IsThisPathValid(path); }), validity);
    QVariantList const result = RunAs(us, [&] {
        QString text;
        bool const isValid = IsThisPathValid(path, &text);
        return QVariantList{isValid, text};
    });

    QCOMPARE(result, (QVariantList{validity == PathValidity::Valid, PathMessage(validity)}));
    QCOMPARE(ListTree(Root()), before);
}

void FileUtilsPathTest::checksThePermissionsOfTheRealUser()
{
    MakeFolder(At("folder"));
    SetOwner(At("folder"), RootUser, TheirGroup);
    Chmod(At("folder"), 0757);

    Identity const otherRealUser{Them, Us, TheirGroup, OurGroup, {}};
    QVERIFY(RunAs(otherRealUser, [&] { return CanCreateFileIn(PathAt("folder")); }));
    QCOMPARE(RunAs(otherRealUser, [&] { return IsThisPathValid(PathAt("folder")); }), PathValidity::NotWritable);
}

void FileUtilsPathTest::ReasonRows()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QString>("message");
    QTest::newRow("empty") << QByteArray() << PathMessage(PathValidity::Empty);
    QTest::newRow("relative") << QByteArray("name") << PathMessage(PathValidity::Relative);
    QTest::newRow("not writable") << QByteArray("/dev/null") << PathMessage(PathValidity::NotWritable);
    QTest::newRow("trailing space") << QByteArray("/no/such /name") << PathMessage(PathValidity::TrailingSpace);
    QTest::newRow("cannot be created") << QByteArray("/dev/null/name") << PathMessage(PathValidity::CannotCreate);
}

void FileUtilsPathTest::returnsAMessageWithTheReason()
{
    QFETCH(QByteArray, path);
    QFETCH(QString, message);

    QString text = QStringLiteral("before");
    QVERIFY(!IsThisPathValid(QString::fromLatin1(path), &text));

    QCOMPARE(text, message);
}

void FileUtilsPathTest::translatesAndTrimsTheMessage()
{
    QFETCH(QByteArray, path);
    QFETCH(QString, message);
    UpperCaseTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));

    QString text;
    bool const isValid = IsThisPathValid(QString::fromLatin1(path), &text);
    QCoreApplication::removeTranslator(&translator);

    QVERIFY(!isValid);
    QCOMPARE(text, message.toUpper());
}

void FileUtilsPathTest::throwsALocalErrorInternally()
{
    GetLastException() = {};
    QString text;

    QVERIFY(!IsThisPathValid(QString(), &text));

    QCOMPARE(GetLastException().type, QByteArray("Zelkor::Util::IsThisPathValid(QString const&, QString*)::Error"));
    QCOMPARE(GetLastException().what, QByteArray(std::exception().what()));

    GetLastException() = {};
    QVERIFY(IsThisPathValid(PathAt(""), &text));
    QCOMPARE(GetLastException().type, QByteArray());
}

void FileUtilsPathTest::doesNotChangeTheTextForAValidPath()
{
    MakeFile(At("kept"));
    QString text = QStringLiteral(" before ");
    QVERIFY(IsThisPathValid(PathAt("missing"), &text));
    QVERIFY(IsThisPathValid(PathAt(""), &text));
    QCOMPARE(text, QStringLiteral(" before "));
}

void FileUtilsPathTest::rejectsAFullVolume()
{
    MakeFolder(At("volume"));

    QVector<PathValidity> const found = RunWithMount(At("volume"), "nr_inodes=2,mode=0777", [&] {
        QVector<PathValidity> result{IsThisPathValid(PathAt("volume")), IsThisPathValid(PathAt("volume/a"))};
        MakeFile(At("volume/last"));
        result << IsThisPathValid(PathAt("volume")) << IsThisPathValid(PathAt("volume/a"));
        return result;
    });

    QCOMPARE(found, (QVector<PathValidity>{PathValidity::Valid, PathValidity::Valid, PathValidity::NotWritable,
                                           PathValidity::CannotCreate}));
}

ZQTUTIL_TEST_MAIN(FileUtilsPathTest)
#include "FileUtilsPathTest.moc"

#include <support/overrides/NextFunction.h>
#include <support/processes/ChildProcess.h>
#include <support/sandbox/FolderTestCase.h>
#include <support/sandbox/Folders.h>

#include <Util/FileUtils.h>

#include <QtCore/QTranslator>
#include <QtTest/QtTest>

#include <boost/core/demangle.hpp>

#include <exception>
#include <string>
#include <type_traits>
#include <typeinfo>

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

QByteArray Text(bool value)
{
    return value ? "yes" : "no";
}

QByteArray Text(PathValidity value)
{
    return QByteArray::number(static_cast<int>(value));
}

/// What was thrown last: its class, and what() as a `std::exception`.
struct Thrown
{
    QByteArray type;
    QByteArray what;
};

Thrown& LastThrown()
{
    static thread_local Thrown thrown;
    return thrown;
}

class Uppercase : public QTranslator
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

QString Message(PathValidity validity)
{
    switch (validity) {
    case PathValidity::Valid:
        break;
    case PathValidity::Empty:
        return QStringLiteral("Destination folder path cannot be empty");
    case PathValidity::Relative:
        return QStringLiteral("Destination folder path must be absolute");
    case PathValidity::NotWritable:
        return QStringLiteral("Can't access the specified destination folder");
    case PathValidity::TrailingSpace:
        return QStringLiteral("Last letter in folder name mustn't be space");
    case PathValidity::CannotCreate:
        return QStringLiteral("The specified destination is not available");
    }
    return QString();
}

} // namespace

// In the way of the C++ library's own: the library under test calls this. The compiler has declared it already, with
// parameters of its own.
[[noreturn]] Q_DECL_EXPORT void NoteAndThrow(void* object, std::type_info* type,
                                             void (*destroy)(void*)) __asm__("__cxa_throw");

void NoteAndThrow(void* object, std::type_info* type, void (*destroy)(void*))
{
    static auto const next = NextFunction<void (*)(void*, std::type_info*, void (*)(void*))>("__cxa_throw");
    void* base = object;
    bool const isException = typeid(std::exception).__do_catch(type, &base, 1);
    LastThrown() = {QByteArray::fromStdString(boost::core::demangle(type->name())),
                    isException ? static_cast<std::exception*>(base)->what() : "not an exception"};
    next(object, type, destroy);
    std::terminate();
}

Q_DECLARE_METATYPE(PathValidity)

class FileUtilsPathTest : public Zelkor::Testing::FolderTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void pathThatIsNotAbsoluteIsNotValid_data();
    void pathThatIsNotAbsoluteIsNotValid();
    void absolutePathIsCheckedAndNothingIsLeft_data();
    void absolutePathIsCheckedAndNothingIsLeft();
    void pathOf4000CharactersIsValid();
    void emptyParentsOfTheCheckedPathAreRemoved();
    void existingFolderStaysThoughEmpty();
    void ordinaryUserIsToldWhatIsClosed_data();
    void ordinaryUserIsToldWhatIsClosed();
    void folderIsNotWritableWhenClosedToTheRealUser();
    void messageTellsTheReason_data() { ReasonRows(); }
    void messageTellsTheReason();
    void messageIsTranslatedAndTrimmed_data() { ReasonRows(); }
    void messageIsTranslatedAndTrimmed();
    void messageTravelsInAnErrorOfTheFunction();
    void validPathLeavesTheTextAlone();
    void fullVolumeIsNotValid();

private:
    static void ReasonRows();
};

void FileUtilsPathTest::pathThatIsNotAbsoluteIsNotValid_data()
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
        {"blanks", "   "},
        {"tab", "\t"},
        {"name", "name"},
        {"name with blank at end", "name "},
        {"name with blank before slash", "a /b"},
        {"names", "name/below"},
        {"folder that is there", "existing"},
        {"folder that is there with slash", "existing/"},
        {"dot", "."},
        {"two dots", ".."},
        {"from the current folder", "./name"},
        {"from the folder above", "../name"},
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

void FileUtilsPathTest::pathThatIsNotAbsoluteIsNotValid()
{
    QFETCH(QString, path);
    QFETCH(PathValidity, validity);
    MakeFolder(At("existing"));
    AtFolder const here(Root());

    QCOMPARE(IsThisPathValid(path), validity);

    QString text = QStringLiteral("before");
    QVERIFY(!IsThisPathValid(path, &text));
    QCOMPARE(text, Message(validity));
    QVERIFY(!IsThisPathValid(path, nullptr));
    QCOMPARE(TreeOf(Root()), QByteArrayList{"existing"});
}

void FileUtilsPathTest::absolutePathIsCheckedAndNothingIsLeft_data()
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
        {"no UTF-8", "\xff\xfe", PathValidity::Valid},
        {"letters beyond ASCII", "\xd0\xb8\xd0\xbc\xd1\x8f", PathValidity::Valid},
        {"backslash", "a\\b", PathValidity::Valid},
        {"blank inside", "two words", PathValidity::Valid},
        {"blank in front", " name", PathValidity::Valid},
        {"blank in front of each", " a/ b", PathValidity::Valid},
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
        {"folder above", "folder/..", PathValidity::Valid},
        {"link to folder", "link", PathValidity::Valid},
        {"folder with blank at end", "blank ", PathValidity::Valid},
        {"folder with blank before slash", "blank /inside", PathValidity::Valid},
        {"folder with blank before backslash", "blank \\name", PathValidity::Valid},

        {"file", "file", PathValidity::NotWritable},
        {"link to file", "link-to-file", PathValidity::NotWritable},
        {"pipe", "pipe", PathValidity::NotWritable},

        {"blank at end", "name ", PathValidity::TrailingSpace},
        {"two blanks at end", "name  ", PathValidity::TrailingSpace},
        {"nothing but blank", " ", PathValidity::TrailingSpace},
        {"blank before slash", "name /below", PathValidity::TrailingSpace},
        {"blank before last slash", "name /", PathValidity::TrailingSpace},
        {"blank before backslash", "name \\below", PathValidity::TrailingSpace},
        {"missing below folder with blank", "blank /missing", PathValidity::TrailingSpace},
        {"blank before it is tried", "file/name ", PathValidity::TrailingSpace},
        {"blank in name too long", QByteArray(256, 'n') + ' ', PathValidity::TrailingSpace},

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

void FileUtilsPathTest::absolutePathIsCheckedAndNothingIsLeft()
{
    QFETCH(QByteArray, name);
    QFETCH(PathValidity, validity);
    MakeTree(Root(), {{"folder/", New},
                      {"folder/kept", New},
                      {"blank /", New},
                      {"blank /inside/", New},
                      {"blank \\name/", New},
                      {"file", New},
                      {"pipe|", New},
                      {"link@folder", New},
                      {"link-to-file@file", New},
                      {"dangling@nowhere", New},
                      {"loop@loop", New}});
    QByteArrayList const before = TreeOf(Root());

    QCOMPARE(IsThisPathValid(PathAt(name)), validity);
    QCOMPARE(TreeOf(Root()), before);

    QString text = QStringLiteral("before");
    QCOMPARE(IsThisPathValid(PathAt(name), &text), validity == PathValidity::Valid);
    QCOMPARE(text, validity == PathValidity::Valid ? QStringLiteral("before") : Message(validity));
    QCOMPARE(IsThisPathValid(PathAt(name), nullptr), validity == PathValidity::Valid);
    QCOMPARE(TreeOf(Root()), before);
    QCOMPARE(Content(At("file")), QByteArray("content"));
}

void FileUtilsPathTest::pathOf4000CharactersIsValid()
{
    MakeFile(At("kept"));
    QString path = PathAt("") + QStringLiteral("123456789/").repeated(400);
    path.truncate(4000);

    QCOMPARE(IsThisPathValid(path), PathValidity::Valid);

    QCOMPARE(TreeOf(Root()), QByteArrayList{"kept"});
}

void FileUtilsPathTest::emptyParentsOfTheCheckedPathAreRemoved()
{
    MakeTree(Root(), {{"kept/", New}, {"kept/empty/", New}, {"kept/file", New}});

    QCOMPARE(IsThisPathValid(PathAt("kept/empty/missing/too")), PathValidity::Valid);

    QCOMPARE(TreeOf(Root()), (QByteArrayList{"kept", "kept/file"}));
}

void FileUtilsPathTest::existingFolderStaysThoughEmpty()
{
    MakeTree(Root(), {{"empty/", New}, {"empty/empty/", New}});

    QCOMPARE(IsThisPathValid(PathAt("empty/empty")), PathValidity::Valid);

    QCOMPARE(TreeOf(Root()), (QByteArrayList{"empty", "empty/empty"}));
}

void FileUtilsPathTest::ordinaryUserIsToldWhatIsClosed_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<PathValidity>("validity");
    QTest::newRow("own folder") << QByteArray("own") << PathValidity::Valid;
    QTest::newRow("missing in own folder") << QByteArray("own/missing/too") << PathValidity::Valid;
    QTest::newRow("own folder without write permission") << QByteArray("own-closed") << PathValidity::NotWritable;
    QTest::newRow("folder of another user") << QByteArray("others") << PathValidity::NotWritable;
    QTest::newRow("folder open to all") << QByteArray("open") << PathValidity::Valid;
    QTest::newRow("folder open to the group") << QByteArray("groups") << PathValidity::Valid;
    QTest::newRow("folder that can be written and not entered") << QByteArray("blocked") << PathValidity::NotWritable;
    QTest::newRow("root of the system") << QByteArray("/") << PathValidity::NotWritable;
    QTest::newRow("missing in folder of another user") << QByteArray("others/missing") << PathValidity::CannotCreate;
    QTest::newRow("missing in own closed folder") << QByteArray("own-closed/missing") << PathValidity::CannotCreate;
    QTest::newRow("deep in folder of another user") << QByteArray("others/a/b/c") << PathValidity::CannotCreate;
    QTest::newRow("below what cannot be looked into") << QByteArray("hidden/folder") << PathValidity::CannotCreate;
    QTest::newRow("blank before it is tried") << QByteArray("others/missing ") << PathValidity::TrailingSpace;
}

void FileUtilsPathTest::ordinaryUserIsToldWhatIsClosed()
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
        Check(chown(At(folder.name).c_str(), folder.owner, folder.group));
        Check(chmod(At(folder.name).c_str(), folder.mode));
    }
    MakeFolder(At("hidden/folder"));
    QByteArrayList const before = TreeOf(Root());
    QString const path = name.startsWith('/') ? QString::fromLatin1(name) : PathAt(name);

    QByteArray const found = RunAs({Us, Us, OurGroup, OurGroup, {}}, [&] {
        QString text;
        bool const isValid = IsThisPathValid(path, &text);
        return Text(IsThisPathValid(path)) + Text(isValid) + text.toUtf8();
    });

    QCOMPARE(found, Text(validity) + Text(validity == PathValidity::Valid) + Message(validity).toUtf8());
    QCOMPARE(TreeOf(Root()), before);
}

void FileUtilsPathTest::folderIsNotWritableWhenClosedToTheRealUser()
{
    MakeFolder(At("folder"));
    Check(chown(At("folder").c_str(), RootUser, TheirGroup));
    Check(chmod(At("folder").c_str(), 0757));

    QByteArray const found = RunAs({Them, Us, TheirGroup, OurGroup, {}}, [&] {
        return Text(CanCreateFileIn(PathAt("folder"))) + ' ' + Text(IsThisPathValid(PathAt("folder")));
    });

    QCOMPARE(found, "yes " + Text(PathValidity::NotWritable));
}

void FileUtilsPathTest::ReasonRows()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QString>("message");
    QTest::newRow("empty") << QByteArray() << Message(PathValidity::Empty);
    QTest::newRow("relative") << QByteArray("name") << Message(PathValidity::Relative);
    QTest::newRow("not writable") << QByteArray("/dev/null") << Message(PathValidity::NotWritable);
    QTest::newRow("trailing space") << QByteArray("/no/such /name") << Message(PathValidity::TrailingSpace);
    QTest::newRow("cannot be created") << QByteArray("/dev/null/name") << Message(PathValidity::CannotCreate);
}

void FileUtilsPathTest::messageTellsTheReason()
{
    QFETCH(QByteArray, path);
    QFETCH(QString, message);

    QString text = QStringLiteral("before");
    QVERIFY(!IsThisPathValid(QString::fromLatin1(path), &text));

    QCOMPARE(text, message);
}

void FileUtilsPathTest::messageIsTranslatedAndTrimmed()
{
    QFETCH(QByteArray, path);
    QFETCH(QString, message);
    Uppercase translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));

    QString text;
    bool const isValid = IsThisPathValid(QString::fromLatin1(path), &text);
    QCoreApplication::removeTranslator(&translator);

    QVERIFY(!isValid);
    QCOMPARE(text, message.toUpper());
}

void FileUtilsPathTest::messageTravelsInAnErrorOfTheFunction()
{
    LastThrown() = {};
    QString text;

    QVERIFY(!IsThisPathValid(QString(), &text));

    QCOMPARE(LastThrown().type, QByteArray("Zelkor::Util::IsThisPathValid(QString const&, QString*)::Error"));
    QCOMPARE(LastThrown().what, QByteArray(std::exception().what()));

    LastThrown() = {};
    QVERIFY(IsThisPathValid(PathAt(""), &text));
    QCOMPARE(LastThrown().type, QByteArray());
}

void FileUtilsPathTest::validPathLeavesTheTextAlone()
{
    MakeFile(At("kept"));
    QString text = QStringLiteral(" before ");
    QVERIFY(IsThisPathValid(PathAt("missing"), &text));
    QVERIFY(IsThisPathValid(PathAt(""), &text));
    QCOMPARE(text, QStringLiteral(" before "));
}

void FileUtilsPathTest::fullVolumeIsNotValid()
{
    MakeFolder(At("volume"));

    QByteArray const found = RunWithMount(At("volume"), "nr_inodes=2,mode=0777", [&] {
        QByteArray const withRoom = Text(IsThisPathValid(PathAt("volume"))) + Text(IsThisPathValid(PathAt("volume/a")));
        MakeFile(At("volume/last"));
        return withRoom + Text(IsThisPathValid(PathAt("volume"))) + Text(IsThisPathValid(PathAt("volume/a")));
    });

    QCOMPARE(found, QByteArray("0035"));
}

ZQTUTIL_TEST_MAIN(FileUtilsPathTest)
#include "FileUtilsPathTest.moc"

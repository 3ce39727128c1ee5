#include <support/sandbox/FolderTestCase.h>
#include <support/sandbox/Folders.h>
#include <support/sandbox/Mounts.h>
#include <support/sandbox/Users.h>

#include <Util/FileUtils.h>

#include <QtCore/QFile>
#include <QtTest/QtTest>

#include <type_traits>
#include <utility>
#include <vector>

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Zelkor::Testing;
using namespace Zelkor::Util;

static_assert(std::is_same_v<decltype(&CanCreateFileIn), bool (*)(QString const&)>);
static_assert(std::is_same_v<decltype(&TryCreateTmpFile), bool (*)(QString const&)>);

Q_DECLARE_METATYPE(Identity)

class FileUtilsAccessTest : public Zelkor::Testing::FolderTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void checksPermissionsOwnerAndGroup_data();
    void checksPermissionsOwnerAndGroup();
    void requiresAFolder_data() { FolderRows(); }
    void requiresAFolder();
    void rejectsAFullOrReadOnlyVolume_data();
    void rejectsAFullOrReadOnlyVolume();
    void requiresAFolderForATemporaryFile_data() { FolderRows(); }
    void requiresAFolderForATemporaryFile();
    void createsATemporaryFileInTheFolderThatTheSystemResolves_data();
    void createsATemporaryFileInTheFolderThatTheSystemResolves();
    void rejectsAPathWithANulCharacter_data();
    void rejectsAPathWithANulCharacter();
    void createsATemporaryFileWhereTheSystemPermitsIt_data();
    void createsATemporaryFileWhereTheSystemPermitsIt();
    void removesTheTemporaryFileInAFolderWithAnyName_data() { NameRows(); }
    void removesTheTemporaryFileInAFolderWithAnyName();

private:
    static void FolderRows();

    void MakeEntriesOfFolderRows() const;
};

void FileUtilsAccessTest::checksPermissionsOwnerAndGroup_data()
{
    QTest::addColumn<uid_t>("owner");
    QTest::addColumn<gid_t>("group");
    QTest::addColumn<uint>("mode");
    QTest::addColumn<Identity>("identity");
    QTest::addColumn<bool>("can");

    Identity const us{Us, Us, OurGroup, OurGroup, {}};
    Identity const root{RootUser, RootUser, 0, 0, {}};
    std::vector<gid_t> hundredGroups;
    for (gid_t group = 3000; group < 3099; ++group) {
        hundredGroups.push_back(group);
    }
    hundredGroups.push_back(TheirGroup);
    auto const as = [&](std::vector<gid_t> groups) { return Identity{Us, Us, OurGroup, OurGroup, std::move(groups)}; };

    struct Row
    {
        char const* title;
        uid_t owner;
        gid_t group;
        mode_t mode;
        Identity identity;
        bool can;
    };
    Row const rows[] = {
        {"open to all", Them, TheirGroup, 0777, us, true},
        {"open to others only", Them, TheirGroup, 0703, us, true},
        {"open to all, with sticky bit", Them, TheirGroup, 01777, us, true},
        {"open to others, without search permission", Them, TheirGroup, 0772, us, false},
        {"open to others, not to the group", Them, OurGroup, 0757, us, false},
        {"open to others, not to the owner", Us, OurGroup, 0577, us, false},
        {"readable to others", Them, TheirGroup, 0755, us, false},
        {"no permissions for others", Them, TheirGroup, 0700, us, false},

        {"open to the effective group", Them, OurGroup, 0770, us, true},
        {"open to the effective group, no permissions for the owner", Them, OurGroup, 0070, us, true},
        {"open to the only supplementary group", Them, TheirGroup, 0770, as({TheirGroup}), true},
        {"open to the first supplementary group", Them, TheirGroup, 0770, as({TheirGroup, 2003, 2004}), true},
        {"open to the last supplementary group", Them, TheirGroup, 0770, as({2003, 2004, TheirGroup}), true},
        {"open to the last of 100 groups", Them, TheirGroup, 0770, as(hundredGroups), true},
        {"open to the effective group with supplementary groups", Them, OurGroup, 0770, as({TheirGroup}), true},
        {"open to another group", Them, TheirGroup, 0770, us, false},
        {"open to a group that is not among the supplementary groups", Them, TheirGroup, 0770, as({2003, 2004}), false},
        {"open to the real group only", Them, TheirGroup, 0770, {Us, Us, TheirGroup, OurGroup, {}}, false},
        {"open to the group, without search permission", Them, OurGroup, 0760, us, false},
        {"readable to the group", Them, OurGroup, 0750, us, false},
        {"readable to the supplementary group", Them, TheirGroup, 0750, as({TheirGroup}), false},

        {"own", Us, OurGroup, 0755, us, true},
        {"own, no permissions for others", Us, OurGroup, 0700, us, true},
        {"own of another group", Us, TheirGroup, 0700, us, true},
        {"own, open to another group", Us, TheirGroup, 0770, us, true},
        {"own, not readable", Us, OurGroup, 0300, us, true},
        {"own, without search permission", Us, OurGroup, 0600, us, false},
        {"own, without write permission", Us, OurGroup, 0555, us, false},
        {"own, without any permission", Us, OurGroup, 0000, us, false},
        {"own, open to the group only", Us, OurGroup, 0570, us, false},
        {"owned by the real user only", Us, OurGroup, 0755, {Us, Them, OurGroup, OurGroup, {}}, false},

        {"root, own", RootUser, 0, 0755, root, true},
        {"root, of another user", Them, TheirGroup, 0755, root, false},
        {"root, of another user, no permissions for others", Them, TheirGroup, 0700, root, false},
        {"root, open to all", Them, TheirGroup, 0777, root, true},
        {"root, open to others only", Them, TheirGroup, 0702, root, true},
        {"root, open to the effective group", Them, 0, 0775, root, true},
        {"root, open to another group", Them, TheirGroup, 0775, root, false},
        {"root, open to a supplementary group", Them, TheirGroup, 0775, {RootUser, RootUser, 0, 0, {TheirGroup}}, true},
        {"root, open to the real group only", Them, TheirGroup, 0775, {RootUser, RootUser, TheirGroup, 0, {}}, false},
        {"effective root, owned by the real user", Us, TheirGroup, 0755, {Us, RootUser, 0, 0, {}}, false},
        {"effective root, owned by root", RootUser, 0, 0755, {Us, RootUser, OurGroup, 0, {}}, false},
    };
    for (Row const& row : rows) {
        QTest::newRow(row.title) << row.owner << row.group << row.mode << row.identity << row.can;
    }
}

void FileUtilsAccessTest::checksPermissionsOwnerAndGroup()
{
    QFETCH(uid_t, owner);
    QFETCH(gid_t, group);
    QFETCH(uint, mode);
    QFETCH(Identity, identity);
    QFETCH(bool, can);
    MakeFolder(At("folder"));
    SetOwner(At("folder"), owner, group);
    Chmod(At("folder"), mode);

    bool const found = RunAs(identity, [&] { return CanCreateFileIn(PathAt("folder")); });

    QCOMPARE(found, can);
    QCOMPARE(ListTree(Root()), QByteArrayList{"folder"});
}

void FileUtilsAccessTest::FolderRows()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("can");
    QTest::newRow("folder") << QByteArray("folder") << true;
    QTest::newRow("folder with slash") << QByteArray("folder/") << true;
    QTest::newRow("folder with dot") << QByteArray("folder/.") << true;
    QTest::newRow("parent folder") << QByteArray("folder/..") << true;
    QTest::newRow("link to a folder") << QByteArray("link") << true;
    QTest::newRow("link to a link to a folder") << QByteArray("link-to-link") << true;
    QTest::newRow("missing") << QByteArray("missing") << false;
    QTest::newRow("dangling link") << QByteArray("dangling") << false;
    QTest::newRow("file") << QByteArray("file") << false;
    QTest::newRow("file open to all") << QByteArray("open-file") << false;
    QTest::newRow("link to a file") << QByteArray("link-to-file") << false;
    QTest::newRow("pipe") << QByteArray("pipe") << false;
    QTest::newRow("below a file") << QByteArray("file/name") << false;
    QTest::newRow("name that is too long") << QByteArray(256, 'n') << false;
}

void FileUtilsAccessTest::MakeEntriesOfFolderRows() const
{
    MakeFolder(At("folder"));
    MakeFile(At("file"));
    MakeFile(At("open-file"));
    MakePipe(At("pipe"));
    MakeLink(At("link"), "folder");
    MakeLink(At("link-to-link"), "link");
    MakeLink(At("link-to-file"), "file");
    MakeLink(At("dangling"), "nowhere");
    Chmod(At("open-file"), 0777);
}

void FileUtilsAccessTest::requiresAFolder()
{
    QFETCH(QByteArray, name);
    QFETCH(bool, can);
    MakeEntriesOfFolderRows();
    QByteArrayList const before = ListTree(Root());

    QCOMPARE(CanCreateFileIn(PathAt(name)), can);
    WorkingFolder const current(Root());
    QCOMPARE(CanCreateFileIn(QString::fromLatin1(name)), can);

    QCOMPARE(ListTree(Root()), before);
}

void FileUtilsAccessTest::rejectsAFullOrReadOnlyVolume_data()
{
    QTest::addColumn<bool>("byTrying");
    QTest::newRow("CanCreateFileIn") << false;
    QTest::newRow("TryCreateTmpFile") << true;
}

void FileUtilsAccessTest::rejectsAFullOrReadOnlyVolume()
{
    QFETCH(bool, byTrying);
    MakeFolder(At("volume"));
    auto const check = [&] {
        return byTrying ? TryCreateTmpFile(PathAt("volume")) : CanCreateFileIn(PathAt("volume"));
    };

    for (char const* const mode : {"nr_inodes=2,mode=0777", "nr_inodes=2,mode=0775", "nr_inodes=2,mode=0755"}) {
        QVector<bool> const found = RunWithMount(At("volume"), mode, [&] {
            QVector<bool> results{check()};
            MakeFile(At("volume/last"));
            results += check();
            Check(unlink(At("volume/last").c_str()));
            results += check();
            Check(mount("none", At("volume").c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr));
            results += check();
            return results;
        });
        QCOMPARE(found, (QVector<bool>{true, false, true, false}));
    }
}

void FileUtilsAccessTest::requiresAFolderForATemporaryFile()
{
    QFETCH(QByteArray, name);
    QFETCH(bool, can);
    MakeEntriesOfFolderRows();
    QByteArrayList const before = ListTree(Root());

    QCOMPARE(TryCreateTmpFile(PathAt(name)), can);
    WorkingFolder const current(Root());
    QCOMPARE(TryCreateTmpFile(QString::fromLatin1(name)), can);

    QCOMPARE(ListTree(Root()), before);
}

void FileUtilsAccessTest::createsATemporaryFileInTheFolderThatTheSystemResolves_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("can");
    QTest::newRow("folder only as text") << QByteArray("b/link/../x") << false;
    QTest::newRow("folder only after the link") << QByteArray("b/link/../y") << true;
    QTest::newRow("parent of a missing folder") << QByteArray("missing/..") << false;
    QTest::newRow("parent of a file") << QByteArray("file/..") << false;
}

void FileUtilsAccessTest::createsATemporaryFileInTheFolderThatTheSystemResolves()
{
    QFETCH(QByteArray, name);
    QFETCH(bool, can);
    MakeFolder(At("a"));
    MakeFolder(At("a/target"));
    MakeFolder(At("a/y"));
    MakeFolder(At("b"));
    MakeFolder(At("b/x"));
    MakeLink(At("b/link"), "../a/target");
    MakeFile(At("file"));
    QByteArrayList const before = ListTree(Root());

    QCOMPARE(TryCreateTmpFile(PathAt(name)), can);
    QCOMPARE(CanCreateFileIn(PathAt(name)), can);
    WorkingFolder const current(Root());
    QCOMPARE(TryCreateTmpFile(QString::fromLatin1(name)), can);
    QCOMPARE(CanCreateFileIn(QString::fromLatin1(name)), can);

    QCOMPARE(ListTree(Root()), before);
}

void FileUtilsAccessTest::rejectsAPathWithANulCharacter_data()
{
    QTest::addColumn<QString>("tail");
    QTest::newRow("at the end") << QString(QChar::Null);
    QTest::newRow("after a folder") << QStringLiteral("/") + QChar::Null;
    QTest::newRow("before a folder") << QChar::Null + QStringLiteral("/name");
    QTest::newRow("before two dots") << QChar::Null + QStringLiteral("/..");
}

void FileUtilsAccessTest::rejectsAPathWithANulCharacter()
{
    QFETCH(QString, tail);
    MakeFolder(At("folder"));
    Chmod(At("folder"), 0777);

    QVERIFY(!TryCreateTmpFile(PathAt("folder") + tail));
    QVERIFY(!TryCreateTmpFile(PathAt("missing") + tail));

    QCOMPARE(ListTree(Root()), QByteArrayList{"folder"});
}

void FileUtilsAccessTest::createsATemporaryFileWhereTheSystemPermitsIt_data()
{
    QTest::addColumn<uid_t>("user");
    QTest::addColumn<uint>("mode");
    QTest::addColumn<bool>("can");
    QTest::newRow("root in a folder of another user") << RootUser << 0700U << true;
    QTest::newRow("root in a read-only folder") << RootUser << 0000U << true;
    QTest::newRow("ordinary user in a folder of another user") << Us << 0755U << false;
    QTest::newRow("ordinary user in a folder open to all") << Us << 0777U << true;
    QTest::newRow("owner in a read-only folder") << Them << 0555U << false;
    QTest::newRow("owner in a folder that cannot be listed") << Them << 0300U << true;
}

void FileUtilsAccessTest::createsATemporaryFileWhereTheSystemPermitsIt()
{
    QFETCH(uid_t, user);
    QFETCH(uint, mode);
    QFETCH(bool, can);
    MakeFolder(At("folder"));
    SetOwner(At("folder"), Them, TheirGroup);
    Chmod(At("folder"), mode);

    bool const found = RunAs({user, user, OurGroup, OurGroup, {}}, [&] { return TryCreateTmpFile(PathAt("folder")); });

    QCOMPARE(found, can);
    QCOMPARE(ListTree(Root()), QByteArrayList{"folder"});
}

void FileUtilsAccessTest::removesTheTemporaryFileInAFolderWithAnyName()
{
    QFETCH(QByteArray, name);
    // In one data row, the name is not valid UTF-8, and a QString cannot represent it. Convert the name to a QString
    // and back, to get a name that a QString can represent.
    QByteArray const encoded = QFile::encodeName(QFile::decodeName(name));
    MakeFolder(At(encoded.left(255).toStdString()));
    int const descriptors = CountOpenDescriptors();

    QVERIFY(TryCreateTmpFile(PathAt(encoded.left(255))));
    QVERIFY(CanCreateFileIn(PathAt(encoded.left(255))));

    QCOMPARE(ListTree(Root()), QByteArrayList{encoded.left(255)});
    QCOMPARE(CountOpenDescriptors(), descriptors);
}

ZQTUTIL_TEST_MAIN(FileUtilsAccessTest)
#include "FileUtilsAccessTest.moc"

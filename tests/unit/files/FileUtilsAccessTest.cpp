#include <support/processes/ChildProcess.h>
#include <support/sandbox/FolderTestCase.h>
#include <support/sandbox/Folders.h>

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

namespace
{

QByteArray Text(bool value)
{
    return value ? "yes" : "no";
}

} // namespace

Q_DECLARE_METATYPE(Identity)

class FileUtilsAccessTest : public Zelkor::Testing::FolderTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void filesCanBeCreatedByPermissionOwnerAndGroup_data();
    void filesCanBeCreatedByPermissionOwnerAndGroup();
    void filesCanBeCreatedInWhatIsAFolder_data() { FolderRows(); }
    void filesCanBeCreatedInWhatIsAFolder();
    void filesCannotBeCreatedOnAFullOrReadOnlyVolume_data();
    void filesCannotBeCreatedOnAFullOrReadOnlyVolume();
    void temporaryFileIsTriedInWhatIsAFolder_data() { FolderRows(); }
    void temporaryFileIsTriedInWhatIsAFolder();
    void temporaryFileLooksAtNoPermissions_data();
    void temporaryFileLooksAtNoPermissions();
    void temporaryFileInAnyNameLeavesNothing_data() { NameRows(); }
    void temporaryFileInAnyNameLeavesNothing();

private:
    static void FolderRows();

    void MakeFoldersOfFolderRows() const;
};

void FileUtilsAccessTest::filesCanBeCreatedByPermissionOwnerAndGroup_data()
{
    QTest::addColumn<uid_t>("owner");
    QTest::addColumn<gid_t>("group");
    QTest::addColumn<uint>("mode");
    QTest::addColumn<Identity>("who");
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
        Identity who;
        bool can;
    };
    // clang-format off
    Row const rows[] = {
        {"open to all",                        Them, TheirGroup, 0777, us, true},
        {"open to others alone",               Them, TheirGroup, 0703, us, true},
        {"open to all with sticky bit",        Them, TheirGroup, 01777, us, true},
        {"open to others, not to be entered",  Them, TheirGroup, 0772, us, false},
        {"open to others, not to the group",   Them, OurGroup,   0757, us, false},
        {"open to others, not to the owner",   Us,   OurGroup,   0577, us, false},
        {"readable to others",                 Them, TheirGroup, 0755, us, false},
        {"closed to others",                   Them, TheirGroup, 0700, us, false},

        {"open to the effective group",        Them, OurGroup,   0770, us, true},
        {"open to the effective group, closed to owner", Them, OurGroup, 0070, us, true},
        {"open to the one further group",      Them, TheirGroup, 0770, as({TheirGroup}), true},
        {"open to the first further group",    Them, TheirGroup, 0770, as({TheirGroup, 2003, 2004}), true},
        {"open to the last further group",     Them, TheirGroup, 0770, as({2003, 2004, TheirGroup}), true},
        {"open to the last of 100 groups",     Them, TheirGroup, 0770, as(hundredGroups), true},
        {"open to the effective group besides further ones", Them, OurGroup, 0770, as({TheirGroup}), true},
        {"open to another group",              Them, TheirGroup, 0770, us, false},
        {"open to another group than the further ones", Them, TheirGroup, 0770, as({2003, 2004}), false},
        {"open to the real group alone",       Them, TheirGroup, 0770, {Us, Us, TheirGroup, OurGroup, {}}, false},
        {"open to the group, not to be entered", Them, OurGroup, 0760, us, false},
        {"readable to the group",              Them, OurGroup,   0750, us, false},
        {"readable to the further group",      Them, TheirGroup, 0750, as({TheirGroup}), false},

        {"own",                                Us,   OurGroup,   0755, us, true},
        {"own alone",                          Us,   OurGroup,   0700, us, true},
        {"own of another group",               Us,   TheirGroup, 0700, us, true},
        {"own, open to another group",         Us,   TheirGroup, 0770, us, true},
        {"own, not readable",                  Us,   OurGroup,   0300, us, true},
        {"own, not to be entered",             Us,   OurGroup,   0600, us, false},
        {"own without write permission",       Us,   OurGroup,   0555, us, false},
        {"own without any permission",         Us,   OurGroup,   0000, us, false},
        {"own, open to the group alone",       Us,   OurGroup,   0570, us, false},
        {"own by the real user alone",         Us,   OurGroup,   0755, {Us, Them, OurGroup, OurGroup, {}}, false},

        {"root, own",                          RootUser, 0,        0755, root, true},
        {"root, of another user",              Them, TheirGroup, 0755, root, false},
        {"root, of another user alone",        Them, TheirGroup, 0700, root, false},
        {"root, open to all",                  Them, TheirGroup, 0777, root, true},
        {"root, open to others alone",         Them, TheirGroup, 0702, root, true},
        {"root, open to the effective group",  Them, 0,          0775, root, true},
        {"root, open to another group",        Them, TheirGroup, 0775, root, false},
        {"root, open to a further group",      Them, TheirGroup, 0775, {RootUser, RootUser, 0, 0, {TheirGroup}}, true},
        {"root, open to the real group alone", Them, TheirGroup, 0775, {RootUser, RootUser, TheirGroup, 0, {}}, false},
        {"root for us, own by the real user",  Us,   TheirGroup, 0755, {Us, RootUser, 0, 0, {}}, false},
        {"root for us, own by the effective user", RootUser, 0,    0755, {Us, RootUser, OurGroup, 0, {}}, false},
    };
    // clang-format on
    for (Row const& row : rows) {
        QTest::newRow(row.title) << row.owner << row.group << row.mode << row.who << row.can;
    }
}

void FileUtilsAccessTest::filesCanBeCreatedByPermissionOwnerAndGroup()
{
    QFETCH(uid_t, owner);
    QFETCH(gid_t, group);
    QFETCH(uint, mode);
    QFETCH(Identity, who);
    QFETCH(bool, can);
    MakeFolder(At("folder"));
    Check(chown(At("folder").c_str(), owner, group));
    Check(chmod(At("folder").c_str(), mode));

    QByteArray const found = RunAs(who, [&] { return Text(CanCreateFileIn(PathAt("folder"))); });

    QCOMPARE(found, Text(can));
    QCOMPARE(TreeOf(Root()), QByteArrayList{"folder"});
}

void FileUtilsAccessTest::FolderRows()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("can");
    QTest::newRow("folder") << QByteArray("folder") << true;
    QTest::newRow("folder with slash") << QByteArray("folder/") << true;
    QTest::newRow("folder with dot") << QByteArray("folder/.") << true;
    QTest::newRow("folder above") << QByteArray("folder/..") << true;
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

void FileUtilsAccessTest::MakeFoldersOfFolderRows() const
{
    MakeTree(Root(), {{"folder/", New},
                      {"file", New},
                      {"open-file", New},
                      {"pipe|", New},
                      {"link@folder", New},
                      {"link-to-link@link", New},
                      {"link-to-file@file", New},
                      {"dangling@nowhere", New}});
    Check(chmod(At("open-file").c_str(), 0777));
}

void FileUtilsAccessTest::filesCanBeCreatedInWhatIsAFolder()
{
    QFETCH(QByteArray, name);
    QFETCH(bool, can);
    MakeFoldersOfFolderRows();
    QByteArrayList const before = TreeOf(Root());

    QCOMPARE(CanCreateFileIn(PathAt(name)), can);
    AtFolder const here(Root());
    QCOMPARE(CanCreateFileIn(QString::fromLatin1(name)), can);

    QCOMPARE(TreeOf(Root()), before);
}

void FileUtilsAccessTest::filesCannotBeCreatedOnAFullOrReadOnlyVolume_data()
{
    QTest::addColumn<bool>("byTrying");
    QTest::newRow("CanCreateFileIn") << false;
    QTest::newRow("TryCreateTmpFile") << true;
}

void FileUtilsAccessTest::filesCannotBeCreatedOnAFullOrReadOnlyVolume()
{
    QFETCH(bool, byTrying);
    MakeFolder(At("volume"));
    auto const ask = [&] {
        return Text(byTrying ? TryCreateTmpFile(PathAt("volume")) : CanCreateFileIn(PathAt("volume")));
    };

    for (char const* const mode : {"nr_inodes=2,mode=0777", "nr_inodes=2,mode=0775", "nr_inodes=2,mode=0755"}) {
        QByteArray const found = RunWithMount(At("volume"), mode, [&] {
            QByteArray answers = ask();
            MakeFile(At("volume/last"));
            answers += ' ' + ask();
            Check(unlink(At("volume/last").c_str()));
            answers += ' ' + ask();
            Check(mount("none", At("volume").c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr));
            return answers + ' ' + ask();
        });
        QCOMPARE(found, QByteArray("yes no yes no"));
    }
}

void FileUtilsAccessTest::temporaryFileIsTriedInWhatIsAFolder()
{
    QFETCH(QByteArray, name);
    QFETCH(bool, can);
    MakeFoldersOfFolderRows();
    QByteArrayList const before = TreeOf(Root());

    QCOMPARE(TryCreateTmpFile(PathAt(name)), can);
    AtFolder const here(Root());
    QCOMPARE(TryCreateTmpFile(QString::fromLatin1(name)), can);

    QCOMPARE(TreeOf(Root()), before);
}

void FileUtilsAccessTest::temporaryFileLooksAtNoPermissions_data()
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

void FileUtilsAccessTest::temporaryFileLooksAtNoPermissions()
{
    QFETCH(uid_t, user);
    QFETCH(uint, mode);
    QFETCH(bool, can);
    MakeFolder(At("folder"));
    Check(chown(At("folder").c_str(), Them, TheirGroup));
    Check(chmod(At("folder").c_str(), mode));

    QByteArray const found =
        RunAs({user, user, OurGroup, OurGroup, {}}, [&] { return Text(TryCreateTmpFile(PathAt("folder"))); });

    QCOMPARE(found, Text(can));
    QCOMPARE(TreeOf(Root()), QByteArrayList{"folder"});
}

void FileUtilsAccessTest::temporaryFileInAnyNameLeavesNothing()
{
    QFETCH(QByteArray, name);
    // What is no UTF-8 cannot be named by a QString.
    QByteArray const encoded = QFile::encodeName(QFile::decodeName(name));
    MakeFolder(At(encoded.left(255).toStdString()));
    int const descriptors = OpenDescriptors();

    QVERIFY(TryCreateTmpFile(PathAt(encoded.left(255))));
    QVERIFY(CanCreateFileIn(PathAt(encoded.left(255))));

    QCOMPARE(TreeOf(Root()), QByteArrayList{encoded.left(255)});
    QCOMPARE(OpenDescriptors(), descriptors);
}

ZQTUTIL_TEST_MAIN(FileUtilsAccessTest)
#include "FileUtilsAccessTest.moc"

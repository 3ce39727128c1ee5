#include <support/ProgrammingError.h>
#include <support/TestCase.h>
#include <support/sandbox/Users.h>

#include <Base/IoPath.h>

#include <QtTest/QtTest>

#include <boost/filesystem/operations.hpp>

#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>

using Zelkor::ioPath;
using Zelkor::Core::FileExists;
using Zelkor::Testing::CatchProgrammingError;
using Zelkor::Testing::ProgrammingError;
using Zelkor::Testing::RunAsOrdinaryUser;

namespace fs = boost::filesystem;

static_assert(std::is_base_of_v<fs::path, ioPath> && std::is_convertible_v<ioPath*, fs::path*>);
static_assert(!std::is_polymorphic_v<ioPath> && !std::is_final_v<ioPath>);
static_assert(std::is_default_constructible_v<ioPath>);
static_assert(std::is_copy_constructible_v<ioPath> && std::is_copy_assignable_v<ioPath>);
static_assert(std::is_move_constructible_v<ioPath> && std::is_move_assignable_v<ioPath>);
static_assert(std::is_convertible_v<std::string, ioPath> && std::is_convertible_v<char const*, ioPath>);
static_assert(std::is_convertible_v<fs::path, ioPath>);
static_assert(std::is_same_v<decltype(std::declval<ioPath&>() = "path"), ioPath&>);
static_assert(std::is_same_v<decltype(std::declval<ioPath const&>().utf8string()), std::string>);
static_assert(std::is_same_v<decltype(std::declval<ioPath const&>().parent_path()), ioPath>);
static_assert(std::is_same_v<decltype(std::declval<ioPath const&>().remove()), bool>);
static_assert(std::is_same_v<decltype(&FileExists), bool (*)(ioPath const&)>);

Q_DECLARE_METATYPE(std::string)

class IoPathTest : public Zelkor::Testing::TestCase
{
    Q_OBJECT

protected:
    void SetUp() override
    {
        folder_ = std::make_unique<QTemporaryDir>();
        QVERIFY(folder_->isValid());
    }

    void TearDown() override
    {
        fs::remove_all(at({})); // QTemporaryDir does not remove files whose names are not valid UTF-8
        folder_.reset();
    }

private Q_SLOTS:
    void isEmptyByDefault()
    {
        ioPath const path;
        QVERIFY(path.empty());
        QVERIFY(path.utf8string().empty());
    }

    void keepsTheBytesOfItsText_data()
    {
        QTest::addColumn<std::string>("text");
        QTest::newRow("empty") << std::string();
        QTest::newRow("relative") << std::string("a/b.c");
        QTest::newRow("absolute") << std::string("/a/b.c");
        QTest::newRow("trailing slash") << std::string("/a/b/");
        QTest::newRow("path that is not normalised") << std::string("/a//./../b");
        QTest::newRow("backslash") << std::string("a\\b");
        QTest::newRow("UTF-8") << std::string("/\xC3\xA4/\xE2\x82\xAC/\xF0\x9F\x98\x80");
        QTest::newRow("invalid UTF-8") << std::string("/\xFF\xC3/\x80");
    }

    void keepsTheBytesOfItsText()
    {
        QFETCH(std::string, text);
        ioPath assigned("other");
        assigned = text.c_str();
        QCOMPARE(ioPath(text).utf8string(), text);
        QCOMPARE(ioPath(text.c_str()).utf8string(), text);
        QCOMPARE(ioPath(fs::path(text)).utf8string(), text);
        QCOMPARE(assigned.utf8string(), text);
    }

    void keepsNulBytesOfAString()
    {
        std::string const text("a\0b", 3);
        QCOMPARE(ioPath(text).utf8string(), text);
    }

    void returnsItselfFromAssignment()
    {
        ioPath path;
        QCOMPARE(&(path = "text"), &path);
    }

    void acceptsItsOwnTextInAssignment()
    {
        ioPath path("/some/rather/long/path/that/no/small/string/holds");
        path = path.c_str();
        QCOMPARE(path.utf8string(), std::string("/some/rather/long/path/that/no/small/string/holds"));
    }

    void providesTheInterfaceOfABoostPath()
    {
        ioPath const path("/a/b.c");
        QVERIFY(path == fs::path("/a/b.c"));
        QVERIFY(path.is_absolute());
        QCOMPARE(path.filename().string(), std::string("b.c"));
        QCOMPARE((path / "d").string(), std::string("/a/b.c/d"));
    }

    void rejectsANullPointerInConstruction()
    {
        char const* const nullPointer = nullptr;
        verifyNullPointer(
            CatchProgrammingError<std::invalid_argument>([nullPointer] { ioPath const path(nullPointer); }));
    }

    void rejectsANullPointerInAssignmentAndKeepsItsText()
    {
        char const* const nullPointer = nullptr;
        ioPath path("before");
        verifyNullPointer(CatchProgrammingError<std::invalid_argument>([&path, nullPointer] { path = nullPointer; }));
        QCOMPARE(path.utf8string(), std::string("before"));
    }

    void returnsItsParent_data()
    {
        QTest::addColumn<std::string>("path");
        QTest::addColumn<std::string>("parent");
        QTest::newRow("file in a folder") << std::string("/a/b.c") << std::string("/a");
        QTest::newRow("entry of the root") << std::string("/a") << std::string("/");
        QTest::newRow("relative") << std::string("a/b/c") << std::string("a/b");
        QTest::newRow("single name") << std::string("a") << std::string();
        QTest::newRow("root") << std::string("/") << std::string();
        QTest::newRow("empty") << std::string() << std::string();
        QTest::newRow("UTF-8") << std::string("\xC3\xA4/\xE2\x82\xAC") << std::string("\xC3\xA4");
    }

    void returnsItsParent()
    {
        QFETCH(std::string, path);
        QFETCH(std::string, parent);
        ioPath const given(path);
        QCOMPARE(given.parent_path().utf8string(), parent);
        QCOMPARE(given.utf8string(), path);
    }

    void removesAFile()
    {
        ioPath const path = makeFile("file");
        QVERIFY(path.remove());
        QVERIFY(!FileExists(path));
        QVERIFY(FileExists(path.parent_path()));
    }

    void removesAFileWhoseNameIsNotUtf8()
    {
        ioPath const path = makeFile("\xFF\x80");
        QVERIFY(path.remove());
        QVERIFY(!FileExists(path));
    }

    void removesAnEmptyFolder()
    {
        ioPath const path = at("folder");
        fs::create_directory(path);
        QVERIFY(path.remove());
        QVERIFY(!FileExists(path));
    }

    void removesALinkButNotItsTarget()
    {
        ioPath const target = makeFile("target");
        ioPath const link = at("link");
        fs::create_symlink(target, link);
        QVERIFY(link.remove());
        QVERIFY(!fs::exists(fs::symlink_status(link)));
        QVERIFY(FileExists(target));
    }

    void removesADanglingLink()
    {
        ioPath const link = at("link");
        fs::create_symlink("missing target", link);
        QVERIFY(link.remove());
        QVERIFY(!fs::exists(fs::symlink_status(link)));
    }

    void returnsFalseForAMissingEntry_data()
    {
        QTest::addColumn<std::string>("name");
        QTest::newRow("missing file") << std::string("missing");
        QTest::newRow("missing folder") << std::string("missing/file");
    }

    void returnsFalseForAMissingEntry()
    {
        QFETCH(std::string, name);
        QVERIFY(!at(name).remove());
    }

    void returnsFalseForTheEmptyPath() { QVERIFY(!ioPath().remove()); }

    void throwsWhenTheFolderIsNotEmpty()
    {
        ioPath const file = makeFile("file");
        ioPath const folder = file.parent_path();
        try {
            folder.remove();
            QFAIL("Nothing was thrown");
        } catch (fs::filesystem_error const& error) {
            QVERIFY(error.path1() == folder);
            QVERIFY(error.code() == boost::system::errc::directory_not_empty);
        }
        QVERIFY(FileExists(file));
    }

    void throwsWhenPermissionIsDenied()
    {
        ioPath const readOnly = at("read-only");
        fs::create_directory(readOnly);
        ioPath const file = makeFile("read-only/file");
        grantAccessToEveryone(readOnly);
        // Remove the owner's write permission: RunAsOrdinaryUser() may run the lambda as the owner of the folder.
        fs::permissions(readOnly, fs::remove_perms | fs::owner_write);
        QByteArray const outcome = RunAsOrdinaryUser([&file]() -> QByteArray {
            if (!FileExists(file)) {
                return "not found";
            }
            try {
                return file.remove() ? "removed" : "nothing removed";
            } catch (fs::filesystem_error const& error) {
                return error.code() == boost::system::errc::permission_denied ? "permission denied" : error.what();
            }
        });
        fs::permissions(readOnly, fs::add_perms | fs::owner_write);
        QCOMPARE(outcome, QByteArray("permission denied"));
        QVERIFY(FileExists(file));
    }

    void doesNotTruncateThePathAtANulByte()
    {
        ioPath const file = makeFile("file");
        ioPath const longer(file.utf8string() + std::string("\0.txt", 5));
        QVERIFY_EXCEPTION_THROWN(longer.remove(), fs::filesystem_error);
        QVERIFY(FileExists(file));
    }

    void findsExistingEntries()
    {
        ioPath const file = makeFile("file");
        ioPath const fileLink = at("file link");
        ioPath const folderLink = at("folder link");
        fs::create_symlink(file, fileLink);
        fs::create_symlink(file.parent_path(), folderLink);
        QVERIFY(FileExists(file));
        QVERIFY(FileExists(file.parent_path()));
        QVERIFY(FileExists(fileLink));
        QVERIFY(FileExists(folderLink));
        QVERIFY(FileExists("/dev/null"));
        QVERIFY(FileExists("."));
        QVERIFY(FileExists(makeFile("\xC3\xA4\xFF")));
    }

    void doesNotFindMissingEntries()
    {
        ioPath const file = makeFile("file");
        ioPath const dangling = at("dangling");
        ioPath const loop = at("loop");
        fs::create_symlink("missing target", dangling);
        fs::create_symlink("loop", loop);
        QVERIFY(!FileExists(at("missing")));
        QVERIFY(!FileExists(at("missing/file")));
        QVERIFY(!FileExists(at("file/below")));
        QVERIFY(!FileExists(ioPath()));
        QVERIFY(!FileExists(dangling));
        QVERIFY(!FileExists(loop));
        QVERIFY(!FileExists(at(std::string(5000, 'x'))));
        QVERIFY(!FileExists(file.utf8string() + std::string("\0.txt", 5)));
    }

    void doesNotFindEntriesOfAnInaccessibleFolder()
    {
        ioPath const open = at("open");
        ioPath const closed = at("closed");
        fs::create_directory(open);
        fs::create_directory(closed);
        ioPath const accessible = makeFile("open/file");
        ioPath const inaccessible = makeFile("closed/file");
        grantAccessToEveryone(open);
        fs::permissions(closed, fs::no_perms);
        bool const findsAccessible = RunAsOrdinaryUser([&] { return FileExists(accessible); });
        bool const findsInaccessible = RunAsOrdinaryUser([&] { return FileExists(inaccessible); });
        fs::permissions(closed, fs::owner_all);
        QVERIFY(findsAccessible);
        QVERIFY(!findsInaccessible);
    }

private:
    ioPath at(std::string const& name) const { return ioPath(folder_->path().toStdString() + "/" + name); }

    ioPath makeFile(std::string const& name) const
    {
        ioPath path = at(name);
        std::ofstream(path.c_str()).flush();
        return path;
    }

    /// Allows every user to read and traverse three folders: \a path, the folder of the test, and the temporary folder.
    void grantAccessToEveryone(ioPath const& path) const
    {
        for (ioPath const& folder : {path, at({}), ioPath(QDir::tempPath().toStdString())}) {
            fs::permissions(folder,
                            fs::owner_read | fs::owner_write | fs::owner_exe | fs::others_read | fs::others_exe);
        }
    }

    static void verifyNullPointer(ProgrammingError const& error)
    {
        QVERIFY2(error.message.contains(QStringLiteral("null pointer")), qPrintable(error.message));
        QVERIFY2(error.callStack.contains(QStringLiteral("ioPath")), qPrintable(error.callStack));
        QCOMPARE(error.file, QStringLiteral("Base/IoPath.cpp"));
        static QRegularExpression const signature(QStringLiteral("\\bZelkor::.*\\(.*\\)$"));
        QVERIFY2(error.function.contains(signature), qPrintable(error.function));
        QVERIFY(error.line > 0);
    }

    std::unique_ptr<QTemporaryDir> folder_;
};

ZQTUTIL_TEST_MAIN(IoPathTest)
#include "IoPathTest.moc"

#include <support/ProgrammingError.h>
#include <support/TestCase.h>
#include <support/sandbox/OrdinaryUser.h>

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
        fs::remove_all(at({})); // Qt does not remove what has no UTF-8 name
        folder_.reset();
    }

private Q_SLOTS:
    void isEmptyByDefault()
    {
        ioPath const path;
        QVERIFY(path.empty());
        QVERIFY(path.utf8string().empty());
    }

    void keepsItsTextByteByByte_data()
    {
        QTest::addColumn<std::string>("text");
        QTest::newRow("empty") << std::string();
        QTest::newRow("relative") << std::string("a/b.c");
        QTest::newRow("absolute") << std::string("/a/b.c");
        QTest::newRow("trailing slash") << std::string("/a/b/");
        QTest::newRow("nothing is normalised") << std::string("/a//./../b");
        QTest::newRow("backslash is a character") << std::string("a\\b");
        QTest::newRow("UTF-8") << std::string("/\xC3\xA4/\xE2\x82\xAC/\xF0\x9F\x98\x80");
        QTest::newRow("no UTF-8") << std::string("/\xFF\xC3/\x80");
    }

    void keepsItsTextByteByByte()
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

    void returnsItselfWhenAssigned()
    {
        ioPath path;
        QCOMPARE(&(path = "text"), &path);
    }

    void canBeAssignedItsOwnText()
    {
        ioPath path("/some/rather/long/path/that/no/small/string/holds");
        path = path.c_str();
        QCOMPARE(path.utf8string(), std::string("/some/rather/long/path/that/no/small/string/holds"));
    }

    void behavesLikeABoostPath()
    {
        ioPath const path("/a/b.c");
        QVERIFY(path == fs::path("/a/b.c"));
        QVERIFY(path.is_absolute());
        QCOMPARE(path.filename().string(), std::string("b.c"));
        QCOMPARE((path / "d").string(), std::string("/a/b.c/d"));
    }

    void cannotBeMadeFromANullPointer()
    {
        char const* const nothing = nullptr;
        verifyNullPointer(CatchProgrammingError<std::invalid_argument>([nothing] { ioPath const path(nothing); }));
    }

    void staysAsItIsWhenAssignedANullPointer()
    {
        char const* const nothing = nullptr;
        ioPath path("before");
        verifyNullPointer(CatchProgrammingError<std::invalid_argument>([&path, nothing] { path = nothing; }));
        QCOMPARE(path.utf8string(), std::string("before"));
    }

    void knowsItsParent_data()
    {
        QTest::addColumn<std::string>("path");
        QTest::addColumn<std::string>("parent");
        QTest::newRow("file in a folder") << std::string("/a/b.c") << std::string("/a");
        QTest::newRow("in the root") << std::string("/a") << std::string("/");
        QTest::newRow("relative") << std::string("a/b/c") << std::string("a/b");
        QTest::newRow("single name") << std::string("a") << std::string();
        QTest::newRow("root") << std::string("/") << std::string();
        QTest::newRow("empty") << std::string() << std::string();
        QTest::newRow("UTF-8") << std::string("\xC3\xA4/\xE2\x82\xAC") << std::string("\xC3\xA4");
    }

    void knowsItsParent()
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

    void removesAFileWithoutUtf8InItsName()
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

    void removesTheLinkAndLeavesItsTarget()
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
        fs::create_symlink("nowhere", link);
        QVERIFY(link.remove());
        QVERIFY(!fs::exists(fs::symlink_status(link)));
    }

    void removesNothingWhereNothingIs_data()
    {
        QTest::addColumn<std::string>("name");
        QTest::newRow("no such file") << std::string("missing");
        QTest::newRow("no such folder") << std::string("missing/file");
    }

    void removesNothingWhereNothingIs()
    {
        QFETCH(std::string, name);
        QVERIFY(!at(name).remove());
    }

    void removesNothingForTheEmptyPath() { QVERIFY(!ioPath().remove()); }

    void throwsWhenAFolderIsNotEmpty()
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

    void throwsWhenTheSystemRefuses()
    {
        ioPath const readOnly = at("read-only");
        fs::create_directory(readOnly);
        ioPath const file = makeFile("read-only/file");
        openToEveryone(readOnly);
        fs::permissions(readOnly, fs::remove_perms | fs::owner_write); // where the user is the owner
        QByteArray const outcome = Zelkor::Testing::RunAsOrdinaryUser([&file]() -> QByteArray {
            if (!FileExists(file)) {
                return "hidden";
            }
            try {
                return file.remove() ? "removed" : "nothing there";
            } catch (fs::filesystem_error const& error) {
                return error.code() == boost::system::errc::permission_denied ? "refused" : error.what();
            }
        });
        fs::permissions(readOnly, fs::add_perms | fs::owner_write);
        QCOMPARE(outcome, QByteArray("refused"));
        QVERIFY(FileExists(file));
    }

    void doesNotRemoveWhatTheSystemWouldReadInstead()
    {
        ioPath const file = makeFile("file");
        ioPath const longer(file.utf8string() + std::string("\0.txt", 5));
        QVERIFY_EXCEPTION_THROWN(longer.remove(), fs::filesystem_error);
        QVERIFY(FileExists(file));
    }

    void findsWhatExists()
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

    void doesNotFindWhatDoesNotExist()
    {
        ioPath const file = makeFile("file");
        ioPath const dangling = at("dangling");
        ioPath const loop = at("loop");
        fs::create_symlink("nowhere", dangling);
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

    void doesNotFindWhatIsClosedToTheUser()
    {
        ioPath const open = at("open");
        ioPath const closed = at("closed");
        fs::create_directory(open);
        fs::create_directory(closed);
        ioPath const seen = makeFile("open/file");
        ioPath const hidden = makeFile("closed/file");
        openToEveryone(open);
        fs::permissions(closed, fs::no_perms);
        QByteArray const found = Zelkor::Testing::RunAsOrdinaryUser([&]() -> QByteArray {
            return QByteArray::number(FileExists(seen)) + QByteArray::number(FileExists(hidden));
        });
        fs::permissions(closed, fs::owner_all);
        QCOMPARE(found, QByteArray("10"));
    }

private:
    ioPath at(std::string const& name) const { return ioPath(folder_->path().toStdString() + "/" + name); }

    ioPath makeFile(std::string const& name) const
    {
        ioPath path = at(name);
        std::ofstream(path.c_str()).flush();
        return path;
    }

    /// Lets every user read the folder \a path and go through the program's own folders above it.
    void openToEveryone(ioPath const& path) const
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

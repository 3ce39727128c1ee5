#include <support/sandbox/FolderTestCase.h>

#include <support/sandbox/Folders.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

namespace Zelkor::Testing
{

void FolderTestCase::SetUp()
{
    folder_.emplace();
    QVERIFY2(folder_->isValid(), qPrintable(folder_->errorString()));
    // Some tests access these folders as other users. By default, only the owner may enter a folder that QTemporaryDir
    // has created.
    Chmod(QDir::tempPath().toStdString(), 0755);
    Chmod(Root(), 0755);
}

void FolderTestCase::TearDown()
{
    EmptyFolder(Root());
    folder_.reset();
}

void FolderTestCase::NameRows()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("plain") << QByteArray("plain");
    QTest::newRow("spaces") << QByteArray("  two words ");
    QTest::newRow("line feed") << QByteArray("\nfirst\n\nsecond");
    QTest::newRow("quotes") << QByteArray("'single' \"double\" `back`");
    QTest::newRow("backslash") << QByteArray("a\\b\\\\c\\");
    QTest::newRow("invalid UTF-8") << QByteArray("\xff\xfe\x80 \xc3\x28 \xed\xa0\x80");
    QTest::newRow("non-ASCII letters") << QByteArray("\xd0\xb8\xd0\xbc\xd1\x8f \xf0\x9f\x93\x81");
    QTest::newRow("decomposed letter") << QByteArray("e\xcc\x81");
    QTest::newRow("format place markers") << QByteArray("%1% %s %n %1 %20 %");
    QTest::newRow("URI delimiters") << QByteArray("a#b?c&d=e;f:g@h+i");
    QTest::newRow("characters invalid in URIs") << QByteArray("[a]{b}|c^d<e>f");
    QTest::newRow("shell patterns") << QByteArray("*?[a-z]$HOME~");
    QTest::newRow("hyphen") << QByteArray("-rf");
    QTest::newRow("control characters") << QByteArray("\x01\x1b[31m\t\r\x7f");
    QTest::newRow("longest name") << QByteArray(255, 'n');
    QTest::newRow("random suffix") << QByteArray("aXXXXXXb.XXXXXX");
    QTest::newRow("three dots") << QByteArray("...");
    QTest::newRow("dot and space") << QByteArray(". ");
    QTest::newRow("hidden") << QByteArray(".hidden");
}

QString FolderTestCase::PathAt(QByteArray const& name) const
{
    return QFile::decodeName(At(name.toStdString()).c_str());
}

void FolderTestCase::MakeTargets() const
{
    MakeFile(At("target"), 321);
    MakeLink(At("link-to-target"), "target");
    MakeLink(At("dangling"), "nowhere");
    MakeLink(At("ring1"), "ring2");
    MakeLink(At("ring2"), "ring1");
    MakeFolder(At("full"));
    MakeFile(At("full/file"), 1000);
    MakeLink(At("link-to-full"), "full");
    MakePipe(At("pipe"));
}

} // namespace Zelkor::Testing

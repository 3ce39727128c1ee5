#include <unit/files/TemporaryDirTestCase.h>

#include <support/sandbox/TemporaryFolders.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace Zelkor::Testing
{

void TemporaryDirTestCase::SetUp()
{
    FolderTestCase::SetUp();
    tmp_ = At(QStringLiteral("tmp"));
    own_ = tmp_ + QStringLiteral("/Studio/2/") + Name();
    application_ = QStringList{QStringLiteral("name=Studio"), QStringLiteral("version=2.5.1")};
    MakeFolder(tmp_);
    MakeFolder(At(QStringLiteral("outside/folder")));
    MakeFile(At(QStringLiteral("outside/canary")));
    MakeFile(At(QStringLiteral("outside/folder/canary")));
    QCoreApplication::setApplicationName(QStringLiteral("Studio"));
    QCoreApplication::setApplicationVersion(QStringLiteral("2.5.1"));
}

QString TemporaryDirTestCase::Sandbox() const
{
    return QFile::decodeName(Root().c_str());
}

QString TemporaryDirTestCase::Name()
{
    return QFileInfo(QCoreApplication::applicationFilePath()).completeBaseName();
}

Made TemporaryDirTestCase::MakeOne(QStringList const& steps) const
{
    Player player(tmp_, application_ + steps + QStringList(QStringLiteral("make")));
    Made made = player.HearMade();
    player.End();
    return made;
}

QString Outside(QString const& path)
{
    return path.section(QStringLiteral("/tmp/"), 0, -2) + QStringLiteral("/outside");
}

void MakeTree(QString const& path)
{
    MakeFolder(path + QStringLiteral("/a/b/.c"));
    MakeFile(path + QStringLiteral("/file"));
    MakeFile(path + QStringLiteral("/.hidden"));
    MakeFile(path + QStringLiteral("/a/b/.c/file"));
    MakeLink(path + QStringLiteral("/a/link"), Outside(path));
    MakeLink(path + QStringLiteral("/a/dangling"), QStringLiteral("nowhere"));
}

} // namespace Zelkor::Testing

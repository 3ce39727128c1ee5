#include <support/sandbox/TemporaryFolders.h>

#include <support/sandbox/Folders.h>

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <stdexcept>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace Zelkor::Testing
{
namespace
{

std::string Native(QString const& path)
{
    return QFile::encodeName(path).toStdString();
}

/// The path to make or change something at.
std::string Ours(QString const& path)
{
    QString const tmp = QDir::tempPath();
    bool const isOurs = path == tmp || path.startsWith(tmp + QLatin1Char('/'));
    Check(!tmp.isEmpty() && isOurs, QStringLiteral("not ours: ") + path);
    return Native(path);
}

} // namespace

void Check(bool done, QString const& what)
{
    if (!done) {
        throw std::runtime_error(what.toStdString());
    }
}

void MakeFolder(QString const& path)
{
    Ours(path);
    Check(QDir().mkpath(path), path);
}

void MakeFile(QString const& path)
{
    Ours(path);
    QFile file(path);
    Check(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write("content") > 0, path);
}

void MakeLink(QString const& path, QString const& target)
{
    MakeLink(Ours(path), Native(target));
}

void MakeHardLink(QString const& path, QString const& target)
{
    Check(link(Native(target).c_str(), Ours(path).c_str()) == 0, path);
}

void MakePipe(QString const& path)
{
    Check(mkfifo(Ours(path).c_str(), 0600) == 0, path);
}

void Chmod(QString const& path, mode_t mode)
{
    Chmod(Ours(path), mode);
}

void GiveTo(uid_t user, QString const& path)
{
    Check(lchown(Ours(path).c_str(), user, static_cast<gid_t>(-1)) == 0, path);
}

bool Exists(QString const& path)
{
    return Exists(Native(path));
}

QStringList Listing(QString const& folder)
{
    QStringList entries;
    QDirIterator found(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
    while (found.hasNext()) {
        QString const path = found.next();
        QString const target = found.fileInfo().isSymLink() ? found.fileInfo().symLinkTarget() : QString();
        entries += path.mid(folder.size()) + QStringLiteral(" -> ") + target;
    }
    entries.sort();
    return entries;
}

} // namespace Zelkor::Testing

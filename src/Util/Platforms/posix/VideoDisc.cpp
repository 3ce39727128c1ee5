#include <Util/Platforms/VideoDisc.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

#include <algorithm>

namespace Zelkor::Util
{

namespace
{

constexpr auto Entries = QDir::Dirs | QDir::Files | QDir::NoDotAndDotDot;

QString VideoFolder()
{
    return QStringLiteral("VIDEO_TS");
}

// Required behaviour: this function compares names case-sensitively, although VideoDiscLabel() accepts the name
// "VIDEO_TS" in upper or lower case.
bool BelongsToDisc(QString const& name)
{
    static QStringList const discFolders = {VideoFolder(), QStringLiteral("AUDIO_TS")};
    return name.startsWith(QLatin1Char('.')) || name == QLatin1String("Thumbs.db") || discFolders.contains(name);
}

} // namespace

std::vector<ioPath> VideoDiscsIn(QString const& volumes)
{
    std::vector<ioPath> discs;
    auto const entries = QDir(volumes).entryInfoList(Entries, QDir::Unsorted);
    for (QFileInfo const& entry : entries) {
        QString const root = entry.absoluteFilePath();
        if (QFileInfo(root + QLatin1Char('/') + VideoFolder()).isDir()) {
            discs.emplace_back(root.toStdString());
        }
    }
    return discs;
}

QString VideoDiscLabel(QString const& name, QStringList const& siblings, QString const& parentName)
{
    if (name.toUpper() != VideoFolder()) {
        return name;
    }
    return std::all_of(siblings.begin(), siblings.end(), BelongsToDisc) ? parentName : name;
}

QString VideoDiscLabel(QString const& path)
{
    QDir const folder(path);
    QDir const parent(QDir::cleanPath(folder.absoluteFilePath(QStringLiteral(".."))));
    return VideoDiscLabel(folder.dirName(), parent.entryList(Entries, QDir::Unsorted), parent.dirName());
}

} // namespace Zelkor::Util

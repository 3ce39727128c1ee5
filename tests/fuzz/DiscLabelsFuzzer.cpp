// Fuzzes the labels of video discs.

#include <fuzz/Fuzzing.h>
#include <support/sandbox/Folders.h>

#include <Util/MediaUtils.h>
#include <Util/Platforms/VideoDisc.h>

#include <QtCore/QFile>
#include <QtCore/QStringList>

using Zelkor::ioPath;
using Zelkor::Testing::EmptyFolder;
using Zelkor::Testing::Exists;
using Zelkor::Testing::FuzzFolder;
using Zelkor::Testing::FuzzInput;
using Zelkor::Testing::MakeFile;
using Zelkor::Testing::MakeFolders;
using Zelkor::Testing::RequireEqual;

namespace
{

/// Returns true if the upper-case form of \a name is "VIDEO_TS". The upper-case form of U+0131 is "I", and the
/// upper-case form of U+017F is "S".
bool IsVideoFolder(QString const& name)
{
    QString const accepted[] = {QStringLiteral("Vv"), QStringLiteral("Ii\u0131"), QStringLiteral("Dd"),
                                QStringLiteral("Ee"), QStringLiteral("Oo"),       QStringLiteral("_"),
                                QStringLiteral("Tt"), QStringLiteral("Ss\u017F")};
    return static_cast<std::size_t>(name.size()) == std::size(accepted) &&
           std::equal(name.begin(), name.end(), std::begin(accepted),
                      [](QChar character, QString const& characters) { return characters.contains(character); });
}

QString ExpectedLabel(QString const& name, QStringList const& siblings, QString const& parentName)
{
    QStringList const ofDisc = {QStringLiteral("VIDEO_TS"), QStringLiteral("AUDIO_TS"), QStringLiteral("Thumbs.db")};
    for (QString const& sibling : siblings) {
        if (!sibling.startsWith(QLatin1Char('.')) && !ofDisc.contains(sibling)) {
            return name;
        }
    }
    return IsVideoFolder(name) ? parentName : name;
}

bool IsFileName(QString const& name)
{
    return !name.isEmpty() && name != QLatin1String(".") && name != QLatin1String("..") &&
           !name.contains(QLatin1Char('/')) && !name.contains(QChar::Null) && name.toUtf8().size() <= 255;
}

/// Creates the folder \a parentName, which contains the folder \a name and the files \a siblings. Checks the labels of
/// both folders.
void CheckFolder(QString const& name, QStringList const& siblings, QString const& parentName)
{
    EmptyFolder(FuzzFolder());
    std::string const parent = FuzzFolder() + '/' + parentName.toStdString();
    std::string const path = parent + '/' + name.toStdString();
    MakeFolders(path);
    for (QString const& sibling : siblings) {
        std::string const siblingPath = parent + '/' + sibling.toStdString();
        if (!Exists(siblingPath)) {
            MakeFile(siblingPath);
        }
    }
    std::string const expected = ExpectedLabel(name, siblings + QStringList(name), parentName).toStdString();
    RequireEqual(Zelkor::Util::DVDLabel(ioPath(path)), expected, "label of a path");
    RequireEqual(Zelkor::Util::DVDLabel(ioPath(path + '/')), expected, "label of a path that ends with a separator");
    RequireEqual(Zelkor::Util::DVDLabel(ioPath(parent)), parentName.toStdString(), "label of the parent folder");
}

} // namespace

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    constexpr int MaximumSiblings = 8;

    FuzzInput input(data, size);
    QString const name = QString::fromStdString(input.Line());
    QString const parentName = QString::fromStdString(input.Line());
    QStringList siblings;
    while (!input.AtEnd() && siblings.size() < MaximumSiblings) {
        siblings += QString::fromStdString(input.Line());
    }

    RequireEqual(Zelkor::Util::VideoDiscLabel(name, siblings, parentName), ExpectedLabel(name, siblings, parentName),
                 "label");
    if (IsFileName(name) && IsFileName(parentName) && std::all_of(siblings.begin(), siblings.end(), IsFileName) &&
        !IsVideoFolder(parentName)) {
        CheckFolder(name, siblings, parentName);
    }
    return 0;
}

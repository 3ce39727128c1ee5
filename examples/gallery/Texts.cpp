#include "Texts.h"

#include <Util/StringUtils.h>
#include <Util/UnitsAndMeasures.h>

#include <boost/system/error_code.hpp>

#include <QtCore/QCoreApplication>

#include <algorithm>

namespace Zelkor::Gallery
{
namespace
{

struct Text
{
    Q_DECLARE_TR_FUNCTIONS(Gallery)
};

QString Escaped(QChar character)
{
    switch (character.unicode()) {
    case '\n':
        return QStringLiteral("\\n");
    case '\r':
        return QStringLiteral("\\r");
    case '\t':
        return QStringLiteral("\\t");
    default:
        return QStringLiteral("\\x%1").arg(character.unicode(), 2, 16, QLatin1Char('0'));
    }
}

bool BreaksLine(QChar character)
{
    return character.category() == QChar::Other_Control || character.category() == QChar::Separator_Line ||
           character.category() == QChar::Separator_Paragraph;
}

} // namespace

QString OneLineText(QString const& text)
{
    QString line;
    for (QChar const character : text) {
        line += BreaksLine(character) ? Escaped(character) : QString(character);
    }
    return line;
}

QString PathText(ioPath const& path)
{
    return OneLineText(Util::Utf8ToQString(path.utf8string()));
}

QString NameText(FolderEntry const& entry)
{
    return PathText(entry.path.filename());
}

QString StateText(FolderEntry const& entry)
{
    switch (entry.state) {
    case EntryState::Waiting:
        return Text::tr("Waiting");
    case EntryState::Measuring:
        return Text::tr("Measuring…");
    case EntryState::Cancelled:
        return Text::tr("Cancelled");
    case EntryState::WithoutSize:
        return entry.kind == EntryKind::LinkToFolder ? Text::tr("Link to a folder: no size")
                                                     : Text::tr("Could not be measured");
    case EntryState::Measured:
        break;
    }
    return entry.unmeasured.empty() ? QString() : UnmeasuredText(entry.unmeasured.size());
}

// The gallery has no translations. Without a translation, tr() with "%n" would return "1 entries", so this function
// handles the singular itself.
QString EntriesText(int count)
{
    return count == 1 ? Text::tr("1 entry") : Text::tr("%n entries", nullptr, count);
}

QString UnmeasuredText(std::size_t count)
{
    return count == 1 ? Text::tr("1 entry could not be measured")
                      : Text::tr("%n entries could not be measured", nullptr, static_cast<int>(count));
}

QString PathListText(std::vector<ioPath> const& paths, std::size_t limit)
{
    QString text;
    std::size_t const shown = std::min(paths.size(), limit);
    std::for_each_n(paths.begin(), shown, [&text](ioPath const& path) { text += PathText(path) + QLatin1Char('\n'); });
    if (shown < paths.size()) {
        text += Text::tr("... and %n more", nullptr, static_cast<int>(paths.size() - shown)) + QLatin1Char('\n');
    }
    text.chop(1);
    return text;
}

QString SizeText(unsigned long long bytes)
{
    return Util::FormatFileSize(bytes, -1, Util::B, Util::Kilo1000);
}

QString TimeText(long long microseconds)
{
    constexpr long long minute = 60000000;
    QString const duration = Util::FormatDuration(microseconds, false);
    return microseconds < minute ? Text::tr("%1 s").arg(duration) : duration;
}

QString UnreadableFolderText(ioPath const& folder, boost::system::error_code const& error)
{
    namespace errc = boost::system::errc;
    if (error == errc::no_such_file_or_directory) {
        return Text::tr("The folder “%1” does not exist.").arg(PathText(folder));
    }
    if (error == errc::not_a_directory) {
        return Text::tr("“%1” is not a folder.").arg(PathText(folder));
    }
    if (error == errc::permission_denied) {
        return Text::tr("You have no permission to read the folder “%1”.").arg(PathText(folder));
    }
    return UnreadableFolderText(folder, QString::fromLocal8Bit(error.message().c_str()));
}

QString UnreadableFolderText(ioPath const& folder, QString const& reason)
{
    return Text::tr("The folder “%1” cannot be read: %2.").arg(PathText(folder), reason);
}

} // namespace Zelkor::Gallery

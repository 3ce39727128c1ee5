#pragma once

/// \file
/// Functions that create the texts for both the window and the terminal report.

#include "FolderEntry.h"

#include <Base/IoPath.h>

#include <boost/system/error_code.hpp>

#include <QtCore/QString>

#include <string>
#include <vector>

namespace Zelkor
{
namespace Gallery
{

/// Returns \a text as one line. Control characters, line separators and paragraph separators are replaced by escape
/// sequences such as `\n` and `\x07`.
QString OneLineText(QString const& text);

/// Converts \a path to a string and then to one line with OneLineText(). Replaces bytes that are not valid UTF-8 by
/// U+FFFD.
QString PathText(ioPath const& path);

/// Returns the file name of \a entry, converted by PathText().
QString NameText(FolderEntry const& entry);

/// Returns a text that describes the state of \a entry. If \a entry and all paths below it have been measured, returns
/// an empty string. If some of these paths could not be measured, returns UnmeasuredText() for their number.
QString StateText(FolderEntry const& entry);

/// Returns a string such as "348 entries" for the number \a count.
QString EntriesText(int count);

/// Returns a string such as "3 entries could not be measured" for the number \a count.
QString UnmeasuredText(std::size_t count);

/// Returns a string with one line for each path in \a paths. If there are more than \a limit paths, only the first
/// \a limit paths are included, and the last line contains the number of omitted paths.
QString PathListText(std::vector<ioPath> const& paths, std::size_t limit);

/// Returns \a bytes as a size with a unit.
QString SizeText(unsigned long long bytes);

/// Formats the duration \a microseconds with millisecond precision.
QString TimeText(long long microseconds);

/// Returns a message for the user that \a folder cannot be read. The message contains the reason \a error.
QString UnreadableFolderText(ioPath const& folder, boost::system::error_code const& error);
/// \overload
/// Includes the string \a reason in the message instead of an error code.
QString UnreadableFolderText(ioPath const& folder, QString const& reason);

} // namespace Gallery
} // namespace Zelkor

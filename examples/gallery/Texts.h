#pragma once

/// \file
/// Texts shared by the window and the terminal report.

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

/// Returns \a text on one line. Control characters and line separators are escaped as in a C string.
QString OneLineText(QString const& text);

/// Returns \a path as OneLineText(). Bytes that are not valid UTF-8 become U+FFFD.
QString PathText(ioPath const& path);

/// Returns the file name of \a entry as PathText().
QString NameText(FolderEntry const& entry);

/// Returns the state of \a entry. If it is measured, returns the number of paths that could not be measured, or an
/// empty string if there are none.
QString StateText(FolderEntry const& entry);

/// Returns \a count with its noun: "348 entries".
QString EntriesText(int count);

/// Returns \a count in a sentence: "3 entries could not be measured".
QString UnmeasuredText(std::size_t count);

/// Returns the first \a limit of \a paths, one in each line, and then a line with the number of the others.
QString PathListText(std::vector<ioPath> const& paths, std::size_t limit);

/// Returns \a bytes as a size with a unit.
QString SizeText(unsigned long long bytes);

/// Returns \a microseconds as a duration, precise to milliseconds.
QString TimeText(long long microseconds);

/// Returns a message for the user that \a folder cannot be read because of \a error.
QString UnreadableFolderText(ioPath const& folder, boost::system::error_code const& error);
/// \overload
/// \a reason is a text that the message includes.
QString UnreadableFolderText(ioPath const& folder, QString const& reason);

} // namespace Gallery
} // namespace Zelkor

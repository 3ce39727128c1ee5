#pragma once

/// \file
/// The texts that the window and the terminal report have in common.

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

/// \a text on one line and without control characters, which are written as in a C string.
QString OneLineText(QString const& text);

/// \a path on one line and without control characters, which are written as in a C string; bytes that are no text
/// become U+FFFD.
QString PathText(ioPath const& path);

/// The name of \a entry, as PathText().
QString NameText(FolderEntry const& entry);

/// What there is to say about \a entry: a state other than measured, or what could not be measured. Else empty.
QString StateText(FolderEntry const& entry);

/// "348 entries".
QString EntriesText(int count);

/// "3 entries could not be measured".
QString UnmeasuredText(std::size_t count);

/// \a paths, one a line, in order, the first \a limit of them; then how many more there are.
QString PathListText(std::vector<ioPath> const& paths, std::size_t limit);

/// \a bytes as people read it.
QString SizeText(unsigned long long bytes);

/// \a microseconds as people read them, to the millisecond.
QString TimeText(long long microseconds);

/// Why \a folder could not be read.
QString UnreadableFolderText(ioPath const& folder, boost::system::error_code const& error);
QString UnreadableFolderText(ioPath const& folder, QString const& reason);

} // namespace Gallery
} // namespace Zelkor

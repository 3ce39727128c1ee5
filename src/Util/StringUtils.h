#pragma once

/// \file
/// UTF-8 text between Qt and the standard library.

#include <Util/Export.h>

#include <QtCore/QString>

#include <string>

namespace Zelkor
{
namespace Util
{

/// The UTF-8 text \a utf8 up to its first NUL byte; bytes that are no UTF-8 become U+FFFD. Any thread.
ZQTUTIL_EXPORT QString Utf8ToQString(std::string const& utf8);

/// \a text in UTF-8 up to its first U+0000. Any thread.
ZQTUTIL_EXPORT std::string QStringToUtf8(QString const& text);

} // namespace Util
} // namespace Zelkor

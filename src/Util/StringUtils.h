#pragma once

/// \file
/// Conversions of UTF-8 text between Qt and the standard library. Any thread.

#include <Util/Export.h>

#include <QtCore/QString>

#include <string>

namespace Zelkor
{
namespace Util
{

/// Converts \a utf8 up to its first NUL byte. Bytes that are not valid UTF-8 become U+FFFD.
ZQTUTIL_EXPORT QString Utf8ToQString(std::string const& utf8);

/// Returns \a text as UTF-8, up to its first U+0000.
ZQTUTIL_EXPORT std::string QStringToUtf8(QString const& text);

} // namespace Util
} // namespace Zelkor

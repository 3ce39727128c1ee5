#pragma once

/// \file
/// Conversions of UTF-8 text between Qt and the standard library. All functions in this file may be called on any
/// thread.

#include <Util/Export.h>

#include <QtCore/QString>

#include <string>

namespace Zelkor
{
namespace Util
{

/// Converts \a utf8 to a `QString`. The conversion stops before the first NUL byte. Bytes that are not valid UTF-8
/// become U+FFFD.
ZQTUTIL_EXPORT QString Utf8ToQString(std::string const& utf8);

/// Converts \a text to UTF-8. The conversion stops before the first character U+0000.
ZQTUTIL_EXPORT std::string QStringToUtf8(QString const& text);

} // namespace Util
} // namespace Zelkor

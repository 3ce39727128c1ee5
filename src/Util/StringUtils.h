#pragma once

/// \file
/// Conversions of UTF-8 text between Qt and the standard library. These functions may be called on any thread.

#include <Util/Export.h>

#include <QtCore/QString>

#include <string>

namespace Zelkor
{
namespace Util
{

/// Returns the part of \a utf8 before its first NUL byte as a `QString`. Bytes that are not valid UTF-8 become U+FFFD.
ZQTUTIL_EXPORT QString Utf8ToQString(std::string const& utf8);

/// Returns the part of \a text before its first U+0000 as UTF-8.
ZQTUTIL_EXPORT std::string QStringToUtf8(QString const& text);

} // namespace Util
} // namespace Zelkor

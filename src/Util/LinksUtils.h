#pragma once

/// \file
/// The application's choice between "http://" and "https://" for the links that it shows.

#include <Util/Export.h>

#include <QtCore/QString>

namespace Zelkor
{
namespace Util
{

/// Sets whether links use TLS, for the whole process; true until the first call. Any thread.
ZQTUTIL_EXPORT void SetDefaultSslUsage(bool use);

/// Whether links use TLS. Any thread.
ZQTUTIL_EXPORT bool GetDefaultSslUsage();

/// \a url with the scheme that the application chose: every "http://" in it, in capitals or not, becomes "https://"
/// while links use TLS, and the other way round while they do not. Any thread.
ZQTUTIL_EXPORT QString ReplaceUrlProtocol(QString url);

} // namespace Util
} // namespace Zelkor

#pragma once

/// \file
/// A process-wide setting that selects "http://" or "https://" for links. Any thread.

#include <Util/Export.h>

#include <QtCore/QString>

namespace Zelkor
{
namespace Util
{

/// Sets whether links use TLS in this process. The default is true.
ZQTUTIL_EXPORT void SetDefaultSslUsage(bool use);

/// Returns true if links use TLS.
ZQTUTIL_EXPORT bool GetDefaultSslUsage();

/// Returns \a url with the scheme that SetDefaultSslUsage() selects.
///
/// If links use TLS, replaces every "http://" in \a url with "https://". Otherwise replaces every "https://" with
/// "http://". The search is case-insensitive, and the new scheme is in lower case.
ZQTUTIL_EXPORT QString ReplaceUrlProtocol(QString url);

} // namespace Util
} // namespace Zelkor

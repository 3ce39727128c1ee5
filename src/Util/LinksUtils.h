#pragma once

/// \file
/// A process-wide setting that selects "http://" or "https://" for links. These functions may be called on any thread.

#include <Util/Export.h>

#include <QtCore/QString>

namespace Zelkor
{
namespace Util
{

/// Selects the scheme of links in this process: "https://" if \a use is true, otherwise "http://". The default is true.
ZQTUTIL_EXPORT void SetDefaultSslUsage(bool use);

/// Returns true if links in this process use "https://".
ZQTUTIL_EXPORT bool GetDefaultSslUsage();

/// Returns \a url with the scheme that SetDefaultSslUsage() selects.
///
/// If GetDefaultSslUsage() is true, replaces every "http://" in \a url with "https://". Otherwise replaces every
/// "https://" with "http://". The search is case-insensitive, and the new scheme is in lower case.
ZQTUTIL_EXPORT QString ReplaceUrlProtocol(QString url);

} // namespace Util
} // namespace Zelkor

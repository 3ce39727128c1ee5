#pragma once

/// \file
/// A process-wide setting that selects "http://" or "https://" for links. All functions in this file may be called on
/// any thread.

#include <Util/Export.h>

#include <QtCore/QString>

namespace Zelkor
{
namespace Util
{

/// Selects the scheme that ReplaceUrlProtocol() writes: "https://" if \a use is true, otherwise "http://". The setting
/// applies to the whole process and is initially true.
ZQTUTIL_EXPORT void SetDefaultSslUsage(bool use);

/// Returns true if ReplaceUrlProtocol() writes "https://", or false if it writes "http://".
ZQTUTIL_EXPORT bool GetDefaultSslUsage();

/// Returns \a url with the scheme that was selected with SetDefaultSslUsage().
///
/// If GetDefaultSslUsage() is true, replaces every "http://" in \a url with "https://". Otherwise replaces every
/// "https://" with "http://". The search is case-insensitive, and the new scheme is in lower case.
ZQTUTIL_EXPORT QString ReplaceUrlProtocol(QString url);

} // namespace Util
} // namespace Zelkor

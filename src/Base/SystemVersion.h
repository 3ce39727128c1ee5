#pragma once

/// \file
/// The version of the operating system.

#include <Base/Export.h>
#include <Base/Version.h>

namespace Zelkor
{
namespace Core
{

/// Returns the version of the operating system, for example 10.13.6, or 0.0 if it is not available.
///
/// On macOS, the result is "ProductVersion" of the system's SystemVersion.plist. On Linux, the result is VERSION_ID of
/// os-release(5), read through QSysInfo. May be called on any thread. Does not throw or log.
ZQTUTIL_EXPORT Version GetSystemVersion();

} // namespace Core
} // namespace Zelkor

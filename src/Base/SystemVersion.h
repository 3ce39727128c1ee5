#pragma once

/// \file
/// The version of the running system.

#include <Base/Export.h>
#include <Base/Version.h>

namespace Zelkor
{
namespace Core
{

/// The version of the operating system, such as 10.13.6; 0.0 when the system does not say. Any thread.
ZQTUTIL_EXPORT Version GetSystemVersion();

} // namespace Core
} // namespace Zelkor

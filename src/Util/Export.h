#pragma once

/// \file
/// The export macro `ZQTUTIL_EXPORT`. It marks the classes and functions that the library exports.

#include <Base/Export.h>

#pragma once

/// \file
/// The export macro, `ZQTUTIL_EXPORT`: a class or function that carries it is part of the library's interface.

#include <Base/Export.h>

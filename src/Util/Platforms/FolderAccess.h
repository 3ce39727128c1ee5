#pragma once

// Checks the permissions of a folder. Private to the library.

#include <QtCore/QString>

namespace Zelkor
{
namespace Util
{

/// Returns true if the permission bits of \a folder let this process create files in \a folder. The documentation of
/// CanCreateFileIn() describes the exact rule.
bool MayCreateFileIn(QString const& folder);

} // namespace Util
} // namespace Zelkor

#pragma once

// Checks the owner and the permissions of a folder. Private to the library.

#include <QtCore/QString>

namespace Zelkor
{
namespace Util
{

/// Returns true if the permission bits of \a folder let this process create files in \a folder. The documentation of
/// CanCreateFileIn() describes the exact rule.
bool MayCreateFileIn(QString const& folder);

/// Returns true if \a path is a folder that the effective user owns. Returns false if \a path is a link to a folder.
bool IsOwnFolder(QString const& path);

} // namespace Util
} // namespace Zelkor

#pragma once

// Questions about the owner and the permissions of a directory. Private to the library.

#include <QtCore/QString>

namespace Zelkor
{
namespace Util
{

/// Returns true if the permission bits of \a folder let this process create files in it: for everybody, for a group of
/// the process, or for the owner, who must be the effective user. See CanCreateFileIn().
bool MayCreateFileIn(QString const& folder);

/// Returns true if \a path is a directory, not a link to one, that belongs to the effective user.
bool IsOwnFolder(QString const& path);

} // namespace Util
} // namespace Zelkor

#pragma once

// Whose a folder is. Implemented beside the other questions of access. Private to the library.

#include <QtCore/QString>

namespace Zelkor
{
namespace Util
{

/// Whether \a path is a folder, not a link to one, that belongs to the user whom the process acts for.
bool IsOwnFolder(QString const& path);

} // namespace Util
} // namespace Zelkor

#pragma once

#include <string>

namespace Zelkor
{
namespace Util
{

/// Removes everything in the folder \a name, but not the folder itself. Links are removed, but not followed. Entries
/// that cannot be removed are skipped.
///
/// \param parent  the file descriptor of the folder that contains the folder
/// \param name    the name of the folder, or "." for \a parent itself; nothing is removed if it is the name of a link
void RemoveContents(int parent, std::string const& name);

} // namespace Util
} // namespace Zelkor

#pragma once

// Emptying folders of what is old, on every system. Private to the library.

#include <string>

namespace Zelkor
{
namespace Util
{

/// Removes what is in the folder \a path and was last modified at \a newest (milliseconds since 1970, UTC) or before.
/// A folder as old is emptied in the same way, and removed when nothing is left in it; a newer one is not entered.
/// Links are removed, not followed; a link at \a path is not entered either. Failures are passed over.
void RemoveAgedFiles(std::string const& path, long long newest);

} // namespace Util
} // namespace Zelkor

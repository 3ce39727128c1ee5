#pragma once

/// \file
/// Versions between Qt text and `Core::Version`, and as users see them. Any thread; nothing is thrown or logged.

#include <Base/Version.h>
#include <Util/Export.h>

#include <QtCore/QString>

namespace Zelkor
{
namespace Util
{

/// Reads a version from \a text, whose numbers stand between \a separator; see Core::Util::VersionFromString().
ZQTUTIL_EXPORT Core::Version VersionFromString(QString const& text, QString const& separator);

/// Writes the first components of \a version joined by \a separator; see Core::Util::VersionToString().
ZQTUTIL_EXPORT QString VersionToString(Core::Version const& version, Core::Util::VersionToStringDetail detail,
                                       QString const& separator);

/// \a version as users see it: "3.1", or "3.1.2" when the third component is given and not 0. Never the build number.
ZQTUTIL_EXPORT QString GenerateApplicationVisibleVersion(Core::Version const& version);

} // namespace Util
} // namespace Zelkor

#pragma once

/// \file
/// Conversions between `QString` and `Core::Version`, and the version text for users. These functions may be called on
/// any thread. They do not throw or log.

#include <Base/Version.h>
#include <Util/Export.h>

#include <QtCore/QString>

namespace Zelkor
{
namespace Util
{

/// Reads a version from \a text: decimal numbers with \a separator between them. See Core::Util::VersionFromString().
ZQTUTIL_EXPORT Core::Version VersionFromString(QString const& text, QString const& separator);

/// Returns the first components of \a version as text, joined by \a separator. \a detail is the maximum number of
/// components. See Core::Util::VersionToString().
ZQTUTIL_EXPORT QString VersionToString(Core::Version const& version, Core::Util::VersionToStringDetail detail,
                                       QString const& separator);

/// Returns the text of \a version for users: major and minor number, for example "3.1".
///
/// Appends the third component, for example "3.1.2", unless it is 0 or Core::Version::NotGiven. The text never contains
/// the build number.
ZQTUTIL_EXPORT QString GenerateApplicationVisibleVersion(Core::Version const& version);

} // namespace Util
} // namespace Zelkor

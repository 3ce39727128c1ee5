#pragma once

/// \file
/// Functions that parse and format versions. All functions in this file may be called on any thread. They do not throw
/// exceptions and do not log.

#include <Base/Version.h>
#include <Util/Export.h>

#include <QtCore/QString>

namespace Zelkor
{
namespace Util
{

/// Parses a version from \a text, which consists of decimal numbers with \a separator between them. Each number must be
/// less than 2^32. See Core::Util::VersionFromString().
ZQTUTIL_EXPORT Core::Version VersionFromString(QString const& text, QString const& separator);

/// Returns a string with the first components of \a version, joined by \a separator. \a detail is the maximum number of
/// components; if its value is 0 or negative, the result is empty. See Core::Util::VersionToString().
ZQTUTIL_EXPORT QString VersionToString(Core::Version const& version, Core::Util::VersionToStringDetail detail,
                                       QString const& separator);

/// Formats \a version for users. The result consists of the major and the minor number, for example "3.1".
///
/// If the third component is neither 0 nor Core::Version::NotGiven, the result also contains this component, for
/// example "3.1.2". The result never contains the build number.
ZQTUTIL_EXPORT QString GenerateApplicationVisibleVersion(Core::Version const& version);

} // namespace Util
} // namespace Zelkor

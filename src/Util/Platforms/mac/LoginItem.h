#pragma once

// Functions that compute names and paths for login items. They do not use the macOS API, so that they can be tested on
// every platform.

#include <QtCore/QString>

namespace Zelkor::Util
{

/// Splits \a bundleIdentifier at the dots and returns the part at \a index, counted from 0. Returns an empty string if
/// there are fewer than three parts, or if \a index is out of range.
QString BundleIdentifierPart(QString const& bundleIdentifier, int index);

/// If \a version contains fewer than two dots, returns \a version with ".0" appended. Otherwise returns \a version
/// unchanged.
QString CompletedBundleVersion(QString const& version);

/// If \a product ends with the major version number of \a version, returns \a product without any occurrence of this
/// number. Otherwise returns \a product unchanged.
QString ProductWithoutMajorVersion(QString const& product, QString const& version);

/// Returns the path of the application bundle that contains the login item at \a itemPath. Both paths end with "/".
/// Returns an empty string if \a itemPath has too few folders to be the path of a login item.
QString MainBundlePathOf(QString const& itemPath);

/// Converts the text of a file URL to a path by removing "file://localhost" or "file://". File URLs begin with
/// "file://localhost" before OS X 10.9, and with "file://" since OS X 10.9.
///
/// \param url             the text of the URL
/// \param namesLocalhost  true to remove "file://localhost"; false to remove "file://"
QString PathOfUrlText(QString const& url, bool namesLocalhost);

/// Returns the fourth part of the application identifier \a identifier, whose parts are separated by underscores. This
/// part is called the flavour. The helper application's bundle identifier contains the flavour as its third part.
/// Returns an empty string if \a identifier has fewer than four parts.
QString HelperProductOf(QString const& identifier);

} // namespace Zelkor::Util

#pragma once

// Names and paths of login items. These functions do not access the system, so they are tested on every platform.

#include <QtCore/QString>

namespace Zelkor::Util
{

/// Returns the part of \a bundleIdentifier at \a index, counted from 0. Parts are separated by dots. Returns an empty
/// text if \a bundleIdentifier has fewer than three parts.
QString BundleIdentifierPart(QString const& bundleIdentifier, int index);

/// Returns \a version with ".0" appended if it contains fewer than two dots.
QString CompletedBundleVersion(QString const& version);

/// If \a product ends with the major number of \a version, returns \a product without any occurrence of that number.
/// Otherwise returns \a product unchanged.
QString ProductWithoutMajorVersion(QString const& product, QString const& version);

/// Returns the path of the application bundle that contains the login item at \a itemPath. Both paths end with "/".
/// Returns an empty text if \a itemPath has too few folders.
QString MainBundlePathOf(QString const& itemPath);

/// Converts the text of a file URL to a path by removing its scheme and host.
///
/// \param url             the text of the URL
/// \param namesLocalhost  true to remove "file://localhost", with which file URLs begin before OS X 10.9; false to
///                        remove "file://"
QString PathOfUrlText(QString const& url, bool namesLocalhost);

/// Returns the fourth part of \a identifier, the identifier of an application. This part is the product name of the
/// helper. Returns an empty text if \a identifier has fewer than four parts.
QString HelperProductOf(QString const& identifier);

} // namespace Zelkor::Util

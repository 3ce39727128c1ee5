#pragma once

// Names and paths of login items. These functions do not access the system, so they are tested on every platform.

#include <QtCore/QString>

namespace Zelkor::Util
{

/// Returns the part of \a bundleIdentifier at \a index, counted from 0. Parts are separated by dots. Returns an empty
/// text if there are fewer than three parts.
QString BundleIdentifierPart(QString const& bundleIdentifier, int index);

/// Returns \a version with ".0" appended if it contains fewer than two dots.
QString CompletedBundleVersion(QString const& version);

/// If \a product ends with the major number of \a version, removes every occurrence of that number from \a product.
/// Otherwise returns \a product unchanged.
QString ProductWithoutMajorVersion(QString const& product, QString const& version);

/// Returns the path of the application bundle that contains the login item at \a itemPath. Both paths end with "/".
/// Returns an empty text if \a itemPath has too few folders.
QString MainBundlePathOf(QString const& itemPath);

/// Converts the text of a file URL to a path by removing its scheme and host.
///
/// \param url             the text of the URL
/// \param namesLocalhost  true to remove "file://localhost", the form that systems before 10.9 return; false to remove
///                        "file://"
QString PathOfUrlText(QString const& url, bool namesLocalhost);

/// Returns the fourth part of an application's \a identifier, which names the helper. Returns an empty text if there is
/// none.
QString HelperProductOf(QString const& identifier);

} // namespace Zelkor::Util

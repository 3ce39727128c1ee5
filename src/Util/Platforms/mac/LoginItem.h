#pragma once

// How login items are named: what is decided without asking the system.

#include <QtCore/QString>

namespace Zelkor::Util
{

/// The part of a bundle identifier at \a index, counted from 0; empty when the identifier has fewer than three parts.
QString BundleIdentifierPart(QString const& bundleIdentifier, int index);

/// \a version with ".0" at its end, unless it has two dots already.
QString CompletedBundleVersion(QString const& version);

/// \a product without the first number of \a version, wherever it stands, if it ends with it.
QString ProductWithoutMajorVersion(QString const& product, QString const& version);

/// The folder of the application whose bundle carries the login item at \a itemPath, a folder's path with "/" at its
/// end; so has the result. Empty when the path is too short.
QString MainBundlePathOf(QString const& itemPath);

/// The text of a file's URL as a path. Systems before 10.9 name the host: \a namesLocalhost.
QString PathOfUrlText(QString const& url, bool namesLocalhost);

/// The fourth part of an application's identifier, which names the helper; empty when there is none.
QString HelperProductOf(QString const& identifier);

} // namespace Zelkor::Util

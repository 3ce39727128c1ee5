#pragma once

// Recognises video discs by their folders and determines their labels. Private to the library.

#include <Base/IoPath.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <vector>

namespace Zelkor::Util
{

/// Returns the absolute paths of the mounted video DVDs. \a volumes is the folder that contains the mounted volumes.
/// The paths are in the order in which the system lists the entries of this folder.
std::vector<ioPath> VideoDiscsIn(QString const& volumes);

/// Returns the label of the DVD folder \a name. The documentation of DVDLabel() describes the rule.
///
/// \param name        the name of the folder
/// \param siblings    the names of all entries of the parent folder, including \a name
/// \param parentName  the name of the parent folder
QString VideoDiscLabel(QString const& name, QStringList const& siblings, QString const& parentName);

/// Returns the label of the DVD folder \a path. The documentation of DVDLabel() describes the rule. A parent folder
/// that cannot be read is treated as an empty folder.
QString VideoDiscLabel(QString const& path);

} // namespace Zelkor::Util

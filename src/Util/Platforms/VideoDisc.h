#pragma once

// Recognises video discs by their folders and determines their labels. Private to the library.

#include <Base/IoPath.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <vector>

namespace Zelkor::Util
{

/// Returns the absolute paths of the video DVDs in \a volumes, a folder of mounted volumes. The result is in the order
/// in which the system lists the folder \a volumes.
std::vector<ioPath> VideoDiscsIn(QString const& volumes);

/// Returns the label of the folder \a name. See DVDLabel() for the rule.
///
/// \param name        the name of the folder
/// \param siblings    the names of all entries of the parent folder, including \a name
/// \param parentName  the name of the parent folder
QString VideoDiscLabel(QString const& name, QStringList const& siblings, QString const& parentName);

/// Returns the label of the folder \a path. See DVDLabel() for the rule. A parent folder that cannot be read counts as
/// empty.
QString VideoDiscLabel(QString const& path);

} // namespace Zelkor::Util

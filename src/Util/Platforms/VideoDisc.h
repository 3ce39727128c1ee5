#pragma once

// How video discs are told and named, on every system. Private to the library.

#include <Base/IoPath.h>

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <vector>

namespace Zelkor::Util
{

/// The entries of \a volumes, a folder of mounted volumes, that hold a video DVD, in the order of the folder.
std::vector<ioPath> VideoDiscsIn(QString const& volumes);

/// The label of a folder \a name that stands with \a siblings, itself included, in the folder \a parentName.
QString VideoDiscLabel(QString const& name, QStringList const& siblings, QString const& parentName);

/// The label of the folder \a path. A folder around it that cannot be read has nothing else in it.
QString VideoDiscLabel(QString const& path);

} // namespace Zelkor::Util

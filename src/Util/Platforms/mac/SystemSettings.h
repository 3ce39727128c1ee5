#pragma once

// What differs between a Mac and the systems that stand in for one when the sources of this folder are built elsewhere.

#include <QtCore/QSettings>

namespace Zelkor::Util
{

/// Property lists, as QSettings reads and writes them.
#ifdef __APPLE__
inline QSettings::Format PropertyListFormat()
{
    return QSettings::NativeFormat;
}
#else
QSettings::Format PropertyListFormat();
#endif

} // namespace Zelkor::Util

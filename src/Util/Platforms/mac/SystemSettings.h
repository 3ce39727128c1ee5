#pragma once

// The QSettings format for property lists. The tests on other systems also compile the sources of this folder. On these
// systems, the test code defines PropertyListFormat().

#include <QtCore/QSettings>

namespace Zelkor::Util
{

/// Returns the QSettings format that reads and writes property lists.
#ifdef __APPLE__
inline QSettings::Format PropertyListFormat()
{
    return QSettings::NativeFormat;
}
#else
QSettings::Format PropertyListFormat();
#endif

} // namespace Zelkor::Util

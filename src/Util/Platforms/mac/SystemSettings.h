#pragma once

// The QSettings format for property lists. Tests on other systems also build the sources of this folder; there, the
// test environment defines PropertyListFormat().

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

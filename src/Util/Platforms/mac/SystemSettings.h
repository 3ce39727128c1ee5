#pragma once

// The QSettings format for property lists. QSettings supports property lists only on macOS. The tests compile the macOS
// sources on other systems too, and define PropertyListFormat() there.

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

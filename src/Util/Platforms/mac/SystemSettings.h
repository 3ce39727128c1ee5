#pragma once

// The QSettings format for property lists. On macOS, QSettings supports property lists. The tests also compile the
// macOS sources on other systems; the test code then defines PropertyListFormat().

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

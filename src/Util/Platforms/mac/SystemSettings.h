#pragma once

// The settings format for property lists. On other systems than macOS, where the tests build the sources of this
// folder, the test environment defines it.

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

#include <Base/SystemVersion.h>

#include <QtCore/QString>
#include <QtCore/QSysInfo>

namespace Zelkor::Core
{

Version GetSystemVersion()
{
    // QSysInfo::productVersion() returns the value of VERSION_ID in os-release(5), or "unknown" if VERSION_ID is
    // missing. VersionFromString() converts "unknown" to 0.0.
    return Util::VersionFromString(QSysInfo::productVersion().toStdString(), ".");
}

} // namespace Zelkor::Core

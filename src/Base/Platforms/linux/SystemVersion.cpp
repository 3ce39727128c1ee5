#include <Base/SystemVersion.h>

#include <QtCore/QString>
#include <QtCore/QSysInfo>

namespace Zelkor::Core
{

Version GetSystemVersion()
{
    // Qt reads VERSION_ID of os-release(5), and returns "unknown" if there is none.
    return Util::VersionFromString(QSysInfo::productVersion().toStdString(), ".");
}

} // namespace Zelkor::Core

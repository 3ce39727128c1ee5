#include <Base/SystemVersion.h>

#include <QtCore/QString>
#include <QtCore/QSysInfo>

namespace Zelkor::Core
{

Version GetSystemVersion()
{
    // Qt reads VERSION_ID of os-release(5). It returns "unknown" if there is none, which is parsed as 0.0.
    return Util::VersionFromString(QSysInfo::productVersion().toStdString(), ".");
}

} // namespace Zelkor::Core

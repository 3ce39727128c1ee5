// Implements the availability checks of Objective-C++ and C++, and the version methods of NSProcessInfo. All of them
// use the simulated system version.

#include "State.h"

#include <QtCore/QVersionNumber>

#import <Foundation/Foundation.h>

using Zelkor::TestBed::TheState;

namespace
{

QVersionNumber SystemVersion()
{
    return QVersionNumber::fromString(TheState().systemVersion).normalized();
}

} // namespace

bool ZBSystemIsAtLeast(char const* version)
{
    QString const text = QString::fromLatin1(version);
    QString const platform = text.section(QLatin1Char(' '), 0, 0);
    if (platform != QLatin1String("macOS")) {
        return true;
    }
    return SystemVersion() >= QVersionNumber::fromString(text.mid(platform.size() + 1)).normalized();
}

@implementation NSProcessInfo (OperatingSystemVersion)
- (NSOperatingSystemVersion)operatingSystemVersion
{
    QVersionNumber const version = SystemVersion();
    return {version.majorVersion(), version.minorVersion(), version.microVersion()};
}

- (BOOL)isOperatingSystemAtLeastVersion:(NSOperatingSystemVersion)version
{
    QVersionNumber const least(int(version.majorVersion), int(version.minorVersion), int(version.patchVersion));
    return SystemVersion() >= least.normalized();
}
@end

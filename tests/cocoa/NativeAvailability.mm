#include "NativeAvailability.h"

#import <Foundation/Foundation.h>

namespace Zelkor::Testing
{

bool IsAtLeast10_9()
{
    if (@available(macOS 10.9, *)) {
        return true;
    }
    return false;
}

bool IsAtLeast10_15()
{
    if (@available(macOS 10.15, *)) {
        return true;
    }
    return false;
}

bool IsAtLeast10_16()
{
    if (@available(macOS 10.16, *)) {
        return true;
    }
    return false;
}

bool IsAtLeast11()
{
    if (@available(macOS 11, iOS 14, *)) {
        return true;
    }
    return false;
}

bool IsNotAtLeast10_15()
{
    return !@available(macOS 10.15, *);
}

QString VersionOfProcessInfo()
{
    @autoreleasepool {
        NSOperatingSystemVersion const version = [[NSProcessInfo processInfo] operatingSystemVersion];
        return QStringLiteral("%1.%2.%3").arg(version.majorVersion).arg(version.minorVersion).arg(version.patchVersion);
    }
}

bool ProcessInfoIsAtLeast(long majorVersion, long minorVersion, long patchVersion)
{
    @autoreleasepool {
        NSOperatingSystemVersion const version = {majorVersion, minorVersion, patchVersion};
        return [[NSProcessInfo processInfo] isOperatingSystemAtLeastVersion:version];
    }
}

} // namespace Zelkor::Testing

#pragma once
#pragma clang system_header

// Includes GNUstep's Foundation header and adds declarations that are missing there.

#include_next <Foundation/Foundation.h>

typedef struct
{
    NSInteger majorVersion;
    NSInteger minorVersion;
    NSInteger patchVersion;
} NSOperatingSystemVersion;

@interface NSProcessInfo (OperatingSystemVersion)
- (NSOperatingSystemVersion)operatingSystemVersion;
- (BOOL)isOperatingSystemAtLeastVersion:(NSOperatingSystemVersion)version;
@end

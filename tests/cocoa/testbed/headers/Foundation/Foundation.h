#pragma once
#pragma clang system_header

// Foundation, with what GNUstep's lacks of it.

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

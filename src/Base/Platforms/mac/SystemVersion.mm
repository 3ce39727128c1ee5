#include <Base/SystemVersion.h>

#include <QtCore/QString>

#import <Foundation/Foundation.h>

namespace Zelkor::Core
{

Version GetSystemVersion()
{
    @autoreleasepool {
        NSDictionary* const plist =
            [NSDictionary dictionaryWithContentsOfFile:@"/System/Library/CoreServices/SystemVersion.plist"];
        NSString* const version = [plist objectForKey:@"ProductVersion"];
        return Util::VersionFromString(QString::fromNSString(version).toStdString(), ".");
    }
}

} // namespace Zelkor::Core

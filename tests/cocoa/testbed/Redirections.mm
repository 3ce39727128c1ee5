// What GNUstep's classes do otherwise than a Mac's: the workspace, the tool that is launched, the system's version.

#include "State.h"

#import <AppKit/AppKit.h>
#import <objc/runtime.h>

using Zelkor::TestBed::TheState;

@implementation NSWorkspace (FileViewer)
- (BOOL)zb_openURL:(NSURL*)url
{
    TheState().opened += QString::fromNSString([url absoluteString]);
    return YES;
}

- (void)activateFileViewerSelectingURLs:(NSArray*)urls
{
    QStringList request;
    for (NSURL* const url in urls) {
        request += QString::fromNSString([url absoluteString]);
    }
    TheState().fileViewer += request.join(QLatin1Char(' '));
}
@end

@implementation NSTask (Launchctl)
- (void)zb_setLaunchPath:(NSString*)path
{
    BOOL const isLaunchctl = [path isEqualToString:@"/bin/launchctl"];
    [self zb_setLaunchPath:isLaunchctl ? TheState().launchctl.toNSString() : path];
}
@end

@implementation NSDictionary (SystemVersion)
+ (id)zb_dictionaryWithContentsOfFile:(NSString*)path
{
    if (![path isEqualToString:@"/System/Library/CoreServices/SystemVersion.plist"]) {
        return [self zb_dictionaryWithContentsOfFile:path];
    }
    return [NSDictionary dictionaryWithObject:TheState().systemVersion.toNSString() forKey:@"ProductVersion"];
}
@end

namespace
{

void Exchange(Class type, SEL theirs, SEL ours)
{
    method_exchangeImplementations(class_getInstanceMethod(type, theirs), class_getInstanceMethod(type, ours));
}

} // namespace

@interface ZBRedirections : NSObject
@end

@implementation ZBRedirections
+ (void)load
{
    @autoreleasepool {
        Exchange([NSWorkspace class], @selector(openURL:), @selector(zb_openURL:));
        Exchange([NSTask class], @selector(setLaunchPath:), @selector(zb_setLaunchPath:));
        Exchange(object_getClass([NSDictionary class]), @selector(dictionaryWithContentsOfFile:),
                 @selector(zb_dictionaryWithContentsOfFile:));
    }
}
@end

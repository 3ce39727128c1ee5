// Redirects calls that must not reach the real system: requests to NSWorkspace, calls of launchctl, open and tccutil,
// and queries of the system version.

#include "State.h"

#include <QtCore/QFile>

#import <AppKit/AppKit.h>
#import <objc/runtime.h>

#include <dlfcn.h>

using Zelkor::TestBed::TheState;

@implementation NSWorkspace (FileViewer)
- (BOOL)zb_openURL:(NSURL*)url
{
    TheState().openedUrls += QString::fromNSString([url absoluteString]);
    return YES;
}

- (void)activateFileViewerSelectingURLs:(NSArray*)urls
{
    QStringList request;
    for (NSURL* const url in urls) {
        request += QString::fromNSString([url absoluteString]);
    }
    TheState().fileViewerRequests += request;
}
@end

namespace
{

/// Returns the path of the fake program that replaces \a program, or a null string if \a program is not replaced.
QString Replacement(QString const& program)
{
    for (char const* const path : {"/bin/launchctl", "/usr/bin/open", "/usr/bin/tccutil"}) {
        if (program == QLatin1String(path)) {
            QString const& folder = TheState().programsFolder;
            return (folder.isEmpty() ? QStringLiteral("/no programs") : folder) +
                   program.mid(program.lastIndexOf(QLatin1Char('/')));
        }
    }
    return {};
}

} // namespace

@implementation NSTask (Programs)
- (void)zb_setLaunchPath:(NSString*)path
{
    QString const replacement = Replacement(QString::fromNSString(path));
    [self zb_setLaunchPath:replacement.isNull() ? path : replacement.toNSString()];
}
@end

// Replaces the system() function of the C library, because the sources under test run programs with it.
extern "C" int system(char const* command)
{
    static auto const next = reinterpret_cast<int (*)(char const*)>(dlsym(RTLD_NEXT, "system"));
    QString const text = QString::fromUtf8(command);
    QString const program = text.section(QLatin1Char(' '), 0, 0);
    QString const replacement = Replacement(program);
    if (replacement.isNull()) {
        return next(command);
    }
    return next(QFile::encodeName(QLatin1Char('\'') + replacement + QLatin1Char('\'') + text.mid(program.size())));
}

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

void Exchange(Class type, SEL original, SEL replacement)
{
    method_exchangeImplementations(class_getInstanceMethod(type, original), class_getInstanceMethod(type, replacement));
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

// Simulates Core Foundation with GNUstep objects, and counts the references that the callers own. Functions that create
// temporary objects have their own autorelease pool, because plain C++ callers have none.

#include "State.h"

#include <QtCore/QByteArray>

#include <cstdio>
#include <cstdlib>
#include <map>

/// A bundle in an existing folder. The property list of the bundle is optional, as on macOS.
@interface ZBBundle : NSObject {
@public
    NSString* path;
    NSDictionary* info;
}
- (id)initWithPath:(NSString*)folder;
@end

@implementation ZBBundle
- (id)initWithPath:(NSString*)folder
{
    self = [super init];
    path = [folder copy];
    NSString* const list = [folder stringByAppendingPathComponent:@"Contents/Info.plist"];
    info = [[NSDictionary dictionaryWithContentsOfFile:list] retain];
    return self;
}

- (void)dealloc
{
    [path release];
    [info release];
    [super dealloc];
}
@end

namespace
{

std::map<void const*, int>& Owned()
{
    static std::map<void const*, int> owned;
    return owned;
}

[[noreturn]] void Abort(char const* error)
{
    std::fprintf(stderr, "Core Foundation: %s\n", error);
    std::abort();
}

bool IsFolder(NSString* path)
{
    BOOL isFolder = NO;
    return [[NSFileManager defaultManager] fileExistsAtPath:path isDirectory:&isFolder] && isFolder;
}

NSURL* FolderUrl(NSString* path)
{
    if (![path hasPrefix:@"/"]) {
        path = [[[NSFileManager defaultManager] currentDirectoryPath] stringByAppendingPathComponent:path];
    }
    NSString* const folder = [path hasSuffix:@"/"] ? path : [path stringByAppendingString:@"/"];
    NSString* const encoded = [folder stringByAddingPercentEscapesUsingEncoding:NSUTF8StringEncoding];
    return [NSURL URLWithString:[@"file://" stringByAppendingString:encoded]];
}

} // namespace

namespace Zelkor::TestBed
{

CFTypeRef Own(id object)
{
    if (object) {
        ++Owned()[object];
        [object retain];
    }
    return object;
}

int LiveObjects()
{
    int count = 0;
    for (auto const& [object, owners] : Owned()) {
        count += owners;
    }
    return count;
}

} // namespace Zelkor::TestBed

using Zelkor::TestBed::MainBundleCall;
using Zelkor::TestBed::Own;
using Zelkor::TestBed::TheState;

CFAllocatorRef const kCFAllocatorDefault = nullptr;
CFStringRef const kCFBundleVersionKey = (CFStringRef) @"CFBundleVersion";

CFTypeRef CFRetain(CFTypeRef object)
{
    return Own((id)object);
}

void CFRelease(CFTypeRef object)
{
    if (!object) {
        Abort("CFRelease() called with null");
    }
    auto const found = Owned().find(object);
    if (found == Owned().end()) {
        Abort("CFRelease() called for an object without owner");
    }
    if (--found->second == 0) {
        Owned().erase(found);
    }
    [(id)object release];
}

CFTypeID CFGetTypeID(CFTypeRef object)
{
    return [(id)object isKindOfClass:[NSString class]] ? CFStringGetTypeID() : CFStringGetTypeID() + 1;
}

CFTypeID CFStringGetTypeID(void)
{
    return 7;
}

CFIndex CFArrayGetCount(CFArrayRef array)
{
    return (CFIndex)[(NSArray*)array count];
}

void const* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index)
{
    return [(NSArray*)array objectAtIndex:(NSUInteger)index];
}

CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef, CFStringRef path, CFURLPathStyle, Boolean isDirectory)
{
    @autoreleasepool {
        NSString* const text = (NSString*)path;
        if ([text length] == 0) {
            return nullptr;
        }
        return (CFURLRef)Own(isDirectory ? FolderUrl(text) : [NSURL fileURLWithPath:text]);
    }
}

CFBundleRef CFBundleCreate(CFAllocatorRef, CFURLRef url)
{
    if (!url) {
        Abort("CFBundleCreate() called without URL");
    }
    @autoreleasepool {
        NSString* const path = [(NSURL*)url path];
        if (!IsFolder(path)) {
            return nullptr;
        }
        return (CFBundleRef)Own([[[ZBBundle alloc] initWithPath:path] autorelease]);
    }
}

CFStringRef CFBundleGetIdentifier(CFBundleRef bundle)
{
    return (CFStringRef)[((ZBBundle*)bundle)->info objectForKey:@"CFBundleIdentifier"];
}

CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key)
{
    return [((ZBBundle*)bundle)->info objectForKey:(NSString*)key];
}

CFBundleRef CFBundleGetMainBundle(void)
{
    if (TheState().failingMainBundle == MainBundleCall::Get) {
        return nullptr;
    }
    @autoreleasepool {
        static ZBBundle* bundle;
        [bundle release];
        bundle = [[ZBBundle alloc] initWithPath:TheState().mainBundle.toNSString()];
        return (CFBundleRef)bundle;
    }
}

CFURLRef CFBundleCopyBundleURL(CFBundleRef bundle)
{
    if (!bundle) {
        Abort("CFBundleCopyBundleURL() called with null");
    }
    if (TheState().failingMainBundle == MainBundleCall::CopyUrl) {
        return nullptr;
    }
    @autoreleasepool {
        return (CFURLRef)Own(FolderUrl(((ZBBundle*)bundle)->path));
    }
}

// --- Conversions that Qt implements only on Apple systems

QUrl QUrl::fromCFURL(CFURLRef url)
{
    @autoreleasepool {
        return QUrl(QString::fromNSString([(NSURL*)url absoluteString]));
    }
}

CFURLRef QUrl::toCFURL() const
{
    @autoreleasepool {
        return (CFURLRef)Own([NSURL URLWithString:[NSString stringWithUTF8String:toEncoded().constData()]]);
    }
}

QString QString::fromNSString(NSString const* string)
{
    @autoreleasepool {
        return string ? QString::fromUtf8([(NSString*)string UTF8String]) : QString();
    }
}

NSString* QString::toNSString() const
{
    return [NSString stringWithUTF8String:toUtf8().constData()];
}

QString QString::fromCFString(CFStringRef string)
{
    return fromNSString((NSString const*)string);
}

CFStringRef QString::toCFString() const
{
    @autoreleasepool {
        return (CFStringRef)Own(toNSString());
    }
}

#include <Util/FileUtils.h>

#include <QtCore/QString>

#include <algorithm>
#include <limits>
#include <string>

#import <AppKit/AppKit.h>

namespace Zelkor::Util
{

namespace
{

// Returns the text of \a path, or nil if \a path is not valid UTF-8 or contains a NUL byte. Without the check for NUL
// bytes, the text would be the path of a different file.
NSString* TextOf(ioPath const& path)
{
    std::string const utf8 = path.utf8string();
    return utf8.find('\0') == std::string::npos ? [NSString stringWithUTF8String:utf8.c_str()] : nil;
}

// Returns the file URL of \a path, or nil if TextOf() returns nil.
NSURL* FileUrl(ioPath const& path)
{
    NSString* const text = TextOf(path);
    return text ? [NSURL fileURLWithPath:text] : nil;
}

} // namespace

bool CanReadFileIn(QString const&)
{
    return true;
}

bool ExploreFile(ioPath const& folder, std::vector<ioPath> const& files)
{
    @autoreleasepool {
        NSWorkspace* const workspace = [NSWorkspace sharedWorkspace];
        if (files.empty()) {
            if (NSURL* const url = FileUrl(folder)) {
                [workspace openURL:url];
            }
            return true;
        }
        NSMutableArray* const urls = [NSMutableArray arrayWithCapacity:files.size()];
        for (ioPath const& file : files) {
            if (NSURL* const url = FileUrl(file)) {
                [urls addObject:url];
            }
        }
        [workspace activateFileViewerSelectingURLs:urls];
        return true; // always true, because NSWorkspace does not report whether the Finder shows the files
    }
}

long long GetAvailableDiskSpace(ioPath const& path)
{
    @autoreleasepool {
        NSString* const text = TextOf(path);
        NSDictionary* const attributes =
            text ? [[NSFileManager defaultManager] attributesOfFileSystemForPath:text error:nullptr] : nil;
        // longLongValue would return a negative number for more than 8 EiB.
        unsigned long long const space = [[attributes objectForKey:NSFileSystemFreeSize] unsignedLongLongValue];
        return static_cast<long long>(std::min<unsigned long long>(space, std::numeric_limits<long long>::max()));
    }
}

} // namespace Zelkor::Util

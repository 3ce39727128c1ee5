#include <Util/FileUtils.h>

#include <QtCore/QString>

#import <AppKit/AppKit.h>

namespace Zelkor::Util
{

namespace
{

// Returns the file URL of \a path, or nil if \a path is not valid UTF-8.
NSURL* FileUrl(ioPath const& path)
{
    NSString* const text = [NSString stringWithUTF8String:path.utf8string().c_str()];
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
        NSString* const text = [NSString stringWithUTF8String:path.utf8string().c_str()];
        NSDictionary* const attributes =
            text ? [[NSFileManager defaultManager] attributesOfFileSystemForPath:text error:nullptr] : nil;
        return [[attributes objectForKey:NSFileSystemFreeSize] longLongValue];
    }
}

} // namespace Zelkor::Util

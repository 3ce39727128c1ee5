#pragma once
#pragma clang system_header

// Includes GNUstep's AppKit header and adds declarations that are missing there.

#include_next <AppKit/AppKit.h>

@interface NSWorkspace (FileViewer)
- (void)activateFileViewerSelectingURLs:(NSArray*)urls;
@end

#pragma once
#pragma clang system_header

// AppKit, with what GNUstep's lacks of it.

#include_next <AppKit/AppKit.h>

@interface NSWorkspace (FileViewer)
- (void)activateFileViewerSelectingURLs:(NSArray*)urls;
@end

#pragma once
#pragma clang system_header

// GNUstep's AppKit, and the declarations that GNUstep lacks.

#include_next <AppKit/AppKit.h>

@interface NSWorkspace (FileViewer)
- (void)activateFileViewerSelectingURLs:(NSArray*)urls;
@end

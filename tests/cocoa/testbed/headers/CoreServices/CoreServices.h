#pragma once
#pragma clang system_header

// Declares the part of Launch Services that the library uses: the functions for shared file lists.

#include <CoreFoundation/CoreFoundation.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct FSRef
{
    UInt8 hidden[80];
} FSRef;
typedef struct OpaqueIconRef* IconRef;
typedef struct OpaqueLSSharedFileListRef* LSSharedFileListRef;
typedef struct OpaqueLSSharedFileListItemRef* LSSharedFileListItemRef;
typedef UInt32 LSSharedFileListResolutionFlags;

extern CFStringRef const kLSSharedFileListSessionLoginItems;
extern LSSharedFileListItemRef kLSSharedFileListItemLast;

LSSharedFileListRef LSSharedFileListCreate(CFAllocatorRef allocator, CFStringRef type, CFTypeRef options);
CFArrayRef LSSharedFileListCopySnapshot(LSSharedFileListRef list, UInt32* seed);
OSStatus LSSharedFileListItemResolve(LSSharedFileListItemRef item, LSSharedFileListResolutionFlags flags, CFURLRef* url,
                                     FSRef* ref);
LSSharedFileListItemRef LSSharedFileListInsertItemURL(LSSharedFileListRef list, LSSharedFileListItemRef after,
                                                      CFStringRef name, IconRef icon, CFURLRef url,
                                                      CFDictionaryRef propertiesToSet, CFArrayRef propertiesToClear);
OSStatus LSSharedFileListItemRemove(LSSharedFileListRef list, LSSharedFileListItemRef item);

#ifdef __cplusplus
}
#endif

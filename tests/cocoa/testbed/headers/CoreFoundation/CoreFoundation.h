#pragma once
#pragma clang system_header

// Declares the part of Core Foundation that the library uses. The signatures and values are the same as in Apple's
// open-source releases.

#include <stddef.h>
#include <stdint.h>
#include <sys/types.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef unsigned char Boolean;
typedef uint8_t UInt8;
typedef int8_t SInt8;
typedef uint16_t UInt16;
typedef int16_t SInt16;
typedef uint32_t UInt32;
typedef int32_t SInt32;
typedef SInt16 OSErr;
typedef SInt32 OSStatus;
typedef UInt32 FourCharCode;
typedef FourCharCode OSType;
typedef FourCharCode ResType;
typedef long Size;
enum { noErr = 0 };

typedef void const* CFTypeRef;
typedef struct __CFString const* CFStringRef;
typedef struct __CFURL const* CFURLRef;
typedef struct __CFArray const* CFArrayRef;
typedef struct __CFDictionary const* CFDictionaryRef;
typedef struct __CFAllocator const* CFAllocatorRef;
typedef struct __CFBundle* CFBundleRef;

typedef long CFIndex;
typedef unsigned long CFTypeID;
typedef CFIndex CFURLPathStyle;
enum { kCFURLPOSIXPathStyle = 0 };

extern CFAllocatorRef const kCFAllocatorDefault;
extern CFStringRef const kCFBundleVersionKey;

CFTypeRef CFRetain(CFTypeRef object);
void CFRelease(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);
CFTypeID CFStringGetTypeID(void);
CFIndex CFArrayGetCount(CFArrayRef array);
void const* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);
CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef allocator, CFStringRef path, CFURLPathStyle style,
                                       Boolean isDirectory);
CFBundleRef CFBundleCreate(CFAllocatorRef allocator, CFURLRef url);
CFStringRef CFBundleGetIdentifier(CFBundleRef bundle);
CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key);
CFBundleRef CFBundleGetMainBundle(void);
CFURLRef CFBundleCopyBundleURL(CFBundleRef bundle);

#ifdef __cplusplus
}
#endif

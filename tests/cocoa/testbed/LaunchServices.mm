// Simulates the part of Launch Services that manages the login items of the session.

#include "State.h"

using Zelkor::TestBed::LoginItemsCall;
using Zelkor::TestBed::Own;
using Zelkor::TestBed::TheState;

namespace
{

bool Fails(LoginItemsCall call)
{
    return TheState().failingLoginItems == call;
}

ZBLoginItem* CreateItem(NSURL* url, bool resolves)
{
    ZBLoginItem* const item = [[ZBLoginItem alloc] init];
    item->url = [url retain];
    item->resolves = resolves;
    return item;
}

} // namespace

namespace Zelkor::TestBed
{

void AddLoginItem(QString const& path, bool resolves)
{
    @autoreleasepool {
        CFStringRef const text = path.toCFString();
        CFURLRef const url = CFURLCreateWithFileSystemPath(nullptr, text, kCFURLPOSIXPathStyle, true);
        TheState().loginItems.push_back(CreateItem((NSURL*)url, resolves));
        CFRelease(url);
        CFRelease(text);
    }
}

QStringList LoginItemUrls()
{
    @autoreleasepool {
        QStringList urls;
        for (ZBLoginItem* const item : TheState().loginItems) {
            urls += QString::fromNSString([item->url absoluteString]);
        }
        return urls;
    }
}

} // namespace Zelkor::TestBed

CFStringRef const kLSSharedFileListSessionLoginItems = (CFStringRef) @"com.apple.LSSharedFileList.SessionLoginItems";
LSSharedFileListItemRef kLSSharedFileListItemLast = (LSSharedFileListItemRef) @"last";

LSSharedFileListRef LSSharedFileListCreate(CFAllocatorRef, CFStringRef type, CFTypeRef)
{
    @autoreleasepool {
        if (Fails(LoginItemsCall::Create) || type != kLSSharedFileListSessionLoginItems) {
            return nullptr;
        }
        return (LSSharedFileListRef)Own([[[NSObject alloc] init] autorelease]);
    }
}

CFArrayRef LSSharedFileListCopySnapshot(LSSharedFileListRef, UInt32* seed)
{
    @autoreleasepool {
        if (Fails(LoginItemsCall::Snapshot)) {
            return nullptr;
        }
        *seed = 1;
        NSMutableArray* const items = [NSMutableArray array];
        for (ZBLoginItem* const item : TheState().loginItems) {
            [items addObject:item];
        }
        return (CFArrayRef)Own(items);
    }
}

OSStatus LSSharedFileListItemResolve(LSSharedFileListItemRef item, LSSharedFileListResolutionFlags, CFURLRef* url,
                                     FSRef*)
{
    @autoreleasepool {
        ZBLoginItem* const loginItem = (ZBLoginItem*)item;
        *url = (CFURLRef)Own(loginItem->url);
        return loginItem->resolves ? noErr : -43; // fnfErr: file not found
    }
}

LSSharedFileListItemRef LSSharedFileListInsertItemURL(LSSharedFileListRef, LSSharedFileListItemRef after, CFStringRef,
                                                      IconRef, CFURLRef url, CFDictionaryRef, CFArrayRef)
{
    @autoreleasepool {
        if (Fails(LoginItemsCall::Insert)) {
            return nullptr;
        }
        auto& items = TheState().loginItems;
        bool const last = after == kLSSharedFileListItemLast;
        ZBLoginItem* const item = CreateItem((NSURL*)url, true);
        items.insert(last ? items.end() : items.begin(), item);
        return (LSSharedFileListItemRef)Own(item);
    }
}

OSStatus LSSharedFileListItemRemove(LSSharedFileListRef, LSSharedFileListItemRef item)
{
    if (Fails(LoginItemsCall::Remove)) {
        return -50; // paramErr: invalid parameter
    }
    auto& items = TheState().loginItems;
    for (auto found = items.begin(); found != items.end(); ++found) {
        if (*found == (ZBLoginItem*)item) {
            [*found release];
            items.erase(found);
            return noErr;
        }
    }
    return -50;
}

#pragma once

// State shared by the sources of the test bed.

#include "TestBed.h"

#import <Foundation/Foundation.h>

#include <CoreServices/CoreServices.h>

#include <vector>

/// A login item of the simulated session.
@interface ZBLoginItem : NSObject {
@public
    NSURL* url;
    BOOL resolves;
}
@end

namespace Zelkor::TestBed
{

struct State
{
    QString mainBundle;
    MainBundleCall failingMainBundle = MainBundleCall::None;
    QString systemVersion = QStringLiteral("10.13.6");
    QString programsFolder;
    LoginItemsCall failingLoginItems = LoginItemsCall::None;
    std::vector<ZBLoginItem*> loginItems;
    QStringList openedUrls;
    QList<QStringList> fileViewerRequests;
};

State& TheState();

/// Adds a reference to \a object and returns \a object. The caller owns the reference and must release it. Returns null
/// if \a object is null.
CFTypeRef Own(id object) __attribute__((cf_returns_retained));

} // namespace Zelkor::TestBed

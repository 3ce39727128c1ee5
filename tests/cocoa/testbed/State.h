#pragma once

// State shared by the sources of the test bed.

#include "TestBed.h"

#import <Foundation/Foundation.h>

#include <CoreServices/CoreServices.h>

#include <vector>

/// Login item of the session.
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

/// Adds an owned reference to \a object, which the caller must release, and returns \a object. Does nothing for null.
CFTypeRef Own(id object) __attribute__((cf_returns_retained));

} // namespace Zelkor::TestBed

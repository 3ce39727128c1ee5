#pragma once

// What the parts of the test bed share.

#include "TestBed.h"

#import <Foundation/Foundation.h>

#include <CoreServices/CoreServices.h>

#include <vector>

/// An item of the session's login items.
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
    QString programs;
    LoginItemsCall failing = LoginItemsCall::None;
    std::vector<ZBLoginItem*> loginItems;
    QStringList opened;
    QStringList fileViewer;
};

State& TheState();

/// Counts \a object, which the caller has to release, and returns it.
CFTypeRef Own(id object) __attribute__((cf_returns_retained));

} // namespace Zelkor::TestBed

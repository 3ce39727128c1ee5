#include "NativeRuntime.h"

#import <Foundation/Foundation.h>

#include <stdexcept>

namespace Zelkor::Testing
{

int SumOfBlocks(int number)
{
    @autoreleasepool {
        using Block = int (^)();
        __block int calls = 0;
        Block const onStack = ^{
          ++calls;
          return number + calls;
        };
        Block const copied = [onStack copy];
        NSArray* const collected = [NSArray arrayWithObject:copied];
        [copied release];
        Block const found = [collected objectAtIndex:0];
        Block const retained = [found retain];
        int const sum = onStack() + found() + retained();
        [retained release];
        return sum;
    }
}

void RaiseNSException()
{
    @autoreleasepool {
        [NSException raise:NSGenericException format:@"raised"];
    }
}

void ThrowCpp()
{
    throw std::runtime_error("thrown");
}

QString MeetsCppHandlers(std::function<void()> const& call)
{
    try {
        call();
    } catch (std::exception const&) {
        return QStringLiteral("C++");
    } catch (...) {
        return QStringLiteral("any");
    }
    return QString();
}

QString MeetsObjectiveCHandlers(std::function<void()> const& call)
{
    @try {
        call();
    } @catch (NSException*) {
        return QStringLiteral("NSException");
    }
    return QString();
}

QString MeetsObjectiveCHandlerOfAnything(std::function<void()> const& call)
{
    @try {
        call();
    } @catch (...) {
        return QStringLiteral("any");
    }
    return QString();
}

void PassFinally(std::function<void()> const& call, bool& wasFinal)
{
    @try {
        call();
    } @finally {
        wasFinal = true;
    }
}

} // namespace Zelkor::Testing

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

Handler CatchInCpp(std::function<void()> const& call)
{
    try {
        call();
    } catch (std::exception const&) {
        return Handler::StdException;
    } catch (...) {
        return Handler::CatchAll;
    }
    return Handler::None;
}

Handler CatchNSException(std::function<void()> const& call)
{
    @try {
        call();
    } @catch (NSException*) {
        return Handler::NSException;
    }
    return Handler::None;
}

Handler CatchAnythingInObjectiveC(std::function<void()> const& call)
{
    @try {
        call();
    } @catch (...) {
        return Handler::CatchAll;
    }
    return Handler::None;
}

void CallWithFinally(std::function<void()> const& call, bool& ranFinally)
{
    @try {
        call();
    } @finally {
        ranFinally = true;
    }
}

} // namespace Zelkor::Testing

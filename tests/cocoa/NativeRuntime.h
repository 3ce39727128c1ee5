#pragma once

// Blocks and exceptions in Objective-C++.

#include <functional>

namespace Zelkor::Testing
{

/// Calls a block three times: directly, from a collection and after a retain. The block adds \a number to the count of
/// calls so far. Returns the sum of the results.
int SumOfBlocks(int number);

void RaiseNSException();
void ThrowCpp();

/// The handler that catches an exception.
enum class Handler { None, StdException, NSException, CatchAll };

/// Calls \a call inside try, with handlers for std::exception and for everything. Returns the handler that runs.
Handler CatchInCpp(std::function<void()> const& call);

/// Calls \a call inside @try, with a handler for NSException. Returns the handler that runs.
Handler CatchNSException(std::function<void()> const& call);

/// Calls \a call inside @try, with a handler for everything. Returns the handler that runs.
Handler CatchAnythingInObjectiveC(std::function<void()> const& call);

/// Calls \a call and sets \a ranFinally in a @finally block.
void CallWithFinally(std::function<void()> const& call, bool& ranFinally);

} // namespace Zelkor::Testing

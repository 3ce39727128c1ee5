#pragma once

// Functions that use blocks and exceptions in Objective-C++, so that C++ tests can call them.

#include <functional>

namespace Zelkor::Testing
{

/// Calls a block three times: directly, through a collection, and through a retained pointer. The block returns
/// \a number + 1, then \a number + 2, then \a number + 3. Returns the sum of the three results.
int SumOfBlocks(int number);

void RaiseNSException();
void ThrowCpp();

/// The kind of handler that caught an exception. None means that no exception was thrown.
enum class Handler { None, StdException, NSException, CatchAll };

/// Calls \a call in a try block with two handlers: one for std::exception, and catch (...). Returns the handler that
/// ran.
Handler CatchInCpp(std::function<void()> const& call);

/// Calls \a call in a @try block with a handler for NSException. Returns the handler that ran.
Handler CatchNSException(std::function<void()> const& call);

/// Calls \a call in a @try block with the handler @catch (...). Returns the handler that ran.
Handler CatchAnythingInObjectiveC(std::function<void()> const& call);

/// Calls \a call in a @try block. Sets \a ranFinally to true in the @finally block.
void CallWithFinally(std::function<void()> const& call, bool& ranFinally);

} // namespace Zelkor::Testing

#pragma once

// Blocks and exceptions in Objective-C++.

#include <QtCore/QString>

#include <functional>

namespace Zelkor::Testing
{

/// Calls a block that adds \a number to how often it was called: as it is, from a collection, and retained. The sum.
int SumOfBlocks(int number);

void RaiseNSException();
void ThrowCpp();

/// Each calls \a call and tells which of its handlers it met: "C++", "NSException" or "any".
QString MeetsCppHandlers(std::function<void()> const& call);
QString MeetsObjectiveCHandlers(std::function<void()> const& call);
QString MeetsObjectiveCHandlerOfAnything(std::function<void()> const& call);

/// Calls \a call and sets \a wasFinal in the end, whatever is thrown.
void PassFinally(std::function<void()> const& call, bool& wasFinal);

} // namespace Zelkor::Testing

#pragma once

#include <support/sandbox/FileTimes.h>

namespace Zelkor::Testing
{

/// Stops the system's clock at a time.
class FixedClock
{
public:
    explicit FixedClock(Milliseconds now);
    ~FixedClock();
    FixedClock(FixedClock const&) = delete;
    FixedClock& operator=(FixedClock const&) = delete;

    /// The number of times that the clock has been read since it was stopped.
    int ReadCount() const;
};

} // namespace Zelkor::Testing

#pragma once

#include <support/sandbox/FileTimes.h>

namespace Zelkor::Testing
{

/// Makes the system's clock return a fixed time in this process. The destructor restores the real time.
class FixedClock
{
public:
    explicit FixedClock(Milliseconds now);
    ~FixedClock();
    FixedClock(FixedClock const&) = delete;
    FixedClock& operator=(FixedClock const&) = delete;

    /// Returns the number of times that this process has read the clock since this object was created.
    int ReadCount() const;
};

} // namespace Zelkor::Testing

// Replaces clock_gettime() and gettimeofday(). Some tests check an age limit with a precision of one millisecond. These
// tests need a current time that does not change.

#include <support/overrides/FixedClock.h>

#include <QtCore/QtGlobal>

#include <atomic>
#include <ctime>

#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace Zelkor::Testing
{
namespace
{

struct Clock
{
    std::atomic<Milliseconds> now{0}; // 0 means: use the real time
    std::atomic<int> readCount{0};
};

Clock& Fixed()
{
    static Clock clock;
    return clock;
}

// These nanoseconds are added to the fixed time, because a real clock almost never returns a whole number of
// milliseconds.
constexpr long FurtherNanoseconds = 700000;

} // namespace

FixedClock::FixedClock(Milliseconds now)
{
    Fixed().readCount = 0;
    Fixed().now = now;
}

FixedClock::~FixedClock()
{
    Fixed().now = 0;
}

int FixedClock::ReadCount() const
{
    return Fixed().readCount;
}

} // namespace Zelkor::Testing

extern "C" {

// The C library's declaration uses reserved identifiers as parameter names. This definition uses other names.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
Q_DECL_EXPORT int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    using namespace Zelkor::Testing;
    Milliseconds const now = clock == CLOCK_REALTIME ? Fixed().now.load() : 0;
    if (now == 0) {
        return static_cast<int>(syscall(SYS_clock_gettime, clock, time));
    }
    ++Fixed().readCount;
    *time = ToTimespec(now, FurtherNanoseconds);
    return 0;
}

// The C library's declaration uses reserved identifiers as parameter names. This definition uses other names.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
Q_DECL_EXPORT int gettimeofday(timeval* time, void*) noexcept
{
    timespec precise;
    int const result = clock_gettime(CLOCK_REALTIME, &precise);
    *time = {precise.tv_sec, precise.tv_nsec / 1000};
    return result;
}

} // extern "C"

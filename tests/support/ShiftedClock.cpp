#include "tests/support/ShiftedClock.h"

#include <ctime>

/** Stands in for the C library's in the whole program. */
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): that name is reserved.
extern "C" __attribute__((visibility("default"))) int gettimeofday(timeval* time, void* /*zone*/)
{
    constexpr long NANOSECONDS_PER_MICROSECOND = 1000;
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    *time = {now.tv_sec, now.tv_nsec / NANOSECONDS_PER_MICROSECOND};
    ShiftedClock::shift(*time);
    return 0;
}

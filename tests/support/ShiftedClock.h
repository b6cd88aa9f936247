#pragma once

#include <atomic>

#include <sys/time.h>

/**
 * While it lives, Qt takes the time of day to be so many days later. What measures how long
 * something takes goes on as ever.
 *
 * One at a time, in a program that ShiftedClock.cpp is a part of.
 */
class ShiftedClock
{
public:
    explicit ShiftedClock(int days) { m_seconds = days * SECONDS_PER_DAY; }
    ~ShiftedClock() { m_seconds = 0; }
    ShiftedClock(const ShiftedClock&) = delete;
    ShiftedClock& operator=(const ShiftedClock&) = delete;

    /** What gettimeofday() does to the time that it tells. */
    static void shift(timeval& time) { time.tv_sec += m_seconds; }

private:
    static constexpr time_t SECONDS_PER_DAY = 86400;

    static inline std::atomic<time_t> m_seconds = 0;
};

#pragma once

#include <QtGlobal>

#include <cmath>
#include <limits>

// Private to the sources of Frequency.
namespace FrequencyRounding {

/**
 * qRound() for every double. Where qRound() has a defined result this is it, to the bit; beyond
 * that it is the nearest int, and 0 for NaN.
 */
inline int toInt(double value)
{
    constexpr double HIGHEST = std::numeric_limits<int>::max();
    constexpr double LOWEST = std::numeric_limits<int>::min();
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= HIGHEST) {
        return std::numeric_limits<int>::max();
    }
    // Half a step early: below this qRound() gives the lowest int too, but on its way there it
    // converts value - 1, which for numbers close to the limit is no int any more.
    if (value < LOWEST + 0.5) {
        return std::numeric_limits<int>::min();
    }
    return qRound(value);
}

} // namespace FrequencyRounding

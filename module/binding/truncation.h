#pragma once

#include <limits>

namespace tessary {

// Drops the fraction. What fits no 32-bit integer, or is no number, gives the smallest integer, as the
// processor's own conversion does.
inline int truncatedToInt(double value) {
    const bool fits = value > -2147483649.0 && value < 2147483648.0;
    return fits ? static_cast<int>(value) : std::numeric_limits<int>::min();
}

}  // namespace tessary

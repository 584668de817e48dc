#pragma once

// Angles in radians, counter-clockwise.

#include <cmath>
#include <numbers>

namespace drafthost {

inline constexpr double kPi = std::numbers::pi;
inline constexpr double kTwoPi = 2 * std::numbers::pi;

// The same direction in [0, 2 pi); never -0. An angle that is not finite gives 0.
inline double normalizeAngle(double angle) {
    if (angle >= 0 && angle < kTwoPi)
        return angle + 0.0;
    double turned = std::fmod(angle, kTwoPi);
    if (turned < 0)
        turned += kTwoPi;
    return turned < kTwoPi ? turned + 0.0 : 0.0;
}

// Turn from start to end, counter-clockwise, in (0, 2 pi]. Angles that differ by no more than the rounding of
// adding a full turn count as equal: a full turn.
inline double sweepBetween(double startAngle, double endAngle) {
    constexpr double kRounding = 1e-14;
    double sweep = endAngle - startAngle;
    if (sweep < 0)
        sweep += kTwoPi;
    return sweep <= kRounding || sweep > kTwoPi - kRounding ? kTwoPi : sweep;
}

}  // namespace drafthost

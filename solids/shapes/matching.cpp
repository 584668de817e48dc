#include "solids/shapes/matching.h"

#include <cmath>
#include <numbers>

namespace solids {

namespace {

constexpr double kSideAngle = 2 * std::numbers::pi / kRoundSides;

// Angle by which the end's frame is turned against the start's, once that is swung to the same x.
double turnBetween(const Frame& start, const Frame& end) {
    const AcGeVector3d sum = start.x + end.x;
    const double half = sum.lengthSqrd() / 2;  // 1 + cosine, exact for sharp bends too
    const AcGeVector3d y = start.y - sum * (end.x.dotProduct(start.y) / half);
    const AcGeVector3d z = start.z - sum * (end.x.dotProduct(start.z) / half);
    return std::atan2(end.y.dotProduct(z), end.y.dotProduct(y));
}

// Whole units nearest to an angle; of two that are as near, rounding does not decide.
int wholeTurns(double angle, double unit) {
    constexpr double kTieTolerance = 1e-9;
    return static_cast<int>(std::floor(angle / unit + 0.5 - kTieTolerance));
}

}  // namespace

MatchedOutlines matchOutlines(const Section& start, const Frame& startFrame, const Section& end,
                              const Frame& endFrame) {
    const double turn = turnBetween(startFrame, endFrame);
    int endSteps = 0;
    int startSteps = 0;
    if (isRound(end)) {
        endSteps = wholeTurns(turn, kSideAngle);
    } else {
        endSteps = kRoundSides / 4 * wholeTurns(turn, std::numbers::pi / 2);
        startSteps = isRound(start) ? wholeTurns(turn - endSteps * kSideAngle, kSideAngle) : 0;
    }
    MatchedOutlines matched;
    matched.start = begunLater(flatOutline(start), startSteps);
    matched.end = begunLater(flatOutline(end), -endSteps);
    matched.madeUp = (endSteps + startSteps) * kSideAngle;
    matched.twist = turn - matched.madeUp;
    return matched;
}

}  // namespace solids

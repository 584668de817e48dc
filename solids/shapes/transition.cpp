#include "solids/shapes/transition.h"

#include "solids/booleans/booleans.h"
#include "solids/shapes/loft.h"
#include "solids/shapes/matching.h"

#include <algorithm>
#include <cmath>

namespace solids {

namespace {

// Of the smaller size: deviation at which two ends still look alike.
constexpr double kAlikeTolerance = 1e-6;
constexpr double kLargestRatio = 1e10;

// The same end seen from the other side.
DuctEnd turnedRound(const DuctEnd& end) {
    DuctEnd turned = end;
    turned.frame.x = -end.frame.x;
    turned.frame.z = -end.frame.z;
    return turned;
}

// How the end lies to the start: 1 in front, -1 behind, 0 for neither. Both ends must agree.
int sideOf(const DuctEnd& start, const DuctEnd& end) {
    const AcGeVector3d axis = end.center - start.center;
    const double fromStart = axis.dotProduct(start.frame.x);
    const double fromEnd = axis.dotProduct(end.frame.x);
    if (fromStart >= kSmallestSize && fromEnd >= kSmallestSize) {
        return 1;
    }
    return fromStart <= -kSmallestSize && fromEnd <= -kSmallestSize ? -1 : 0;
}

// The end's outline is the start's, moved along the frame's x.
bool isStraight(const DuctEnd& start, const DuctEnd& end, const Outline& first, const Outline& last) {
    const double tolerance = kAlikeTolerance * std::min(start.section.width, start.section.height);
    const AcGeVector3d axis = end.center - start.center;
    if (start.frame.x.crossProduct(axis).length() > tolerance) {
        return false;
    }
    if (isRound(start.section) && isRound(end.section)) {
        return std::abs(start.section.width - end.section.width) <= tolerance &&
               start.frame.x.crossProduct(end.frame.x).length() <= kAlikeTolerance;
    }
    for (int i = 0; i < kOutlinePoints; ++i) {
        if ((last[i] - first[i] - axis).length() > tolerance) {
            return false;
        }
    }
    return true;
}

std::optional<Body> makeForward(const DuctEnd& start, const DuctEnd& end) {
    const MatchedOutlines matched = matchOutlines(start.section, start.frame, end.section, end.frame);
    const std::array outlines{placedOutline(matched.start, start.center, start.frame),
                              placedOutline(matched.end, end.center, end.frame)};
    std::optional<Mesh> mesh = loft(outlines);
    if (!mesh || !(isCertainlySimple(outlines[0], outlines[1]) || isFreeOfSelfIntersection(*mesh))) {
        return std::nullopt;
    }
    Body body;
    body.mesh = std::move(*mesh);
    body.kind = isStraight(start, end, outlines[0], outlines[1]) ? BodyKind::straight : BodyKind::transition;
    body.centerLines = {{start.center, end.center}};
    return body;
}

}  // namespace

bool isUsable(const DuctEnd& end) {
    const AcGePoint3d& center = end.center;
    const double farthest = kLargestRatio * std::min(end.section.width, end.section.height);
    return isUsable(end.section) && isUsable(end.frame) && isUsable(center) &&
           std::abs(center.x) <= farthest && std::abs(center.y) <= farthest && std::abs(center.z) <= farthest;
}

std::optional<Body> makeTransition(const DuctEnd& start, const DuctEnd& end, int flags) {
    if (!isUsable(start) || !isUsable(end)) {
        return std::nullopt;
    }
    const int side = sideOf(start, end);
    if (side == 0) {
        return std::nullopt;
    }
    std::optional<Body> body =
        side > 0 ? makeForward(start, end) : makeForward(turnedRound(start), turnedRound(end));
    if (body) {
        body->flags = flags;
    }
    return body;
}

}  // namespace solids

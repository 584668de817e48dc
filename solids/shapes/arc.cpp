#include "solids/shapes/arc.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace solids {

namespace {

constexpr double kRelativeTolerance = 1e-9;
// Of the radius: the narrowest throat.
constexpr double kNarrowestThroat = 1e-6;

// How far a tangent point may lie beyond the far end of its run, which is where it was put before, in
// coordinates of limited precision.
double endTolerance(const Arc& arc, const DuctEnd& start, const DuctEnd& end) {
    return kRelativeTolerance *
           std::max({arc.radius, start.center.asVector().length(), end.center.asVector().length()});
}

bool leavesThroat(const Arc& arc, const DuctEnd& end, const AcGeVector3d& inward) {
    const double throat = arc.radius - reach(end.section, end.frame, inward);
    return throat >= kSmallestSize && throat >= kNarrowestThroat * arc.radius;
}

}  // namespace

Arc arcAround(const Bend& bend, const AcGeVector3d& in, const AcGeVector3d& out, double radius) {
    Arc arc{bend, radius, {}, {}, {}, {}};
    const double tangent = radius * std::tan(bend.angle / 2);
    arc.start = bend.corner1 - in * tangent;
    arc.end = bend.corner2 + out * tangent;
    arc.center = arc.start + bend.inward1 * radius;
    arc.shift = bend.corner2 - bend.corner1;
    return arc;
}

std::optional<Arc> fitArc(const DuctEnd& start, const DuctEnd& end, double radius) {
    if (!isUsable(start) || !isUsable(end) || !(radius > 0 && radius <= kLargestSize)) {
        return std::nullopt;
    }
    const std::optional<Bend> bend = findBend(start.center, start.frame.x, end.center, end.frame.x);
    if (!bend) {
        return std::nullopt;
    }
    const Arc arc = arcAround(*bend, start.frame.x, end.frame.x, radius);
    const double tolerance = endTolerance(arc, start, end);
    const bool fits = isUsable(arc.start) && isUsable(arc.end) &&
                      (arc.start - start.center).dotProduct(start.frame.x) >= -tolerance &&
                      (end.center - arc.end).dotProduct(end.frame.x) >= -tolerance &&
                      leavesThroat(arc, start, bend->inward1) && leavesThroat(arc, end, bend->inward2);
    return fits ? std::optional(arc) : std::nullopt;
}

int stepsFor(double angle) {
    constexpr double kStep = 2 * std::numbers::pi / kRoundSides;
    return static_cast<int>(std::ceil(angle / kStep - kRelativeTolerance));
}

}  // namespace solids

#include "solids/shapes/radius_elbow.h"

#include "solids/booleans/booleans.h"
#include "solids/shapes/loft.h"
#include "solids/shapes/sweep.h"

#include <algorithm>

namespace solids {

namespace {

// Of the elbow's length: how far the centre lines may pass each other.
constexpr double kLargestShift = 0.5;

bool leavesOpening(const Section& section, double wall) {
    return wall >= 0 && 2 * wall < std::min(section.width, section.height);
}

}  // namespace

std::optional<RadiusElbow> makeRadiusElbow(const DuctEnd& start, const DuctEnd& end, double radius,
                                           double wall, int flags) {
    if (!leavesOpening(start.section, wall) || !leavesOpening(end.section, wall)) {
        return std::nullopt;
    }
    const std::optional<Arc> arc = fitArc(start, end, radius);
    if (!arc || arc->shift.length() > kLargestShift * arc->length()) {
        return std::nullopt;
    }
    const ArcSweep sweep(*arc, start, end);
    const std::vector<Outline> outlines = sweep.outlines();
    std::optional<Mesh> mesh = loft(outlines);
    if (!mesh || !(isCertainlySimple(outlines) || isFreeOfSelfIntersection(*mesh))) {
        return std::nullopt;
    }
    return RadiusElbow{
        {std::move(*mesh), BodyKind::radiusElbow, flags, {sweep.centerLine()}}, arc->start, arc->end};
}

}  // namespace solids

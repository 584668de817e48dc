#include "solids/shapes/arc.h"
#include "solids/shapes/loft.h"
#include "solids/shapes/matching.h"
#include "solids/shapes/radius_elbow.h"

#include <algorithm>
#include <cmath>

namespace solids {

namespace {

constexpr double kAlignedTolerance = 1e-6;

bool isParallel(const AcGeVector3d& a, const AcGeVector3d& b) {
    return a.crossProduct(b).length() <= kAlignedTolerance;
}

// One side of the section lies in the plane of the bend.
bool liesFlat(const Frame& frame, const AcGeVector3d& normal) {
    return isParallel(frame.y, normal) || isParallel(frame.z, normal);
}

// The start's outline swung about the bend's axis is the end's.
bool facesMatch(const Arc& arc, const Outline& first, const Outline& last, double tolerance) {
    const AcGeMatrix3d swing = AcGeMatrix3d::rotation(arc.bend.angle, arc.bend.normal, arc.center);
    for (int i = 0; i < kOutlinePoints; ++i) {
        if (!(last[i].distanceTo(swing * first[i]) <= tolerance)) {
            return false;
        }
    }
    return true;
}

// Seen along the normal all outlines are lines: their inner ends step along the throat, the outer ends of
// those between the first and the last one are in the corner, from which the whole throat is seen.
std::vector<Outline> trayOutlines(const Arc& arc, const Outline& first, const Outline& last) {
    const int steps = std::max(2, stepsFor(arc.bend.angle));
    const double toCorner = 1 / std::cos(arc.bend.angle / 2);
    const AcGeMatrix3d halfSwing = AcGeMatrix3d::rotation(arc.bend.angle / 2, arc.bend.normal, arc.center);
    const AcGeVector3d outward = halfSwing * -arc.bend.inward1;
    std::vector<Outline> outlines{first};
    for (int step = 1; step < steps; ++step) {
        const AcGeMatrix3d swing =
            AcGeMatrix3d::rotation(arc.bend.angle * step / steps, arc.bend.normal, arc.center);
        Outline outline;
        for (int i = 0; i < kOutlinePoints; ++i) {
            const AcGeVector3d arm = first[i] - arc.center;
            const double distance = -arm.dotProduct(arc.bend.inward1);
            const AcGePoint3d above = arc.center + arc.bend.normal * arm.dotProduct(arc.bend.normal);
            outline[i] = distance > arc.radius ? above + outward * (distance * toCorner) : swing * first[i];
        }
        outlines.push_back(outline);
    }
    outlines.push_back(last);
    return outlines;
}

std::vector<AcGePoint3d> centerLine(const Arc& arc) {
    const int steps = std::max(2, stepsFor(arc.bend.angle));
    std::vector<AcGePoint3d> points{arc.start};
    for (int step = 1; step < steps; ++step) {
        points.push_back(AcGeMatrix3d::rotation(arc.bend.angle * step / steps, arc.bend.normal, arc.center) *
                         arc.start);
    }
    points.push_back(arc.end);
    return points;
}

}  // namespace

std::optional<RadiusElbow> makeCableTrayElbow(const DuctEnd& start, const AcGePoint3d& end,
                                              const Frame& endFrame, double radius, int flags) {
    const DuctEnd far{end, start.section, endFrame};
    const std::optional<Arc> arc = start.section.rectangular ? fitArc(start, far, radius) : std::nullopt;
    if (!arc || !liesFlat(start.frame, arc->bend.normal) || !liesFlat(endFrame, arc->bend.normal)) {
        return std::nullopt;
    }
    const MatchedOutlines matched = matchOutlines(start.section, start.frame, start.section, endFrame);
    const Outline first = placedOutline(matched.start, arc->start, start.frame);
    const Outline last = placedOutline(matched.end, arc->end, endFrame);
    const double tolerance =
        kAlignedTolerance * std::max(arc->radius, std::max(start.section.width, start.section.height));
    std::optional<Mesh> mesh =
        facesMatch(*arc, first, last, tolerance) ? loft(trayOutlines(*arc, first, last)) : std::nullopt;
    if (!mesh) {
        return std::nullopt;
    }
    return RadiusElbow{
        {std::move(*mesh), BodyKind::cableTrayElbow, flags, {centerLine(*arc)}}, arc->start, arc->end};
}

}  // namespace solids

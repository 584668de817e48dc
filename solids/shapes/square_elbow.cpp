#include "solids/shapes/square_elbow.h"

#include "solids/booleans/booleans.h"
#include "solids/shapes/bend.h"
#include "solids/shapes/loft.h"
#include "solids/shapes/mitre.h"

#include <algorithm>
#include <cmath>

namespace solids {

namespace {

constexpr double kMeetingTolerance = 1e-6;  // of the largest size: corners that are the same
constexpr double kLengthTolerance = 1e-9;   // of the largest size: rounding of lengths

double largestSize(const DuctEnd& start, const DuctEnd& end) {
    return std::max({start.section.width, start.section.height, end.section.width, end.section.height});
}

Outline toWorld(const Outline& local, const AcGePoint3d& corner, const Frame& frame) {
    Outline placed;
    std::transform(local.begin(), local.end(), placed.begin(),
                   [&](const AcGePoint3d& point) { return toWorld(point, corner, frame); });
    return placed;
}

// Where the centre lines turn.
struct Corner {
    AcGePoint3d point;
    AcGeVector3d shift;  // from there to the second line, along the normal of the bend; zero when they meet
};

std::optional<Corner> cornerBetween(const DuctEnd& start, const DuctEnd& end) {
    const auto bend = findBend(start.center, start.frame.x, end.center, end.frame.x);
    if (!bend) {
        return std::nullopt;
    }
    const AcGeVector3d gap = bend->corner2 - bend->corner1;
    if (gap.length() <= kLengthTolerance * largestSize(start, end)) {
        return Corner{bend->corner1 + gap * 0.5, {}};
    }
    const double smallest =
        std::min({start.section.width, start.section.height, end.section.width, end.section.height});
    return gap.length() <= smallest / 2 ? std::optional(Corner{bend->corner1, gap}) : std::nullopt;
}

// The legs' outlines. One that shifts does so on the straight duct behind the mitre. Empty when there is
// none.
std::vector<Outline> outlinesOf(const Mitre& mitre, const Corner& corner, double first, double last,
                                const Frame& frame, double shortest) {
    std::vector<Outline> outlines{toWorld(mitre.before(first), corner.point, frame),
                                  toWorld(mitre.outline(), corner.point, frame)};
    if (corner.shift.length() > 0) {
        if (last - mitre.lastThroat() < shortest) {
            return {};
        }
        outlines.push_back(toWorld(mitre.behind(mitre.lastThroat()), corner.point, frame));
    }
    outlines.push_back(toWorld(mitre.behind(last), corner.point + corner.shift, frame));
    return outlines;
}

BoxCorners boxOf(const std::array<AcGePoint3d, 4>& freeEnd, const std::array<AcGePoint3d, 4>& mitre,
                 const AcGeVector3d& shift, const AcGePoint3d& corner, const Frame& frame) {
    BoxCorners box;
    for (int i = 0; i < 4; ++i) {
        box[i] = toWorld(freeEnd[i], corner + shift, frame);
        box[i + 4] = toWorld(mitre[i], corner, frame);
    }
    return box;
}

}  // namespace

std::optional<SquareElbowPlan> planSquareElbow(const DuctEnd& start, const DuctEnd& end, double collar) {
    if (!isUsable(start) || !isUsable(end) || !(collar >= 0 && collar <= kLargestSize)) {
        return std::nullopt;
    }
    const auto corner = cornerBetween(start, end);
    const auto mitre = mitreBetween(start.section, start.frame, end.section, end.frame);
    if (!corner || !mitre) {
        return std::nullopt;
    }
    const double first = mitre->firstThroat() + collar;
    const double last = mitre->lastThroat() + collar;
    const double tolerance = kLengthTolerance * largestSize(start, end);
    if ((corner->point - start.center).dotProduct(start.frame.x) < first - tolerance ||
        (end.center - corner->point).dotProduct(end.frame.x) < last - tolerance) {
        return std::nullopt;
    }
    SquareElbowPlan plan;
    plan.corner = corner->point;
    plan.start = corner->point - start.frame.x * first;
    plan.end = corner->point + corner->shift + end.frame.x * last;
    plan.startLeg = boxOf(mitre->cornersBefore(first), mitre->corners(), {}, corner->point, start.frame);
    plan.endLeg =
        boxOf(mitre->cornersBehind(last), mitre->corners(), corner->shift, corner->point, start.frame);
    return plan;
}

std::optional<Body> makeSquareElbow(const DuctEnd& start, const DuctEnd& end, const AcGePoint3d& corner,
                                    int flags) {
    if (!isUsable(start) || !isUsable(end) || !isUsable(corner)) {
        return std::nullopt;
    }
    const auto meeting = cornerBetween(start, end);
    const auto mitre = mitreBetween(start.section, start.frame, end.section, end.frame);
    const double tolerance = kMeetingTolerance * largestSize(start, end);
    if (!meeting || !mitre || meeting->point.distanceTo(corner) > tolerance) {
        return std::nullopt;
    }
    const double first = (meeting->point - start.center).dotProduct(start.frame.x);
    const double last = (end.center - meeting->point).dotProduct(end.frame.x);
    const double rounding = kLengthTolerance * largestSize(start, end);
    if (first < mitre->firstThroat() - rounding || last < mitre->lastThroat() - rounding) {
        return std::nullopt;
    }
    const std::vector<Outline> outlines = outlinesOf(*mitre, *meeting, first, last, start.frame, tolerance);
    auto mesh = loft(outlines);
    if (!mesh || (outlines.size() > 3 && !isFreeOfSelfIntersection(*mesh))) {
        return std::nullopt;
    }
    std::vector<AcGePoint3d> line{start.center, corner};
    if (outlines.size() > 3) {
        line.push_back(corner + end.frame.x * mitre->lastThroat());
    }
    line.push_back(end.center);
    return Body{std::move(*mesh), BodyKind::squareElbow, flags, {std::move(line)}};
}

}  // namespace solids

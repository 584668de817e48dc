#include "solids/shapes/square_elbow.h"

#include "solids/shapes/bend.h"
#include "solids/shapes/loft.h"
#include "solids/shapes/mitre.h"

#include <algorithm>
#include <cmath>

namespace solids {

namespace {

constexpr double kMeetingTolerance = 1e-6;  // of the largest size
constexpr double kLengthTolerance = 1e-9;   // of the largest size: rounding of lengths

double largestSize(const DuctEnd& start, const DuctEnd& end) {
    return std::max({start.section.width, start.section.height, end.section.width, end.section.height});
}

std::optional<AcGePoint3d> cornerBetween(const DuctEnd& start, const DuctEnd& end) {
    const auto bend = findBend(start.center, start.frame.x, end.center, end.frame.x);
    const double tolerance = kMeetingTolerance * largestSize(start, end);
    if (!bend || bend->corner1.distanceTo(bend->corner2) > tolerance) {
        return std::nullopt;
    }
    return bend->corner1 + (bend->corner2 - bend->corner1) * 0.5;
}

BoxCorners boxOf(const std::array<AcGePoint3d, 4>& freeEnd, const std::array<AcGePoint3d, 4>& mitre,
                 const AcGePoint3d& corner, const Frame& frame) {
    BoxCorners box;
    for (int i = 0; i < 4; ++i) {
        box[i] = toWorld(freeEnd[i], corner, frame);
        box[i + 4] = toWorld(mitre[i], corner, frame);
    }
    return box;
}

Outline toWorld(const Outline& local, const AcGePoint3d& corner, const Frame& frame) {
    Outline placed;
    std::transform(local.begin(), local.end(), placed.begin(),
                   [&](const AcGePoint3d& point) { return toWorld(point, corner, frame); });
    return placed;
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
    if ((*corner - start.center).dotProduct(start.frame.x) < first - tolerance ||
        (end.center - *corner).dotProduct(end.frame.x) < last - tolerance) {
        return std::nullopt;
    }
    SquareElbowPlan plan;
    plan.corner = *corner;
    plan.start = *corner - start.frame.x * first;
    plan.end = *corner + end.frame.x * last;
    plan.startLeg = boxOf(mitre->cornersBefore(first), mitre->corners(), *corner, start.frame);
    plan.endLeg = boxOf(mitre->cornersBehind(last), mitre->corners(), *corner, start.frame);
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
    if (!meeting || !mitre || meeting->distanceTo(corner) > tolerance) {
        return std::nullopt;
    }
    const double first = (*meeting - start.center).dotProduct(start.frame.x);
    const double last = (end.center - *meeting).dotProduct(end.frame.x);
    const double rounding = kLengthTolerance * largestSize(start, end);
    if (first < mitre->firstThroat() - rounding || last < mitre->lastThroat() - rounding) {
        return std::nullopt;
    }
    const std::array outlines{toWorld(mitre->before(first), *meeting, start.frame),
                              toWorld(mitre->outline(), *meeting, start.frame),
                              toWorld(mitre->behind(last), *meeting, start.frame)};
    auto mesh = loft(outlines);
    if (!mesh) {
        return std::nullopt;
    }
    return Body{std::move(*mesh), BodyKind::squareElbow, flags, {{start.center, corner, end.center}}};
}

}  // namespace solids

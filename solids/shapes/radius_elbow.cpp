#include "solids/shapes/radius_elbow.h"

#include "solids/booleans/booleans.h"
#include "solids/shapes/arc.h"
#include "solids/shapes/loft.h"
#include "solids/shapes/matching.h"

#include <algorithm>
#include <cmath>

namespace solids {

namespace {

// Of the elbow's length: how far the centre lines may pass each other.
constexpr double kLargestShift = 0.5;
// Steps over a shift, which is steepest in the middle.
constexpr int kShiftSteps = 16;
// Of the length: a shift that needs no steps of its own.
constexpr double kNoShift = 1e-6;

// From 0 to 1, level at both ends, so that walls leave in the direction of the runs.
double smoothly(double t) {
    return t * t * (3 - 2 * t);
}

bool leavesOpening(const Section& section, double wall) {
    return wall >= 0 && 2 * wall < std::min(section.width, section.height);
}

AcGePoint2d turned(const AcGePoint2d& point, double angle) {
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    return {point.x * cosine - point.y * sine, point.x * sine + point.y * cosine};
}

class ElbowSweep {
public:
    ElbowSweep(const Arc& arc, const DuctEnd& start, const DuctEnd& end)
        : arc_(arc), start_(start), end_(end),
          matched_(matchOutlines(start.section, start.frame, end.section, end.frame)) {
        for (int i = 0; i < kOutlinePoints; ++i) {
            endInStartFrame_[i] = turned(matched_.end[i], matched_.madeUp);
        }
        const bool shifts = arc.shift.length() > kNoShift * arc.length();
        steps_ = std::max(
            {2, stepsFor(arc.bend.angle), stepsFor(std::abs(matched_.twist)), shifts ? kShiftSteps : 0});
    }

    std::vector<AcGePoint3d> centerLine() const {
        std::vector<AcGePoint3d> points{arc_.start};
        for (int i = 1; i < steps_; ++i) {
            points.push_back(centerAt(static_cast<double>(i) / steps_));
        }
        points.push_back(arc_.end);
        return points;
    }

    std::vector<Outline> outlines() const {
        std::vector<Outline> all;
        all.reserve(static_cast<std::size_t>(steps_) + 1);
        all.push_back(placedOutline(matched_.start, arc_.start, start_.frame));
        for (int i = 1; i < steps_; ++i) {
            all.push_back(outlineAt(static_cast<double>(i) / steps_));
        }
        all.push_back(placedOutline(matched_.end, arc_.end, end_.frame));
        return all;
    }

private:
    AcGePoint3d centerAt(double t) const {
        AcGeVector3d arm = -arc_.bend.inward1 * arc_.radius;
        const double angle = t * arc_.bend.angle;
        arm = arm * std::cos(angle) + arc_.bend.normal.crossProduct(arm) * std::sin(angle);
        return arc_.center + arm + arc_.shift * smoothly(t);
    }
    Outline outlineAt(double t) const {
        const Frame swung = rotated(start_.frame, t * arc_.bend.angle, arc_.bend.normal);
        const Frame frame = rotated(swung, smoothly(t) * matched_.twist, swung.x);
        FlatOutline between;
        for (int i = 0; i < kOutlinePoints; ++i) {
            const AcGePoint2d& from = matched_.start[i];
            between[i] = from + (endInStartFrame_[i] - from) * smoothly(t);
        }
        return placedOutline(between, centerAt(t), frame);
    }

    const Arc& arc_;
    const DuctEnd& start_;
    const DuctEnd& end_;
    MatchedOutlines matched_;
    FlatOutline endInStartFrame_;  // in the start's frame, swung and twisted to the end
    int steps_ = 0;
};

// Each piece lies in the wedge between its outlines' planes, and the wedges lie side by side around the
// bend's axis.
bool isSweepSimple(const std::vector<Outline>& outlines) {
    for (std::size_t i = 0; i + 1 < outlines.size(); ++i) {
        if (!isCertainlySimple(outlines[i], outlines[i + 1])) {
            return false;
        }
    }
    return true;
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
    const ElbowSweep sweep(*arc, start, end);
    const std::vector<Outline> outlines = sweep.outlines();
    std::optional<Mesh> mesh = loft(outlines);
    if (!mesh || !(isSweepSimple(outlines) || isFreeOfSelfIntersection(*mesh))) {
        return std::nullopt;
    }
    return RadiusElbow{
        {std::move(*mesh), BodyKind::radiusElbow, flags, {sweep.centerLine()}}, arc->start, arc->end};
}

}  // namespace solids

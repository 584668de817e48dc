#include "solids/shapes/sweep.h"

#include "solids/shapes/loft.h"

#include <algorithm>
#include <cmath>

namespace solids {

namespace {

// Steps over a shift, which is steepest in the middle.
constexpr int kShiftSteps = 16;
// Of the length: a shift that needs no steps of its own.
constexpr double kNoShift = 1e-6;
// Of the reach towards the inside: the throat of the tightest sweep.
constexpr double kTightThroat = 0.1;

// From 0 to 1, level at both ends.
double smoothly(double t) {
    return t * t * (3 - 2 * t);
}

AcGePoint2d turned(const AcGePoint2d& point, double angle) {
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    return {point.x * cosine - point.y * sine, point.x * sine + point.y * cosine};
}

}  // namespace

ArcSweep::ArcSweep(const Arc& arc, const DuctEnd& start, const DuctEnd& end)
    : arc_(arc), startFrame_(start.frame), endFrame_(end.frame),
      matched_(matchOutlines(start.section, start.frame, end.section, end.frame)) {
    for (int i = 0; i < kOutlinePoints; ++i) {
        endInStartFrame_[i] = turned(matched_.end[i], matched_.madeUp);
    }
    const bool shifts = arc.shift.length() > kNoShift * arc.length();
    steps_ =
        std::max({2, stepsFor(arc.bend.angle), stepsFor(std::abs(matched_.twist)), shifts ? kShiftSteps : 0});
}

std::vector<AcGePoint3d> ArcSweep::centerLine() const {
    std::vector<AcGePoint3d> points{arc_.start};
    for (int i = 1; i < steps_; ++i) {
        points.push_back(centerAt(static_cast<double>(i) / steps_));
    }
    points.push_back(arc_.end);
    return points;
}

std::vector<Outline> ArcSweep::outlines() const {
    std::vector<Outline> all;
    all.reserve(static_cast<std::size_t>(steps_) + 1);
    all.push_back(startAt(arc_.start));
    for (int i = 1; i < steps_; ++i) {
        const double t = static_cast<double>(i) / steps_;
        all.push_back(placedOutline(flatAt(t), centerAt(t), frameAt(t)));
    }
    all.push_back(endAt(arc_.end));
    return all;
}

Outline ArcSweep::startAt(const AcGePoint3d& center) const {
    return placedOutline(matched_.start, center, startFrame_);
}

Outline ArcSweep::endAt(const AcGePoint3d& center) const {
    return placedOutline(matched_.end, center, endFrame_);
}

double ArcSweep::reachInside() const {
    double reached = 0;
    for (int i = 0; i <= steps_; ++i) {
        const double t = static_cast<double>(i) / steps_;
        const AcGeVector3d inward =
            arc_.bend.normal.crossProduct(rotated(startFrame_, t * arc_.bend.angle, arc_.bend.normal).x);
        for (const AcGePoint3d& point : placedOutline(flatAt(t), AcGePoint3d::kOrigin, frameAt(t))) {
            reached = std::max(reached, point.asVector().dotProduct(inward));
        }
    }
    return reached;
}

double ArcSweep::largestChange() const {
    double change = 0;
    for (int i = 0; i < kOutlinePoints; ++i) {
        const AcGeVector2d moved = turned(endInStartFrame_[i], matched_.twist) - matched_.start[i];
        change = std::max(change, moved.length());
    }
    return change;
}

AcGePoint3d ArcSweep::centerAt(double t) const {
    AcGeVector3d arm = -arc_.bend.inward1 * arc_.radius;
    const double angle = t * arc_.bend.angle;
    arm = arm * std::cos(angle) + arc_.bend.normal.crossProduct(arm) * std::sin(angle);
    return arc_.center + arm + arc_.shift * smoothly(t);
}

FlatOutline ArcSweep::flatAt(double t) const {
    FlatOutline between;
    for (int i = 0; i < kOutlinePoints; ++i) {
        const AcGePoint2d& from = matched_.start[i];
        between[i] = from + (endInStartFrame_[i] - from) * smoothly(t);
    }
    return between;
}

Frame ArcSweep::frameAt(double t) const {
    const Frame swung = rotated(startFrame_, t * arc_.bend.angle, arc_.bend.normal);
    return rotated(swung, smoothly(t) * matched_.twist, swung.x);
}

bool isCertainlySimple(const std::vector<Outline>& outlines) {
    for (std::size_t i = 0; i + 1 < outlines.size(); ++i) {
        if (!isCertainlySimple(outlines[i], outlines[i + 1])) {
            return false;
        }
    }
    return true;
}

ArcSweep tightestSweep(const Bend& bend, const DuctEnd& start, const DuctEnd& end) {
    // Sections and their twist do not depend on the radius.
    const ArcSweep any(arcAround(bend, start.frame.x, end.frame.x, 1), start, end);
    const double radius = std::max(any.reachInside() * (1 + kTightThroat), any.largestChange() / bend.angle);
    return {arcAround(bend, start.frame.x, end.frame.x, radius), start, end};
}

}  // namespace solids

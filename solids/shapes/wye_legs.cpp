#include "solids/shapes/wye_legs.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <tuple>

namespace solids {

namespace {

constexpr double kSmallestAngle = 1e-3;  // radians: what turns by less goes on straight

AcGeVector3d zeroedAlong(const AcGeVector3d& vector, const AcGeVector3d& direction) {
    return vector - direction * vector.dotProduct(direction);
}

// The main's frame in its own coordinates, swung by the shortest way to the direction.
Frame swungTo(const AcGeVector3d& direction) {
    const auto swing = [&](const AcGeVector3d& axis) {
        const AcGeVector3d sum = AcGeVector3d::kXAxis + direction;
        return axis - sum * (axis.dotProduct(direction) / (1 + direction.x));
    };
    return {direction, swing(AcGeVector3d::kYAxis), swing(AcGeVector3d::kZAxis)};
}

// The branch in the main's coordinates, its frame turned by quarter turns until it is nearest to the main's.
// The directions must not be opposite.
DuctEnd seenFrom(const DuctEnd& main, const DuctEnd& branch, const AcGePoint3d& center) {
    const auto across = [&](const AcGeVector3d& axis) { return directionIn(main.frame, axis); };
    DuctEnd seen{
        center, branch.section, {across(branch.frame.x), across(branch.frame.y), across(branch.frame.z)}};
    if (isRound(branch.section)) {
        return seen;
    }
    const double turn = matchOutlines(branch.section, main.frame, branch.section, branch.frame).madeUp /
                        (std::numbers::pi / 2);
    for (long quarter = std::lround(turn); quarter % 4 != 0; --quarter) {
        seen.frame = {seen.frame.x, -seen.frame.z, seen.frame.y};
        std::swap(seen.section.width, seen.section.height);
    }
    return seen;
}

// For branches that no mitre joins to the main.
std::optional<WyeLeg> sweptLeg(const DuctEnd& main, const DuctEnd& branch, const AcGePoint3d& center,
                               double largestOffset) {
    const AcGeVector3d out = directionIn(main.frame, branch.frame.x);
    const auto bend = findBend(AcGePoint3d::kOrigin, kMainFrame.x, center, out);
    if (!bend || bend->corner1.distanceTo(bend->corner2) > largestOffset) {
        return std::nullopt;
    }
    const DuctEnd first{AcGePoint3d::kOrigin, main.section, kMainFrame};
    const DuctEnd last = seenFrom(main, branch, center);
    WyeLeg leg;
    leg.shift = bend->corner2 - bend->corner1;
    // About the corner, like a mitre.
    Bend about = *bend;
    about.corner1 = AcGePoint3d::kOrigin;
    about.corner2 = AcGePoint3d::kOrigin + leg.shift;
    leg.section = last.section;
    leg.frame = last.frame;
    leg.sweep = tightestSweep(about, first, last);
    leg.corner = {bend->corner1.x, 0, 0};
    leg.length = (center - bend->corner2).dotProduct(out);
    return leg;
}

std::optional<WyeLeg> mitredLeg(const Mitre& mitre, const AcGePoint3d& center, double rounding,
                                double largestOffset) {
    const double offset = center.asVector().dotProduct(mitre.normal);
    if (std::abs(offset) > largestOffset) {
        return std::nullopt;
    }
    WyeLeg leg;
    if (std::abs(offset) > rounding) {
        leg.shift = mitre.normal * offset;
    }
    leg.section = mitre.last;
    leg.frame = swungTo(mitre.out);
    leg.mitre = mitre;
    leg.length = center.asVector().dotProduct(mitre.inward1) / mitre.out.dotProduct(mitre.inward1);
    leg.corner = {center.x - mitre.out.x * leg.length, 0, 0};
    return leg;
}

std::optional<WyeLeg> turningLeg(const DuctEnd& main, const DuctEnd& branch, const AcGePoint3d& center,
                                 double rounding, double largestOffset) {
    const auto mitre = mitreBetween(main.section, main.frame, branch.section, branch.frame);
    return mitre ? mitredLeg(*mitre, center, rounding, largestOffset)
                 : sweptLeg(main, branch, center, largestOffset);
}

// Its corner is set once the other branch's is known.
WyeLeg straightLeg(const DuctEnd& main, const DuctEnd& branch) {
    WyeLeg leg;
    const DuctEnd seen = seenFrom(main, branch, AcGePoint3d::kOrigin);
    const bool isTurned = !sectionSeenFrom(main.frame, branch.section, branch.frame);
    leg.section = seen.section;
    leg.frame = isTurned ? seen.frame : swungTo(seen.frame.x);
    return leg;
}

// Puts the corner of a straight leg where the other branch has its own.
bool placeStraightLeg(WyeLeg& leg, const AcGePoint3d& center, double x, double tolerance,
                      double largestOffset) {
    leg.length = (center.x - x) / leg.frame.x.x;
    leg.corner = center - leg.frame.x * leg.length;
    leg.corner.x = x;
    const double offset = std::hypot(leg.corner.y, leg.corner.z);
    if (offset <= tolerance) {
        leg.corner = {x, 0, 0};
    }
    return offset <= largestOffset;
}

bool areAlikeEnough(const DuctEnd& main, const DuctEnd& branch) {
    return isUsable(branch) && branch.section.rectangular == main.section.rectangular;
}

}  // namespace

double WyeLeg::throat() const {
    const double reached = mitre ? mitre->firstThroat() : sweep ? -sweep->arc().start.x : 0.0;
    return corner.x - reached;
}

double WyeLeg::branchThroat() const {
    if (mitre) {
        return mitre->lastThroat();
    }
    return sweep ? sweep->arc().end.asVector().dotProduct(frame.x) : 0.0;
}

std::vector<Outline> WyeLeg::outlines() const {
    if (!turns()) {
        return {placedOutline(flatOutline(section), corner, frame)};
    }
    std::vector<Outline> all = mitre ? std::vector{mitre->outline()} : sweep->outlines();
    for (Outline& outline : all) {
        outline = moved(outline, corner);
    }
    return all;
}

std::optional<WyeLegs> wyeLegsOf(const DuctEnd& main, const DuctEnd& branch1, const DuctEnd& branch2) {
    if (!isUsable(main) || !areAlikeEnough(main, branch1) || !areAlikeEnough(main, branch2)) {
        return std::nullopt;
    }
    WyeLegs legs;
    std::tie(legs.smallest, legs.largest) =
        std::minmax({main.section.width, main.section.height, branch1.section.width, branch1.section.height,
                     branch2.section.width, branch2.section.height});
    const double tolerance = legs.meetingTolerance();
    std::array<AcGePoint3d, 2> centers;
    for (int i = 0; i < 2; ++i) {
        const DuctEnd& branch = i == 0 ? branch1 : branch2;
        const AcGeVector3d out = directionIn(main.frame, branch.frame.x);
        centers[i] = toLocal(branch.center, main.center, main.frame);
        const bool goesOn = out.x > 0 && std::hypot(out.y, out.z) < kSmallestAngle * (1 - 1e-6);
        const std::optional<WyeLeg> leg =
            goesOn ? straightLeg(main, branch)
                   : turningLeg(main, branch, centers[i], legs.rounding(), legs.smallest / 2);
        if (!leg) {
            return std::nullopt;
        }
        legs.branches[i] = *leg;
    }
    auto& [leg1, leg2] = legs.branches;
    if (!leg1.turns() && !leg2.turns()) {
        return std::nullopt;
    }
    for (int i = 0; i < 2; ++i) {
        WyeLeg& leg = legs.branches[i];
        if (!leg.turns() &&
            !placeStraightLeg(leg, centers[i], legs.branches[1 - i].corner.x, tolerance, legs.smallest / 2)) {
            return std::nullopt;
        }
    }
    legs.junction = std::min(leg1.corner.x, leg2.corner.x);
    if (std::abs(leg1.corner.x - leg2.corner.x) > legs.smallest / 2 + tolerance) {
        return std::nullopt;
    }
    if (std::abs(leg1.corner.x - leg2.corner.x) <= legs.rounding()) {
        leg1.corner.x = leg2.corner.x = legs.junction;
    }
    return legs;
}

std::optional<double> crotchDistance(const WyeLeg& leg, const WyeLeg& other) {
    const double cosine = leg.frame.x.dotProduct(other.frame.x);
    const double sine = leg.frame.x.crossProduct(other.frame.x).length();
    double distance = std::max(0.0, leg.branchThroat());
    for (const Outline& outline : other.outlines()) {
        for (const AcGePoint3d& point : outline) {
            distance = std::max(distance, (point - leg.corner).dotProduct(leg.frame.x));
        }
    }
    if (cosine <= 0) {
        return distance;
    }
    if (sine < kSmallestAngle) {
        return std::nullopt;
    }
    const AcGeVector3d towardsOther = zeroedAlong(other.frame.x, leg.frame.x) / sine;
    const AcGeVector3d towardsLeg = zeroedAlong(leg.frame.x, other.frame.x) / sine;
    const double lead = (other.corner - leg.corner).dotProduct(towardsLeg);
    const double crotch = (lead + reach(other.section, other.frame, towardsLeg) +
                           reach(leg.section, leg.frame, towardsOther) * cosine) /
                          sine;
    return std::max(distance, crotch);
}

Outline moved(Outline outline, const AcGePoint3d& by) {
    for (AcGePoint3d& point : outline) {
        point += by.asVector();
    }
    return outline;
}

}  // namespace solids

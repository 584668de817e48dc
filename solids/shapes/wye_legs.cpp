#include "solids/shapes/wye_legs.h"

#include <algorithm>
#include <cmath>
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

std::optional<WyeLeg> turningLeg(const DuctEnd& main, const DuctEnd& branch, const AcGePoint3d& center,
                                 double tolerance) {
    WyeLeg leg;
    leg.mitre = mitreBetween(main.section, main.frame, branch.section, branch.frame);
    if (!leg.mitre || std::abs(center.asVector().dotProduct(leg.mitre->normal)) > tolerance) {
        return std::nullopt;
    }
    const AcGeVector3d& out = leg.mitre->out;
    leg.section = leg.mitre->last;
    leg.frame = swungTo(out);
    leg.length = center.asVector().dotProduct(leg.mitre->inward1) / out.dotProduct(leg.mitre->inward1);
    leg.corner = {center.x - out.x * leg.length, 0, 0};
    return leg;
}

// Its corner is set once the other branch's is known.
std::optional<WyeLeg> straightLeg(const DuctEnd& main, const DuctEnd& branch, const AcGeVector3d& out) {
    const auto section = sectionSeenFrom(main.frame, branch.section, branch.frame);
    if (!section) {
        return std::nullopt;
    }
    WyeLeg leg;
    leg.section = *section;
    leg.frame = swungTo(out);
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

// The mitre, or where a straight leg has its own section.
Outline outlineAtCorner(const WyeLeg& leg) {
    return leg.mitre ? moved(leg.mitre->outline(), leg.corner)
                     : placedOutline(flatOutline(leg.section), leg.corner, leg.frame);
}

}  // namespace

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
        const auto leg =
            goesOn ? straightLeg(main, branch, out) : turningLeg(main, branch, centers[i], tolerance);
        if (!leg) {
            return std::nullopt;
        }
        legs.branches[i] = *leg;
    }
    auto& [leg1, leg2] = legs.branches;
    if (!leg1.mitre && !leg2.mitre) {
        return std::nullopt;
    }
    for (int i = 0; i < 2; ++i) {
        WyeLeg& leg = legs.branches[i];
        if (!leg.mitre &&
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
    double distance = 0;
    if (leg.mitre) {
        distance = std::max(distance, leg.mitre->lastThroat());
    }
    for (const AcGePoint3d& point : outlineAtCorner(other)) {
        distance = std::max(distance, (point - leg.corner).dotProduct(leg.frame.x));
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

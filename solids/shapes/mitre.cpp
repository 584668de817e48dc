#include "solids/shapes/mitre.h"

#include "solids/shapes/bend.h"
#include "solids/shapes/matching.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace solids {

namespace {

constexpr double kSizeTolerance = 1e-6;  // of the largest size
constexpr double kRounding = 1e-12;      // of unit vectors' components

// Flat outlines lie in y and z.
double along(const AcGeVector3d& direction, const AcGePoint2d& flat) {
    return flat.x * direction.y + flat.y * direction.z;
}

// The corners of the rectangle around a section, in the order of its outline's groups.
std::array<AcGePoint2d, 4> cornersAround(const Section& section) {
    const double y = section.width / 2;
    const double z = section.height / 2;
    return {AcGePoint2d{y, z}, {-y, z}, {-y, -z}, {y, -z}};
}

template <typename Points, typename Make>
auto mapped(const Points& points, const Make& make) {
    std::array<AcGePoint3d, std::tuple_size_v<Points>> result;
    std::transform(points.begin(), points.end(), result.begin(), make);
    return result;
}

AcGeVector3d withoutRounding(AcGeVector3d direction) {
    for (double* const component : {&direction.x, &direction.y, &direction.z}) {
        *component = std::abs(*component) <= kRounding ? 0 : *component;
    }
    return direction / direction.length();
}

bool reachEquallyAcross(const Mitre& mitre) {
    const double tolerance = kSizeTolerance * std::max({mitre.first.width, mitre.first.height,
                                                        mitre.last.width, mitre.last.height});
    const FlatOutline first = flatOutline(mitre.first);
    const FlatOutline last = flatOutline(mitre.last);
    return std::equal(first.begin(), first.end(), last.begin(),
                      [&](const AcGePoint2d& a, const AcGePoint2d& b) {
                          return std::abs(along(mitre.normal, a) - along(mitre.normal, b)) <= tolerance;
                      });
}

}  // namespace

// An edge of the first leg keeps its y and z; in the plane of the bend it meets the last leg's edge there.
AcGePoint3d Mitre::meet(const AcGePoint2d& firstPoint, const AcGePoint2d& lastPoint) const {
    const double sine = out.dotProduct(inward1);
    const double x = (along(inward1, firstPoint) * out.x - along(inward1, lastPoint)) / sine;
    return {x, firstPoint.x, firstPoint.y};
}

// A point of the last section, given as the swung frame shows it, in which inward1 becomes inward2.
AcGePoint3d Mitre::atDistance(const AcGePoint2d& flat, double distance) const {
    return AcGePoint3d() + (out * distance + inward2 * along(inward1, flat) + normal * along(normal, flat));
}

Outline Mitre::outline() const {
    const FlatOutline from = flatOutline(first);
    const FlatOutline to = flatOutline(last);
    Outline met;
    std::transform(from.begin(), from.end(), to.begin(), met.begin(),
                   [this](const AcGePoint2d& a, const AcGePoint2d& b) { return meet(a, b); });
    return met;
}

std::array<AcGePoint3d, 4> Mitre::corners() const {
    const auto from = cornersAround(first);
    const auto to = cornersAround(last);
    std::array<AcGePoint3d, 4> met;
    std::transform(from.begin(), from.end(), to.begin(), met.begin(),
                   [this](const AcGePoint2d& a, const AcGePoint2d& b) { return meet(a, b); });
    return met;
}

Outline Mitre::before(double distance) const {
    return mapped(flatOutline(first),
                  [&](const AcGePoint2d& flat) { return AcGePoint3d(-distance, flat.x, flat.y); });
}

Outline Mitre::behind(double distance) const {
    return mapped(flatOutline(last), [&](const AcGePoint2d& flat) { return atDistance(flat, distance); });
}

std::array<AcGePoint3d, 4> Mitre::cornersBefore(double distance) const {
    return mapped(cornersAround(first),
                  [&](const AcGePoint2d& flat) { return AcGePoint3d(-distance, flat.x, flat.y); });
}

std::array<AcGePoint3d, 4> Mitre::cornersBehind(double distance) const {
    return mapped(cornersAround(last), [&](const AcGePoint2d& flat) { return atDistance(flat, distance); });
}

double Mitre::firstThroat() const {
    double reached = 0;
    for (const AcGePoint3d& point : outline()) {
        reached = std::max(reached, -point.x);
    }
    return reached;
}

double Mitre::lastThroat() const {
    double reached = 0;
    for (const AcGePoint3d& point : outline()) {
        reached = std::max(reached, point.asVector().dotProduct(out));
    }
    return reached;
}

std::optional<Section> sectionSeenFrom(const Frame& firstFrame, const Section& last, const Frame& lastFrame) {
    if (isRound(last)) {
        return last;
    }
    const MatchedOutlines matched = matchOutlines(last, firstFrame, last, lastFrame);
    if (std::abs(matched.twist) > kAlignedTurn) {
        return std::nullopt;
    }
    const bool isOnItsSide = std::lround(matched.madeUp / (std::numbers::pi / 2)) % 2 != 0;
    return isOnItsSide ? Section{last.rectangular, last.height, last.width} : last;
}

std::optional<Mitre> mitreBetween(const Section& first, const Frame& firstFrame, const Section& last,
                                  const Frame& lastFrame) {
    const AcGeVector3d out = directionIn(firstFrame, lastFrame.x);
    const auto bend = findBend(AcGePoint3d::kOrigin, AcGeVector3d::kXAxis, AcGePoint3d::kOrigin, out);
    if (!bend || first.rectangular != last.rectangular || isRound(first) != isRound(last)) {
        return std::nullopt;
    }
    const auto seen = sectionSeenFrom(firstFrame, last, lastFrame);
    if (!seen) {
        return std::nullopt;
    }
    Mitre mitre;
    mitre.first = first;
    mitre.last = *seen;
    mitre.out = out;
    mitre.normal = withoutRounding(bend->normal);
    mitre.inward1 = withoutRounding(bend->inward1);
    mitre.inward2 = withoutRounding(bend->inward2);
    return reachEquallyAcross(mitre) ? std::optional(mitre) : std::nullopt;
}

AcGePoint3d toWorld(const AcGePoint3d& local, const AcGePoint3d& origin, const Frame& frame) {
    return origin + (frame.x * local.x + frame.y * local.y + frame.z * local.z);
}

AcGePoint3d toLocal(const AcGePoint3d& point, const AcGePoint3d& origin, const Frame& frame) {
    const AcGeVector3d offset = point - origin;
    return {offset.dotProduct(frame.x), offset.dotProduct(frame.y), offset.dotProduct(frame.z)};
}

AcGeVector3d directionIn(const Frame& frame, const AcGeVector3d& direction) {
    return withoutRounding(
        {direction.dotProduct(frame.x), direction.dotProduct(frame.y), direction.dotProduct(frame.z)});
}

}  // namespace solids

#include "solids/shapes/wye.h"

#include "solids/booleans/booleans.h"
#include "solids/shapes/loft.h"
#include "solids/shapes/wye_legs.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace solids {

namespace {

constexpr double kAreaTolerance = 1e-6;  // of an area or a volume
constexpr double kShortestPiece = 1e-9;  // of a size

// The world coordinates of the box around a leg.
BoxCorners boxAround(const std::array<AcGePoint3d, 4>& freeEnd, const std::array<AcGePoint3d, 4>& atCorner,
                     const AcGePoint3d& corner, const DuctEnd& main) {
    BoxCorners box;
    for (int i = 0; i < 4; ++i) {
        box[i] = toWorld(freeEnd[i] + corner.asVector(), main.center, main.frame);
        box[i + 4] = toWorld(atCorner[i] + corner.asVector(), main.center, main.frame);
    }
    return box;
}

std::array<AcGePoint3d, 4> rectangleAround(const Section& section, const Frame& frame,
                                           const AcGePoint3d& center) {
    const AcGeVector3d y = frame.y * (section.width / 2);
    const AcGeVector3d z = frame.z * (section.height / 2);
    return {center + (y + z), center - y + z, center - y - z, center + y - z};
}

BoxCorners mainBox(const WyeLeg& turning, double start, const DuctEnd& main) {
    if (turning.mitre) {
        return boxAround(turning.mitre->cornersBefore(turning.corner.x - start), turning.mitre->corners(),
                         turning.corner, main);
    }
    return boxAround(rectangleAround(main.section, kMainFrame, {start, 0, 0}),
                     rectangleAround(main.section, kMainFrame, {turning.throat(), 0, 0}), {}, main);
}

BoxCorners legBox(const WyeLeg& leg, double distance, const DuctEnd& main) {
    if (leg.mitre) {
        std::array<AcGePoint3d, 4> freeEnd = leg.mitre->cornersBehind(distance);
        for (AcGePoint3d& corner : freeEnd) {
            corner += leg.shift;
        }
        return boxAround(freeEnd, leg.mitre->corners(), leg.corner, main);
    }
    return boxAround(rectangleAround(leg.section, leg.frame, leg.at(distance)),
                     rectangleAround(leg.section, leg.frame, leg.at(leg.branchThroat())), {}, main);
}

// Null when the walls cross.
std::optional<Mesh> simpleLoft(const std::vector<Outline>& outlines) {
    std::optional<Mesh> mesh = loft(outlines);
    return mesh && (isCertainlySimple(outlines) || isFreeOfSelfIntersection(*mesh)) ? std::move(mesh)
                                                                                    : std::nullopt;
}

// The main, the bend and the branch in one piece; start: as below.
std::optional<Mesh> sweptMesh(const WyeLeg& leg, double start) {
    const ArcSweep& sweep = *leg.sweep;
    std::vector<Outline> outlines = leg.outlines();
    // What is left of the main and the branch may be no more than rounding.
    const double shortest = kShortestPiece * std::max(leg.section.width, leg.section.height);
    const auto coincide = [&](const Outline& a, const Outline& b) {
        return a[0].distanceTo(b[0]) <= shortest;
    };
    const Outline first = sweep.startAt({start, 0, 0});
    const Outline last = sweep.endAt(leg.at(leg.length));
    if (coincide(first, outlines.front())) {
        outlines.front() = first;
    } else {
        outlines.insert(outlines.begin(), first);
    }
    if (coincide(last, outlines.back())) {
        outlines.back() = last;
    } else {
        outlines.push_back(last);
    }
    return simpleLoft(outlines);
}

// The main and one branch, in the coordinates of the main; start: where the main's leg begins, distance
// along it.
std::optional<Mesh> turningMesh(const WyeLeg& leg, double start) {
    std::vector outlines{moved(leg.mitre->before(leg.corner.x - start), leg.corner),
                         moved(leg.mitre->outline(), leg.corner)};
    const bool shifts = leg.shift.length() > 0;
    if (shifts) {
        outlines.push_back(moved(leg.mitre->behind(leg.branchThroat()), leg.corner));
    }
    outlines.push_back(moved(leg.mitre->behind(leg.length), leg.corner + leg.shift));
    return shifts ? simpleLoft(outlines) : loft(outlines);
}

// Where the branch is not simply the main continued, the leg changes between halfway and the corner.
std::optional<Mesh> straightMesh(const WyeLeg& leg, const Section& mainSection, double start) {
    const MatchedOutlines matched = matchOutlines(mainSection, kMainFrame, leg.section, leg.frame);
    const auto across = [&](double x) { return placedOutline(matched.start, {x, 0, 0}, kMainFrame); };
    const auto along = [&](double distance) {
        return placedOutline(matched.end, leg.at(distance), leg.frame);
    };
    const bool changes = leg.corner.y != 0 || leg.corner.z != 0 || leg.frame.x.y != 0 || leg.frame.x.z != 0 ||
                         leg.section.width != mainSection.width || leg.section.height != mainSection.height ||
                         matched.twist != 0;
    if (!changes) {
        return loft(std::array{across(start), along(leg.length)});
    }
    const std::vector outlines{across(start), across((start + leg.corner.x) / 2), along(0),
                               along(leg.length)};
    return simpleLoft(outlines);
}

std::optional<Mesh> legMesh(const WyeLeg& leg, const Section& mainSection, double start) {
    if (leg.sweep) {
        return sweptMesh(leg, start);
    }
    return leg.mitre ? turningMesh(leg, start) : straightMesh(leg, mainSection, start);
}

bool isOnePiece(const Mesh& mesh) {
    std::vector<std::int32_t> root(mesh.points.size());
    std::iota(root.begin(), root.end(), 0);
    const auto find = [&](std::int32_t point) {
        while (root[point] != point) {
            point = root[point] = root[root[point]];
        }
        return point;
    };
    for (const Triangle& triangle : mesh.triangles) {
        root[find(triangle.corners[0])] = find(triangle.corners[1]);
        root[find(triangle.corners[1])] = find(triangle.corners[2]);
    }
    const std::int32_t first = find(mesh.triangles.front().corners[0]);
    return std::all_of(mesh.triangles.begin(), mesh.triangles.end(),
                       [&](const Triangle& triangle) { return find(triangle.corners[0]) == first; });
}

bool isAbout(double value, double expected) {
    return std::abs(value - expected) <= kAreaTolerance * expected;
}

// Both bodies really share the main, and none of them covers an end of the other. The second one's start lies
// inside the first one.
bool areJoined(const Mesh& whole, const Mesh& part1, const Mesh& part2) {
    return isOnePiece(whole) && volumeOf(whole) < volumeOf(part1) + volumeOf(part2) &&
           isAbout(areaOf(whole, FaceKind::start), areaOf(part1, FaceKind::start)) &&
           isAbout(areaOf(whole, FaceKind::end), areaOf(part1, FaceKind::end) + areaOf(part2, FaceKind::end));
}

std::optional<Mesh> joined(const Mesh& part1, const Mesh& part2) {
    auto whole = unite(part1, part2);
    return whole && !whole->empty() && areJoined(*whole, part1, part2) ? whole : std::nullopt;
}

std::vector<AcGePoint3d> centerLine(const WyeLeg& leg, const DuctEnd& main, const DuctEnd& branch) {
    std::vector<AcGePoint3d> bend{AcGePoint3d::kOrigin};
    if (leg.sweep) {
        bend = leg.sweep->centerLine();
    }
    if (leg.mitre && leg.shift.length() > 0) {
        bend.push_back(AcGePoint3d::kOrigin + leg.frame.x * leg.branchThroat());
    }
    std::vector<AcGePoint3d> line{main.center};
    for (const AcGePoint3d& point : bend) {
        line.push_back(toWorld(leg.corner + point.asVector(), main.center, main.frame));
    }
    line.push_back(branch.center);
    return line;
}

void placeInWorld(Mesh& mesh, const DuctEnd& main) {
    for (AcGePoint3d& point : mesh.points) {
        point = toWorld(point, main.center, main.frame);
    }
}

// In the coordinates of the main, walls that lie in one plane do so exactly. Where the result would cross
// itself in coordinates far from the origin, the parts are joined there.
std::optional<Mesh> joinedInWorld(Mesh part1, Mesh part2, const DuctEnd& main) {
    auto whole = joined(part1, part2);
    if (whole) {
        placeInWorld(*whole, main);
    }
    if (whole && isFreeOfSelfIntersection(*whole)) {
        return whole;
    }
    placeInWorld(part1, main);
    placeInWorld(part2, main);
    return joined(part1, part2);
}

}  // namespace

std::optional<WyePlan> planWye(const DuctEnd& main, const DuctEnd& branch1, const DuctEnd& branch2,
                               double collar) {
    const auto legs = wyeLegsOf(main, branch1, branch2);
    if (!legs || !(collar >= 0 && collar <= kLargestSize)) {
        return std::nullopt;
    }
    const auto& [leg1, leg2] = legs->branches;
    const auto crotch1 = crotchDistance(leg1, leg2);
    const auto crotch2 = crotchDistance(leg2, leg1);
    if (!crotch1 || !crotch2) {
        return std::nullopt;
    }
    const double start = std::min(leg1.throat(), leg2.throat()) - collar;
    const double distance1 = *crotch1 + collar;
    const double distance2 = *crotch2 + collar;
    const double tolerance = legs->rounding();
    if (start < -tolerance || leg1.length < distance1 - tolerance || leg2.length < distance2 - tolerance) {
        return std::nullopt;
    }
    WyePlan plan;
    plan.start = main.center + main.frame.x * start;
    plan.junction = main.center + main.frame.x * legs->junction;
    plan.end1 = branch1.center - branch1.frame.x * (leg1.length - distance1);
    plan.end2 = branch2.center - branch2.frame.x * (leg2.length - distance2);
    plan.mainLeg = mainBox(leg1.turns() ? leg1 : leg2, start, main);
    plan.leg1 = legBox(leg1, distance1, main);
    plan.leg2 = legBox(leg2, distance2, main);
    return plan;
}

std::optional<Body> makeWye(const DuctEnd& main, const DuctEnd& branch1, const DuctEnd& branch2,
                            const AcGePoint3d& junction, int flags) {
    const auto legs = wyeLegsOf(main, branch1, branch2);
    if (!legs || !isUsable(junction)) {
        return std::nullopt;
    }
    const auto& [leg1, leg2] = legs->branches;
    const double tolerance = legs->rounding();
    const AcGePoint3d expected = main.center + main.frame.x * legs->junction;
    const bool isRoomy = std::min(leg1.throat(), leg2.throat()) >= -tolerance &&
                         leg1.length >= crotchDistance(leg1, leg2).value_or(HUGE_VAL) - tolerance &&
                         leg2.length >= crotchDistance(leg2, leg1).value_or(HUGE_VAL) - tolerance;
    if (!isRoomy || junction.distanceTo(expected) > legs->meetingTolerance()) {
        return std::nullopt;
    }
    // The second part begins on the way, inside the first one: walls of the main in common are enough to find
    // out about.
    const double onTheWay = std::min(leg1.throat(), leg2.throat()) / 2;
    auto part1 = legMesh(leg1, main.section, 0);
    auto part2 = legMesh(leg2, main.section, onTheWay);
    auto mesh = part1 && part2 ? joinedInWorld(std::move(*part1), std::move(*part2), main) : std::nullopt;
    if (!mesh) {
        return std::nullopt;
    }
    return Body{std::move(*mesh),
                BodyKind::wye,
                flags,
                {centerLine(leg1, main, branch1), centerLine(leg2, main, branch2)}};
}

}  // namespace solids

#include "solids/booleans/booleans.h"

#include "solids/booleans/coincidence.h"
#include "solids/booleans/corefinement.h"
#include "solids/booleans/plane_cut.h"
#include "solids/booleans/short_edges.h"
#include "solids/booleans/standing.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace solids {

namespace {

// Coordinates are taken for the same when they differ by less than this part of the largest: some hundred
// steps of double precision, which rotating and projecting leaves between faces that are meant to be flush.
constexpr double kSameCoordinate = 1e-13;
// The least height of new triangles, as a part of the largest coordinate.
constexpr double kThinnest = 1e-15;
// By how much of its size an operand grows when the exact result cannot be held, one try after the other.
constexpr double kGrowths[] = {1e-9, 1e-8, 1e-7};
// How far the plane of a cut is moved, in sizes of the mesh, when the outline of the cut cannot be filled, as
// where it touches itself: one move after the other.
constexpr double kPlaneMoves[] = {0, 1e-9, -1e-9, 1e-8, -1e-8, 1e-7, -1e-7};
// So many pairs of triangles in common planes are left to exact arithmetic (some tenth of a second).
constexpr std::size_t kMostCoplanarPairs = 300;

bool isFinite(const AcGePoint3d& point) {
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

bool isUsable(const Mesh& mesh) {
    return std::all_of(mesh.points.begin(), mesh.points.end(), isFinite) && isClosed(mesh);
}

Box grown(const Box& box, double by) {
    const AcGeVector3d margin{by, by, by};
    return {box.low - margin, box.high + margin};
}

double largestCoordinate(const Box& box) {
    double largest = 0;
    for (int axis = 0; axis < 3; ++axis) {
        largest = std::max({largest, std::fabs(box.low[axis]), std::fabs(box.high[axis])});
    }
    return largest;
}

double sameCoordinate(const Mesh& one, const Mesh& other) {
    return kSameCoordinate * std::max(largestCoordinate(boxOf(one)), largestCoordinate(boxOf(other)));
}

// The same body, larger by that part of its size in every direction, and moved by less than that: it overlaps
// what it touched, and passes what it was flush with, in no special position.
Mesh grownBody(Mesh mesh, double part) {
    const Box box = boxOf(mesh);
    const double growth = part * (box.high - box.low).length();
    const AcGeVector3d shift = AcGeVector3d{0.31, 0.17, 0.23} * growth;
    for (AcGePoint3d& point : mesh.points) {
        for (int axis = 0; axis < 3; ++axis) {
            const double half = (box.high[axis] - box.low[axis]) / 2;
            const double fromCentre = point[axis] - (box.low[axis] + half);
            point[axis] += fromCentre / half * growth;
        }
        point += shift;
    }
    return mesh;
}

// Whether a new triangle is so thin that the next operation on its coordinates may find it without area.
bool hasNeedles(const Mesh& mesh, const std::vector<bool>& changed) {
    const double thinnest = kThinnest * (mesh.empty() ? 0.0 : largestCoordinate(boxOf(mesh)));
    for (std::size_t i = 0; i < mesh.triangles.size(); ++i) {
        const Triangle& triangle = mesh.triangles[i];
        double longest = 0;
        for (int corner = 0; corner < 3; ++corner) {
            longest = std::max(
                longest, mesh.corner(triangle, corner).distanceTo(mesh.corner(triangle, (corner + 1) % 3)));
        }
        if (changed[i] && doubleAreaNormal(mesh, triangle).length() <= thinnest * longest) {
            return true;
        }
    }
    return false;
}

// Where the operands' points were moved before, parts of each alone can have come to cross as well.
enum class Points { asGiven, moved };

// The one of a few nearly equal numbers that has the fewest digits: 0 rather than 1e-17.
double roundest(std::span<double* const> values) {
    const auto zeros = [](const double* value) {
        return std::countr_zero(std::bit_cast<std::uint64_t>(*value));
    };
    return **std::max_element(values.begin(), values.end(), [&](const double* one, const double* other) {
        return zeros(one) < zeros(other);
    });
}

// Gives coordinates along each axis that differ by rounding only one value, so that faces and corners that
// are meant to meet do. Sloping faces stay as they are.
Points align(Mesh& one, Mesh& other) {
    const double tolerance = sameCoordinate(one, other);
    std::vector<double*> values;
    Points points = Points::asGiven;
    for (int axis = 0; axis < 3; ++axis) {
        values.clear();
        for (Mesh* const mesh : {&one, &other}) {
            for (AcGePoint3d& point : mesh->points) {
                values.push_back(&point[axis]);
            }
        }
        std::sort(values.begin(), values.end(), [](const double* a, const double* b) { return *a < *b; });
        for (auto begin = values.begin(); begin != values.end();) {
            const auto apart = [&](const double* a, const double* b) { return *b - *a > tolerance; };
            const auto gap = std::adjacent_find(begin, values.end(), apart);
            const auto end = gap == values.end() ? gap : gap + 1;
            const double value = roundest({begin, end});
            std::for_each(begin, end, [&](double* coordinate) {
                points = *coordinate == value ? points : Points::moved;
                *coordinate = value;
            });
            begin = end;
        }
    }
    return points;
}

// Results of one operation after another. One that is valid but for needles is kept for the case that there
// is no better one.
struct Attempts {
    Combination combination;
    std::optional<Mesh> withNeedles;
};

std::optional<Mesh> combineOnce(const Mesh& first, const Mesh& second, Points points, Attempts& attempts) {
    std::optional<Corefined> result = corefine(first, second, attempts.combination);
    if (!result) {
        return std::nullopt;
    }
    const bool crosses = crossesItself(result->mesh, points == Points::asGiven ? &result->changed : nullptr);
    if (!crosses && !hasNeedles(result->mesh, result->changed)) {
        return std::move(result->mesh);
    }
    if (!crosses && !attempts.withNeedles) {
        attempts.withNeedles = result->mesh;
    }
    // Edges hardly longer than rounding, which an operand may have brought along, are behind most of it.
    for (const double times : {1.0, 10.0, 100.0}) {
        std::optional<Mesh> clean = withoutShortEdges(result->mesh, times * sameCoordinate(first, second));
        if (!clean || crossesItself(*clean)) {
            continue;
        }
        if (!hasNeedles(*clean, std::vector<bool>(clean->triangles.size(), true))) {
            return clean;
        }
        if (!attempts.withNeedles) {
            attempts.withNeedles = std::move(clean);
        }
    }
    return std::nullopt;
}

// Where an operand has grown past a face that it was flush with, slivers as narrow as the growth are left.
Mesh withoutSlivers(Mesh mesh, double width) {
    constexpr double kSafety = 8;  // they may slope
    std::optional<Mesh> clean = withoutShortEdges(mesh, kSafety * width);
    return clean && !crossesItself(*clean) ? std::move(*clean) : std::move(mesh);
}

std::optional<Mesh> combineGrown(const Mesh& first, const Mesh& second, Attempts& attempts) {
    const double size = (boxOf(second).high - boxOf(second).low).length();
    for (const double growth : kGrowths) {
        if (std::optional<Mesh> result =
                combineOnce(first, grownBody(second, growth), Points::moved, attempts)) {
            return withoutSlivers(std::move(*result), growth * size);
        }
    }
    return std::nullopt;
}

// Of bodies that have whole faces in common.
std::optional<Mesh> combineCoincident(const Mesh& first, const Mesh& second, Combination combination) {
    const bool unites = combination == Combination::unite;
    if (areIdentical(first, second)) {
        return unites ? first : Mesh();
    }
    std::optional<Mesh> joined = joinedAtFace(first, second);
    return joined && !unites ? first : joined;
}

std::optional<Mesh> combine(const Mesh& first, const Mesh& second, Combination combination) {
    if (combination == Combination::unite) {
        if (std::optional<Mesh> joined = joinedWhereStanding(first, second)) {
            return joined;
        }
    }
    Mesh alignedFirst = first, alignedSecond = second;
    const Points points = align(alignedFirst, alignedSecond);
    if (std::optional<Mesh> result = combineCoincident(alignedFirst, alignedSecond, combination)) {
        return result;
    }
    const bool crowded = coplanarPairs(alignedFirst, alignedSecond) > kMostCoplanarPairs;
    Attempts attempts{combination, std::nullopt};
    std::optional<Mesh> result;
    if (crowded) {
        result = combineGrown(first, second, attempts);
    }
    if (!result) {
        result = combineOnce(alignedFirst, alignedSecond, points, attempts);
    }
    if (!result && !crowded) {
        result = combineGrown(first, second, attempts);
    }
    return result ? result : std::move(attempts.withNeedles);
}

// A box that holds all of the mesh that lies below the plane; of its faces only the one in the plane reaches
// it.
Mesh boxBelow(const Mesh& mesh, const AcGePoint3d& onPlane, const AcGeVector3d& normal, FaceKind kind) {
    const Box box = boxOf(mesh);
    const AcGePoint3d middle = box.low + (box.high - box.low) * 0.5;
    const AcGePoint3d foot = middle - normal * (middle - onPlane).dotProduct(normal);
    const double size = 2 * (box.high - box.low).length();
    const AcGeVector3d u = normal.perpVector().normalize() * size;
    const AcGeVector3d v = normal.crossProduct(u);
    Mesh below;
    for (const AcGePoint3d& level : {foot - normal * size, foot}) {
        for (const AcGeVector3d& corner : {-u - v, u - v, u + v, v - u}) {
            below.points.push_back(level + corner);
        }
    }
    constexpr std::array<std::array<std::int32_t, 3>, 12> corners{{{0, 2, 1},
                                                                   {0, 3, 2},
                                                                   {4, 5, 6},
                                                                   {4, 6, 7},
                                                                   {0, 1, 5},
                                                                   {0, 5, 4},
                                                                   {1, 2, 6},
                                                                   {1, 6, 5},
                                                                   {2, 3, 7},
                                                                   {2, 7, 6},
                                                                   {3, 0, 4},
                                                                   {3, 4, 7}}};
    for (const auto& triangle : corners) {
        below.triangles.push_back({triangle, kind});
    }
    return below;
}

}  // namespace

std::optional<Mesh> unite(const Mesh& first, const Mesh& second) {
    if (first.empty() || second.empty()) {
        return first.empty() ? second : first;
    }
    if (!isUsable(first) || !isUsable(second)) {
        return std::nullopt;
    }
    if (!overlap(grown(boxOf(first), sameCoordinate(first, second)), boxOf(second))) {
        Mesh both = first;
        append(both, second);
        return both;
    }
    return combine(first, second, Combination::unite);
}

std::optional<Mesh> subtract(const Mesh& from, const Mesh& what) {
    if (from.empty() || what.empty()) {
        return from;
    }
    if (!isUsable(from) || !isUsable(what)) {
        return std::nullopt;
    }
    if (!overlap(boxOf(from), boxOf(what))) {
        return from;
    }
    return combine(from, what, Combination::subtract);
}

std::optional<Mesh> cutByPlane(const Mesh& mesh, const AcGePoint3d& onPlane, const AcGeVector3d& normal,
                               FaceKind kindOfCut) {
    const double length = normal.length();
    if (mesh.empty()) {
        return mesh;
    }
    if (!isUsable(mesh) || !isFinite(onPlane) || !std::isfinite(length) || length == 0) {
        return std::nullopt;
    }
    const AcGeVector3d unit = normal / length;
    const double size = (boxOf(mesh).high - boxOf(mesh).low).length();
    for (const double move : kPlaneMoves) {
        const Distances distances = distancesFrom(onPlane + unit * (move * size), unit, mesh);
        if (!distances.anyBelow || !distances.anyAbove) {
            return distances.anyAbove ? mesh : Mesh();
        }
        std::optional<PlaneCut> cut = partAbove(mesh, distances, unit, kindOfCut);
        if (cut && isClosed(cut->mesh) && !hasNeedles(cut->mesh, cut->changed) &&
            !crossesItself(cut->mesh, &cut->changed)) {
            return std::move(cut->mesh);
        }
    }
    return combine(mesh, boxBelow(mesh, onPlane, unit, kindOfCut), Combination::subtract);
}

bool isFreeOfSelfIntersection(const Mesh& mesh) {
    return isUsable(mesh) && !crossesItself(mesh);
}

}  // namespace solids

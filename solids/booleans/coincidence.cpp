#include "solids/booleans/coincidence.h"

#include "solids/booleans/corefinement.h"
#include "solids/booleans/outlines.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace solids {

namespace {

// Of the bodies' size, or of a unit normal.
constexpr double kSamePlane = 1e-11;

using Coordinates = std::array<double, 3>;

Coordinates coordinatesOf(const AcGePoint3d& point) {
    return {point.x + 0.0, point.y + 0.0, point.z + 0.0};  // no negative zero
}

struct FlatTriangle {
    std::array<AcGePoint3d, 3> corners;
    AcGeVector3d normal;  // unit
    Box box;
};

std::vector<FlatTriangle> flatTriangles(const Mesh& mesh) {
    std::vector<FlatTriangle> result;
    result.reserve(mesh.triangles.size());
    for (const Triangle& triangle : mesh.triangles) {
        const AcGePoint3d &a = mesh.corner(triangle, 0), &b = mesh.corner(triangle, 1),
                          &c = mesh.corner(triangle, 2);
        const AcGeVector3d normal = doubleAreaNormal(mesh, triangle);
        FlatTriangle flat{{a, b, c}, normal / std::max(normal.length(), 1e-300), {}};
        for (int axis = 0; axis < 3; ++axis) {
            flat.box.low[axis] = std::min({a[axis], b[axis], c[axis]});
            flat.box.high[axis] = std::max({a[axis], b[axis], c[axis]});
        }
        result.push_back(flat);
    }
    return result;
}

// Whether an edge of the one has all of the other outside.
bool edgeSeparates(const FlatTriangle& one, const FlatTriangle& other, double tolerance) {
    for (std::size_t i = 0; i < 3; ++i) {
        const AcGePoint3d& start = one.corners[i];
        const AcGeVector3d outward = (one.corners[(i + 1) % 3] - start).crossProduct(one.normal);
        const double margin = tolerance * outward.length();
        if (std::all_of(other.corners.begin(), other.corners.end(), [&](const AcGePoint3d& corner) {
                return (corner - start).dotProduct(outward) > margin;
            })) {
            return true;
        }
    }
    return false;
}

bool touchInPlane(const FlatTriangle& one, const FlatTriangle& other, double tolerance) {
    for (int axis = 0; axis < 3; ++axis) {
        if (one.box.low[axis] > other.box.high[axis] + tolerance ||
            other.box.low[axis] > one.box.high[axis] + tolerance) {
            return false;
        }
    }
    return std::fabs((other.corners[0] - one.corners[0]).dotProduct(one.normal)) <= tolerance &&
           one.normal.crossProduct(other.normal).length() <= kSamePlane &&
           !edgeSeparates(one, other, tolerance) && !edgeSeparates(other, one, tolerance);
}

double sizeOf(const Mesh& mesh) {
    const Box box = boxOf(mesh);
    return (box.high - box.low).length();
}

// Triangles of points that are numbered over both meshes: equal ones have the same number.
struct Numbered {
    std::vector<AcGePoint3d> points;
    std::vector<bool> shared;  // of each point: both meshes have it
    std::vector<Triangle> ofOne, ofOther;
};

Numbered numbered(const Mesh& one, const Mesh& other) {
    Numbered result;
    std::map<Coordinates, std::int32_t> numbers;
    const auto renumber = [&](const Mesh& mesh, std::vector<Triangle>& triangles, bool second) {
        std::vector<std::int32_t> numberOf;
        for (const AcGePoint3d& point : mesh.points) {
            const auto [found, isNew] =
                numbers.emplace(coordinatesOf(point), static_cast<std::int32_t>(result.points.size()));
            if (isNew) {
                result.points.push_back(point);
                result.shared.push_back(false);
            } else if (second) {
                result.shared[static_cast<std::size_t>(found->second)] = true;
            }
            numberOf.push_back(found->second);
        }
        triangles = mesh.triangles;
        for (Triangle& triangle : triangles) {
            for (std::int32_t& corner : triangle.corners) {
                corner = numberOf[static_cast<std::size_t>(corner)];
            }
        }
    };
    renumber(one, result.ofOne, false);
    renumber(other, result.ofOther, true);
    return result;
}

// The edges that only one of the triangles has, turned round, sorted.
std::vector<Edge> turnedOutline(const std::vector<Triangle>& triangles) {
    std::vector<Edge> edges = openEdges(triangles);
    for (Edge& edge : edges) {
        std::swap(edge.first, edge.second);
    }
    std::sort(edges.begin(), edges.end());
    return edges;
}

// Moves the triangles all of whose points both meshes have to the front; the result says how many they are.
std::size_t sharedToFront(const Numbered& meshes, std::vector<Triangle>& triangles) {
    const auto end = std::stable_partition(triangles.begin(), triangles.end(), [&](const Triangle& triangle) {
        return std::all_of(triangle.corners.begin(), triangle.corners.end(), [&](std::int32_t corner) {
            return meshes.shared[static_cast<std::size_t>(corner)];
        });
    });
    return static_cast<std::size_t>(end - triangles.begin());
}

// How far corners of a flat face may lie out of its plane: far from the origin, rounding counts more than
// size.
double flatness(const Mesh& mesh) {
    constexpr double kRounding = 2e-13;  // of the largest coordinate
    const Box box = boxOf(mesh);
    double largest = 0;
    for (int axis = 0; axis < 3; ++axis) {
        largest = std::max({largest, std::fabs(box.low[axis]), std::fabs(box.high[axis])});
    }
    return std::max(kSamePlane * sizeOf(mesh), kRounding * largest);
}

bool areFlat(const std::vector<AcGePoint3d>& points, const std::vector<Triangle>& triangles,
             double tolerance) {
    const auto point = [&](std::int32_t corner) { return points[static_cast<std::size_t>(corner)]; };
    const AcGePoint3d origin = point(triangles.front().corners[0]);
    AcGeVector3d normal;
    for (const Triangle& triangle : triangles) {
        const auto& [a, b, c] = triangle.corners;
        normal += (point(b) - point(a)).crossProduct(point(c) - point(a));
    }
    const double length = normal.length();
    return length > 0 && std::all_of(triangles.begin(), triangles.end(), [&](const Triangle& triangle) {
               return std::all_of(triangle.corners.begin(), triangle.corners.end(), [&](std::int32_t corner) {
                   return std::fabs((point(corner) - origin).dotProduct(normal)) <= tolerance * length;
               });
           });
}

std::vector<std::array<std::int32_t, 3>> sortedCorners(const std::vector<Triangle>& triangles) {
    std::vector<std::array<std::int32_t, 3>> result;
    for (const Triangle& triangle : triangles) {
        auto corners = triangle.corners;
        std::rotate(corners.begin(), std::min_element(corners.begin(), corners.end()), corners.end());
        result.push_back(corners);
    }
    std::sort(result.begin(), result.end());
    return result;
}

}  // namespace

std::size_t coplanarPairs(const Mesh& one, const Mesh& other) {
    const double tolerance = kSamePlane * (sizeOf(one) + sizeOf(other));
    const std::vector<FlatTriangle> others = flatTriangles(other);
    std::size_t count = 0;
    for (const FlatTriangle& triangle : flatTriangles(one)) {
        count += static_cast<std::size_t>(
            std::count_if(others.begin(), others.end(), [&](const FlatTriangle& candidate) {
                return touchInPlane(triangle, candidate, tolerance);
            }));
    }
    return count;
}

bool areIdentical(const Mesh& one, const Mesh& other) {
    if (one.triangles.size() != other.triangles.size()) {
        return false;
    }
    const Numbered meshes = numbered(one, other);
    return sortedCorners(meshes.ofOne) == sortedCorners(meshes.ofOther);
}

std::optional<Mesh> joinedAtFace(const Mesh& one, const Mesh& other) {
    Numbered meshes = numbered(one, other);
    const auto shared = static_cast<std::ptrdiff_t>(sharedToFront(meshes, meshes.ofOne));
    const auto sharedOfOther = static_cast<std::ptrdiff_t>(sharedToFront(meshes, meshes.ofOther));
    const std::vector<Triangle> face(meshes.ofOne.begin(), meshes.ofOne.begin() + shared);
    const std::vector<Triangle> otherFace(meshes.ofOther.begin(), meshes.ofOther.begin() + sharedOfOther);
    if (face.empty() || otherFace.empty() || openEdges(face) != turnedOutline(otherFace) ||
        !areFlat(meshes.points, face, flatness(one)) || !areFlat(meshes.points, otherFace, flatness(other))) {
        return std::nullopt;
    }
    std::vector<Triangle> triangles(meshes.ofOne.begin() + shared, meshes.ofOne.end());
    triangles.insert(triangles.end(), meshes.ofOther.begin() + sharedOfOther, meshes.ofOther.end());
    Mesh joined{std::move(meshes.points), std::move(triangles)};
    dropUnusedPoints(joined);
    if (!isClosed(joined) || crossesItself(joined)) {
        return std::nullopt;
    }
    return joined;
}

}  // namespace solids

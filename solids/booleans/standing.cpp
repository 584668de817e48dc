#include "solids/booleans/standing.h"

#include "solids/booleans/corefinement.h"
#include "solids/booleans/outlines.h"

#include <algorithm>
#include <cmath>

namespace solids {

namespace {

// Of the bodies' size.
constexpr double kInPlane = 1e-11;
// Of the area of the face that is stood on.
constexpr double kSameArea = 1e-9;

struct Plane {
    AcGePoint3d point;
    AcGeVector3d normal;  // unit
    double distance(const AcGePoint3d& from) const { return (from - point).dotProduct(normal); }
};

// A mesh apart from its triangles in a plane.
struct Parted {
    std::vector<Triangle> face, rest;
};

Parted partedAt(const Mesh& mesh, const Plane& plane, double tolerance) {
    Parted parted;
    for (const Triangle& triangle : mesh.triangles) {
        const bool isInPlane = std::ranges::all_of(triangle.corners, [&](std::int32_t corner) {
            return std::fabs(plane.distance(mesh.points[static_cast<std::size_t>(corner)])) <= tolerance;
        });
        (isInPlane ? parted.face : parted.rest).push_back(triangle);
    }
    return parted;
}

bool areAllBehind(const Mesh& mesh, const Plane& plane, double tolerance) {
    return std::ranges::all_of(mesh.points,
                               [&](const AcGePoint3d& point) { return plane.distance(point) <= tolerance; });
}

double areaOfTriangles(const Mesh& mesh, const std::vector<Triangle>& triangles) {
    double doubled = 0;
    for (const Triangle& triangle : triangles) {
        doubled += doubleAreaNormal(mesh, triangle).length();
    }
    return doubled / 2;
}

// The plane of a flat side of the mesh that has all of it behind and all of the other before it.
std::optional<Plane> planeBetween(const Mesh& mesh, const Mesh& other, double tolerance) {
    std::vector<AcGeVector3d> tried;
    for (const Triangle& triangle : mesh.triangles) {
        const AcGeVector3d normal = doubleAreaNormal(mesh, triangle);
        const double length = normal.length();
        if (length == 0 || std::ranges::any_of(tried, [&](const AcGeVector3d& direction) {
                return (direction - normal / length).length() < 1e-9;
            })) {
            continue;
        }
        tried.push_back(normal / length);
        const Plane plane{mesh.corner(triangle, 0), tried.back()};
        const Plane turned{plane.point, -plane.normal};
        if (areAllBehind(other, turned, tolerance) && areAllBehind(mesh, plane, tolerance)) {
            return plane;
        }
        // Round sides have many directions, and none of them is stood on.
        if (tried.size() > 16) {
            break;
        }
    }
    return std::nullopt;
}

std::vector<Triangle> shifted(std::vector<Triangle> triangles, std::size_t by) {
    for (Triangle& triangle : triangles) {
        for (std::int32_t& corner : triangle.corners) {
            corner += static_cast<std::int32_t>(by);
        }
    }
    return triangles;
}

// The base's face in the plane gets a hole where the other body stands, whose own face goes.
std::optional<Mesh> withStanding(const Mesh& base, const Mesh& standing, const Plane& plane,
                                 double tolerance) {
    const Parted below = partedAt(base, plane, tolerance);
    Parted above = partedAt(standing, plane, tolerance);
    if (below.face.empty() || above.face.empty()) {
        return std::nullopt;
    }
    const double faceArea = areaOfTriangles(base, below.face);
    const double footArea = areaOfTriangles(standing, above.face);
    above.face = shifted(std::move(above.face), base.points.size());
    Mesh joined{base.points, below.rest};
    append(joined, {standing.points, std::move(above.rest)});

    // The foot faces against the plane, so its outline runs round the hole the way that holes do.
    std::vector<Edge> outline = openEdges(below.face);
    const std::vector<Edge> hole = openEdges(above.face);
    outline.insert(outline.end(), hole.begin(), hole.end());
    const auto filling = fillFlat(joined.points, outline, plane.normal);
    if (!filling) {
        return std::nullopt;
    }
    std::vector<bool> changed(joined.triangles.size(), false);
    const std::size_t kept = joined.triangles.size();
    for (const auto& corners : *filling) {
        joined.triangles.push_back({corners, below.face.front().kind});
    }
    changed.resize(joined.triangles.size(), true);
    const std::vector<Triangle> filled(joined.triangles.begin() + static_cast<std::ptrdiff_t>(kept),
                                       joined.triangles.end());
    // A foot that does not stand within the face leaves another area.
    if (std::fabs(areaOfTriangles(joined, filled) - (faceArea - footArea)) > kSameArea * faceArea ||
        !isClosed(joined) || crossesItself(joined, &changed)) {
        return std::nullopt;
    }
    dropUnusedPoints(joined);
    return joined;
}

}  // namespace

std::optional<Mesh> joinedWhereStanding(const Mesh& one, const Mesh& other) {
    const Box box1 = boxOf(one), box2 = boxOf(other);
    const double tolerance = kInPlane * ((box1.high - box1.low).length() + (box2.high - box2.low).length());
    for (const auto& [base, standing] : {std::pair(&one, &other), std::pair(&other, &one)}) {
        const std::optional<Plane> plane = planeBetween(*base, *standing, tolerance);
        std::optional<Mesh> joined = plane ? withStanding(*base, *standing, *plane, tolerance) : std::nullopt;
        if (joined) {
            return joined;
        }
    }
    return std::nullopt;
}

}  // namespace solids

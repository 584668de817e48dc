#include "solids/shapes/skin.h"

#include "solids/booleans/booleans.h"
#include "solids/shapes/folding.h"
#include "solids/shapes/section.h"

#include <algorithm>
#include <cmath>

namespace solids {

namespace {

constexpr double kFlatness = 1e-6;  // how far, of its extent, a plane outline may leave its plane

bool isFinite(const AcGePoint3d& point) {
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

// Without points that repeat the one before.
std::vector<AcGePoint3d> distinctPoints(std::span<const AcGePoint3d> points) {
    std::vector<AcGePoint3d> kept;
    for (const AcGePoint3d& point : points) {
        if (kept.empty() || kept.back().distanceTo(point) > kSmallestSize) {
            kept.push_back(point);
        }
    }
    while (kept.size() > 1 && kept.back().distanceTo(kept.front()) <= kSmallestSize) {
        kept.pop_back();
    }
    return kept;
}

struct FittedPlane {
    AcGeVector3d normal;                  // unit; the outline runs counter-clockwise about it
    std::vector<AcGePoint2d> projection;  // of the points
    bool isThroughAll = false;
};

// By Newell's method: the normal is that of the vector area of the outline. Null when it encloses none.
std::optional<FittedPlane> planeOf(std::span<const AcGePoint3d> points) {
    const AcGePoint3d& origin = points.front();
    AcGeVector3d doubleArea;
    double extent = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const AcGeVector3d from = points[i] - origin;
        doubleArea += from.crossProduct(points[(i + 1) % points.size()] - origin);
        extent = std::max(extent, from.length());
    }
    if (!(doubleArea.length() > kSmallestSize * extent)) {
        return std::nullopt;
    }
    FittedPlane plane{doubleArea / doubleArea.length(), {}, true};
    const AcGeVector3d y = plane.normal.crossProduct(plane.normal.perpVector()).normal();
    const AcGeVector3d x = y.crossProduct(plane.normal);
    double low = 0;
    double high = 0;
    for (const AcGePoint3d& point : points) {
        const AcGeVector3d offset = point - origin;
        plane.projection.emplace_back(offset.dotProduct(x), offset.dotProduct(y));
        low = std::min(low, offset.dotProduct(plane.normal));
        high = std::max(high, offset.dotProduct(plane.normal));
    }
    plane.isThroughAll = high - low <= kFlatness * extent;
    return plane;
}

// triangles: the sheet's face through the points, seen from the side that the points run counter-clockwise
// from. moves: from the points to the other face. towards: whether they go to that side.
Mesh sheetMesh(std::span<const AcGePoint3d> points, std::span<const PointTriple> triangles,
               std::span<const AcGeVector3d> moves, bool towards) {
    Mesh mesh;
    mesh.points.assign(points.begin(), points.end());
    const auto count = static_cast<std::int32_t>(points.size());
    for (std::int32_t i = 0; i < count; ++i) {
        mesh.points.push_back(points[i] + moves[i]);
    }
    const auto add = [&](std::int32_t a, std::int32_t b, std::int32_t c, FaceKind kind) {
        mesh.triangles.push_back({towards ? PointTriple{a, b, c} : PointTriple{a, c, b}, kind});
    };
    for (const auto& [a, b, c] : triangles) {
        add(a, c, b, FaceKind::wall);
        add(count + a, count + b, count + c, FaceKind::other);
    }
    for (std::int32_t i = 0; i < count; ++i) {
        const std::int32_t next = (i + 1) % count;
        add(i, next, count + next, FaceKind::other);
        add(i, count + next, count + i, FaceKind::other);
    }
    return mesh;
}

}  // namespace

std::optional<Body> makeSkin(std::span<const AcGePoint3d> points, double thickness) {
    if (!std::isfinite(thickness) || std::abs(thickness) < kSmallestSize ||
        !std::all_of(points.begin(), points.end(), isFinite)) {
        return std::nullopt;
    }
    const std::vector<AcGePoint3d> outline = distinctPoints(points);
    const auto plane = outline.size() < 3 ? std::nullopt : planeOf(outline);
    if (!plane || !isSimple(plane->projection, kSmallestSize)) {
        return std::nullopt;
    }
    auto triangles = triangulate(plane->projection);
    if (!triangles) {
        return std::nullopt;
    }
    std::vector<AcGeVector3d> moves(outline.size(), plane->normal * thickness);
    if (!plane->isThroughAll) {
        flatten(outline, plane->projection, *triangles);
        auto folded = displacements(outline, *triangles, thickness);
        if (!folded) {
            return std::nullopt;
        }
        moves = std::move(*folded);
    }
    Body body{sheetMesh(outline, *triangles, moves, thickness > 0), BodyKind::skin, 0, {}};
    if (!plane->isThroughAll && !isFreeOfSelfIntersection(body.mesh)) {
        return std::nullopt;
    }
    return body;
}

}  // namespace solids

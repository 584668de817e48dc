#pragma once

// Outlines in a plane: whether they cross themselves, and triangles that fill them.

#include "host/api/geometry.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace solids {

using PointTriple = std::array<std::int32_t, 3>;  // indices, counter-clockwise

// The length of the diagonal of the box around the points.
double extentOf(std::span<const AcGePoint2d> points);

// Twice the signed area of the triangle, positive when it runs counter-clockwise.
inline double turn(const AcGePoint2d& a, const AcGePoint2d& b, const AcGePoint2d& c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

// True when no two edges come closer to each other than the clearance, apart from neighbours, which must not
// fold back onto each other. The last point is joined to the first one.
bool isSimple(std::span<const AcGePoint2d> outline, double clearance);

// Fills a simple outline that runs counter-clockwise with triangles between its points. Points in the middle
// of a straight edge are corners of triangles too; no triangle is without area. Null when rounding leaves no
// way to do so.
//
// By clipping ears (G. H. Meisters, Polygons have ears, 1975), each tested against the points that are no
// convex corners: n points, r of them not convex, take time n * r at worst.
std::optional<std::vector<PointTriple>> triangulate(std::span<const AcGePoint2d> outline);

}  // namespace solids

#pragma once

// The outlines of parts of surfaces, and filling them.

#include "solids/mesh/mesh.h"

#include <array>
#include <optional>
#include <utility>
#include <vector>

namespace solids {

// Two points, in the direction of the triangle that has the edge.
using Edge = std::pair<std::int32_t, std::int32_t>;

// The edges that only one of the triangles has, sorted.
std::vector<Edge> openEdges(const std::vector<Triangle>& triangles);

// Triangles that face along the normal, between edges in a plane at right angles to it, which have the area
// on their left as seen against the normal. Each point may start one edge. Null when that is not so, when
// edges cross, or points coincide.
std::optional<std::vector<std::array<std::int32_t, 3>>>
fillFlat(const std::vector<AcGePoint3d>& points, const std::vector<Edge>& edges, const AcGeVector3d& normal);

}  // namespace solids

#pragma once

// What is computed with exact arithmetic. The one source behind it is all that includes CGAL.

#include "solids/mesh/mesh.h"

#include <array>
#include <optional>
#include <vector>

namespace solids {

enum class Combination { unite, subtract };

struct Corefined {
    Mesh mesh;                  // closed; its points are the exact ones, rounded
    std::vector<bool> changed;  // of each triangle: not one of the operands' as it was
};

// Operands must be closed and not empty; triangles keep their kinds. Null when the surfaces cross themselves
// near their intersection, or when the result is no manifold, as of bodies that touch in an edge.
std::optional<Corefined> corefine(const Mesh& first, const Mesh& second, Combination combination);

// Whether a triangle has no area, or two cross, overlap, or touch elsewhere than at a corner or an edge that
// both have. Pairs of triangles that are both not suspected are taken for fine; without the list all are
// suspected.
bool crossesItself(const Mesh& mesh, const std::vector<bool>* suspected = nullptr);

// Triangles (indices of points, counter-clockwise) between edges, which run around the area with it on their
// left, and clockwise around its holes. Null when edges cross or points coincide.
std::optional<std::vector<std::array<std::int32_t, 3>>>
fillOutlines(const std::vector<AcGePoint2d>& points, const std::vector<std::array<std::int32_t, 2>>& edges);

}  // namespace solids

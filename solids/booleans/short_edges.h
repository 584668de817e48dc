#pragma once

#include "solids/mesh/mesh.h"

#include <optional>

namespace solids {

// The mesh with the points at both ends of each edge that is shorter than the length made one, and without
// the triangles that lose their area by that. The points at the ends of a chain of such edges become one too.
// Null when that leaves no closed surface, or none at all.
std::optional<Mesh> withoutShortEdges(const Mesh& mesh, double length);

}  // namespace solids

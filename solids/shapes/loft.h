#pragma once

// The body between outlines.

#include "solids/mesh/mesh.h"
#include "solids/shapes/section.h"

#include <optional>
#include <span>

namespace solids {

// Joins outlines one after the other, point by point, and closes the first and the last one. The walls are
// flat between straight edges and made of triangles elsewhere. Outlines that follow each other backwards give
// the same body turned outside in, which is set right. Null when the surface would have no volume. The caller
// knows, or finds out, whether the surface crosses itself.
std::optional<Mesh> loft(std::span<const Outline> outlines);

}  // namespace solids

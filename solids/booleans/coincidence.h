#pragma once

// Bodies that share parts of their surfaces. Exact arithmetic gets along with them, but where two faces of
// many triangles lie on each other it takes seconds, and the usual cases need none of it.

#include "solids/mesh/mesh.h"

#include <optional>

namespace solids {

// How many pairs of triangles, one of each mesh, lie in the same plane and touch or overlap,
// but for rounding.
std::size_t coplanarPairs(const Mesh& one, const Mesh& other);

// The same triangles, whatever their order and kinds.
bool areIdentical(const Mesh& one, const Mesh& other);

// Two bodies that touch in a flat face with the same corners, as pieces of duct end to end do, made one
// without that face. Null when they do not, or when they meet anywhere else.
std::optional<Mesh> joinedAtFace(const Mesh& one, const Mesh& other);

}  // namespace solids

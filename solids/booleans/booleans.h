#pragma once

// Exact operations on closed meshes. The results are valid meshes (solids/mesh/mesh.h). Where the exact
// result cannot be held by coordinates of double precision without crossing or touching itself, the second
// operand is grown, or the plane moved, by 1e-9 to 1e-7 of the body's size; null comes back when that does
// not help, and for operands that are not closed or not finite. Coordinates that differ by rounding only
// count as equal. Nothing is thrown. Triangles keep the kind of those that they were cut from.
//
// By corefinement: both surfaces are cut along their intersection with exact arithmetic, and the parts that
// bound the result are put together (CGAL, polygon mesh processing).

#include "solids/mesh/mesh.h"

#include <optional>

namespace solids {

// Operands must be valid, and may be empty.
std::optional<Mesh> unite(const Mesh& first, const Mesh& second);
std::optional<Mesh> subtract(const Mesh& from, const Mesh& what);
// What lies on the side of the plane that its normal points to. The cut becomes a face of that kind. A mesh
// that the plane does not cut comes back as it is, or empty.
std::optional<Mesh> cutByPlane(const Mesh& mesh, const AcGePoint3d& onPlane, const AcGeVector3d& normal,
                               FaceKind kindOfCut);
// Of a closed mesh without degenerate triangles. False also when it is not closed.
bool isFreeOfSelfIntersection(const Mesh& mesh);

}  // namespace solids

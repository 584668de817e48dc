#pragma once

// Cutting a mesh by a plane without exact arithmetic: each corner lies on one side or in the plane, each edge
// is cut once, and so the parts fit together whatever the rounding.

#include "solids/mesh/mesh.h"

#include <optional>
#include <vector>

namespace solids {

// Signed distances of a mesh's points from a plane; those that lie in it but for rounding have none.
struct Distances {
    std::vector<double> ofPoints;
    bool anyAbove = false, anyBelow = false;
};
// normal: of unit length.
Distances distancesFrom(const AcGePoint3d& onPlane, const AcGeVector3d& normal, const Mesh& mesh);

struct PlaneCut {
    Mesh mesh;                  // closed
    std::vector<bool> changed;  // of each triangle: not one of the mesh's as it was
};
// What lies above. Null where the outline of the cut cannot be filled.
std::optional<PlaneCut> partAbove(const Mesh& mesh, const Distances& distances, const AcGeVector3d& normal,
                                  FaceKind kindOfCut);

}  // namespace solids

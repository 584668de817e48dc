#pragma once

// What a solid keeps of its bodies.

#include "solids/shapes/body.h"

#include <span>
#include <vector>

namespace solids {

struct CenterLine {
    std::vector<AcGePoint3d> points;
    bool isShown = false;  // it is drawn, not only snapped to
};

// A body with what its flags ask for laid down in its surface and its centre lines, so that it can be merged
// with bodies of other flags.
struct Part {
    Mesh mesh;  // empty only in the part that an empty solid amounts to
    BodyKind kind = BodyKind::joined;
    int flags = 0;
    std::vector<CenterLine> centerLines;
    // Bodies that could not be joined lie side by side in the mesh and may run through each other.
    bool mayOverlap = false;
};

// What no coordinate may exceed: volumes are products of three.
inline constexpr double kLargestCoordinate = 1e90;
bool isInRange(const AcGePoint3d& point);

Part partOf(Body body);

// The ends that the flags leave open become faces of such kinds.
FaceKind kindUnderFlags(FaceKind kind, int flags);
bool isOpen(FaceKind kind);

// All parts as one: their union, with the centre lines of all. Of one part a copy, of none an empty one.
Part join(std::span<const Part> parts);

// Applies the matrix to everything. False, with the part in any state, when a coordinate leaves the range, or
// comes to lie so far off that rounding would change the solid's volume.
bool transform(Part& part, const AcGeMatrix3d& matrix);

// Keeps what lies on the side of the plane that the normal points to.
void cutCenterLines(std::vector<CenterLine>& lines, const AcGePoint3d& onPlane, const AcGeVector3d& normal);

}  // namespace solids

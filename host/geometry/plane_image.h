#pragma once

// What a transformation does to planar curves made of lines and circular arcs.

#include <optional>

#include "host/api/geometry.h"

namespace drafthost {

struct PlaneImage {
    AcGeVector3d normal;        // of the image plane, unit
    double scale = 1;           // of lengths in the plane
    double thicknessScale = 1;  // of lengths along the normal; negative when they point to the other side
    bool reversed = false;      // counter-clockwise about the old normal is clockwise about the new one
};

// Nothing when the matrix does not keep circles of the plane circles (unequal scales, shear, collapse).
// A reflection can be kept with either normal; the one nearer to the old normal is taken, so that a curve
// mirrored within its plane keeps its normal and changes its sense.
std::optional<PlaneImage> planeImage(const AcGeMatrix3d& matrix, const AcGeVector3d& normal);

}  // namespace drafthost

#pragma once

// Flat faces cut into triangles.

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "host/api/geometry.h"

namespace drafthost {

// Appends triangles that cover the face, in its own turn: corners.size() - 2 of them, named by the corners'
// numbers. The face may be concave, and its outline may run to a hole and back along the same line. A face
// that crosses itself or has no area is cut into as many triangles, which overlap. (Ear clipping, in the
// plane of the largest coordinates of its normal.)
void triangulateFace(std::span<const AcGePoint3d> points, std::span<const std::int32_t> corners,
                     std::vector<std::array<std::int32_t, 3>>& triangles);

}  // namespace drafthost

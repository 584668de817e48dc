#pragma once

// The polylines of old files, a POLYLINE with VERTEX entities, as lightweight polylines.

#include <optional>
#include <vector>

#include "host/database/dxf_group.h"

namespace drafthost::exchange {

// The groups of an LWPOLYLINE with the properties of the POLYLINE and the points of its vertices; empty when
// it is not a plain one: a mesh, a polyline in space, one with fitted or spline points, or one with less than
// two vertices. All groups begin with group 0.
std::optional<std::vector<DxfGroup>> lightweightPolyline(const std::vector<DxfGroup>& polyline,
                                                         const std::vector<std::vector<DxfGroup>>& vertices);

}  // namespace drafthost::exchange

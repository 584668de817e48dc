#pragma once

// What entities offer to be intersected with.

#include <vector>

#include "host/api/entity.h"
#include "host/geometry/curve_piece.h"

namespace drafthost {

// Appends the entity's geometry as curve pieces in order along it: lines, circles, arcs and polylines as they
// are, faces by the edges that are shown, single-line and multiline text by the rectangle of its box, other
// classes by the parts they explode into (block references inside a block of the same kind are left out).
// False: the entity has no geometry to intersect.
bool intersectionCurves(const AcDbEntity* entity, std::vector<CurvePiece>& pieces);

}  // namespace drafthost

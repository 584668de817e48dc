#pragma once

#include <vector>

#include "host/database/dxf_group.h"

namespace drafthost::exchange {

// Entities of files before R13 have no subclass markers, which the files of today need. Sorts the groups of
// those kinds that need the markers (POINT, SOLID, TRACE, 3DFACE, SHAPE, VIEWPORT, POLYLINE, VERTEX,
// DIMENSION) below them. Entities with markers and those of other kinds are left alone. groups: from group 0
// on.
void addSubclassMarkers(std::vector<DxfGroup>& groups);

// Some writers put the layer, colour and linetype of simple entities below the marker of their class: moves
// them below that of AcDbEntity, where they belong.
void gatherProperties(std::vector<DxfGroup>& groups);

}  // namespace drafthost::exchange

#pragma once

// Coordinate systems: world, the current user coordinate system (UCS), entities' own.

#include "host/api/database.h"

namespace drafthost::editor {

// From the coordinates that the drafter works in to world coordinates.
AcGeMatrix3d ucsToWorld(const AcDbDatabase& database);

}  // namespace drafthost::editor

#pragma once

#include "solids/shapes/body.h"
#include "solids/shapes/section.h"

#include <optional>

namespace solids {

// One end of a duct.
struct DuctEnd {
    AcGePoint3d center;
    Section section;
    Frame frame;
};

// A straight body when both ends look alike, otherwise a transition: between rectangles flat faces, between a
// rectangle and a round section flat triangles with corners of cones between them. Ends may be offset and
// turned. An end that lies behind the start makes the same body the other way round. Null for ends in one
// place or one plane, unusable sections, and for ends turned so far that the walls would cross.
std::optional<Body> makeTransition(const DuctEnd& start, const DuctEnd& end, int flags);

}  // namespace solids

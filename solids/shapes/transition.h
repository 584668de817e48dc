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
// A usable centre, section and frame, and the section not so small so far from the origin that coordinates
// could not hold its shape: a coordinate is at most 1e10 times the smaller size.
bool isUsable(const DuctEnd& end);

// A straight body when both ends look alike and lie straight behind each other, otherwise a transition:
// between rectangles flat faces, between a rectangle and a round section flat triangles with corners of cones
// between them. Ends may be offset and turned; a frame that is turned by quarter turns against the other
// gives the same body as one that is not, with width and height in their places. An end that lies behind the
// start makes the same body the other way round. Null for ends in one place or one plane, unusable ends, ends
// that face each other's backs, and for ends turned so far that the walls would cross.
std::optional<Body> makeTransition(const DuctEnd& start, const DuctEnd& end, int flags);

}  // namespace solids

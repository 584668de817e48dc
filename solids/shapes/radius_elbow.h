#pragma once

#include "solids/shapes/transition.h"

namespace solids {

struct RadiusElbow {
    Body body;
    AcGePoint3d start, end;  // the elbow's own ends, on the centre lines of the runs
};

// start, end: the far ends of the runs. radius: of the centre line. wall: thickness of all layers of the wall
// together, inside the sections; it must leave an opening in both. The first and the last outline are exactly
// the sections in their frames. On the way from one to the other the elbow changes size and shape, and twists
// by what the frames are turned against each other beyond quarter turns. Centre lines that pass each other
// are joined by a bend that shifts on its way, as long as the shift is not more than half of its length.
//
// Walls are stepped like the sides of a round section: the heel's chords lie within 0.0013 of its radius.
// Null when the runs are parallel, the radius leaves no throat, or a tangent point lies beyond the far end of
// its run.
std::optional<RadiusElbow> makeRadiusElbow(const DuctEnd& start, const DuctEnd& end, double radius,
                                           double wall, int flags);

// The flat elbow of a cable tray: the throat is round with the radius less half of the width, the heel is a
// square corner. Ends that are the tangent points already stay. Both ends have the section of the start,
// which must be a rectangle with one side in the plane of the bend (within 1e-6), and the centre lines must
// meet.
std::optional<RadiusElbow> makeCableTrayElbow(const DuctEnd& start, const AcGePoint3d& end,
                                              const Frame& endFrame, double radius, int flags);

}  // namespace solids

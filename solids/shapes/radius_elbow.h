#pragma once

#include "solids/shapes/transition.h"

namespace solids {

struct RadiusElbow {
    Body body;
    AcGePoint3d start, end;  // the elbow's own ends, on the centre lines of the runs
};

// start, end: the far ends of the runs. radius: of the centre line. wall: thickness of all layers of the wall
// together, inside the sections; it must leave an opening in both. Centre lines that pass each other are
// joined by a bend that shifts on its way, as long as the shift is not more than half of its length. Null
// when the runs are parallel, the radius leaves no throat, or a tangent point lies beyond the far end of its
// run.
std::optional<RadiusElbow> makeRadiusElbow(const DuctEnd& start, const DuctEnd& end, double radius,
                                           double wall, int flags);

// The flat elbow of a cable tray: the throat is round with the radius less half of the width, the heel
// square. Ends that are the tangent points already stay. Both ends have the section of the start.
std::optional<RadiusElbow> makeCableTrayElbow(const DuctEnd& start, const AcGePoint3d& end,
                                              const Frame& endFrame, double radius, int flags);

}  // namespace solids

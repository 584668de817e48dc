#pragma once

#include "solids/shapes/transition.h"

#include <array>

namespace solids {

using BoxCorners = std::array<AcGePoint3d, 8>;

// What is known of a mitred elbow before it is built.
struct SquareElbowPlan {
    AcGePoint3d start, corner, end;  // of the centre line
    BoxCorners startLeg, endLeg;     // see solids/api/hvac_solid.h
};

// start, end: the far ends of the runs. collar: straight duct at both ends beyond the mitre. The end's frame
// may show the section turned by quarter turns. Centre lines that pass each other, as those of ducts flush at
// their bottoms, by no more than half of the smallest size are joined by an end leg that shifts behind the
// mitre, which takes a collar. Null when the runs are parallel or pass each other farther off, when the
// sections do not match across the plane of the bend (within 1e-6 of their sizes; in the plane their widths
// may differ, but a flat oval does not match a round section), or when a run is too short for its leg.
std::optional<SquareElbowPlan> planSquareElbow(const DuctEnd& start, const DuctEnd& end, double collar);
// start, end: the elbow's own ends as planned; corner: as planned. Null when they do not belong together.
std::optional<Body> makeSquareElbow(const DuctEnd& start, const DuctEnd& end, const AcGePoint3d& corner,
                                    int flags);

}  // namespace solids

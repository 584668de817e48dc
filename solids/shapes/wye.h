#pragma once

#include "solids/shapes/square_elbow.h"

namespace solids {

// A wye is what two elbows with the same main cover together. A leg is mitred where the branch's section
// matches the main's as in a square elbow. Where it does not (it has another height or diameter, or is turned
// against the main's, as that of a branch that leaves a level main at an angle and rises) the leg is swept
// round the corner like a radius elbow, as tightly as both sections allow, and changes and twists on its way.
// A branch that goes straight on (within a thousandth of a radian) is a straight leg instead; where it
// differs from the main, or lies beside it, the leg changes on the way to the junction.
struct WyePlan {
    // junction: on the main's centre line, where the first branch leaves it.
    AcGePoint3d start, junction, end1, end2;
    // See solids/api/hvac_solid.h. A branch's box ends in its own mitre, the main's in that of the first
    // branch that turns; where that is swept, they end where its straight part does.
    BoxCorners mainLeg, leg1, leg2;
};

// main: the far end of the run that arrives; branch1, branch2: the far ends of those that leave. All are
// rectangular or none is. The branches may leave the main one after the other, by at most half of the
// smallest size, and one that goes straight on may lie beside the main as far. Each branch ends where it has
// come clear of the other and of the other's bend; the main starts before both bends. collar: straight duct
// beyond that at all ends. Null when no legs can be joined: branches that run side by side or back along the
// main, centre lines that pass each other by more than half of the smallest size, runs that are too short.
std::optional<WyePlan> planWye(const DuctEnd& main, const DuctEnd& branch1, const DuctEnd& branch2,
                               double collar);
// The ends as planned. Null when they do not belong together.
std::optional<Body> makeWye(const DuctEnd& main, const DuctEnd& branch1, const DuctEnd& branch2,
                            const AcGePoint3d& junction, int flags);

}  // namespace solids

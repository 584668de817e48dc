#pragma once

#include "solids/shapes/square_elbow.h"

namespace solids {

struct WyePlan {
    AcGePoint3d start, junction, end1, end2;
    BoxCorners mainLeg, leg1, leg2;  // see solids/api/hvac_solid.h
};

// main: the far end of the run that arrives; branch1, branch2: the far ends of those that leave. A branch may
// go straight on. collar: straight duct beyond the crotch. Null when no legs can be joined: branches that run
// side by side or back, centre lines that do not meet (within half of the smallest size), runs that are too
// short.
std::optional<WyePlan> planWye(const DuctEnd& main, const DuctEnd& branch1, const DuctEnd& branch2,
                               double collar);
// The ends as planned. Null when they do not belong together.
std::optional<Body> makeWye(const DuctEnd& main, const DuctEnd& branch1, const DuctEnd& branch2,
                            const AcGePoint3d& junction, int flags);

}  // namespace solids

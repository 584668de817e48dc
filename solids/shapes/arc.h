#pragma once

// The arc that joins two runs.

#include "solids/shapes/bend.h"
#include "solids/shapes/transition.h"

#include <optional>

namespace solids {

struct Arc {
    Bend bend;
    double radius = 0;
    AcGePoint3d center;
    AcGePoint3d start, end;  // where the runs are tangent
    AcGeVector3d shift;      // along the bend's normal, from the start to the end

    double length() const { return radius * bend.angle; }
};

// Of any radius, along unit directions of flow before and behind the bend.
Arc arcAround(const Bend& bend, const AcGeVector3d& in, const AcGeVector3d& out, double radius);

// start, end: the far ends of the runs. Null when the runs do not bend, a tangent point lies beyond the far
// end of its run, or the radius leaves no throat beside one of the sections.
std::optional<Arc> fitArc(const DuctEnd& start, const DuctEnd& end, double radius);

// Fewest equal steps, each no wider than a side of a round section.
int stepsFor(double angle);

}  // namespace solids

#pragma once

// Ducts that change from one section to another on their way along an arc.

#include "solids/shapes/arc.h"
#include "solids/shapes/matching.h"

#include <vector>

namespace solids {

// Outlines at equal steps along the arc. The first and the last one are exactly the sections in the frames of
// both ends. On the way size and shape change, and the section twists by what the frames are turned against
// each other beyond quarter turns: slowly at the ends, so that walls leave in the direction of the runs.
class ArcSweep {
public:
    // The arc's ends count, not the centres of start and end.
    ArcSweep(const Arc& arc, const DuctEnd& start, const DuctEnd& end);

    const Arc& arc() const { return arc_; }
    std::vector<AcGePoint3d> centerLine() const;
    std::vector<Outline> outlines() const;
    // Straight ducts that carry on before and behind the sweep, point by point.
    Outline startAt(const AcGePoint3d& center) const;
    Outline endAt(const AcGePoint3d& center) const;
    // The farthest that an outline reaches from the centre line towards the inside of the bend.
    double reachInside() const;
    // The farthest that a point moves across the duct on the way.
    double largestChange() const;

private:
    AcGePoint3d centerAt(double t) const;
    FlatOutline flatAt(double t) const;
    Frame frameAt(double t) const;

    Arc arc_;
    Frame startFrame_, endFrame_;
    MatchedOutlines matched_;
    FlatOutline endInStartFrame_;  // swung and twisted to the end
    int steps_ = 0;
};

// Whether the walls between the outlines of a sweep certainly do not cross: each piece lies in the wedge
// between its outlines' planes, and the wedges lie side by side around the bend's axis. False: they may.
bool isCertainlySimple(const std::vector<Outline>& outlines);

// The sweep of smallest radius that leaves a throat of a tenth of its reach towards the inside, and on whose
// way no point moves farther across the duct than along it. It depends on nothing but the bend, the sections
// and the frames.
ArcSweep tightestSweep(const Bend& bend, const DuctEnd& start, const DuctEnd& end);

}  // namespace solids

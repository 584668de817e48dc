#pragma once

// How the outlines of two sections face each other.

#include "solids/shapes/section.h"

namespace solids {

// The outlines of both ends of a body, in the frames of their ends, begun so that points of the same number
// lie opposite each other with the least twist. The points are those of the sections as they stand.
struct MatchedOutlines {
    FlatOutline start, end;
    // The angle about x from the start's frame, swung the shortest way until its x is the end's, to the end's
    // frame is the sum of both, radians. madeUp: the part that beginning elsewhere makes up for. twist: the
    // rest, by which the body is twisted, at most an eighth of a turn, or half of a side's angle where a
    // section is round.
    double madeUp = 0;
    double twist = 0;
};

// The frames' x must not be opposite.
MatchedOutlines matchOutlines(const Section& start, const Frame& startFrame, const Section& end,
                              const Frame& endFrame);

}  // namespace solids

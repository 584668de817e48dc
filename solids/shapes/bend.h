#pragma once

// Where two runs meet: what all elbows and wyes start from.

#include "solids/shapes/section.h"

#include <optional>

namespace solids {

struct Bend {
    AcGePoint3d corner1;  // on the first centre line, nearest to the second one
    AcGePoint3d corner2;  // on the second centre line; the same point when the lines meet
    AcGeVector3d normal;  // of the plane of the bend, unit; the bend turns counter-clockwise about it
    AcGeVector3d inward1, inward2;  // unit, at right angles to the runs, towards the inside of the bend
    double angle = 0;               // by which the direction of flow turns, radians, between 0 and pi
};

// start, end: points on the centre lines; in, out: unit directions of flow. Null when they are parallel or
// opposite within a thousandth of a radian.
std::optional<Bend> findBend(const AcGePoint3d& start, const AcGeVector3d& in, const AcGePoint3d& end,
                             const AcGeVector3d& out);

}  // namespace solids

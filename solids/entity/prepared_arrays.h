#pragma once

// The arrays that callers carry from a preparation to the building of elbows and wyes
// (solids/api/hvac_solid.h).

#include "solids/api/hvac_solid.h"
#include "solids/shapes/square_elbow.h"

namespace solids {

inline constexpr int kPreparedPoints = 8;

void putLeg(const BoxCorners& leg, AModeler::Point3d* array);
// The first three points; the rest of the array repeats the corner.
void putAxis(const AcGePoint3d& start, const AcGePoint3d& corner, const AcGePoint3d& end, AcGePoint3d* array);

// What a caller handed back for one leg: its box and its axis.
struct PreparedLeg {
    const AModeler::Point3d* box;
    const AcGePoint3d* axis;
    int endOnAxis;        // where on the axis the leg's free end is: 0 or 2
    AcGePoint3d freeEnd;  // where it must be
};
// False for arrays that are missing, hold what is no number, belong to another fitting, or have another
// corner.
bool belongs(const PreparedLeg& leg, const AcGePoint3d& corner);

}  // namespace solids

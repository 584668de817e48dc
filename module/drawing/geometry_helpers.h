#pragma once

// Plane geometry. Angles are radians, counter-clockwise from the +X axis.

#include "host/api/geometry.h"

namespace tessary {

// The value of pi wherever the product's own arithmetic uses it. It is shorter than a double could hold:
// drawings and programs were made with it, and results must match theirs.
inline constexpr double productPi = 3.14159265;

// The point at that distance from the base in that direction; z is the base's.
AcGePoint3d polarPoint(const AcGePoint3d& base, double angle, double distance);
// Direction from one point to the other in the XY plane, 0 up to one full turn, in full precision.
double angleTo(const AcGePoint3d& from, const AcGePoint3d& to);
double degToRad(double degrees);
double radToDeg(double radians);
// Copies the coordinates as they are and returns RTNORM, for places that pass points between coordinate
// systems.
int copyPoint(const AcGePoint3d& point, AcGePoint3d& copy);
// From the current user coordinate system to world coordinates. False: the point is unchanged.
bool ucsToWcs(AcGePoint3d& point);

}  // namespace tessary

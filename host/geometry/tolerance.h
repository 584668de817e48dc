#pragma once

// How near is near enough. Lengths in drawing units; size: the extent of a curve; magnitude: its largest
// coordinate.

#include <algorithm>
#include <cmath>

#include "host/api/geometry.h"

namespace drafthost {

inline double largestCoordinate(const AcGePoint3d& point) {
    return std::max({std::abs(point.x), std::abs(point.y), std::abs(point.z)});
}
inline bool isFinite(const AcGePoint3d& p) {
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}
inline bool isFinite(const AcGeVector3d& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}
inline bool isFinite(const AcGePoint2d& p) {
    return std::isfinite(p.x) && std::isfinite(p.y);
}

// A point within this distance of a curve counts as lying on it. Programs hand points back that went through
// texts of six to eight decimals, hence 1e-6; curves smaller than one unit get as much less. Looser than the
// tolerance of intersections, so that every intersection point has a parameter and a distance on both curves.
inline double onCurveTolerance(double size, double magnitude) {
    return AcGeContext::gTol.equalPoint + 1e-6 * std::min(1.0, size) + 1e-12 * magnitude;
}

// Two curves that come as near as this meet.
inline double meetingTolerance(double size, double magnitude) {
    return AcGeContext::gTol.equalPoint + 1e-8 * std::min(1.0, size) + 1e-13 * magnitude;
}

// Distances along a curve may miss its ends by this much (sums of segment lengths round).
inline double lengthTolerance(double length) {
    return AcGeContext::gTol.equalPoint + 1e-9 * length;
}

}  // namespace drafthost

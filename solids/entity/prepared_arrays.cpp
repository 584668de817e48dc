#include "solids/entity/prepared_arrays.h"

#include "solids/entity/part.h"

#include <algorithm>
#include <cmath>

namespace solids {

namespace {

// As a fraction of the leg's length: points that were handed through are the same or somewhere else.
constexpr double kSamePoint = 1e-9;

bool areNear(const AcGePoint3d& a, const AcGePoint3d& b, double size) {
    return a.distanceTo(b) <= kSamePoint * size;
}

AcGePoint3d pointOf(const AModeler::Point3d& point) {
    return {point.x, point.y, point.z};
}

// The four corners at the free end lie around it.
AcGePoint3d middleOfFreeEnd(const AModeler::Point3d* box) {
    AcGeVector3d sum;
    for (int i = 0; i < 4; ++i) {
        sum += pointOf(box[i]).asVector();
    }
    return AcGePoint3d::kOrigin + sum / 4;
}

}  // namespace

void putLeg(const BoxCorners& leg, AModeler::Point3d* array) {
    for (int i = 0; i < kPreparedPoints; ++i) {
        array[i] = {leg[i].x, leg[i].y, leg[i].z};
    }
}

void putAxis(const AcGePoint3d& start, const AcGePoint3d& corner, const AcGePoint3d& end,
             AcGePoint3d* array) {
    array[0] = start;
    array[1] = corner;
    array[2] = end;
    std::fill(array + 3, array + kPreparedPoints, corner);
}

bool belongs(const PreparedLeg& leg, const AcGePoint3d& corner) {
    if (!leg.box || !leg.axis || !std::all_of(leg.axis, leg.axis + kPreparedPoints, isInRange) ||
        !std::all_of(leg.box, leg.box + kPreparedPoints,
                     [](const AModeler::Point3d& point) { return isInRange(pointOf(point)); })) {
        return false;
    }
    double size = std::max({std::abs(corner.x), std::abs(corner.y), std::abs(corner.z)});
    for (int i = 0; i < kPreparedPoints; ++i) {
        size = std::max(size, corner.distanceTo(pointOf(leg.box[i])));
    }
    return areNear(leg.axis[1], corner, size) && areNear(leg.axis[leg.endOnAxis], leg.freeEnd, size) &&
           areNear(middleOfFreeEnd(leg.box), leg.freeEnd, size) &&
           std::all_of(leg.axis + 3, leg.axis + kPreparedPoints,
                       [&](const AcGePoint3d& point) { return areNear(point, corner, size); });
}

}  // namespace solids

#include "module/drawing/geometry_helpers.h"

#include "host/api/editor.h"

#include <cmath>

namespace tessary {

namespace {

// A node that names a coordinate system for acedTrans: 0 world, 1 the current user's.
resbuf coordinateSystem(short number) {
    resbuf node{};
    node.restype = RTSHORT;
    node.resval.rlong = number;
    return node;
}

}  // namespace

AcGePoint3d polarPoint(const AcGePoint3d& base, double angle, double distance) {
    return {base.x + distance * std::cos(angle), base.y + distance * std::sin(angle), base.z};
}

double angleTo(const AcGePoint3d& from, const AcGePoint3d& to) {
    return (to - from).convert2d().angle();
}

double degToRad(double degrees) {
    return degrees * productPi / 180;
}

double radToDeg(double radians) {
    return radians * 180 / productPi;
}

int copyPoint(const AcGePoint3d& point, AcGePoint3d& copy) {
    copy = point;
    return RTNORM;
}

bool ucsToWcs(AcGePoint3d& point) {
    const resbuf user = coordinateSystem(1);
    const resbuf world = coordinateSystem(0);
    const ads_point given = {point.x, point.y, point.z};
    ads_point result;
    if (acedTrans(given, &user, &world, 0, result) != RTNORM) {
        return false;
    }
    point = AcGePoint3d(result[0], result[1], result[2]);
    return true;
}

}  // namespace tessary

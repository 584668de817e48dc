#pragma once

// Entity coordinate systems: the axes of a plane given by its normal alone.

#include "host/api/geometry.h"

namespace drafthost {

struct PlaneAxes {
    AcGeVector3d x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1};  // unit vectors, right-handed

    AcGePoint3d toWorld(double px, double py, double pz) const {
        return AcGePoint3d() + (x * px + y * py + z * pz);
    }
    AcGePoint3d toWorld(const AcGePoint3d& p) const { return toWorld(p.x, p.y, p.z); }
    AcGePoint3d toPlane(const AcGePoint3d& world) const {
        const AcGeVector3d v = world.asVector();
        return {v.dotProduct(x), v.dotProduct(y), v.dotProduct(z)};
    }
};

// Arbitrary axis rule of DXF: the X axis is the world's Y axis crossed with the normal when the normal lies
// within 1/64 of the world's Z axis in both x and y, else the world's Z axis crossed with it. The zero vector
// counts as +Z.
inline PlaneAxes planeAxes(const AcGeVector3d& normal) {
    if (normal.x == 0 && normal.y == 0 && normal.z >= 0)
        return {};
    constexpr double kNearWorldZ = 1.0 / 64;
    PlaneAxes axes;
    axes.z = normal / normal.length();
    const bool nearWorldZ = std::abs(axes.z.x) < kNearWorldZ && std::abs(axes.z.y) < kNearWorldZ;
    const AcGeVector3d reference = nearWorldZ ? AcGeVector3d(0, 1, 0) : AcGeVector3d(0, 0, 1);
    axes.x = reference.crossProduct(axes.z);
    axes.x = axes.x / axes.x.length();
    axes.y = axes.z.crossProduct(axes.x);
    return axes;
}

}  // namespace drafthost

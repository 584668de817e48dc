#pragma once

// What a drawing looks like in space, for one direction of view: surfaces, lines and flat areas, ready to be
// painted at any size. World coordinates; colours, linetypes and curves are resolved.

#include <array>
#include <cstdint>
#include <vector>

#include "host/api/database.h"
#include "host/graphics/color_table.h"
#include "host/graphics/display_list.h"

namespace drafthost::graphics {

struct SceneSurface {
    struct Corner {
        std::uint32_t point;   // number in points
        std::uint32_t normal;  // number in normals
    };
    Rgb color;
    bool enclosesBody = false;  // one that has an inside; otherwise both sides are alike
    std::vector<AcGePoint3d> points;
    std::vector<AcGeVector3d> normals;  // unit, outward: of the curved surface that a face is part of
    std::vector<std::array<Corner, 3>> triangles;
};

struct SceneLine {
    Rgb color;
    float weight = 0.25f;     // millimetres
    std::uint32_t first = 0;  // number of its first point in linePoints
    std::uint32_t count = 0;  // 1: a dot
};

// Flat area inside closed contours.
struct SceneArea {
    Rgb color;
    bool evenOdd = true;  // otherwise every point that a contour winds around
    std::vector<std::vector<AcGePoint3d>> contours;
};

struct Scene {
    AcGeVector3d towardsEye;  // unit
    std::vector<SceneSurface> surfaces;
    std::vector<AcGePoint3d> linePoints;
    std::vector<SceneLine> lines;
    std::vector<SceneArea> areas;
};

// towardsEye: any length but zero.
Scene buildScene(const AcDbDatabase& database, const AcGeVector3d& towardsEye);

// Where the points of a parallel view lie: x to the right, y upwards, z towards the eye. The world's z points
// upwards; seen along it, y does. towardsEye: unit.
struct ViewAxes {
    AcGeVector3d right, up, towardsEye;
    explicit ViewAxes(const AcGeVector3d& towardsEye);
    AcGePoint3d toView(const AcGePoint3d& p) const {
        const AcGeVector3d v = p.asVector();
        return {v.dotProduct(right), v.dotProduct(up), v.dotProduct(towardsEye)};
    }
    AcGeVector3d toView(const AcGeVector3d& v) const {
        return {v.dotProduct(right), v.dotProduct(up), v.dotProduct(towardsEye)};
    }
};
// Of everything in the scene, in the view's x and y.
Bounds boundsInView(const Scene& scene);

}  // namespace drafthost::graphics

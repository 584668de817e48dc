#include "host/graphics/scene.h"

#include <cmath>

namespace drafthost::graphics {

ViewAxes::ViewAxes(const AcGeVector3d& direction) : towardsEye(direction) {
    constexpr double kAlong = 1e-9;
    const AcGeVector3d sideways = AcGeVector3d::kZAxis.crossProduct(direction);
    right = sideways.length() > kAlong ? sideways / sideways.length()
                                       : AcGeVector3d{std::copysign(1.0, direction.z), 0, 0};
    up = direction.crossProduct(right);
}

Bounds boundsInView(const Scene& scene) {
    const ViewAxes axes(scene.towardsEye);
    Bounds bounds;
    const auto addAll = [&](const std::vector<AcGePoint3d>& points) {
        for (const AcGePoint3d& point : points)
            bounds.add(axes.toView(point).convert2d());
    };
    for (const SceneSurface& surface : scene.surfaces)
        addAll(surface.points);
    addAll(scene.linePoints);
    for (const SceneArea& area : scene.areas) {
        for (const auto& contour : area.contours)
            addAll(contour);
    }
    return bounds;
}

}  // namespace drafthost::graphics

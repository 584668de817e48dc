#include "host/geometry/plane_image.h"

#include "host/geometry/plane_axes.h"
#include "host/geometry/tolerance.h"

namespace drafthost {
namespace {

// Looser than the host's tolerance: matrices are products of many rotations.
constexpr double kShapeTolerance = 1e-9;

// Rounding must not tilt a plane: a normal that hardly moved is the old one, one that hardly misses Z is Z.
AcGeVector3d settled(const AcGeVector3d& normal, const AcGeVector3d& old) {
    constexpr double kRounding = 1e-12;
    for (const AcGeVector3d& exact : {old, AcGeVector3d(0, 0, 1), AcGeVector3d(0, 0, -1)}) {
        if ((normal - exact).length() <= kRounding)
            return exact;
    }
    return normal;
}

}  // namespace

std::optional<PlaneImage> planeImage(const AcGeMatrix3d& matrix, const AcGeVector3d& normal) {
    const PlaneAxes axes = planeAxes(normal);
    const AcGeVector3d x = matrix * axes.x, y = matrix * axes.y;
    const double scale = x.length();
    if (!std::isfinite(scale) || scale == 0 || !isFinite(y) || !isFinite(matrix.translation()))
        return {};
    if (!(std::abs(y.length() - scale) <= kShapeTolerance * scale))
        return {};
    if (!(std::abs(x.dotProduct(y)) <= kShapeTolerance * scale * scale))
        return {};

    PlaneImage image;
    image.normal = x.crossProduct(y) / (scale * scale);
    image.normal = image.normal / image.normal.length();
    image.reversed = matrix.det() < 0 && image.normal.dotProduct(axes.z) < 0;
    if (image.reversed)
        image.normal = -image.normal;
    image.normal = settled(image.normal, normal);
    image.scale = std::abs(scale - 1) < 1e-14 ? 1.0 : scale;
    image.thicknessScale = (matrix * axes.z).dotProduct(image.normal);
    return image;
}

}  // namespace drafthost

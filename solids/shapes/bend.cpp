#include "solids/shapes/bend.h"

#include <cmath>
#include <numbers>

namespace solids {

namespace {

// Runs that turn by less than this are parallel, radians. A little less than a thousandth, so that a turn of
// a thousandth counts whichever way it was rounded.
constexpr double kSmallestAngle = 1e-3 * (1 - 1e-6);

}  // namespace

std::optional<Bend> findBend(const AcGePoint3d& start, const AcGeVector3d& in, const AcGePoint3d& end,
                             const AcGeVector3d& out) {
    const AcGeVector3d turn = in.crossProduct(out);
    const double sine = turn.length();
    Bend bend;
    bend.angle = std::atan2(sine, in.dotProduct(out));
    const bool bends = bend.angle >= kSmallestAngle && bend.angle <= std::numbers::pi - kSmallestAngle;
    if (!bends || !isUsable(start) || !isUsable(end)) {
        return std::nullopt;
    }
    bend.normal = turn / sine;
    bend.inward1 = bend.normal.crossProduct(in);
    bend.inward2 = bend.normal.crossProduct(out);
    const AcGeVector3d across = end - start;
    bend.corner1 = start + in * (across.crossProduct(out).dotProduct(bend.normal) / sine);
    bend.corner2 = end + out * (across.crossProduct(in).dotProduct(bend.normal) / sine);
    return bend;
}

}  // namespace solids

// SolidEntity: snap points, grips, stretch points.

#include "solids/entity/solid_entity.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>

namespace solids {

namespace {

// Edges that go on in nearly the same direction are chords of a curve, whose ends are nobody's corners.
constexpr double kStraightOn = 20 * std::numbers::pi / 180;

struct Segment {
    AcGePoint3d from, to;
};
using Segments = std::vector<Segment>;

AcGePoint3d pointAt(const Segment& segment, double t) {
    return t <= 0 ? segment.from : t >= 1 ? segment.to : segment.from + (segment.to - segment.from) * t;
}

// Lines of the drawing that belong together: where one starts and ends, and what lies between.
struct Run {
    std::vector<AcGePoint3d> points;
    double length() const {
        double sum = 0;
        for (std::size_t i = 1; i < points.size(); ++i) {
            sum += points[i].distanceTo(points[i - 1]);
        }
        return sum;
    }
    AcGePoint3d middle() const {
        double left = length() / 2;
        for (std::size_t i = 1; i < points.size(); ++i) {
            const double step = points[i].distanceTo(points[i - 1]);
            if (left <= step && step > 0) {
                return pointAt({points[i - 1], points[i]}, left / step);
            }
            left -= step;
        }
        return points.back();
    }
};

// Chains of feature edges, cut where they turn.
std::vector<Run> featureRuns(const Mesh& mesh, const Surface& surface) {
    std::vector<Run> runs;
    for (const PointChain& chain : chainEdges(surface.featureEdges())) {
        runs.push_back({{mesh.points[chain[0]]}});
        for (std::size_t i = 1; i < chain.size(); ++i) {
            const AcGePoint3d& here = mesh.points[chain[i]];
            runs.back().points.push_back(here);
            if (i + 1 < chain.size() &&
                (here - mesh.points[chain[i - 1]]).angleTo(mesh.points[chain[i + 1]] - here) > kStraightOn) {
                runs.push_back({{here}});
            }
        }
    }
    return runs;
}

// A run that comes back to its start without a corner there has no end.
bool isRing(const Run& run) {
    const auto& points = run.points;
    return points.size() > 3 && points.front().isEqualTo(points.back()) &&
           (points[1] - points[0]).angleTo(points.back() - points[points.size() - 2]) <= kStraightOn;
}

std::vector<Run> runsOf(const SolidEntity& solid) {
    std::vector<Run> runs = featureRuns(solid.joined().mesh, solid.surface());
    for (const CenterLine& line : solid.joined().centerLines) {
        runs.push_back({line.points});
    }
    return runs;
}

// Everything that is drawn in the view.
Segments drawnSegments(const SolidEntity& solid, const AcGeVector3d& toEye) {
    Segments segments;
    const auto& points = solid.joined().mesh.points;
    for (const PointPair& edge : solid.surface().featureEdges()) {
        segments.push_back({points[edge.first], points[edge.second]});
    }
    for (const PointChain& chain : solid.surface().outline(toEye)) {
        for (std::size_t i = 1; i < chain.size(); ++i) {
            segments.push_back({points[chain[i - 1]], points[chain[i]]});
        }
    }
    for (const CenterLine& line : solid.joined().centerLines) {
        for (std::size_t i = 1; line.isShown && i < line.points.size(); ++i) {
            segments.push_back({line.points[i - 1], line.points[i]});
        }
    }
    return segments;
}

// The direction that the view shows as a point, towards the eye; zero for a view that cannot be looked
// through.
AcGeVector3d eyeDirection(const AcGeMatrix3d& view) {
    if (view.isSingular()) {
        return {};
    }
    return (view.inverse() * AcGeVector3d::kZAxis).normal();
}

// Foot of the perpendicular from a point on the segment's line, as a fraction of the segment; all vectors are
// seen along a direction. NaN for a segment that is seen as a point.
double footOn(const Segment& segment, const AcGePoint3d& from, const AcGeVector3d& sight) {
    AcGeVector3d along = segment.to - segment.from;
    along = along - sight * along.dotProduct(sight);
    return (from - segment.from).dotProduct(along) / along.lengthSqrd();
}

std::optional<AcGePoint3d> nearest(const Segments& segments, const AcGePoint3d& pick,
                                   const AcGeVector3d& sight) {
    std::optional<AcGePoint3d> best;
    double least = std::numeric_limits<double>::infinity();
    for (const Segment& segment : segments) {
        const double t = footOn(segment, pick, sight);
        const AcGePoint3d point = pointAt(segment, std::isfinite(t) ? t : 0);
        const AcGeVector3d away = point - pick;
        const double distance = (away - sight * away.dotProduct(sight)).lengthSqrd();
        if (distance < least) {
            least = distance;
            best = point;
        }
    }
    return best;
}

void appendFeet(const Segments& segments, const AcGePoint3d& last, AcGePoint3dArray& points) {
    for (const Segment& segment : segments) {
        const double t = footOn(segment, last, {});
        if (t >= 0 && t <= 1) {
            points.append(pointAt(segment, t));
        }
    }
}

}  // namespace

Acad::ErrorStatus SolidEntity::subGetOsnapPoints(AcDb::OsnapMode mode, std::int64_t,
                                                 const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                                 const AcGeMatrix3d& viewTransform,
                                                 AcGePoint3dArray& snapPoints, AcDbIntArray&) const {
    assertReadEnabled();
    if (joined().mesh.empty()) {
        return Acad::eOk;
    }
    const AcGeVector3d sight = eyeDirection(viewTransform);
    switch (mode) {
        case AcDb::kOsModeEnd:
            for (const Run& run : runsOf(*this)) {
                if (!isRing(run)) {
                    snapPoints.append(run.points.front());
                    snapPoints.append(run.points.back());
                }
            }
            return Acad::eOk;
        case AcDb::kOsModeMid:
            for (const Run& run : runsOf(*this)) {
                if (!isRing(run)) {
                    snapPoints.append(run.middle());
                }
            }
            return Acad::eOk;
        case AcDb::kOsModeNear:
            if (const auto point = nearest(drawnSegments(*this, sight), pickPoint, sight)) {
                snapPoints.append(*point);
            }
            return Acad::eOk;
        case AcDb::kOsModePerp:
            appendFeet(drawnSegments(*this, sight), lastPoint, snapPoints);
            return Acad::eOk;
        default: return Acad::eOk;
    }
}

Acad::ErrorStatus SolidEntity::subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray&, AcDbIntArray&) const {
    assertReadEnabled();
    return getStretchPoints(grips);
}

Acad::ErrorStatus SolidEntity::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    return moveStretchPointsAt(indices, offset);
}

Acad::ErrorStatus SolidEntity::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    AcDbExtents extents;
    if (getGeomExtents(extents) != Acad::eOk) {
        return Acad::eOk;
    }
    for (const CenterLine& line : joined().centerLines) {
        points.append(line.points.front());
        points.append(line.points.back());
    }
    points.append(extents.minPoint() + (extents.maxPoint() - extents.minPoint()) * 0.5);
    return Acad::eOk;
}

// Indices of no point move nothing.
Acad::ErrorStatus SolidEntity::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                      const AcGeVector3d& offset) {
    AcGePoint3dArray points;
    getStretchPoints(points);
    const bool isMoved =
        std::ranges::any_of(indices, [&](int index) { return index >= 0 && index < points.length(); });
    return isMoved ? transformBy(AcGeMatrix3d::translation(offset)) : Acad::eOk;
}

}  // namespace solids

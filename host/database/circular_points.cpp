// AcDbCircle and AcDbArc: snap points, grips and stretch points.

#include <cmath>

#include "host/api/curves.h"
#include "host/database/circular_curve.h"
#include "host/database/edit_points.h"
#include "host/database/snap_points.h"

using namespace drafthost;

namespace {

// Grips of a circle: the centre, then the quadrants.
constexpr int kCenter = 0, kFirstQuadrant = 1, kCircleGrips = 5;
// Grips of an arc.
constexpr int kStart = 0, kEnd = 1, kMiddle = 2, kArcCenter = 3;

AcGeVector3d quadrantDirection(const PlaneAxes& axes, int grip) {
    const AcGeVector3d directions[] = {axes.x, axes.y, -axes.x, -axes.y};
    return directions[grip - kFirstQuadrant];
}

// An arc in the coordinates of its plane.
struct FlatArc {
    AcGePoint2d center;
    double radius = 0;
    double startAngle = 0, sweep = 0;

    explicit FlatArc(const ArcState& arc)
        : center(arc.center.x, arc.center.y), radius(arc.radius), startAngle(arc.startAngle),
          sweep(sweepOf(arc)) {}
    AcGePoint2d at(double angle) const {
        return center + AcGeVector2d(std::cos(angle), std::sin(angle)) * radius;
    }
    AcGePoint2d start() const { return at(startAngle); }
    AcGePoint2d end() const { return at(startAngle + sweep); }
    AcGePoint2d middle() const { return at(startAngle + sweep / 2); }

    bool setFrom(const AcGePoint2d& newCenter, const AcGePoint2d& from, double newSweep) {
        center = newCenter;
        radius = from.distanceTo(center);
        startAngle = (from - center).angle();
        sweep = newSweep;
        return radius > AcGeContext::gTol.equalPoint && std::isfinite(radius);
    }

    // Between other ends, with the included angle that it has. False: no arc joins them.
    bool setEnds(const AcGePoint2d& from, const AcGePoint2d& to) {
        const AcGeVector2d chord = to - from;
        if (chord.length() <= AcGeContext::gTol.equalPoint)
            return false;
        // The centre lies to the left of the chord for arcs of less than a half turn.
        const double left = 0.5 / std::tan(sweep / 2);
        return setFrom(from + chord * 0.5 + AcGeVector2d(-chord.y, chord.x) * left, from, sweep);
    }

    // Through three points. False: they lie in a line.
    bool setThrough(const AcGePoint2d& from, const AcGePoint2d& over, const AcGePoint2d& to) {
        const AcGeVector2d b = over - from, c = to - from;
        const double twice = 2 * (b.x * c.y - b.y * c.x);
        if (std::abs(twice) <= 1e-12 * b.length() * c.length())
            return false;
        const double bb = b.dotProduct(b), cc = c.dotProduct(c);
        const AcGePoint2d place =
            from + AcGeVector2d((c.y * bb - b.y * cc) / twice, (b.x * cc - c.x * bb) / twice);
        const bool counterClockwise = twice > 0;
        const AcGePoint2d& first = counterClockwise ? from : to;
        const AcGePoint2d& last = counterClockwise ? to : from;
        return setFrom(place, first, sweepBetween((first - place).angle(), (last - place).angle()));
    }
};

Acad::ErrorStatus store(AcDbArc& arc, const FlatArc& flat) {
    auto* const state = writeState<ArcState>(&arc);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->center = {flat.center.x, flat.center.y, state->center.z};
    state->radius = flat.radius;
    state->startAngle = normalizeAngle(flat.startAngle);
    state->endAngle = normalizeAngle(flat.startAngle + flat.sweep);
    return Acad::eOk;
}

// An arc whose one end is moved keeps its included angle, as the arc of a polyline keeps its bulge. A full
// turn has one place for both ends, and moves.
Acad::ErrorStatus moveArcEnds(AcDbArc& arc, const AcDbIntArray& indices, const AcGeVector3d& offset) {
    constexpr double kFullTurn = kTwoPi - 1e-9;
    const bool start = indices.contains(kStart), end = indices.contains(kEnd);
    if (!start && !end)
        return Acad::eOk;
    FlatArc flat(readState<ArcState>(&arc));
    if ((start && end) || flat.sweep >= kFullTurn)
        return moveWhole(arc, offset);
    const AcGeVector2d flatOffset = inPlane(offset, planeAxes(arc.normal()));
    const AcGePoint2d from = start ? flat.start() + flatOffset : flat.start();
    const AcGePoint2d to = end ? flat.end() + flatOffset : flat.end();
    return flat.setEnds(from, to) ? store(arc, flat) : Acad::eInvalidInput;
}

// The ends stay.
Acad::ErrorStatus moveArcMiddle(AcDbArc& arc, const AcGeVector3d& offset) {
    FlatArc flat(readState<ArcState>(&arc));
    const AcGePoint2d over = flat.middle() + inPlane(offset, planeAxes(arc.normal()));
    return flat.setThrough(flat.start(), over, flat.end()) ? store(arc, flat) : Acad::eInvalidInput;
}

}  // namespace

Acad::ErrorStatus AcDbCircle::subGetOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker,
                                                const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                                const AcGeMatrix3d& viewTransform,
                                                AcGePoint3dArray& snapPoints, AcDbIntArray&) const {
    return curveSnapPoints(*this, snapQuery(mode, marker, pickPoint, lastPoint, viewTransform), snapPoints);
}

Acad::ErrorStatus AcDbCircle::subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray&, AcDbIntArray&) const {
    const PlaneAxes axes = planeAxes(normal());
    grips.append(center());
    for (int grip = kFirstQuadrant; grip < kCircleGrips; ++grip)
        grips.append(center() + quadrantDirection(axes, grip) * radius());
    return Acad::eOk;
}

// The centre takes the circle with it; a quadrant changes the radius, so that the circle passes through where
// it was moved to.
Acad::ErrorStatus AcDbCircle::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    if (indices.contains(kCenter))
        return moveWhole(*this, offset);
    const PlaneAxes axes = planeAxes(normal());
    for (int grip = kFirstQuadrant; grip < kCircleGrips; ++grip) {
        if (!indices.contains(grip))
            continue;
        const AcGeVector3d spoke = quadrantDirection(axes, grip) * radius() + offset;
        const AcGeVector2d flat = inPlane(spoke, axes);
        return flat.length() > AcGeContext::gTol.equalPoint ? setRadius(flat.length()) : Acad::eInvalidInput;
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::subGetStretchPoints(AcGePoint3dArray& points) const {
    points.append(center());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                     const AcGeVector3d& offset) {
    return moveByAny(*this, 1, indices, offset);
}

Acad::ErrorStatus AcDbArc::subGetOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker,
                                             const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                             const AcGeMatrix3d& viewTransform, AcGePoint3dArray& snapPoints,
                                             AcDbIntArray&) const {
    return curveSnapPoints(*this, snapQuery(mode, marker, pickPoint, lastPoint, viewTransform), snapPoints);
}

Acad::ErrorStatus AcDbArc::subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray&, AcDbIntArray&) const {
    const ArcState& state = readState<ArcState>(this);
    const CurvePiece piece = pieceOf(state);
    for (const double parameter : {0.0, piece.extent, piece.extent / 2})
        grips.append(pointAt(piece, parameter));
    grips.append(worldCenter(state));
    return Acad::eOk;
}

// The centre takes the arc with it; the middle changes the radius between ends that stay.
Acad::ErrorStatus AcDbArc::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    if (indices.contains(kArcCenter))
        return moveWhole(*this, offset);
    if (!indices.contains(kMiddle))
        return moveArcEnds(*this, indices, offset);
    const bool endsToo = indices.contains(kStart) || indices.contains(kEnd);
    return endsToo ? moveWhole(*this, offset) : moveArcMiddle(*this, offset);
}

Acad::ErrorStatus AcDbArc::subGetStretchPoints(AcGePoint3dArray& points) const {
    const CurvePiece piece = pieceOf(readState<ArcState>(this));
    points.append(pointAt(piece, 0));
    points.append(pointAt(piece, piece.extent));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::subMoveStretchPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    return moveArcEnds(*this, indices, offset);
}

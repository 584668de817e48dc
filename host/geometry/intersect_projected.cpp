// Meetings of curves as they are seen along a direction. Circles that are seen as circles go through the
// meetings in space; those seen as ellipses come to zeros of harmonic sums of the angle.

#include "host/geometry/angles.h"
#include "host/geometry/harmonic.h"
#include "host/geometry/intersect.h"

namespace drafthost {
namespace {

// A piece as it is seen along the direction; arcs by centre and half axes (conjugate, of the ellipse seen).
struct SeenPiece {
    const CurvePiece& piece;
    AcGeVector3d direction;
    bool extended;

    AcGeVector3d across(const AcGeVector3d& v) const { return v - direction * v.dotProduct(direction); }
    AcGePoint3d across(const AcGePoint3d& p) const { return AcGePoint3d() + across(p.asVector()); }
    AcGePoint3d center() const { return across(piece.center()); }
    AcGeVector3d u() const { return across(piece.xAxis) * piece.radius; }
    AcGeVector3d v() const { return across(piece.yAxis) * piece.radius; }

    bool isTilted() const {
        return piece.isArc() &&
               piece.normal().crossProduct(direction).length() * piece.radius > 1e-10 * (1 + piece.radius);
    }
    // Parameter of the point where the given point is seen; false: it is not seen on the piece.
    bool parameterSeen(const AcGePoint3d& given, double tolerance, double& parameter) const {
        parameter = closestParameter(piece, given, direction, extended);
        return across(pointAt(piece, parameter) - given).length() <= tolerance;
    }
};

// The piece moved along the direction into the plane through the origin; only for pieces that stay lines and
// circles.
CurvePiece flattened(const SeenPiece& seen) {
    CurvePiece flat = seen.piece;
    flat.start = seen.across(seen.piece.start);
    if (seen.piece.isArc())
        return flat;
    const CurvePiece projected =
        segmentPiece(flat.start, seen.across(pointAt(seen.piece, seen.piece.extent)));
    flat.xAxis = projected.xAxis;
    flat.extent = projected.extent;
    return flat;
}

// An arc seen edge-on runs to and fro on this segment.
CurvePiece edgeSegment(const SeenPiece& seen) {
    const AcGeVector3d u = seen.u(), v = seen.v();
    const AcGeVector3d major = u.lengthSqrd() > v.lengthSqrd() ? u.normal() : v.normal();
    const double peak = normalizeAngle(std::atan2(v.dotProduct(major), u.dotProduct(major)));
    double low = u.dotProduct(major), high = low;
    for (double angle : {seen.piece.extent, peak, normalizeAngle(peak + kPi)}) {
        if (!settleParameter(seen.piece, angle, seen.extended, 0) && angle != seen.piece.extent)
            continue;
        const double along = u.dotProduct(major) * std::cos(angle) + v.dotProduct(major) * std::sin(angle);
        low = std::min(low, along);
        high = std::max(high, along);
    }
    return segmentPiece(seen.center() + major * low, seen.center() + major * high);
}

// Zero where the arc's point is seen on the line.
Harmonic distanceToLine(const SeenPiece& arc, const CurvePiece& line) {
    const AcGeVector3d aside = arc.direction.crossProduct(line.xAxis);
    return {(arc.center() - line.start).dotProduct(aside), arc.u().dotProduct(aside),
            arc.v().dotProduct(aside), 0, 0};
}

struct EllipseTerms {
    Harmonic sum;
    double nearZero = 0;
};

// Zero where the arc's point is seen on the other arc's ellipse: |x|^2 - 1 in the frame where that is the
// unit circle.
EllipseTerms distanceToEllipse(const SeenPiece& arc, const SeenPiece& other, double tolerance) {
    const AcGeVector3d d = arc.direction, u = other.u(), v = other.v();
    const double area = u.crossProduct(v).dotProduct(d);
    const auto framed = [&](const AcGeVector3d& w) {
        return AcGeVector2d(w.crossProduct(v).dotProduct(d) / area, u.crossProduct(w).dotProduct(d) / area);
    };
    const AcGeVector2d q = framed(arc.center() - other.center()), a = framed(arc.u()), b = framed(arc.v());
    const double aa = a.dotProduct(a), bb = b.dotProduct(b);
    const double minor = std::abs(area) / std::sqrt(u.lengthSqrd() + v.lengthSqrd());
    return {{q.dotProduct(q) + (aa + bb) / 2 - 1, 2 * q.dotProduct(a), 2 * q.dotProduct(b), (aa - bb) / 2,
             a.dotProduct(b)},
            2 * tolerance / minor};
}

bool isSeenEdgeOn(const SeenPiece& seen, double tolerance) {
    return seen.isTilted() &&
           std::abs(seen.piece.normal().dotProduct(seen.direction)) * seen.piece.radius <= tolerance;
}

class ProjectedMeeting {
public:
    ProjectedMeeting(const SeenPiece& first, const SeenPiece& second, double tolerance)
        : a_(first), b_(second), tolerance_(tolerance) {}

    PieceHits find() {
        if (!a_.isTilted() && !b_.isTilted()) {
            flat();
            return hits_;
        }
        if (!a_.piece.isArc()) {
            addZeros(b_, distanceToLine(b_, flattened(a_)), tolerance_);
        } else if (!b_.piece.isArc()) {
            addZeros(a_, distanceToLine(a_, flattened(b_)), tolerance_);
        } else if (isSeenEdgeOn(b_, tolerance_)) {
            addZeros(a_, distanceToLine(a_, edgeSegment(b_)), tolerance_);
        } else {
            const EllipseTerms terms = distanceToEllipse(a_, b_, tolerance_);
            addZeros(a_, terms.sum, terms.nearZero);
        }
        addEnds(a_);
        addEnds(b_);
        return hits_;
    }

private:
    void addAt(double parameter) { hits_.add({pointAt(a_.piece, parameter), parameter}); }
    void flat() {
        const CurvePiece first = flattened(a_), second = flattened(b_);
        const PieceHits found = intersectPieces(first, second, {a_.extended, b_.extended}, tolerance_);
        for (const PieceHit& hit : found) {
            if (a_.piece.isArc()) {
                addAt(hit.parameter);
            } else if (first.extent > tolerance_) {
                addAt(hit.parameter / first.extent * a_.piece.extent);
            } else {
                addAtHeightOfSecond();
            }
        }
    }
    void addAtHeightOfSecond() {
        const AcGePoint3d onSecond =
            pointAt(b_.piece, closestParameter(b_.piece, a_.piece.start, b_.direction, b_.extended));
        if (hits_.count == 0)
            addAt(closestParameter(a_.piece, onSecond, a_.extended));
    }
    void addZeros(const SeenPiece& arc, const Harmonic& sum, double nearZero) {
        const HarmonicAngles zeros = zerosOf(sum, nearZero);
        for (int i = 0; i < zeros.count; ++i) {
            double angle = zeros.angles[i];
            if (!settleParameter(arc.piece, angle, arc.extended, tolerance_))
                continue;
            if (&arc == &a_) {
                addOnFirst(angle);
            } else {
                addWhereSeen(pointAt(arc.piece, angle));
            }
        }
    }
    void addEnds(const SeenPiece& seen) {
        if (seen.piece.isFullTurn())
            return;
        const bool circle =
            seen.piece.isArc() && seen.extended && (seen.piece.extendsBackward || seen.piece.extendsForward);
        if (circle)
            return;
        if (!(seen.extended && seen.piece.extendsBackward))
            addWhereSeen(seen.piece.start);
        if (!(seen.extended && seen.piece.extendsForward))
            addWhereSeen(pointAt(seen.piece, seen.piece.extent));
    }
    void addWhereSeen(const AcGePoint3d& point) {
        double parameter;
        if (a_.parameterSeen(point, 2 * tolerance_, parameter))
            addOnFirst(parameter);
    }
    void addOnFirst(double parameter) {
        double onSecond;
        const AcGePoint3d point = pointAt(a_.piece, parameter);
        if (!b_.parameterSeen(point, 2 * tolerance_, onSecond))
            return;
        for (const PieceHit& hit : hits_) {
            if (hit.point.distanceTo(point) <= sameHitTolerance(tolerance_))
                return;
        }
        hits_.add({point, parameter});
    }

    const SeenPiece& a_;
    const SeenPiece& b_;
    double tolerance_;
    PieceHits hits_;
};

}  // namespace

PieceHits intersectProjected(const CurvePiece& first, const CurvePiece& second, const AcGeVector3d& direction,
                             Extension extension, double tolerance) {
    const SeenPiece a{first, direction, extension.first && first.extent > 0};
    const SeenPiece b{second, direction, extension.second && second.extent > 0};
    return ProjectedMeeting(a, b, tolerance).find();
}

}  // namespace drafthost

#include "host/geometry/curve_piece.h"

#include "host/geometry/angles.h"
#include "host/geometry/harmonic.h"
#include "host/geometry/tolerance.h"

namespace drafthost {
namespace {

constexpr double kTurnRounding = 1e-14;  // radians by which a full turn may miss 2 pi
constexpr double kSnapAngle = 1e-9;      // radians before a full turn's end that count as its start

double arcAngle(const CurvePiece& arc, const AcGePoint3d& given) {
    const AcGeVector3d w = given - arc.start;
    const double across = w.dotProduct(arc.yAxis), along = arc.radius + w.dotProduct(arc.xAxis);
    if (std::hypot(across, along) <= 1e-14 * arc.radius)
        return 0;
    return normalizeAngle(std::atan2(across, along));
}

// The nearest parameter within the arc for an angle in [0, 2 pi) from its start.
double angleWithin(const CurvePiece& arc, double angle, bool extend) {
    const bool wholeCircle = arc.isFullTurn() || (extend && (arc.extendsBackward || arc.extendsForward));
    if (wholeCircle && angle > kTwoPi - kSnapAngle)
        return 0;
    if (wholeCircle || angle <= arc.extent)
        return angle;
    return kTwoPi - angle < angle - arc.extent ? 0 : arc.extent;
}

double lengthWithin(const CurvePiece& segment, double along, bool extend) {
    if (along < 0 && !(extend && segment.extendsBackward))
        return 0;
    if (along > segment.extent && !(extend && segment.extendsForward))
        return segment.extent;
    return along;
}

AcGeVector3d across(const AcGeVector3d& v, const AcGeVector3d& direction) {
    return v - direction * v.dotProduct(direction);
}

// Seen along the direction the circle is an ellipse; its squared distance to the point is a harmonic sum of
// the angle.
double closestAngleSeenAlong(const CurvePiece& arc, const AcGePoint3d& given, const AcGeVector3d& direction,
                             bool extend) {
    const AcGeVector3d q = across(arc.center() - given, direction);
    const AcGeVector3d u = across(arc.xAxis * arc.radius, direction),
                       v = across(arc.yAxis * arc.radius, direction);
    const Harmonic squared{q.lengthSqrd() + (u.lengthSqrd() + v.lengthSqrd()) / 2, 2 * q.dotProduct(u),
                           2 * q.dotProduct(v), (u.lengthSqrd() - v.lengthSqrd()) / 2, u.dotProduct(v)};
    const HarmonicAngles extremes = extremesOf(squared);
    double best = 0, bestValue = squared.value(0);
    const auto consider = [&](double angle) {
        const double value = squared.value(angle);
        if (value < bestValue)
            best = angle, bestValue = value;
    };
    consider(angleWithin(arc, normalizeAngle(arc.extent), extend));
    for (int i = 0; i < extremes.count; ++i)
        consider(angleWithin(arc, extremes.angles[i], extend));
    return best;
}

}  // namespace

bool CurvePiece::isFullTurn() const {
    return isArc() && extent >= kTwoPi - kTurnRounding;
}

double CurvePiece::magnitude() const {
    return largestCoordinate(start) + size();
}

CurvePiece segmentPiece(const AcGePoint3d& start, const AcGePoint3d& end) {
    CurvePiece piece;
    piece.start = start;
    const AcGeVector3d span = end - start;
    piece.extent = span.length();
    if (piece.extent > 0)
        piece.xAxis = span / piece.extent;
    return piece;
}

CurvePiece arcPiece(const AcGePoint3d& center, const PlaneAxes& axes, double radius, double startAngle,
                    double sweep) {
    CurvePiece piece;
    piece.kind = CurvePiece::Kind::Arc;
    const double c = std::cos(startAngle), s = std::sin(startAngle);
    piece.xAxis = axes.x * c + axes.y * s;
    piece.yAxis = axes.y * c - axes.x * s;
    piece.start = center + piece.xAxis * radius;
    piece.extent = sweep;
    piece.radius = radius;
    return piece;
}

CurvePiece bulgePiece(const AcGePoint2d& start, const AcGePoint2d& end, double bulge, const PlaneAxes& axes,
                      double elevation) {
    constexpr double kFlattest = 1e-12;
    const AcGeVector2d chord = end - start;
    const double chordLength = chord.length();
    const AcGePoint3d from = axes.toWorld(start.x, start.y, elevation);
    if (!(std::abs(bulge) > kFlattest) || !std::isfinite(bulge) || chordLength == 0) {
        return segmentPiece(from, axes.toWorld(end.x, end.y, elevation));
    }
    CurvePiece piece;
    piece.kind = CurvePiece::Kind::Arc;
    piece.start = from;
    piece.extent = 4 * std::atan(std::abs(bulge));
    piece.radius = chordLength * (1 + bulge * bulge) / (4 * std::abs(bulge));
    // The tangent at the start lies half the sweep to the right of the chord for a counter-clockwise arc.
    const double norm = chordLength * (1 + bulge * bulge);
    const double c = (1 - bulge * bulge) / norm, s = 2 * bulge / norm;
    const double tx = c * chord.x + s * chord.y, ty = c * chord.y - s * chord.x;
    piece.yAxis = axes.x * tx + axes.y * ty;
    piece.xAxis = bulge > 0 ? axes.x * ty - axes.y * tx : axes.y * tx - axes.x * ty;
    return piece;
}

AcGePoint3d pointAt(const CurvePiece& piece, double parameter) {
    if (!piece.isArc())
        return piece.start + piece.xAxis * parameter;
    const double sine = std::sin(parameter / 2), cosine = std::cos(parameter / 2);
    const double twice = 2 * piece.radius * sine;
    return piece.start + piece.yAxis * (twice * cosine) - piece.xAxis * (twice * sine);
}

AcGeVector3d derivativeAt(const CurvePiece& piece, double parameter) {
    if (!piece.isArc())
        return piece.xAxis;
    return (piece.yAxis * std::cos(parameter) - piece.xAxis * std::sin(parameter)) * piece.radius;
}

double closestParameter(const CurvePiece& piece, const AcGePoint3d& given, bool extend) {
    if (piece.isArc())
        return angleWithin(piece, arcAngle(piece, given), extend);
    return lengthWithin(piece, (given - piece.start).dotProduct(piece.xAxis), extend);
}

double closestParameter(const CurvePiece& piece, const AcGePoint3d& given, const AcGeVector3d& direction,
                        bool extend) {
    constexpr double kAlong = 1e-10;  // sine of the angle below which two directions are one
    if (piece.isArc()) {
        const bool seenAsCircle = piece.normal().crossProduct(direction).length() <= kAlong;
        return seenAsCircle ? closestParameter(piece, given, extend)
                            : closestAngleSeenAlong(piece, given, direction, extend);
    }
    const AcGeVector3d seen = across(piece.xAxis, direction);
    if (seen.length() <= kAlong)
        return closestParameter(piece, given, extend);
    return lengthWithin(piece, (given - piece.start).dotProduct(seen) / seen.lengthSqrd(), extend);
}

bool settleParameter(const CurvePiece& piece, double& parameter, bool extend, double tolerance) {
    const double settled =
        piece.isArc() ? angleWithin(piece, parameter, extend) : lengthWithin(piece, parameter, extend);
    double missed = std::abs(parameter - settled);
    if (piece.isArc())
        missed = std::min(missed, kTwoPi - missed) * piece.radius;
    parameter = settled;
    return missed <= tolerance;
}

void Box::add(const AcGePoint3d& point) {
    for (int i = 0; i < 3; ++i) {
        minimum[i] = std::min(minimum[i], point[i]);
        maximum[i] = std::max(maximum[i], point[i]);
    }
}

bool Box::isApartFrom(const Box& other, double tolerance) const {
    for (int i = 0; i < 3; ++i) {
        if (minimum[i] > other.maximum[i] + tolerance || other.minimum[i] > maximum[i] + tolerance)
            return true;
    }
    return false;
}

Box boxOf(const CurvePiece& piece) {
    Box box{piece.start, piece.start};
    box.add(pointAt(piece, piece.extent));
    if (!piece.isArc())
        return box;
    const double x[3] = {piece.xAxis.x, piece.xAxis.y, piece.xAxis.z};
    const double y[3] = {piece.yAxis.x, piece.yAxis.y, piece.yAxis.z};
    for (int i = 0; i < 3; ++i) {
        const double highest = std::atan2(y[i], x[i]);
        for (const double angle : {normalizeAngle(highest), normalizeAngle(highest + kPi)}) {
            if (angle < piece.extent)
                box.add(pointAt(piece, angle));
        }
    }
    return box;
}

}  // namespace drafthost

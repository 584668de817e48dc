#include "host/database/snap_points.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/api/curves.h"
#include "host/database/curve_states.h"
#include "host/database/face_state.h"
#include "host/geometry/harmonic.h"

namespace drafthost {
namespace {

constexpr double kAngleSlack = 1e-9;     // radians by which a point may miss the end of an arc
constexpr double kFractionSlack = 1e-9;  // the same for a segment, of its length

// A piece after the transformation: start + along * t for t from 0 to 1, or
// start + along * (cos t - 1) + across * sin t for t from 0 to the arc's extent.
struct PieceImage {
    const SnapPiece& source;
    const AcGeMatrix3d& toWorld;
    AcGePoint3d start;
    AcGeVector3d along, across;

    PieceImage(const SnapPiece& piece, const AcGeMatrix3d& matrix)
        : source(piece), toWorld(matrix), start(matrix * piece.start) {
        const CurvePiece& curve = piece.piece;
        along = matrix * (curve.isArc() ? curve.xAxis * curve.radius : piece.end - piece.start);
        if (curve.isArc())
            across = matrix * (curve.yAxis * curve.radius);
    }
    bool isArc() const { return source.piece.isArc(); }
    double last() const { return isArc() ? source.piece.extent : 1; }
    AcGePoint3d at(double t) const {
        if (t <= 0)
            return start;
        if (t >= last())
            return toWorld * source.end;
        return toWorld * pointAt(source.piece, isArc() ? t : t * source.piece.extent);
    }
    // Brings t into the piece; false: it is off.
    bool settle(double& t) const {
        const double slack = isArc() ? kAngleSlack : kFractionSlack;
        if (isArc() && t > kTwoPi - slack)
            t -= kTwoPi;
        if (!(t >= -slack && t <= last() + slack))
            return false;
        t = std::clamp(t, 0.0, last());
        return true;
    }
};

AcGeVector3d withoutPartAlong(const AcGeVector3d& v, const AcGeVector3d& direction) {
    return v - direction * v.dotProduct(direction);
}

bool isCircular(const AcGeVector3d& along, const AcGeVector3d& across) {
    constexpr double kRounding = 1e-12;
    const double u = along.length(), v = across.length();
    return std::abs(u - v) <= kRounding * u && std::abs(along.dotProduct(across)) <= kRounding * u * v;
}

// Parameters at which the line from a point to the curve, given by its axes and the vector from its start to
// the point, stands at right angles on it. The nearest point of a circle comes first. Points on a circle's
// axis: none, and everywhere is set.
struct Feet {
    HarmonicAngles at;
    bool everywhere = false;
};

Feet feetOnArc(const AcGeVector3d& along, const AcGeVector3d& across, const AcGeVector3d& fromStart) {
    Feet feet;
    if (!isCircular(along, across)) {
        const AcGeVector3d toCenter = -fromStart - along;
        const double size = toCenter.length() + along.length() + across.length();
        const Harmonic slope{0, toCenter.dotProduct(across), -toCenter.dotProduct(along),
                             along.dotProduct(across), (across.lengthSqrd() - along.lengthSqrd()) / 2};
        feet.at = zerosOf(slope, 1e-14 * size * size);
        return feet;
    }
    const double radius = along.length();
    if (radius == 0)
        return feet;
    // Measured from the start and not from the centre, which for flat arcs of huge radius is far away.
    const double x = radius + fromStart.dotProduct(along) / radius, y = fromStart.dotProduct(across) / radius;
    if (std::hypot(x, y) <= 1e-12 * radius) {
        feet.everywhere = true;
        return feet;
    }
    feet.at.count = 2;
    feet.at.angles[0] = normalizeAngle(std::atan2(y, x));
    feet.at.angles[1] = normalizeAngle(feet.at.angles[0] + kPi);
    return feet;
}

void appendFeet(const SnapQuery& query, const PieceImage& image, AcGePoint3dArray& points) {
    const AcGeVector3d fromStart = query.last - image.start;
    if (!image.isArc()) {
        double t = fromStart.dotProduct(image.along) / image.along.lengthSqrd();
        if (image.settle(t))
            points.append(image.at(t));
        return;
    }
    Feet feet = feetOnArc(image.along, image.across, fromStart);
    if (feet.everywhere) {  // from the centre: any point will do, so the one that is pointed at
        feet = feetOnArc(image.along, image.across, query.pick - image.start);
        feet.at.count = std::min(feet.at.count, 1);
    }
    for (int i = 0; i < feet.at.count; ++i) {
        double t = feet.at.angles[static_cast<std::size_t>(i)];
        if (image.settle(t))
            points.append(image.at(t));
    }
}

// In the plane of the curve; a point above it counts with its projection.
void appendTangents(const SnapQuery& query, const PieceImage& image, AcGePoint3dArray& points) {
    constexpr double kOnCurve = 1e-9;  // of the radius
    if (!image.isArc())
        return;
    const double uu = image.along.lengthSqrd(), vv = image.across.lengthSqrd(),
                 uv = image.along.dotProduct(image.across);
    const double determinant = uu * vv - uv * uv;
    if (!(determinant > 1e-24 * uu * vv))
        return;
    const AcGeVector3d fromStart = query.last - image.start;
    const double wu = fromStart.dotProduct(image.along), wv = fromStart.dotProduct(image.across);
    // The last point in units of the curve's axes, in which the curve is the unit circle.
    const double x = 1 + (wu * vv - wv * uv) / determinant, y = (wv * uu - wu * uv) / determinant;
    const double distance = std::hypot(x, y);
    if (!(distance >= 1 - kOnCurve))
        return;
    const double towards = std::atan2(y, x);
    const double aside = distance <= 1 + kOnCurve ? 0 : std::acos(1 / distance);
    for (const double side : {-aside, aside}) {
        double t = normalizeAngle(towards + side);
        if (image.settle(t))
            points.append(image.at(t));
        if (aside == 0)
            break;
    }
}

// The candidates for the nearest point as seen: the feet and the ends.
struct Nearest {
    AcGePoint3d point;
    double seen = std::numeric_limits<double>::infinity();
    double inSpace = std::numeric_limits<double>::infinity();

    void consider(const SnapQuery& query, const AcGePoint3d& candidate) {
        const AcGeVector3d apart = candidate - query.pick;
        const double seenApart = withoutPartAlong(apart, query.sight).length(), far = apart.length();
        const double same = AcGeContext::gTol.equalPoint;
        if (seenApart < seen - same || (seenApart < seen + same && far < inSpace - same)) {
            point = candidate;
            seen = seenApart;
            inSpace = far;
        }
    }
};

void considerPiece(const SnapQuery& query, const PieceImage& image, Nearest& nearest) {
    AcGeVector3d along = withoutPartAlong(image.along, query.sight);
    AcGeVector3d across = withoutPartAlong(image.across, query.sight);
    AcGeVector3d fromStart = withoutPartAlong(query.pick - image.start, query.sight);
    // Seen as one point: the nearest in space.
    const double size = image.along.length() + image.across.length();
    if (along.length() + across.length() <= 1e-9 * size) {
        along = image.along;
        across = image.across;
        fromStart = query.pick - image.start;
    }
    nearest.consider(query, image.at(0));
    nearest.consider(query, image.at(image.last()));
    if (!image.isArc()) {
        double t = fromStart.dotProduct(along) / along.lengthSqrd();
        if (image.settle(t))
            nearest.consider(query, image.at(t));
        return;
    }
    const Feet feet = feetOnArc(along, across, fromStart);
    for (int i = 0; i < feet.at.count; ++i) {
        double t = feet.at.angles[static_cast<std::size_t>(i)];
        if (image.settle(t))
            nearest.consider(query, image.at(t));
    }
}

void appendQuadrants(const SnapPiece& piece, const PlaneAxes& axes, const AcGeMatrix3d& toWorld,
                     AcGePoint3dArray& points) {
    const CurvePiece& arc = piece.piece;
    for (const AcGeVector3d& direction : {axes.x, axes.y, -axes.x, -axes.y}) {
        double angle =
            normalizeAngle(std::atan2(direction.dotProduct(arc.yAxis), direction.dotProduct(arc.xAxis)));
        if (angle > kTwoPi - kAngleSlack)
            angle = 0;
        if (angle <= arc.extent + kAngleSlack)
            points.append(toWorld * (piece.center + direction * arc.radius));
    }
}

void appendEnds(const SnapCurve& curve, const AcGeMatrix3d& toWorld, AcGePoint3dArray& points) {
    for (const SnapPiece& piece : curve.pieces)
        points.append(toWorld * piece.start);
    if (!curve.closed && !curve.pieces.empty())
        points.append(toWorld * curve.pieces.back().end);
}

AcGePoint3d middleOf(const SnapPiece& piece) {
    return piece.piece.isArc() ? pointAt(piece.piece, piece.piece.extent / 2)
                               : piece.start + (piece.end - piece.start) * 0.5;
}

SnapPiece snapPiece(const CurvePiece& piece) {
    return {piece, piece.start, pointAt(piece, piece.extent), piece.isArc() ? piece.center() : AcGePoint3d()};
}

SnapCurve curveOf(const LineState& line) {
    return {{{pieceOf(line), line.start, line.end, {}}}, {}, false, false};
}

SnapCurve curveOf(const CircleState& circle, const CurvePiece& whole, bool isCircle) {
    SnapCurve curve{{snapPiece(whole)}, planeAxes(circle.normal), isCircle, isCircle};
    curve.pieces[0].center = curve.axes.toWorld(circle.center);
    return curve;
}

SnapCurve curveOf(const PolylineState& state) {
    SnapCurve curve{{}, planeAxes(state.normal), state.isClosed(), false};
    const auto place = [&](const PolylineVertex& vertex) {
        return curve.axes.toWorld(vertex.point.x, vertex.point.y, state.elevation);
    };
    // A single vertex is a segment without length.
    const std::size_t count = state.vertices.size() == 1 ? 1 : state.segmentCount();
    for (std::size_t i = 0; i < count; ++i) {
        SnapPiece piece = snapPiece(pieceOf(state, i, curve.axes));
        piece.start = place(state.vertices[i]);
        piece.end = place(state.segmentEnd(i));
        curve.pieces.push_back(piece);
    }
    if (count == 1 && state.vertices.size() == 1)
        curve.closed = true;
    return curve;
}

// Its ends are left to the face itself: where edges are hidden, the others do not follow each other.
SnapCurve curveOf(const FaceState& face) {
    SnapCurve curve;
    for (const FaceEdge& edge : shownEdgesOf(face))
        curve.pieces.push_back({segmentPiece(edge.start, edge.end), edge.start, edge.end, {}});
    return curve;
}

bool isFinite(const AcGeMatrix3d& matrix) {
    for (const auto& row : matrix.entry)
        if (!std::ranges::all_of(row, [](double value) { return std::isfinite(value); }))
            return false;
    return true;
}

}  // namespace

std::optional<SnapQuery> snapQuery(AcDb::OsnapMode mode, std::int64_t marker, const AcGePoint3d& pickPoint,
                                   const AcGePoint3d& lastPoint, const AcGeMatrix3d& viewTransform) {
    if (!isFinite(pickPoint) || !isFinite(lastPoint) || !isFinite(viewTransform))
        return std::nullopt;
    if (viewTransform.isSingular())
        return std::nullopt;
    const AcGeVector3d sight = viewTransform.inverse() * AcGeVector3d::kZAxis;
    const double length = sight.length();
    if (!(length > 0) || !std::isfinite(length))
        return std::nullopt;
    return SnapQuery{mode, pickPoint, lastPoint, sight / length, viewTransform, marker};
}

std::optional<SnapCurve> snapCurveOf(const AcDbEntity& entity) {
    if (entity.isKindOf(AcDbLine::desc()))
        return curveOf(readState<LineState>(&entity));
    if (entity.isKindOf(AcDbArc::desc())) {
        const ArcState& arc = readState<ArcState>(&entity);
        return curveOf(arc, pieceOf(arc), false);
    }
    if (entity.isKindOf(AcDbCircle::desc())) {
        const CircleState& circle = readState<CircleState>(&entity);
        return curveOf(circle, pieceOf(circle), true);
    }
    if (entity.isKindOf(AcDbPolyline::desc()))
        return curveOf(readState<PolylineState>(&entity));
    if (entity.isKindOf(AcDbFace::desc()))
        return curveOf(readState<FaceState>(&entity));
    return std::nullopt;
}

void appendSnapPoints(const SnapQuery& query, const SnapCurve& curve, const AcGeMatrix3d& toWorld,
                      AcGePoint3dArray& points) {
    if (query.mode == AcDb::kOsModeEnd && !curve.isCircle)
        return appendEnds(curve, toWorld, points);
    Nearest nearest;
    for (const SnapPiece& piece : curve.pieces) {
        switch (query.mode) {
            case AcDb::kOsModeMid:
                if (!curve.isCircle)
                    points.append(toWorld * middleOf(piece));
                break;
            case AcDb::kOsModeCen:
                if (piece.piece.isArc())
                    points.append(toWorld * piece.center);
                break;
            case AcDb::kOsModeQuad:
                if (piece.piece.isArc())
                    appendQuadrants(piece, curve.axes, toWorld, points);
                break;
            case AcDb::kOsModePerp: appendFeet(query, PieceImage(piece, toWorld), points); break;
            case AcDb::kOsModeTan: appendTangents(query, PieceImage(piece, toWorld), points); break;
            case AcDb::kOsModeNear: considerPiece(query, PieceImage(piece, toWorld), nearest); break;
            default: return;
        }
    }
    if (std::isfinite(nearest.seen))
        points.append(nearest.point);
}

Acad::ErrorStatus curveSnapPoints(const AcDbEntity& curve, const std::optional<SnapQuery>& query,
                                  AcGePoint3dArray& points) {
    if (!query)
        return Acad::eInvalidInput;
    if (const auto shape = snapCurveOf(curve))
        appendSnapPoints(*query, *shape, AcGeMatrix3d::kIdentity, points);
    return Acad::eOk;
}

Acad::ErrorStatus singleSnapPoint(const std::optional<SnapQuery>& query, AcDb::OsnapMode offered,
                                  const AcGePoint3d& point, AcGePoint3dArray& points) {
    if (!query)
        return Acad::eInvalidInput;
    if (query->mode == offered)
        points.append(point);
    return Acad::eOk;
}

}  // namespace drafthost

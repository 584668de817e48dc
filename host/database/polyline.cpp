// Lightweight polylines: vertices and curve queries. Drawing is in polyline_draw.cpp, filing in
// polyline_dxf.cpp.

#include "host/api/curves.h"
#include "host/api/editor.h"
#include "host/database/class_registry.h"
#include "host/database/curve_states.h"
#include "host/database/piece_queries.h"
#include "host/geometry/plane_image.h"

using namespace drafthost;

DRAFTHOST_DEFINE_CLASS(AcDbPolyline, AcDbCurve, L"LWPOLYLINE", &drafthost::constructObject<AcDbPolyline>)

namespace {

const PolylineState& stateOf(const AcDbPolyline* polyline) {
    return readState<PolylineState>(polyline);
}

// The state for a change of vertices or of the closed flag.
PolylineState* changing(AcDbPolyline* polyline) {
    PolylineState* state = writeState<PolylineState>(polyline);
    if (state)
        state->lengths.clear();
    return state;
}

// Changes one vertex.
template <class Change>
Acad::ErrorStatus changeVertex(AcDbPolyline* polyline, unsigned index, Change change) {
    if (index >= stateOf(polyline).vertices.size())
        return Acad::eInvalidIndex;
    PolylineState* state = changing(polyline);
    if (!state)
        return Acad::eNotOpenForWrite;
    change(state->vertices[index]);
    return Acad::eOk;
}

// A polyline of one vertex counts as one segment without length.
std::size_t pieceCount(const PolylineState& state) {
    return state.vertices.empty() ? 0 : std::max<std::size_t>(1, state.segmentCount());
}

struct Place {
    std::size_t segment = 0;
    double fraction = 0;  // of the segment, 0 to 1
};

bool locate(const PolylineState& state, double parameter, Place& place) {
    constexpr double kSlack = 1e-9;
    const auto count = static_cast<double>(state.segmentCount());
    if (state.vertices.empty() || !(parameter >= -kSlack && parameter <= count + kSlack))
        return false;
    const double inside = std::clamp(parameter, 0.0, count);
    place.segment = static_cast<std::size_t>(std::min(inside, std::max(0.0, count - 1)));
    place.fraction = inside - static_cast<double>(place.segment);
    return true;
}

struct Closest {
    double parameter = 0;
    AcGePoint3d point;
    double distance = 0;
};

// The closest point over all segments. measure(piece) gives the parameter on the piece, apart(point) what is
// minimised; of places that are equally close the first along the polyline counts.
template <class Measure, class Apart>
Closest closestOver(const PolylineState& state, Measure measure, Apart apart) {
    const PlaneAxes axes = planeAxes(state.normal);
    Closest best;
    const std::size_t count = pieceCount(state);
    for (std::size_t i = 0; i < count; ++i) {
        const CurvePiece piece = pieceOf(state, i, axes);
        const double onPiece = measure(piece);
        const AcGePoint3d point = pointAt(piece, onPiece);
        const double distance = apart(point);
        if (i > 0 && !(distance < best.distance - AcGeContext::gTol.equalPoint))
            continue;
        best = {static_cast<double>(i) + (piece.extent > 0 ? onPiece / piece.extent : 0), point, distance};
    }
    return best;
}

Closest closestTo(const PolylineState& state, const AcGePoint3d& given, bool extend) {
    return closestOver(
        state, [&](const CurvePiece& piece) { return closestParameter(piece, given, extend); },
        [&](const AcGePoint3d& point) { return point.distanceTo(given); });
}

// Twice the signed area between the arc and its chord, in terms that stay exact for flat arcs.
double twiceSegmentArea(double chordLength, double bulge) {
    if (std::abs(bulge) < 1e-4)
        return 2.0 / 3.0 * bulge * chordLength * chordLength;
    const double radius = chordLength * (1 + bulge * bulge) / (4 * bulge);
    const double sweep = 4 * std::atan(bulge);
    return radius * radius * (sweep - std::sin(sweep));
}

}  // namespace

AcDbPolyline::AcDbPolyline() : AcDbCurve(newImp<PolylineState>()) {}

unsigned AcDbPolyline::numVerts() const {
    return static_cast<unsigned>(stateOf(this).vertices.size());
}

// Negative widths stand for the polyline's own constant width.
Acad::ErrorStatus AcDbPolyline::addVertexAt(unsigned index, const AcGePoint2d& point, double bulge,
                                            double startWidth, double endWidth) {
    if (index > numVerts())
        return Acad::eInvalidIndex;
    if (!isFinite(point) || !std::isfinite(bulge) || !std::isfinite(startWidth) || !std::isfinite(endWidth)) {
        return Acad::eInvalidInput;
    }
    PolylineState* state = changing(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    PolylineVertex vertex{point, bulge, startWidth, endWidth};
    if (startWidth < 0)
        vertex.startWidth = state->constantWidth;
    if (endWidth < 0)
        vertex.endWidth = state->constantWidth;
    state->vertices.insert(state->vertices.begin() + index, vertex);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::removeVertexAt(unsigned index) {
    if (index >= numVerts())
        return Acad::eInvalidIndex;
    PolylineState* state = changing(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->vertices.erase(state->vertices.begin() + index);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned index, AcGePoint2d& point) const {
    if (index >= numVerts())
        return Acad::eInvalidIndex;
    point = stateOf(this).vertices[index].point;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned index, AcGePoint3d& point) const {
    if (index >= numVerts())
        return Acad::eInvalidIndex;
    const PolylineState& state = stateOf(this);
    const AcGePoint2d& inPlane = state.vertices[index].point;
    point = planeAxes(state.normal).toWorld(inPlane.x, inPlane.y, state.elevation);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setPointAt(unsigned index, const AcGePoint2d& point) {
    if (!isFinite(point))
        return Acad::eInvalidInput;
    return changeVertex(this, index, [&](PolylineVertex& vertex) { vertex.point = point; });
}

Acad::ErrorStatus AcDbPolyline::getBulgeAt(unsigned index, double& bulge) const {
    if (index >= numVerts())
        return Acad::eInvalidIndex;
    bulge = stateOf(this).vertices[index].bulge;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setBulgeAt(unsigned index, double bulge) {
    if (!std::isfinite(bulge))
        return Acad::eInvalidInput;
    return changeVertex(this, index, [&](PolylineVertex& vertex) { vertex.bulge = bulge; });
}

Acad::ErrorStatus AcDbPolyline::getWidthsAt(unsigned index, double& startWidth, double& endWidth) const {
    if (index >= numVerts())
        return Acad::eInvalidIndex;
    startWidth = stateOf(this).vertices[index].startWidth;
    endWidth = stateOf(this).vertices[index].endWidth;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setClosed(bool closed) {
    PolylineState* state = changing(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->flags = closed ? state->flags | PolylineState::kClosed : state->flags & ~PolylineState::kClosed;
    return Acad::eOk;
}

double AcDbPolyline::elevation() const {
    return stateOf(this).elevation;
}
AcGeVector3d AcDbPolyline::normal() const {
    return stateOf(this).normal;
}
bool AcDbPolyline::isClosed() const {
    return stateOf(this).isClosed();
}
bool AcDbPolyline::isPeriodic() const {
    return false;
}

Acad::ErrorStatus AcDbPolyline::getStartParam(double& param) const {
    param = 0;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getEndParam(double& param) const {
    param = static_cast<double>(stateOf(this).segmentCount());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAtParam(double param, AcGePoint3d& point) const {
    const PolylineState& state = stateOf(this);
    Place place;
    if (!locate(state, param, place))
        return Acad::eInvalidInput;
    const PlaneAxes axes = planeAxes(state.normal);
    if (place.fraction == 1) {
        const AcGePoint2d& end = state.segmentEnd(place.segment).point;
        point = axes.toWorld(end.x, end.y, state.elevation);
        return Acad::eOk;
    }
    const CurvePiece piece = pieceOf(state, place.segment, axes);
    point = pointAt(piece, place.fraction * piece.extent);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getParamAtPoint(const AcGePoint3d& point, double& param) const {
    const PolylineState& state = stateOf(this);
    if (state.vertices.empty())
        return Acad::eInvalidInput;
    const Closest closest = closestTo(state, point, false);
    const double tolerance = onCurveTolerance(state.length(), largestCoordinate(closest.point));
    if (!(closest.distance <= tolerance))
        return Acad::eInvalidInput;
    param = closest.parameter;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getDistAtParam(double param, double& distance) const {
    const PolylineState& state = stateOf(this);
    Place place;
    if (!locate(state, param, place))
        return Acad::eInvalidInput;
    const std::vector<double>& lengths = state.cumulativeLengths();
    const double before = lengths[place.segment];
    const double after = lengths[std::min(place.segment + 1, lengths.size() - 1)];
    distance = place.fraction == 1 ? after : before + place.fraction * (after - before);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getParamAtDist(double distance, double& param) const {
    const PolylineState& state = stateOf(this);
    const std::vector<double>& lengths = state.cumulativeLengths();
    const double whole = lengths.back(), slack = lengthTolerance(whole);
    if (state.vertices.empty() || !(distance >= -slack && distance <= whole + slack))
        return Acad::eInvalidInput;
    const double inside = std::clamp(distance, 0.0, whole);
    // The first segment that ends at or behind the distance, so that segments without length are not stopped
    // in.
    const auto end = std::lower_bound(lengths.begin() + 1, lengths.end(), inside);
    if (end == lengths.end()) {
        param = static_cast<double>(state.segmentCount());
        return Acad::eOk;
    }
    const double before = *(end - 1), span = *end - before;
    param = static_cast<double>(end - lengths.begin() - 1) + (span > 0 ? (inside - before) / span : 0);
    return Acad::eOk;
}

// At a vertex the segment that starts there counts, at the end the last one.
Acad::ErrorStatus AcDbPolyline::getFirstDeriv(double param, AcGeVector3d& derivative) const {
    const PolylineState& state = stateOf(this);
    Place place;
    if (!locate(state, param, place))
        return Acad::eInvalidInput;
    const CurvePiece piece = pieceOf(state, place.segment, planeAxes(state.normal));
    derivative = derivativeAt(piece, place.fraction * piece.extent) * piece.extent;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& result,
                                                  bool extend) const {
    const PolylineState& state = stateOf(this);
    if (!isFinite(given) || state.vertices.empty())
        return Acad::eInvalidInput;
    result = closestTo(state, given, extend).point;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getClosestPointTo(const AcGePoint3d& given, const AcGeVector3d& direction,
                                                  AcGePoint3d& result, bool extend) const {
    const PolylineState& state = stateOf(this);
    AcGeVector3d unit;
    if (!isFinite(given) || !viewDirection(direction, unit) || state.vertices.empty())
        return Acad::eInvalidInput;
    const auto seenApart = [&](const AcGePoint3d& point) {
        return (point - given).crossProduct(unit).length();
    };
    result = closestOver(
                 state, [&](const CurvePiece& piece) { return closestParameter(piece, given, unit, extend); },
                 seenApart)
                 .point;
    return Acad::eOk;
}

// Shoelace formula plus the areas beyond the chords of arcs, about the first vertex to keep digits far from
// the origin. An open polyline is closed by a straight line.
Acad::ErrorStatus AcDbPolyline::getArea(double& area) const {
    const PolylineState& state = stateOf(this);
    double twice = 0;
    for (std::size_t i = 0; i < state.vertices.size(); ++i) {
        const PolylineVertex &from = state.vertices[i], &to = state.segmentEnd(i);
        const AcGeVector2d a = from.point - state.vertices[0].point, b = to.point - state.vertices[0].point;
        twice += a.x * b.y - a.y * b.x;
        if (i < state.segmentCount())
            twice += twiceSegmentArea((to.point - from.point).length(), from.bulge);
    }
    area = std::abs(twice) / 2;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::subTransformBy(const AcGeMatrix3d& matrix) {
    const std::optional<PlaneImage> image = planeImage(matrix, normal());
    if (!image)
        return Acad::eNonUniformScale;
    PolylineState* state = changing(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    const PlaneAxes before = planeAxes(state->normal), after = planeAxes(image->normal);
    const auto moved = [&](const AcGePoint2d& p) {
        return after.toPlane(matrix * before.toWorld(p.x, p.y, state->elevation));
    };
    const double elevation = moved(state->vertices.empty() ? AcGePoint2d() : state->vertices[0].point).z;
    for (PolylineVertex& vertex : state->vertices) {
        vertex.point = moved(vertex.point).convert2d();
        if (image->reversed)
            vertex.bulge = 0.0 - vertex.bulge;
        vertex.startWidth *= image->scale;
        vertex.endWidth *= image->scale;
    }
    state->elevation = elevation;
    state->normal = image->normal;
    state->constantWidth *= image->scale;
    state->thickness *= image->thicknessScale;
    return Acad::eOk;
}

void AcDbPolyline::subList() const {
    AcDbEntity::subList();
    const PolylineState& state = stateOf(this);
    double area = 0;
    getArea(area);
    acutPrintf(state.isClosed() ? L"                   Closed\n" : L"                   Open\n");
    acutPrintf(L"          constant width %9.4f\n", state.constantWidth);
    acutPrintf(L"                    area %9.4f\n", area);
    acutPrintf(state.isClosed() ? L"               perimeter %9.4f\n" : L"                  length %9.4f\n",
               state.length());
    for (unsigned i = 0; i < numVerts(); ++i) {
        AcGePoint3d point;
        getPointAt(i, point);
        acutPrintf(L"                at point, X=%9.4f  Y=%9.4f  Z=%9.4f\n", point.x, point.y, point.z);
        if (state.vertices[i].bulge != 0)
            acutPrintf(L"                   bulge %9.4f\n", state.vertices[i].bulge);
    }
}

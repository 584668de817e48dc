// Drawing, extents and explosion of lightweight polylines.

#include "host/api/curves.h"
#include "host/database/curve_states.h"
#include "host/database/piece_queries.h"

using namespace drafthost;

namespace {

using Points = std::vector<AcGePoint3d>;

// Chords that stay within the deviation of the arc.
int chordCount(const CurvePiece& piece, double deviation) {
    if (!piece.isArc())
        return 1;
    constexpr double kLongestStep = kPi / 8;
    constexpr int kMostChords = 4096;
    double step = kLongestStep;
    if (deviation > 0 && deviation < piece.radius)
        step = std::min(step, 2 * std::acos(1 - deviation / piece.radius));
    return static_cast<int>(
        std::clamp(std::ceil(piece.extent / std::max(step, 1e-6)), 1.0, double{kMostChords}));
}

// Points from the start up to, but without, the end.
void appendChords(Points& points, const CurvePiece& piece, double deviation) {
    const int count = chordCount(piece, deviation);
    for (int i = 0; i < count; ++i)
        points.push_back(pointAt(piece, piece.extent * i / count));
}

AcGeVector3d leftOf(const CurvePiece& piece, double parameter, const AcGeVector3d& normal) {
    const AcGeVector3d tangent = derivativeAt(piece, parameter);
    return normal.crossProduct(tangent / tangent.length());
}

// One segment with its widths; the vectors point from its ends to the left edge, for half a unit of width: as
// long as the mitre asks.
struct WideSegment {
    CurvePiece piece;
    double startWidth, endWidth;
    AcGeVector3d startLeft, endLeft;
};

// Neighbours of equal width share the edge between them, unless they turn so sharply that the mitre would
// stick out far.
void mitre(WideSegment& before, WideSegment& after) {
    constexpr double kSharpest = 0.3;
    const double closeness = 1 + before.endLeft.dotProduct(after.startLeft);
    if (before.endWidth != after.startWidth || before.endWidth == 0 || closeness < kSharpest)
        return;
    before.endLeft = after.startLeft = (before.endLeft + after.startLeft) / closeness;
}

std::vector<WideSegment> wideSegments(const PolylineState& state) {
    const PlaneAxes axes = planeAxes(state.normal);
    std::vector<WideSegment> segments;
    for (std::size_t i = 0; i < state.segmentCount(); ++i) {
        const CurvePiece piece = pieceOf(state, i, axes);
        if (piece.length() <= 0)
            continue;
        const PolylineVertex& vertex = state.vertices[i];
        segments.push_back({piece, vertex.startWidth, vertex.endWidth, leftOf(piece, 0, axes.z),
                            leftOf(piece, piece.extent, axes.z)});
    }
    for (std::size_t i = 1; i < segments.size(); ++i)
        mitre(segments[i - 1], segments[i]);
    if (state.isClosed() && segments.size() > 1)
        mitre(segments.back(), segments.front());
    return segments;
}

// The left edge forth, the right edge back.
Points outlineOf(const WideSegment& segment, const AcGeVector3d& normal, double deviation) {
    const int count = chordCount(segment.piece, deviation);
    Points left, right;
    for (int i = 0; i <= count; ++i) {
        const double fraction = static_cast<double>(i) / count, parameter = segment.piece.extent * fraction;
        const AcGePoint3d middle = pointAt(segment.piece, parameter);
        const AcGeVector3d direction = i == 0       ? segment.startLeft
                                       : i == count ? segment.endLeft
                                                    : leftOf(segment.piece, parameter, normal);
        const AcGeVector3d half =
            direction * ((segment.startWidth + (segment.endWidth - segment.startWidth) * fraction) / 2);
        left.push_back(middle + half);
        right.push_back(middle - half);
    }
    left.insert(left.end(), right.rbegin(), right.rend());
    return left;
}

void drawWide(AcGiWorldDraw* worldDraw, const PolylineState& state) {
    AcGiWorldGeometry& geometry = worldDraw->geometry();
    for (const WideSegment& segment : wideSegments(state)) {
        if (segment.startWidth == 0 && segment.endWidth == 0) {
            Points points;
            appendChords(points, segment.piece, worldDraw->deviation());
            points.push_back(pointAt(segment.piece, segment.piece.extent));
            geometry.polyline(static_cast<std::uint32_t>(points.size()), points.data(), &state.normal);
            continue;
        }
        const Points outline = outlineOf(segment, state.normal, worldDraw->deviation());
        worldDraw->subEntityTraits().setFill(true);
        geometry.polygon(static_cast<std::uint32_t>(outline.size()), outline.data());
        worldDraw->subEntityTraits().setFill(false);
    }
}

// One line through all segments, so that a linetype runs on over the vertices.
void drawThin(AcGiWorldDraw* worldDraw, const PolylineState& state) {
    const PlaneAxes axes = planeAxes(state.normal);
    Points points;
    for (std::size_t i = 0; i < state.segmentCount(); ++i) {
        appendChords(points, pieceOf(state, i, axes), worldDraw->deviation());
    }
    const AcGePoint2d& last = state.isClosed() ? state.vertices.front().point : state.vertices.back().point;
    points.push_back(axes.toWorld(last.x, last.y, state.elevation));
    worldDraw->geometry().polyline(static_cast<std::uint32_t>(points.size()), points.data(), &state.normal);
}

// The edges of an arc of one width are arcs themselves.
void addEdges(AcDbExtents& extents, const WideSegment& segment, const AcGeVector3d& normal) {
    constexpr double kFineDeviation = 1e-6;  // of the radius, for the edges of tapered arcs
    for (const AcGePoint3d& corner : outlineOf(segment, normal, segment.piece.radius * kFineDeviation)) {
        extents.addPoint(corner);
    }
    if (!segment.piece.isArc() || segment.startWidth != segment.endWidth)
        return;
    CurvePiece outer = segment.piece;
    outer.radius += segment.startWidth / 2;
    outer.start = segment.piece.start + segment.piece.xAxis * (segment.startWidth / 2);
    addBox(extents, boxOf(outer));
}

AcDbEntity* partOf(const CurvePiece& piece, const PolylineState& state, const PlaneAxes& axes) {
    if (!piece.isArc()) {
        auto* line = new AcDbLine(piece.start, pointAt(piece, piece.extent));
        LineState* lineState = writeState<LineState>(line);
        lineState->thickness = state.thickness;
        lineState->normal = state.normal;
        return line;
    }
    const bool clockwise = piece.normal().dotProduct(axes.z) < 0;
    // A clockwise segment becomes an arc from its end to its start.
    const AcGeVector3d toStart = (clockwise ? pointAt(piece, piece.extent) : piece.start) - piece.center();
    const double startAngle = std::atan2(toStart.dotProduct(axes.y), toStart.dotProduct(axes.x));
    auto* arc =
        new AcDbArc(piece.center(), state.normal, piece.radius, startAngle, startAngle + piece.extent);
    writeState<ArcState>(arc)->thickness = state.thickness;
    return arc;
}

}  // namespace

bool AcDbPolyline::subWorldDraw(AcGiWorldDraw* worldDraw) {
    const auto& state = readState<PolylineState>(this);
    if (state.vertices.empty())
        return true;
    state.hasWidth() ? drawWide(worldDraw, state) : drawThin(worldDraw, state);
    return true;
}

Acad::ErrorStatus AcDbPolyline::subGetGeomExtents(AcDbExtents& extents) const {
    const auto& state = readState<PolylineState>(this);
    if (state.vertices.empty())
        return Acad::eInvalidExtents;
    const PlaneAxes axes = planeAxes(state.normal);
    const AcGePoint2d& first = state.vertices[0].point;
    extents.addPoint(axes.toWorld(first.x, first.y, state.elevation));
    for (std::size_t i = 0; i < state.segmentCount(); ++i)
        addBox(extents, boxOf(pieceOf(state, i, axes)));
    if (!state.hasWidth())
        return Acad::eOk;
    for (const WideSegment& segment : wideSegments(state))
        addEdges(extents, segment, axes.z);
    return Acad::eOk;
}

// Segments without length leave nothing; widths are lost, lines and arcs have none.
Acad::ErrorStatus AcDbPolyline::subExplode(AcDbEntityArray& parts) const {
    const auto& state = readState<PolylineState>(this);
    if (state.segmentCount() == 0)
        return Acad::eNotApplicable;
    const PlaneAxes axes = planeAxes(state.normal);
    for (std::size_t i = 0; i < state.segmentCount(); ++i) {
        const CurvePiece piece = pieceOf(state, i, axes);
        if (piece.length() <= 0)
            continue;
        AcDbEntity* part = partOf(piece, state, axes);
        part->setPropertiesFrom(this);
        parts.append(part);
    }
    return Acad::eOk;
}

#pragma once

// Contents of the curve entities, and their geometry as curve pieces.

#include <vector>

#include "host/database/object_imp.h"
#include "host/geometry/angles.h"
#include "host/geometry/curve_piece.h"
#include "host/geometry/tolerance.h"

namespace drafthost {

struct LineState : ClonedState<LineState, EntityState> {
    AcGePoint3d start, end;  // world coordinates
    double thickness = 0;
    AcGeVector3d normal{0, 0, 1};

    void file(StateWalker& walker) override;
};

struct CircleState : ClonedState<CircleState, EntityState> {
    AcGePoint3d center;  // entity coordinates
    double radius = 0;
    double thickness = 0;
    AcGeVector3d normal{0, 0, 1};

    void file(StateWalker& walker) override;
};

struct ArcState : ClonedState<ArcState, CircleState> {
    double startAngle = 0, endAngle = 0;  // radians in [0, 2 pi)

    void file(StateWalker& walker) override;
};

struct PolylineVertex {
    AcGePoint2d point;  // entity coordinates
    double bulge = 0;
    double startWidth = 0, endWidth = 0;
    std::int32_t identifier = 0;  // group 91, kept; 0: none
};

struct PolylineState : ClonedState<PolylineState, EntityState> {
    static constexpr std::int32_t kClosed = 1, kContinuousLinetype = 128;

    std::vector<PolylineVertex> vertices;
    std::int32_t flags = 0;    // group 70: kClosed, kContinuousLinetype
    double constantWidth = 0;  // of vertices that are added without widths
    double elevation = 0;
    double thickness = 0;
    AcGeVector3d normal{0, 0, 1};
    // Length from the start to each segment's start, and the whole length behind them. Computed when first
    // asked for; whoever changes vertices or the closed flag empties it.
    mutable std::vector<double> lengths;

    void file(StateWalker& walker) override;
    bool isClosed() const { return (flags & kClosed) != 0; }
    std::size_t segmentCount() const {
        return vertices.size() < 2 ? 0 : vertices.size() - (isClosed() ? 0 : 1);
    }
    const PolylineVertex& segmentEnd(std::size_t segment) const {
        return vertices[segment + 1 == vertices.size() ? 0 : segment + 1];
    }
    bool hasWidth() const;
    double length() const { return cumulativeLengths().back(); }
    const std::vector<double>& cumulativeLengths() const;  // at least one element
};

inline double sweepOf(const ArcState& arc) {
    return sweepBetween(arc.startAngle, arc.endAngle);
}

inline CurvePiece pieceOf(const LineState& line) {
    return segmentPiece(line.start, line.end);
}
inline CurvePiece pieceOf(const CircleState& circle) {
    const PlaneAxes axes = planeAxes(circle.normal);
    return arcPiece(axes.toWorld(circle.center), axes, circle.radius, 0, kTwoPi);
}
inline CurvePiece pieceOf(const ArcState& arc) {
    const PlaneAxes axes = planeAxes(arc.normal);
    return arcPiece(axes.toWorld(arc.center), axes, arc.radius, arc.startAngle, sweepOf(arc));
}
// axes: of the polyline's normal. The outer segments of an open polyline may be lengthened, others not.
CurvePiece pieceOf(const PolylineState& polyline, std::size_t segment, const PlaneAxes& axes);

// How far from the piece a point may lie and still count as lying on it.
inline double onCurveTolerance(const CurvePiece& piece) {
    return onCurveTolerance(piece.size(), piece.magnitude());
}

}  // namespace drafthost

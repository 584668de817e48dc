#pragma once

// One piece of a curve in space, a straight segment or a circular arc: what curve entities evaluate, measure
// and intersect through.
//
// The position on a piece is its parameter: for a segment the distance from its start, for an arc the angle
// turned from its start. An arc is anchored at its start point and not at its centre, so that flat arcs of
// huge radius keep their precision; it always runs counter-clockwise about xAxis cross yAxis.

#include <algorithm>

#include "host/api/geometry.h"
#include "host/geometry/plane_axes.h"

namespace drafthost {

struct CurvePiece {
    enum class Kind : unsigned char { Segment, Arc };

    Kind kind = Kind::Segment;
    bool extendsBackward = true;  // whether the start may be lengthened where a caller asks for extension
    bool extendsForward = true;
    AcGePoint3d start;
    AcGeVector3d xAxis;  // segment: unit direction, zero for a point; arc: unit, from the centre to the start
    AcGeVector3d yAxis;  // arc: unit, direction of travel at the start
    double extent = 0;   // parameter of the end: length of a segment; angle of an arc, in (0, 2 pi]
    double radius = 0;   // arc only; not negative

    bool isArc() const { return kind == Kind::Arc; }
    bool isFullTurn() const;
    double speed() const { return isArc() ? radius : 1.0; }  // length for one unit of the parameter
    double length() const { return extent * speed(); }
    AcGePoint3d center() const { return start - xAxis * radius; }
    AcGeVector3d normal() const { return xAxis.crossProduct(yAxis); }
    double size() const { return isArc() ? std::min(2 * radius, length()) : extent; }
    double magnitude() const;  // about the largest coordinate of its points
};

CurvePiece segmentPiece(const AcGePoint3d& start, const AcGePoint3d& end);
// Angles in the plane's axes; center in world coordinates.
CurvePiece arcPiece(const AcGePoint3d& center, const PlaneAxes& axes, double radius, double startAngle,
                    double sweep);
// From a polyline's vertex to the next one, in the plane at the elevation. The arc of a clockwise bulge runs
// about the opposite normal. Bulges too flat to be told from a straight line give a segment.
CurvePiece bulgePiece(const AcGePoint2d& start, const AcGePoint2d& end, double bulge, const PlaneAxes& axes,
                      double elevation);

AcGePoint3d pointAt(const CurvePiece& piece, double parameter);
// d(point)/d(parameter).
AcGeVector3d derivativeAt(const CurvePiece& piece, double parameter);

// Parameter of the point on the piece next to the given one. extend: beyond the ends that may be lengthened;
// arcs become full circles. A point just before the start of a full turn (by 1e-9 radians) gives 0; the
// centre gives 0.
double closestParameter(const CurvePiece& piece, const AcGePoint3d& given, bool extend = false);
// The same as seen along the unit direction. Where the whole piece is seen as one point, the next in space.
double closestParameter(const CurvePiece& piece, const AcGePoint3d& given, const AcGeVector3d& direction,
                        bool extend);

// Brings a parameter into the piece when it misses it by no more than the tolerance (a length); false: it is
// off. extend as above. An arc's parameter must lie in [0, 2 pi).
bool settleParameter(const CurvePiece& piece, double& parameter, bool extend, double tolerance);

struct Box {
    AcGePoint3d minimum, maximum;
    void add(const AcGePoint3d& point);
    bool isApartFrom(const Box& other, double tolerance) const;
};
// Exact box, extensions left out.
Box boxOf(const CurvePiece& piece);

}  // namespace drafthost

#pragma once

// Object snap on curves: the points that straight segments and circular arcs offer near a pick, also where a
// block reference shows them turned, scaled or skewed.

#include <optional>
#include <vector>

#include "host/api/entity.h"
#include "host/geometry/curve_piece.h"

namespace drafthost {

// What is looked for. World coordinates.
struct SnapQuery {
    AcDb::OsnapMode mode;
    AcGePoint3d pick;
    AcGePoint3d last;         // perpendiculars and tangents are drawn from here
    AcGeVector3d sight;       // unit: the direction in which "nearest to the pick" is seen
    AcGeMatrix3d view;        // world to view, as the caller gave it
    std::int64_t marker = 0;  // as the caller gave it
};
// Nothing for a view that cannot be looked through, and for coordinates that are not finite.
std::optional<SnapQuery> snapQuery(AcDb::OsnapMode mode, std::int64_t marker, const AcGePoint3d& pickPoint,
                                   const AcGePoint3d& lastPoint, const AcGeMatrix3d& viewTransform);

// A piece with its points as the entity has them; evaluating the piece would round.
struct SnapPiece {
    CurvePiece piece;
    AcGePoint3d start, end;
    AcGePoint3d center;  // of an arc
};
struct SnapCurve {
    std::vector<SnapPiece> pieces;  // in order along the curve
    PlaneAxes axes;                 // quadrants lie in these directions from the centres
    bool closed = false;
    bool isCircle = false;  // has neither ends nor a middle
};

// Lines, circles, arcs, polylines and the edges of faces as they are; nothing for other classes.
std::optional<SnapCurve> snapCurveOf(const AcDbEntity& entity);

// Appends what the curve offers after the transformation to the world, which may be any: an arc may be part
// of an ellipse there. Only points on the curve are given, and of "nearest" the one.
void appendSnapPoints(const SnapQuery& query, const SnapCurve& curve, const AcGeMatrix3d& toWorld,
                      AcGePoint3dArray& points);

// What the snap point operation of a curve class answers.
Acad::ErrorStatus curveSnapPoints(const AcDbEntity& curve, const std::optional<SnapQuery>& query,
                                  AcGePoint3dArray& points);
// Appends the one point that an entity offers in this mode.
Acad::ErrorStatus singleSnapPoint(const std::optional<SnapQuery>& query, AcDb::OsnapMode offered,
                                  const AcGePoint3d& point, AcGePoint3dArray& points);

}  // namespace drafthost

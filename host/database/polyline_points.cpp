// AcDbPolyline: snap points, grips and stretch points.

#include "host/api/curves.h"
#include "host/database/curve_states.h"
#include "host/database/edit_points.h"
#include "host/database/snap_points.h"

using namespace drafthost;

Acad::ErrorStatus AcDbPolyline::subGetOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker,
                                                  const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                                  const AcGeMatrix3d& viewTransform,
                                                  AcGePoint3dArray& snapPoints, AcDbIntArray&) const {
    return curveSnapPoints(*this, snapQuery(mode, marker, pickPoint, lastPoint, viewTransform), snapPoints);
}

Acad::ErrorStatus AcDbPolyline::subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray&,
                                                 AcDbIntArray&) const {
    return subGetStretchPoints(grips);
}

Acad::ErrorStatus AcDbPolyline::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    return subMoveStretchPointsAt(indices, offset);
}

Acad::ErrorStatus AcDbPolyline::subGetStretchPoints(AcGePoint3dArray& points) const {
    const PolylineState& state = readState<PolylineState>(this);
    const PlaneAxes axes = planeAxes(state.normal);
    for (const PolylineVertex& vertex : state.vertices)
        points.append(axes.toWorld(vertex.point.x, vertex.point.y, state.elevation));
    return Acad::eOk;
}

// Some of the vertices move within the plane, and segments keep their bulges; all of them move in space.
Acad::ErrorStatus AcDbPolyline::subMoveStretchPointsAt(const AcDbIntArray& indices,
                                                       const AcGeVector3d& offset) {
    const std::size_t count = readState<PolylineState>(this).vertices.size();
    std::vector<bool> marked(count, false);
    std::size_t moved = 0;
    for (const int index : indices) {
        if (index < 0 || static_cast<std::size_t>(index) >= count || marked[static_cast<std::size_t>(index)])
            continue;
        marked[static_cast<std::size_t>(index)] = true;
        ++moved;
    }
    if (moved == 0)
        return Acad::eOk;
    if (moved == count)
        return moveWhole(*this, offset);
    auto* const state = writeState<PolylineState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    const AcGeVector2d flat = inPlane(offset, planeAxes(state->normal));
    for (std::size_t i = 0; i < count; ++i) {
        if (marked[i])
            state->vertices[i].point = state->vertices[i].point + flat;
    }
    state->lengths.clear();
    return Acad::eOk;
}

// AcDbFace: snap points, grips and stretch points.

#include <algorithm>

#include "host/database/edit_points.h"
#include "host/database/face_state.h"
#include "host/database/snap_points.h"
#include "host/geometry/tolerance.h"

using namespace drafthost;

namespace {

const FaceState& stateOf(const AcDbFace* face) {
    return readState<FaceState>(face);
}

// Corners at the same place are one end.
void appendEnds(const std::vector<FaceEdge>& edges, AcGePoint3dArray& points) {
    const int before = points.length();
    for (const FaceEdge& edge : edges) {
        for (const AcGePoint3d& end : {edge.start, edge.end}) {
            const auto isEnd = [&](const AcGePoint3d& point) { return point.distanceTo(end) == 0; };
            if (std::none_of(points.begin() + before, points.end(), isEnd))
                points.append(end);
        }
    }
}

void appendCorners(const FaceState& face, AcGePoint3dArray& points) {
    for (const AcGePoint3d& corner : face.corners)
        points.append(corner);
}

// Nothing moves when a corner cannot go where it should.
Acad::ErrorStatus moveCorners(AcDbFace& face, const AcDbIntArray& indices, const AcGeVector3d& offset) {
    if (marksAll(indices, AcDbFace::kCorners))
        return moveWhole(face, offset);
    auto corners = stateOf(&face).corners;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        if (indices.contains(static_cast<int>(i)))
            corners[i] += offset;
        if (!isFinite(corners[i]))
            return Acad::eInvalidInput;
    }
    if (!marksAny(indices, AcDbFace::kCorners))
        return Acad::eOk;
    auto* const state = writeState<FaceState>(&face);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->corners = corners;
    return Acad::eOk;
}

}  // namespace

// Hidden edges offer nothing, nor do corners at which no edge is shown.
Acad::ErrorStatus AcDbFace::subGetOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker,
                                              const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                              const AcGeMatrix3d& viewTransform, AcGePoint3dArray& snapPoints,
                                              AcDbIntArray&) const {
    const auto query = snapQuery(mode, marker, pickPoint, lastPoint, viewTransform);
    if (query && mode == AcDb::kOsModeEnd) {
        appendEnds(shownEdgesOf(stateOf(this)), snapPoints);
        return Acad::eOk;
    }
    return curveSnapPoints(*this, query, snapPoints);
}

Acad::ErrorStatus AcDbFace::subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray&, AcDbIntArray&) const {
    appendCorners(stateOf(this), grips);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    return moveCorners(*this, indices, offset);
}

Acad::ErrorStatus AcDbFace::subGetStretchPoints(AcGePoint3dArray& points) const {
    appendCorners(stateOf(this), points);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::subMoveStretchPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    return moveCorners(*this, indices, offset);
}

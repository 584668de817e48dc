// AcDbLine: snap points, grips and stretch points.

#include "host/api/curves.h"
#include "host/database/edit_points.h"
#include "host/database/snap_points.h"

using namespace drafthost;

namespace {

constexpr int kStart = 0, kEnd = 1, kMiddle = 2;

Acad::ErrorStatus moveEnds(AcDbLine& line, const AcDbIntArray& indices, const AcGeVector3d& offset) {
    if (marksAll(indices, 2))
        return moveWhole(line, offset);
    if (indices.contains(kStart))
        return line.setStartPoint(line.startPoint() + offset);
    return indices.contains(kEnd) ? line.setEndPoint(line.endPoint() + offset) : Acad::eOk;
}

}  // namespace

Acad::ErrorStatus AcDbLine::subGetOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker,
                                              const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                              const AcGeMatrix3d& viewTransform, AcGePoint3dArray& snapPoints,
                                              AcDbIntArray&) const {
    return curveSnapPoints(*this, snapQuery(mode, marker, pickPoint, lastPoint, viewTransform), snapPoints);
}

// Start, end and the middle, which takes the whole line with it.
Acad::ErrorStatus AcDbLine::subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray&, AcDbIntArray&) const {
    const AcGePoint3d start = startPoint(), end = endPoint();
    for (const AcGePoint3d& grip : {start, end, start + (end - start) * 0.5})
        grips.append(grip);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    return indices.contains(kMiddle) ? moveWhole(*this, offset) : moveEnds(*this, indices, offset);
}

Acad::ErrorStatus AcDbLine::subGetStretchPoints(AcGePoint3dArray& points) const {
    points.append(startPoint());
    points.append(endPoint());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::subMoveStretchPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    return moveEnds(*this, indices, offset);
}

// AcDbEntity: snap points, grips and stretch points, as entities have them whose class says nothing else.

#include "host/api/entity.h"
#include "host/geometry/tolerance.h"

using namespace drafthost;

Acad::ErrorStatus AcDbEntity::getOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker,
                                             const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                             const AcGeMatrix3d& viewTransform, AcGePoint3dArray& snapPoints,
                                             AcDbIntArray& geometryIds) const {
    if (!isFinite(pickPoint) || !isFinite(lastPoint))
        return Acad::eInvalidInput;
    return subGetOsnapPoints(mode, marker, pickPoint, lastPoint, viewTransform, snapPoints, geometryIds);
}

Acad::ErrorStatus AcDbEntity::getOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker,
                                             const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                             const AcGeMatrix3d& viewTransform, AcGePoint3dArray& snapPoints,
                                             AcDbIntArray& geometryIds, const AcGeMatrix3d& insertion) const {
    if (!isFinite(pickPoint) || !isFinite(lastPoint))
        return Acad::eInvalidInput;
    return subGetOsnapPoints(mode, marker, pickPoint, lastPoint, viewTransform, snapPoints, geometryIds,
                             insertion);
}

Acad::ErrorStatus AcDbEntity::subGetOsnapPoints(AcDb::OsnapMode, std::int64_t, const AcGePoint3d&,
                                                const AcGePoint3d&, const AcGeMatrix3d&, AcGePoint3dArray&,
                                                AcDbIntArray&) const {
    return Acad::eNotApplicable;
}

Acad::ErrorStatus AcDbEntity::subGetOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker,
                                                const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                                const AcGeMatrix3d& viewTransform,
                                                AcGePoint3dArray& snapPoints, AcDbIntArray& geometryIds,
                                                const AcGeMatrix3d& insertion) const {
    if (insertion.isSingular())
        return Acad::eInvalidInput;
    const AcGeMatrix3d toBlock = insertion.inverse();
    const int before = snapPoints.length();
    const Acad::ErrorStatus status = subGetOsnapPoints(mode, marker, toBlock * pickPoint, toBlock * lastPoint,
                                                       viewTransform * insertion, snapPoints, geometryIds);
    for (int i = before; i < snapPoints.length(); ++i)
        snapPoints[i].transformBy(insertion);
    return status;
}

Acad::ErrorStatus AcDbEntity::getGripPoints(AcGePoint3dArray& grips, AcDbIntArray& osnapModes,
                                            AcDbIntArray& geometryIds) const {
    return subGetGripPoints(grips, osnapModes, geometryIds);
}

Acad::ErrorStatus AcDbEntity::getGripPoints(AcDbGripDataPtrArray& grips, double unitSize, int gripSize,
                                            const AcGeVector3d& viewDirection, int flags) const {
    return subGetGripPoints(grips, unitSize, gripSize, viewDirection, flags);
}

Acad::ErrorStatus AcDbEntity::moveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    if (!isFinite(offset))
        return Acad::eInvalidInput;
    return assertWriteEnabled() ? subMoveGripPointsAt(indices, offset) : Acad::eNotOpenForWrite;
}

Acad::ErrorStatus AcDbEntity::moveGripPointsAt(const AcDbVoidPtrArray& gripData, const AcGeVector3d& offset,
                                               int flags) {
    if (!isFinite(offset))
        return Acad::eInvalidInput;
    return assertWriteEnabled() ? subMoveGripPointsAt(gripData, offset, flags) : Acad::eNotOpenForWrite;
}

Acad::ErrorStatus AcDbEntity::getStretchPoints(AcGePoint3dArray& points) const {
    return subGetStretchPoints(points);
}

Acad::ErrorStatus AcDbEntity::moveStretchPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    if (!isFinite(offset))
        return Acad::eInvalidInput;
    return assertWriteEnabled() ? subMoveStretchPointsAt(indices, offset) : Acad::eNotOpenForWrite;
}

Acad::ErrorStatus AcDbEntity::subGetGripPoints(AcGePoint3dArray&, AcDbIntArray&, AcDbIntArray&) const {
    return Acad::eNotApplicable;
}
Acad::ErrorStatus AcDbEntity::subGetGripPoints(AcDbGripDataPtrArray&, double, int, const AcGeVector3d&,
                                               int) const {
    return Acad::eNotApplicable;
}
Acad::ErrorStatus AcDbEntity::subMoveGripPointsAt(const AcDbIntArray&, const AcGeVector3d&) {
    return Acad::eNotApplicable;
}
Acad::ErrorStatus AcDbEntity::subMoveGripPointsAt(const AcDbVoidPtrArray&, const AcGeVector3d&, int) {
    return Acad::eNotApplicable;
}
Acad::ErrorStatus AcDbEntity::subGetStretchPoints(AcGePoint3dArray&) const {
    return Acad::eNotApplicable;
}
Acad::ErrorStatus AcDbEntity::subMoveStretchPointsAt(const AcDbIntArray&, const AcGeVector3d&) {
    return Acad::eNotApplicable;
}

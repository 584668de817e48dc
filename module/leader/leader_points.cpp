// QNLeader: snap points, grips, stretch points, transformation.

#include "module/leader/leader_entity.h"

namespace tessary {

Acad::ErrorStatus QNLeader::subGetOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker,
                                              const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                              const AcGeMatrix3d& viewTransform, AcGePoint3dArray& snapPoints,
                                              AcDbIntArray& geometryIds) const {
    assertReadEnabled();
    return askParts([&](const AcDbEntity& part) {
        return part.getOsnapPoints(mode, marker, pickPoint, lastPoint, viewTransform, snapPoints,
                                   geometryIds);
    });
}

Acad::ErrorStatus QNLeader::subTransformBy(const AcGeMatrix3d& matrix) {
    if (!assertWriteEnabled()) {
        return Acad::eNotOpenForWrite;
    }
    AcGePoint3d start = start_, middle = middle_, end = end_;
    return setPoints(start.transformBy(matrix), middle.transformBy(matrix), end.transformBy(matrix));
}

// The kinds of grips stay unsaid: all three are points to stretch by.
Acad::ErrorStatus QNLeader::subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray&, AcDbIntArray&) const {
    assertReadEnabled();
    return getStretchPoints(grips);
}

Acad::ErrorStatus QNLeader::subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    return assertWriteEnabled() ? moveStretchPointsAt(indices, offset) : Acad::eNotOpenForWrite;
}

Acad::ErrorStatus QNLeader::subGetStretchPoints(AcGePoint3dArray& points) const {
    assertReadEnabled();
    for (const AcGePoint3d* const point : {&start_, &middle_, &end_}) {
        points.append(*point);
    }
    return Acad::eOk;
}

// An index that is given twice moves its point once; indices of no point are passed over.
Acad::ErrorStatus QNLeader::subMoveStretchPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) {
    if (!assertWriteEnabled()) {
        return Acad::eNotOpenForWrite;
    }
    bool isMarked[3] = {};
    for (const int index : indices) {
        if (index >= 0 && index < 3) {
            isMarked[index] = true;
        }
    }
    AcGePoint3d points[] = {start_, middle_, end_};
    for (int i = 0; i < 3; ++i) {
        if (isMarked[i]) {
            points[i] += offset;
        }
    }
    return setPoints(points[0], points[1], points[2]);
}

}  // namespace tessary

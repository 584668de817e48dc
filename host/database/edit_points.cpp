// Snap points, grips and stretch points of the host's own entities.

#include "host/api/block_reference.h"
#include "host/api/curves.h"
#include "host/api/text_entities.h"

Acad::ErrorStatus AcDbLine::subGetOsnapPoints(AcDb::OsnapMode, std::int64_t, const AcGePoint3d&,
                                              const AcGePoint3d&, const AcGeMatrix3d&, AcGePoint3dArray&,
                                              AcDbIntArray&) const {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbLine::subGetGripPoints(AcGePoint3dArray&, AcDbIntArray&, AcDbIntArray&) const {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbLine::subMoveGripPointsAt(const AcDbIntArray&, const AcGeVector3d&) {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbLine::subGetStretchPoints(AcGePoint3dArray&) const {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbLine::subMoveStretchPointsAt(const AcDbIntArray&, const AcGeVector3d&) {
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::subGetOsnapPoints(AcDb::OsnapMode, std::int64_t, const AcGePoint3d&,
                                                const AcGePoint3d&, const AcGeMatrix3d&, AcGePoint3dArray&,
                                                AcDbIntArray&) const {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbCircle::subGetGripPoints(AcGePoint3dArray&, AcDbIntArray&, AcDbIntArray&) const {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbCircle::subMoveGripPointsAt(const AcDbIntArray&, const AcGeVector3d&) {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbCircle::subGetStretchPoints(AcGePoint3dArray&) const {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbCircle::subMoveStretchPointsAt(const AcDbIntArray&, const AcGeVector3d&) {
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::subGetOsnapPoints(AcDb::OsnapMode, std::int64_t, const AcGePoint3d&,
                                             const AcGePoint3d&, const AcGeMatrix3d&, AcGePoint3dArray&,
                                             AcDbIntArray&) const {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbArc::subGetGripPoints(AcGePoint3dArray&, AcDbIntArray&, AcDbIntArray&) const {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbArc::subMoveGripPointsAt(const AcDbIntArray&, const AcGeVector3d&) {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbArc::subGetStretchPoints(AcGePoint3dArray&) const {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbArc::subMoveStretchPointsAt(const AcDbIntArray&, const AcGeVector3d&) {
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::subGetOsnapPoints(AcDb::OsnapMode, std::int64_t, const AcGePoint3d&,
                                                  const AcGePoint3d&, const AcGeMatrix3d&, AcGePoint3dArray&,
                                                  AcDbIntArray&) const {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbPolyline::subGetGripPoints(AcGePoint3dArray&, AcDbIntArray&, AcDbIntArray&) const {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbPolyline::subMoveGripPointsAt(const AcDbIntArray&, const AcGeVector3d&) {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbPolyline::subGetStretchPoints(AcGePoint3dArray&) const {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbPolyline::subMoveStretchPointsAt(const AcDbIntArray&, const AcGeVector3d&) {
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::subGetOsnapPoints(AcDb::OsnapMode, std::int64_t, const AcGePoint3d&,
                                              const AcGePoint3d&, const AcGeMatrix3d&, AcGePoint3dArray&,
                                              AcDbIntArray&) const {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbText::subGetGripPoints(AcGePoint3dArray&, AcDbIntArray&, AcDbIntArray&) const {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbText::subMoveGripPointsAt(const AcDbIntArray&, const AcGeVector3d&) {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbText::subGetStretchPoints(AcGePoint3dArray&) const {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbText::subMoveStretchPointsAt(const AcDbIntArray&, const AcGeVector3d&) {
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::subGetOsnapPoints(AcDb::OsnapMode, std::int64_t, const AcGePoint3d&,
                                               const AcGePoint3d&, const AcGeMatrix3d&, AcGePoint3dArray&,
                                               AcDbIntArray&) const {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::subGetGripPoints(AcGePoint3dArray&, AcDbIntArray&, AcDbIntArray&) const {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::subMoveGripPointsAt(const AcDbIntArray&, const AcGeVector3d&) {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::subGetStretchPoints(AcGePoint3dArray&) const {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::subMoveStretchPointsAt(const AcDbIntArray&, const AcGeVector3d&) {
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::subGetOsnapPoints(AcDb::OsnapMode, std::int64_t, const AcGePoint3d&,
                                                        const AcGePoint3d&, const AcGeMatrix3d&,
                                                        AcGePoint3dArray&, AcDbIntArray&) const {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbBlockReference::subGetGripPoints(AcGePoint3dArray&, AcDbIntArray&,
                                                       AcDbIntArray&) const {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbBlockReference::subMoveGripPointsAt(const AcDbIntArray&, const AcGeVector3d&) {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbBlockReference::subGetStretchPoints(AcGePoint3dArray&) const {
    return Acad::eOk;
}
Acad::ErrorStatus AcDbBlockReference::subMoveStretchPointsAt(const AcDbIntArray&, const AcGeVector3d&) {
    return Acad::eOk;
}

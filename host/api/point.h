#pragma once

// Point entity: a mark at one place, drawn as the variables PDMODE and PDSIZE of its drawing say.

#include "host/api/entity.h"

class DRAFTHOST_API AcDbPoint : public AcDbEntity {
public:
    ACRX_DECLARE_MEMBERS(AcDbPoint)
    AcDbPoint();
    explicit AcDbPoint(const AcGePoint3d& position);
    AcGePoint3d position() const;  // world coordinates
    Acad::ErrorStatus setPosition(const AcGePoint3d& point);
    double thickness() const;
    Acad::ErrorStatus setThickness(double thickness);
    AcGeVector3d normal() const;  // unit
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
    // By which the mark is turned from the X axis of the plane's coordinate system, radians.
    double ecsRotation() const;
    Acad::ErrorStatus setEcsRotation(double angle);

    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;

protected:
    bool subWorldDraw(AcGiWorldDraw* worldDraw) override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;  // the position
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& matrix) override;
    Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker,
                                        const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                        const AcGeMatrix3d& viewTransform, AcGePoint3dArray& snapPoints,
                                        AcDbIntArray& geometryIds) const override;
    using AcDbEntity::subGetOsnapPoints;
    Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray& osnapModes,
                                       AcDbIntArray& geometryIds) const override;
    using AcDbEntity::subGetGripPoints;
    Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset) override;
    using AcDbEntity::subMoveGripPointsAt;
    Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices,
                                             const AcGeVector3d& offset) override;
    void subList() const override;
};

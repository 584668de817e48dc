#pragma once

// Face entity: a piece of a surface with three or four corners, in DXF files 3DFACE.

#include "host/api/entity.h"

class DRAFTHOST_API AcDbFace : public AcDbEntity {
public:
    ACRX_DECLARE_MEMBERS(AcDbFace)
    static constexpr int kCorners = 4;

    // All corners at the origin.
    AcDbFace();
    // World coordinates. A face with three corners has the third one twice. Edge i goes from corner i to the
    // next one; hidden edges are not drawn.
    AcDbFace(const AcGePoint3d& corner0, const AcGePoint3d& corner1, const AcGePoint3d& corner2,
             const AcGePoint3d& corner3, bool edge0Visible = true, bool edge1Visible = true,
             bool edge2Visible = true, bool edge3Visible = true);

    // eInvalidIndex for indices beyond 3.
    Acad::ErrorStatus getVertexAt(int index, AcGePoint3d& corner) const;
    Acad::ErrorStatus setVertexAt(int index, const AcGePoint3d& corner);
    Acad::ErrorStatus isEdgeVisibleAt(int index, bool& visible) const;
    Acad::ErrorStatus setEdgeVisibilityAt(int index, bool visible);

    bool isPlanar() const override;  // with a tolerance for rounding
    Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const override;

    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;

protected:
    bool subWorldDraw(AcGiWorldDraw* worldDraw) override;  // a shell; folded when it is bent
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& matrix) override;
    Acad::ErrorStatus subExplode(AcDbEntityArray& parts) const override;  // eNotApplicable: it has no parts
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

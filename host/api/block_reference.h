#pragma once

#include "host/api/entity.h"
#include "host/api/text_entities.h"

// Insertion of a block definition, with the attributes that belong to it.
class DRAFTHOST_API AcDbBlockReference : public AcDbEntity {
public:
    ACRX_DECLARE_MEMBERS(AcDbBlockReference)
    AcDbBlockReference();
    AcDbBlockReference(const AcGePoint3d& position, AcDbObjectId blockTableRecord);
    AcDbObjectId blockTableRecord() const;  // null: draws nothing
    Acad::ErrorStatus setBlockTableRecord(AcDbObjectId id);
    AcGePoint3d position() const;  // world coordinates
    Acad::ErrorStatus setPosition(const AcGePoint3d& point);
    double rotation() const;
    Acad::ErrorStatus setRotation(double angle);
    AcGeVector3d scaleFactors() const;
    Acad::ErrorStatus setScaleFactors(const AcGeVector3d& factors);  // finite; zero: nothing to be seen
    AcGeVector3d normal() const;
    Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
    // From block coordinates to world coordinates, base point included.
    AcGeMatrix3d blockTransform() const;
    // Adds the attribute to the database of this reference, open for write; the caller closes it.
    Acad::ErrorStatus appendAttribute(AcDbObjectId& id, AcDbAttribute* attribute);
    AcArray<AcDbObjectId> attributeIds() const;

    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus setLayer(AcDbObjectId layerId, bool doSubents, bool allowHiddenLayer) override;
    using AcDbEntity::setLayer;

protected:
    bool subWorldDraw(AcGiWorldDraw* worldDraw) override;
    Acad::ErrorStatus subErase(bool erasing) override;  // its attributes go with it
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
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
    Acad::ErrorStatus subExplode(AcDbEntityArray& parts) const override;
    Acad::ErrorStatus subIntersectWith(const AcDbEntity* other, AcDb::Intersect type,
                                       AcGePoint3dArray& points, std::int64_t thisMarker,
                                       std::int64_t otherMarker) const override;
    void subList() const override;
};

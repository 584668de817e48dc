#pragma once

// Entities: objects that are drawn.

#include "host/api/object.h"

class AcDbEntity;
using AcDbVoidPtrArray = AcArray<void*>;
using AcDbEntityArray = AcArray<AcDbEntity*>;
using AcDbIntArray = AcArray<int>;
// A grip with data of its class.
struct AcDbGripData {
    AcGePoint3d point;
    void* appData = nullptr;  // the class's
};
using AcDbGripDataPtrArray = AcArray<AcDbGripData*>;

// What a solid amounts to, for lists of parts. Drawing units, square and cubic ones.
struct AcDbSolidMeasures {
    const ACHAR* kind = L"";  // what it is, for people; a text constant of the class
    double volume = 0;        // enclosed
    double surfaceArea = 0;   // of the whole surface
    double sheetArea = 0;     // of the sheet metal that it is made of, laid flat; 0 for none
};

class DRAFTHOST_API AcDbExtents {
public:
    AcDbExtents() = default;
    AcDbExtents(const AcGePoint3d& minimum, const AcGePoint3d& maximum)
        : min_(minimum), max_(maximum), valid_(true) {}
    bool isValid() const { return valid_; }  // false: empty
    const AcGePoint3d& minPoint() const { return min_; }
    const AcGePoint3d& maxPoint() const { return max_; }
    void addPoint(const AcGePoint3d& point);
    void addExt(const AcDbExtents& other);

private:
    AcGePoint3d min_, max_;
    bool valid_ = false;
};

class DRAFTHOST_API AcDbEntity : public AcDbObject {
public:
    ACRX_DECLARE_MEMBERS(AcDbEntity)

    AcDbObjectId blockId() const { return ownerId(); }
    AcDbObjectId layerId() const;
    // Name as text; caller releases with acutDelString. Empty outside a database when no layer was set.
    ACHAR* layer() const;
    // eKeyNotFound for a missing layer. Outside a database names are looked up in the working database.
    // doSubents: also for owned sub-entities (attributes). allowHiddenLayer: layers that programs keep from
    // drafters' sight, whose names begin with an asterisk, count too; frozen ones always do.
    virtual Acad::ErrorStatus setLayer(const ACHAR* name, bool doSubents = true,
                                       bool allowHiddenLayer = false);
    virtual Acad::ErrorStatus setLayer(AcDbObjectId layerId, bool doSubents = true,
                                       bool allowHiddenLayer = false);
    std::uint16_t colorIndex() const;  // 0 by block, 256 by layer
    Acad::ErrorStatus setColorIndex(std::uint16_t index, bool doSubents = true);
    // 0x00RRGGBB, or -1 when the colour is an index.
    std::int32_t trueColor() const;
    Acad::ErrorStatus setTrueColor(std::int32_t rgb);
    AcDbObjectId linetypeId() const;
    Acad::ErrorStatus setLinetype(const ACHAR* name, bool doSubents = true);
    Acad::ErrorStatus setLinetype(AcDbObjectId linetypeId, bool doSubents = true);
    double linetypeScale() const;
    Acad::ErrorStatus setLinetypeScale(double scale, bool doSubents = true);
    int lineWeight() const;  // hundredths of a millimetre, or an AcDb::LineWeight
    Acad::ErrorStatus setLineWeight(int weight, bool doSubents = true);
    bool isVisible() const;
    Acad::ErrorStatus setVisibility(bool visible, bool doSubents = true);
    // Copies layer, colour, linetype, scale, weight and visibility.
    Acad::ErrorStatus setPropertiesFrom(const AcDbEntity* other, bool doSubents = true);

    // Unions the entity's box into extents. eInvalidExtents when it has none.
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const;
    // Applies the matrix, to points, displacements and distances of the extended data too. eInvalidInput for
    // a singular one, eNotApplicable when the class cannot be moved.
    Acad::ErrorStatus transformBy(const AcGeMatrix3d& matrix);
    // Appends the points of the kind that the entity offers near a pick, world coordinates. marker: of the
    // part that was picked, 0 none. lastPoint: the point before, from which perpendicular and tangent are
    // drawn. viewTransform: to the coordinates of the view (the identity for a plan view). eNotApplicable
    // when a class has no such points at all; none found is eOk.
    Acad::ErrorStatus getOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker, const AcGePoint3d& pickPoint,
                                     const AcGePoint3d& lastPoint, const AcGeMatrix3d& viewTransform,
                                     AcGePoint3dArray& snapPoints, AcDbIntArray& geometryIds) const;
    // The same for an entity shown through block references; insertion: from its block to the world.
    Acad::ErrorStatus getOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker, const AcGePoint3d& pickPoint,
                                     const AcGePoint3d& lastPoint, const AcGeMatrix3d& viewTransform,
                                     AcGePoint3dArray& snapPoints, AcDbIntArray& geometryIds,
                                     const AcGeMatrix3d& insertion) const;
    // Appends the points by which the entity is edited. osnapModes and geometryIds may stay empty.
    Acad::ErrorStatus getGripPoints(AcGePoint3dArray& grips, AcDbIntArray& osnapModes,
                                    AcDbIntArray& geometryIds) const;
    // Grips with data, which the caller deletes. unitSize: pixels for a drawing unit; gripSize: pixels.
    // eNotApplicable when the class has none of this form: ask for the other.
    Acad::ErrorStatus getGripPoints(AcDbGripDataPtrArray& grips, double unitSize, int gripSize,
                                    const AcGeVector3d& viewDirection, int flags) const;
    // Moves the points of these indices (into what getGripPoints gave) by the offset. Needs write.
    Acad::ErrorStatus moveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset);
    Acad::ErrorStatus moveGripPointsAt(const AcDbVoidPtrArray& gripData, const AcGeVector3d& offset,
                                       int flags);
    // Points that STRETCH moves when its window holds them, and the moving. Needs write.
    Acad::ErrorStatus getStretchPoints(AcGePoint3dArray& points) const;
    Acad::ErrorStatus moveStretchPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset);
    virtual bool isPlanar() const;
    // The plane an entity lies in. eNotApplicable when the class says nothing about it.
    virtual Acad::ErrorStatus getPlane(AcGePlane& plane, AcDb::Planarity& planarity) const;
    // Appends new entities, caller owns. eNotApplicable when the entity has no parts.
    Acad::ErrorStatus explode(AcDbEntityArray& parts) const;
    // Appends the points where this meets other. Points found twice (a tangent point) are given once.
    // eOk without points when there are none; eNotApplicable when a class has no geometry to intersect.
    Acad::ErrorStatus intersectWith(const AcDbEntity* other, AcDb::Intersect type, AcGePoint3dArray& points,
                                    std::int64_t thisMarker = 0, std::int64_t otherMarker = 0) const;
    // The same for the projections of both on the plane along its normal; points lie on this entity.
    Acad::ErrorStatus intersectWith(const AcDbEntity* other, AcDb::Intersect type, const AcGePlane& plane,
                                    AcGePoint3dArray& points, std::int64_t thisMarker = 0,
                                    std::int64_t otherMarker = 0) const;
    // eNotApplicable for what is no solid, and for one that holds nothing.
    Acad::ErrorStatus getSolidMeasures(AcDbSolidMeasures& measures) const;
    // Describes the entity on the command line.
    void list() const;

    Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

protected:
    AcDbEntity();  // for classes of modules
    explicit AcDbEntity(drafthost::ObjectImp* imp);
    // What stands behind the operations above. Operations that change call assertWriteEnabled first, the
    // others assertReadEnabled.
    virtual void subList() const;
    virtual Acad::ErrorStatus subGetSolidMeasures(AcDbSolidMeasures& measures) const;
    virtual Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker,
                                                const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                                const AcGeMatrix3d& viewTransform,
                                                AcGePoint3dArray& snapPoints,
                                                AcDbIntArray& geometryIds) const;
    // As the host has it: asks the form above in the block's coordinates.
    virtual Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode mode, std::int64_t marker,
                                                const AcGePoint3d& pickPoint, const AcGePoint3d& lastPoint,
                                                const AcGeMatrix3d& viewTransform,
                                                AcGePoint3dArray& snapPoints, AcDbIntArray& geometryIds,
                                                const AcGeMatrix3d& insertion) const;
    virtual Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& matrix);
    virtual Acad::ErrorStatus subExplode(AcDbEntityArray& parts) const;
    virtual Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray& grips, AcDbIntArray& osnapModes,
                                               AcDbIntArray& geometryIds) const;
    virtual Acad::ErrorStatus subGetGripPoints(AcDbGripDataPtrArray& grips, double unitSize, int gripSize,
                                               const AcGeVector3d& viewDirection, int flags) const;
    virtual Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset);
    virtual Acad::ErrorStatus subMoveGripPointsAt(const AcDbVoidPtrArray& gripData,
                                                  const AcGeVector3d& offset, int flags);
    virtual Acad::ErrorStatus subGetStretchPoints(AcGePoint3dArray& points) const;
    virtual Acad::ErrorStatus subMoveStretchPointsAt(const AcDbIntArray& indices, const AcGeVector3d& offset);
    virtual Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const;
    virtual Acad::ErrorStatus subIntersectWith(const AcDbEntity* other, AcDb::Intersect type,
                                               AcGePoint3dArray& points, std::int64_t thisMarker,
                                               std::int64_t otherMarker) const;
    virtual Acad::ErrorStatus subIntersectWith(const AcDbEntity* other, AcDb::Intersect type,
                                               const AcGePlane& plane, AcGePoint3dArray& points,
                                               std::int64_t thisMarker, std::int64_t otherMarker) const;
};

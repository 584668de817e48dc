#pragma once

// Entities: objects that are drawn.

#include "host/api/object.h"

class AcDbEntity;
using AcDbVoidPtrArray = AcArray<void*>;
using AcDbEntityArray = AcArray<AcDbEntity*>;

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
    // doSubents: also for owned sub-entities (attributes). Frozen (hidden) layers need allowHiddenLayer.
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
    Acad::ErrorStatus transformBy(const AcGeMatrix3d& matrix);
    // New entities, caller owns. eNotApplicable when the entity has no parts.
    Acad::ErrorStatus explode(AcDbEntityArray& parts) const;
    // Appends the points where this meets other. Points found twice (a tangent point) are given once.
    // eOk without points when there are none; eNotApplicable when a class has no geometry to intersect.
    Acad::ErrorStatus intersectWith(const AcDbEntity* other, AcDb::Intersect type, AcGePoint3dArray& points,
                                    std::int64_t thisMarker = 0, std::int64_t otherMarker = 0) const;
    // The same for the projections of both on the plane along its normal; points lie on this entity.
    Acad::ErrorStatus intersectWith(const AcDbEntity* other, AcDb::Intersect type, const AcGePlane& plane,
                                    AcGePoint3dArray& points, std::int64_t thisMarker = 0,
                                    std::int64_t otherMarker = 0) const;
    void list() const;

    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;

protected:
    AcDbEntity();  // for classes of modules
    explicit AcDbEntity(drafthost::ObjectImp* imp);
    virtual Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const;
    virtual Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& matrix);
    virtual Acad::ErrorStatus subExplode(AcDbEntityArray& parts) const;
    virtual Acad::ErrorStatus subIntersectWith(const AcDbEntity* other, AcDb::Intersect type,
                                               AcGePoint3dArray& points, std::int64_t thisMarker,
                                               std::int64_t otherMarker) const;
    virtual Acad::ErrorStatus subIntersectWith(const AcDbEntity* other, AcDb::Intersect type,
                                               const AcGePlane& plane, AcGePoint3dArray& points,
                                               std::int64_t thisMarker, std::int64_t otherMarker) const;
    virtual void subList() const;
};

#pragma once

// Objects and entities of classes that nobody here knows. Their groups are kept and written back unchanged;
// handles in them follow their objects. What every entity has (layer, colour and so on) can be read, and
// changed as far as its class allows: one that a class record of the drawing (or a module that was here)
// describes refuses what its proxy flags leave out; other entities, which this host just lacks, refuse
// nothing.

#include "host/api/entity.h"
#include "host/database/kept_contents.h"
#include "host/database/object_imp.h"
#include "host/database/proxy_graphics.h"

namespace drafthost {

struct UnknownObjectState : ClonedState<UnknownObjectState, ObjectState>, KeptContents {
    void file(StateWalker& walker) override;
};

// The kept groups are those behind the groups of AcDbEntity.
struct UnknownEntityState : ClonedState<UnknownEntityState, EntityState>, KeptContents {
    std::vector<AcDbObjectId>
        subEntities;         // vertices and the end of their sequence, when the entity has some
    ProxyGraphics graphics;  // empty unless its class was here in this session

    void file(StateWalker& walker) override;
    void becomeCopy() override {
        EntityState::becomeCopy();
        subEntities.clear();
    }
};

}  // namespace drafthost

class AcDbUnknownObject : public AcDbObject {
public:
    ACRX_DECLARE_MEMBERS(AcDbUnknownObject)
    AcDbUnknownObject();
    explicit AcDbUnknownObject(const std::wstring& dxfName);
    const std::wstring& dxfName() const;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
};

class AcDbUnknownEntity : public AcDbEntity {
public:
    ACRX_DECLARE_MEMBERS(AcDbUnknownEntity)
    AcDbUnknownEntity();
    explicit AcDbUnknownEntity(const std::wstring& dxfName);
    const std::wstring& dxfName() const;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;

protected:
    bool subWorldDraw(AcGiWorldDraw* worldDraw) override;
    void subViewportDraw(AcGiViewportDraw* viewportDraw) override;
    Acad::ErrorStatus subGetGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& matrix) override;
    void subList() const override;
};

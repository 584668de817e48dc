#pragma once

// Objects and entities of classes that nobody here knows. Their groups are kept and written back unchanged;
// handles in them follow their objects. What every entity has (layer, colour and so on) can be read and
// changed.

#include "host/api/entity.h"
#include "host/database/object_imp.h"

namespace drafthost {

struct UnknownObjectState : ClonedState<UnknownObjectState, ObjectState> {
    std::wstring dxfName;
    std::vector<DxfGroup> groups;  // from the first subclass marker on, extended data left out

    void file(StateWalker& walker) override;
};

struct UnknownEntityState : ClonedState<UnknownEntityState, EntityState> {
    std::wstring dxfName;
    std::vector<DxfGroup> groups;  // behind the groups of AcDbEntity
    std::vector<AcDbObjectId>
        subEntities;  // vertices and the end of their sequence, when the entity has some

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
    Acad::ErrorStatus subTransformBy(const AcGeMatrix3d& matrix) override;
};

#include "host/database/unknown_objects.h"

#include "host/database/class_registry.h"
#include "host/database/dxf_fields.h"

using namespace drafthost;

DRAFTHOST_DEFINE_CLASS(AcDbUnknownObject, AcDbObject, nullptr, &drafthost::constructObject<AcDbUnknownObject>)
DRAFTHOST_DEFINE_CLASS(AcDbUnknownEntity, AcDbEntity, nullptr, &drafthost::constructObject<AcDbUnknownEntity>)

namespace {

// All groups up to the extended data that nobody has taken.
Acad::ErrorStatus takeRest(AcDbDxfFiler* filer, std::vector<DxfGroup>& rest) {
    auto* const groups = dynamic_cast<GroupFiler*>(filer);
    if (!groups)
        return Acad::eFilerError;
    rest.clear();
    for (std::size_t i = 0; i < groups->groups().size(); ++i) {
        const DxfGroup& group = groups->groups()[i];
        if (groups->taken(i) || group.code >= 1000 || group.code <= 0)
            continue;
        rest.push_back(group);
        groups->take(i);
    }
    return Acad::eOk;
}

Acad::ErrorStatus writeRest(AcDbDxfFiler* filer, const std::vector<DxfGroup>& rest) {
    auto* const groups = dynamic_cast<GroupFiler*>(filer);
    if (!groups)
        return Acad::eFilerError;
    for (const DxfGroup& group : rest)
        groups->add(group);
    return Acad::eOk;
}

}  // namespace

AcDbUnknownObject::AcDbUnknownObject() : AcDbObject(newImp<UnknownObjectState>()) {}

AcDbUnknownObject::AcDbUnknownObject(const std::wstring& dxfName) : AcDbUnknownObject() {
    static_cast<UnknownObjectState&>(*ObjectImp::of(this).state).dxfName = dxfName;
}

const std::wstring& AcDbUnknownObject::dxfName() const {
    return readState<UnknownObjectState>(this).dxfName;
}

Acad::ErrorStatus AcDbUnknownObject::dxfOutFields(AcDbDxfFiler* filer) const {
    return writeRest(filer, readState<UnknownObjectState>(this).groups);
}

Acad::ErrorStatus AcDbUnknownObject::dxfInFields(AcDbDxfFiler* filer) {
    auto* const state = writeState<UnknownObjectState>(this);
    return state ? takeRest(filer, state->groups) : Acad::eNotOpenForWrite;
}

AcDbUnknownEntity::AcDbUnknownEntity() : AcDbEntity(newImp<UnknownEntityState>()) {}

AcDbUnknownEntity::AcDbUnknownEntity(const std::wstring& dxfName) : AcDbUnknownEntity() {
    static_cast<UnknownEntityState&>(*ObjectImp::of(this).state).dxfName = dxfName;
}

const std::wstring& AcDbUnknownEntity::dxfName() const {
    return readState<UnknownEntityState>(this).dxfName;
}

Acad::ErrorStatus AcDbUnknownEntity::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const auto status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk)
        return status;
    return writeRest(filer, readState<UnknownEntityState>(this).groups);
}

Acad::ErrorStatus AcDbUnknownEntity::dxfInFields(AcDbDxfFiler* filer) {
    auto* const state = writeState<UnknownEntityState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    // What every entity has is optional here: whatever the groups are, they are kept.
    const auto status = AcDbEntity::dxfInFields(filer);
    if (status != Acad::eOk && status != Acad::eBadDxfSequence)
        return status;
    return takeRest(filer, state->groups);
}

// What the numbers in the groups mean is not known, so they cannot be moved.
Acad::ErrorStatus AcDbUnknownEntity::subTransformBy(const AcGeMatrix3d&) {
    return Acad::eNotApplicable;
}

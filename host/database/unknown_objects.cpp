#include "host/database/unknown_objects.h"

#include "host/api/editor.h"
#include "host/database/class_records.h"
#include "host/database/class_registry.h"
#include "host/database/dxf_fields.h"
#include "host/database/proxies.h"

using namespace drafthost;

DRAFTHOST_DEFINE_CLASS(AcDbUnknownObject, AcDbObject, nullptr, &drafthost::constructObject<AcDbUnknownObject>)
DRAFTHOST_DEFINE_CLASS(AcDbUnknownEntity, AcDbEntity, nullptr, &drafthost::constructObject<AcDbUnknownEntity>)

namespace {

// All groups up to the extended data that nobody has taken.
Acad::ErrorStatus takeRest(AcDbDxfFiler* filer, KeptContents& contents) {
    auto* const groups = dynamic_cast<GroupFiler*>(filer);
    if (!groups)
        return Acad::eFilerError;
    std::vector<DxfGroup>& rest = contents.groups;
    rest.clear();
    for (std::size_t i = 0; i < groups->groups().size(); ++i) {
        const DxfGroup& group = groups->groups()[i];
        if (groups->taken(i) || group.code >= 1000 || group.code <= 0)
            continue;
        rest.push_back(group);
        groups->take(i);
    }
    takeRecord(contents);
    return Acad::eOk;
}

Acad::ErrorStatus writeRest(AcDbDxfFiler* filer, const KeptContents& contents) {
    auto* const groups = dynamic_cast<GroupFiler*>(filer);
    if (!groups)
        return Acad::eFilerError;
    const bool onlyRecord = contents.groups.empty() && contents.hasRecord;
    for (const DxfGroup& group : onlyRecord ? recordGroups(contents) : contents.groups)
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
    return writeRest(filer, readState<UnknownObjectState>(this));
}

Acad::ErrorStatus AcDbUnknownObject::dxfInFields(AcDbDxfFiler* filer) {
    auto* const state = writeState<UnknownObjectState>(this);
    return state ? takeRest(filer, *state) : Acad::eNotOpenForWrite;
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
    return writeRest(filer, readState<UnknownEntityState>(this));
}

Acad::ErrorStatus AcDbUnknownEntity::dxfInFields(AcDbDxfFiler* filer) {
    auto* const state = writeState<UnknownEntityState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    // What every entity has is optional here: whatever the groups are, they are kept.
    const auto status = AcDbEntity::dxfInFields(filer);
    if (status != Acad::eOk && status != Acad::eBadDxfSequence)
        return status;
    return takeRest(filer, *state);
}

void AcDbUnknownEntity::subList() const {
    AcDbEntity::subList();
    const AcDbDatabase* const drawing = database();
    const ClassGroups* const record = drawing ? findClassRecord(*drawing, dxfName()) : nullptr;
    const std::wstring application = record ? applicationIn(*record) : std::wstring();
    if (classOfProxy(*this))
        acutPrintf(L"                   Proxy: its class cannot read it\n");
    else if (!application.empty())
        acutPrintf(L"                   Proxy: its class is not loaded (%ls)\n", application.c_str());
    else
        acutPrintf(L"                   Not known here: kept as it is\n");
}

// What the numbers in the groups mean is not known, so they cannot be moved even where the class allows it.
Acad::ErrorStatus AcDbUnknownEntity::subTransformBy(const AcGeMatrix3d&) {
    return proxyRefuses(*this, kProxyTransformAllowed) ? Acad::eProxyRefused : Acad::eNotApplicable;
}

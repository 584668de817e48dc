#include <algorithm>

#include "host/api/block_reference.h"
#include "host/database/block_contents.h"
#include "host/database/class_registry.h"
#include "host/database/database_impl.h"
#include "host/database/entity_parts.h"
#include "host/database/names.h"
#include "host/database/nesting.h"
#include "host/database/table_states.h"

using namespace drafthost;

DRAFTHOST_DEFINE_CLASS(AcDbBlockTableRecord, AcDbSymbolTableRecord, L"BLOCK_RECORD",
                       &drafthost::constructObject<AcDbBlockTableRecord>)

namespace {

// Flags and base point are filed with the BLOCK entity.
constexpr DxfField kFields[] = {
    dxfField<&BlockState::name>(2),
    dxfField<&BlockState::layout>(340),
};

const BlockState& blockOf(const AcDbBlockTableRecord* record) {
    return readState<BlockState>(record);
}

void setErased(AcDbObjectId id, bool erasing) {
    if (!id.isValid() || id.stub()->erased == erasing || id.stub()->undone)
        return;
    noteChange(*id.stub());
    id.stub()->erased = erasing;
}

}  // namespace

AcDbBlockTableRecord::AcDbBlockTableRecord() : AcDbSymbolTableRecord(newImp<BlockState>()) {}

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbEntity* entity) {
    AcDbObjectId id;
    return appendAcDbEntity(id, entity);
}

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbObjectId& id, AcDbEntity* entity) {
    id = AcDbObjectId();
    if (!entity)
        return Acad::eNullObjectPointer;
    if (!database())
        return Acad::eNotInDatabase;
    if (!entity->objectId().isNull())
        return Acad::eAlreadyInDb;
    if (!isWriteEnabled())
        return Acad::eNotOpenForWrite;
    return appendToBlock(*this, entity, AcDbHandle(), id);
}

AcArray<AcDbObjectId> AcDbBlockTableRecord::entityIds() const {
    AcArray<AcDbObjectId> ids;
    for (const AcDbObjectId id : blockOf(this).entities) {
        if (!id.isErased())
            ids.append(id);
    }
    return ids;
}

AcGePoint3d AcDbBlockTableRecord::origin() const {
    return blockOf(this).origin;
}

Acad::ErrorStatus AcDbBlockTableRecord::setOrigin(const AcGePoint3d& point) {
    auto* const state = writeState<BlockState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->origin = point;
    return Acad::eOk;
}

bool AcDbBlockTableRecord::isLayout() const {
    return equalNames(blockOf(this).name, ACDB_MODEL_SPACE) || isPaperSpace(*this);
}

bool AcDbBlockTableRecord::isAnonymous() const {
    return blockOf(this).name.starts_with(L"*");
}

bool AcDbBlockTableRecord::hasAttributeDefinitions() const {
    return std::ranges::any_of(blockOf(this).entities, [](AcDbObjectId id) {
        return !id.isErased() && peek<AcDbAttributeDefinition>(id);
    });
}

Acad::ErrorStatus AcDbBlockTableRecord::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const auto status = AcDbSymbolTableRecord::dxfOutFields(filer); status != Acad::eOk)
        return status;
    return writeSubclass(filer, L"AcDbBlockTableRecord", blockOf(this), kFields);
}

Acad::ErrorStatus AcDbBlockTableRecord::dxfInFields(AcDbDxfFiler* filer) {
    if (const auto status = AcDbSymbolTableRecord::dxfInFields(filer); status != Acad::eOk)
        return status;
    return readSubclass(filer, L"AcDbBlockTableRecord", *writeState<BlockState>(this), kFields);
}

bool AcDbBlockTableRecord::subWorldDraw(AcGiWorldDraw* worldDraw) {
    const BlockVisit visit(objectId());
    if (!visit.entered())
        return true;
    for (const AcDbObjectId id : blockOf(this).entities) {
        if (worldDraw->regenAbort())
            break;
        if (!id.isErased())
            worldDraw->geometry().draw(id.stub()->object);
    }
    return true;
}

Acad::ErrorStatus AcDbBlockTableRecord::subErase(bool erasing) {
    if (erasing && (isLayout() || isReferenced(*database(), objectId())))
        return Acad::eCannotBeErased;
    if (const auto status = AcDbSymbolTableRecord::subErase(erasing); status != Acad::eOk)
        return status;
    const BlockState& state = blockOf(this);
    for (const AcDbObjectId id : state.entities) {
        setErased(id, erasing);
        if (const auto* const entity = peek<AcDbEntity>(id))
            eraseSubEntities(*entity, erasing);
    }
    setErased(state.begin, erasing);
    setErased(state.end, erasing);
    return Acad::eOk;
}

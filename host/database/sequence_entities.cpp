#include "host/database/sequence_entities.h"

#include "host/database/class_registry.h"
#include "host/database/database_impl.h"
#include "host/database/table_states.h"

using namespace drafthost;

DRAFTHOST_DEFINE_CLASS(AcDbBlockBegin, AcDbEntity, L"BLOCK", &drafthost::constructObject<AcDbBlockBegin>)
DRAFTHOST_DEFINE_CLASS(AcDbBlockEnd, AcDbEntity, L"ENDBLK", &drafthost::constructObject<AcDbBlockEnd>)
DRAFTHOST_DEFINE_CLASS(AcDbSequenceEnd, AcDbEntity, L"SEQEND", &drafthost::constructObject<AcDbSequenceEnd>)

namespace {

struct MarkerState : ClonedState<MarkerState, EntityState> {};

constexpr std::int32_t kAnonymous = 1;
constexpr std::int32_t kHasAttributes = 2;

// Rows of the BLOCK entity, kept in the block's record.
constexpr DxfField kBlockFields[] = {
    dxfField<&BlockState::name>(2),         dxfField<&BlockState::flags>(70),
    dxfField<&BlockState::origin>(10),      dxfField<&BlockState::name>(3),
    dxfField<&BlockState::externalPath>(1), dxfField<&BlockState::description>(4),
};

const AcDbBlockTableRecord* recordOf(const AcDbEntity* marker) {
    return peek<AcDbBlockTableRecord>(marker->ownerId());
}

// Whether there are attribute definitions is looked up, not remembered.
BlockState filedState(const AcDbBlockTableRecord& record) {
    BlockState state;
    const BlockState& own = readState<BlockState>(&record);
    state.name = own.name;
    state.origin = own.origin;
    state.externalPath = own.externalPath;
    state.description = own.description;
    state.flags = own.flags & ~(kAnonymous | kHasAttributes);
    if (record.isAnonymous() && !record.isLayout())
        state.flags |= kAnonymous;
    if (record.hasAttributeDefinitions())
        state.flags |= kHasAttributes;
    return state;
}

}  // namespace

AcDbBlockBegin::AcDbBlockBegin() : AcDbEntity(newImp<MarkerState>()) {}
AcDbBlockEnd::AcDbBlockEnd() : AcDbEntity(newImp<MarkerState>()) {}
AcDbSequenceEnd::AcDbSequenceEnd() : AcDbEntity(newImp<MarkerState>()) {}

Acad::ErrorStatus AcDbBlockBegin::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const auto status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk)
        return status;
    const AcDbBlockTableRecord* const record = recordOf(this);
    const BlockState state = record ? filedState(*record) : BlockState();
    writeSubclassMarker(filer, L"AcDbBlockBegin");
    writeFields(filer, state, kBlockFields);
    writeExtras(filer, L"AcDbBlockBegin", readState<MarkerState>(this));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockBegin::dxfInFields(AcDbDxfFiler* filer) {
    if (const auto status = AcDbEntity::dxfInFields(filer); status != Acad::eOk)
        return status;
    // The rows are read into a state of their own, because the name must not be changed behind the table's
    // back.
    BlockState read;
    if (const auto status = readSubclass(filer, L"AcDbBlockBegin", read, kBlockFields); status != Acad::eOk) {
        return status;
    }
    writeState<MarkerState>(this)->extras.insert(writeState<MarkerState>(this)->extras.end(),
                                                 read.extras.begin(), read.extras.end());
    const AcDbBlockTableRecord* const record = recordOf(this);
    if (!record)
        return Acad::eOk;
    noteChange(*ObjectImp::of(record).stub);
    auto& state = static_cast<BlockState&>(*ObjectImp::of(record).state);
    state.flags = read.flags;
    state.origin = read.origin;
    state.externalPath = read.externalPath;
    state.description = read.description;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockEnd::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const auto status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk)
        return status;
    return writeSubclass(filer, L"AcDbBlockEnd", readState<MarkerState>(this), {});
}

Acad::ErrorStatus AcDbBlockEnd::dxfInFields(AcDbDxfFiler* filer) {
    if (const auto status = AcDbEntity::dxfInFields(filer); status != Acad::eOk)
        return status;
    // Some programs leave the second marker out; the entity says nothing more either way.
    const auto status = readSubclass(filer, L"AcDbBlockEnd", *writeState<MarkerState>(this), {});
    return status == Acad::eBadDxfSequence ? Acad::eOk : status;
}

// AcDbBlockReference: properties, attributes, filing. Geometry is in block_reference_geometry.cpp.

#include "host/api/block_reference.h"

#include <algorithm>
#include <cmath>

#include "host/api/database.h"
#include "host/database/angle_groups.h"
#include "host/database/block_contents.h"
#include "host/database/block_reference_state.h"
#include "host/database/class_registry.h"
#include "host/database/database_impl.h"
#include "host/database/dxf_checks.h"
#include "host/database/entity_parts.h"
#include "host/database/sequence_entities.h"

using namespace drafthost;

DRAFTHOST_DEFINE_CLASS(AcDbBlockReference, AcDbEntity, L"INSERT",
                       &drafthost::constructObject<AcDbBlockReference>)

namespace {

using State = BlockReferenceState;

const State& stateOf(const AcDbBlockReference* reference) {
    return readState<State>(reference);
}

bool hasAttributes(const State& state) {
    return std::ranges::any_of(state.attributes, [](AcDbObjectId id) { return !id.isErased(); });
}

bool isArray(const State& state) {
    return state.columns > 1 || state.rows > 1;
}
// Programs that make a reference with a factor of zero have miscalculated; files may have some.
bool hasZeroScale(const State& state) {
    return state.scaleX == 0 || state.scaleY == 0 || state.scaleZ == 0;
}
bool isForLisp(const GroupFiler& filer) {
    return filer.filerType() == AcDb::kBagFiler;
}

void writeAttributesFollow(const ObjectState& state, const DxfField& field, GroupFiler& filer) {
    const bool follow = hasAttributes(static_cast<const State&>(state));
    if (follow)
        filer.writeInt16(field.code, 1);
}

// LISP programs find all rows; files leave out those with usual values.
template <auto Member>
constexpr DxfField scaleRow(short code) {
    return {code,
            [](const ObjectState& state, const DxfField& field, GroupFiler& filer) {
                const double scale = static_cast<const State&>(state).*Member;
                if (scale != 1 || isForLisp(filer))
                    filer.writeItem(field.code, scale);
            },
            [](ObjectState& state, const DxfField&, const DxfGroup& group, AcDbDatabase*) {
                return detail::readValue(group, static_cast<State&>(state).*Member);
            }};
}

void writeRotation(const ObjectState& state, const DxfField& field, GroupFiler& filer) {
    const double rotation = static_cast<const State&>(state).rotation;
    if (rotation != 0 || isForLisp(filer))
        filer.writeItem(field.code, angleToFile(&filer, rotation));
}

// The unit of angles depends on what the groups are for; dxfInFields converts what is read here.
bool readRotation(ObjectState& state, const DxfField&, const DxfGroup& group, AcDbDatabase*) {
    return detail::readValue(group, static_cast<State&>(state).rotation);
}

template <auto Member>
constexpr DxfField countRow(short code) {
    return {code,
            [](const ObjectState& state, const DxfField& field, GroupFiler& filer) {
                const auto& reference = static_cast<const State&>(state);
                const auto count = static_cast<std::int16_t>(isArray(reference) ? reference.*Member : 0);
                if (isForLisp(filer) || isArray(reference))
                    filer.writeInt16(field.code, count);
            },
            [](ObjectState& state, const DxfField&, const DxfGroup& group, AcDbDatabase*) {
                std::int32_t count = 0;
                if (!detail::readValue(group, count) || count < 0 || count > 32767)
                    return false;
                static_cast<State&>(state).*Member = std::max(count, 1);
                return true;
            }};
}

template <auto Member>
constexpr DxfField spacingRow(short code) {
    return {code,
            [](const ObjectState& state, const DxfField& field, GroupFiler& filer) {
                const double spacing = static_cast<const State&>(state).*Member;
                if (spacing != 0 || isForLisp(filer))
                    filer.writeItem(field.code, spacing);
            },
            [](ObjectState& state, const DxfField&, const DxfGroup& group, AcDbDatabase*) {
                return detail::readValue(group, static_cast<State&>(state).*Member);
            }};
}

bool ignore(ObjectState&, const DxfField&, const DxfGroup&, AcDbDatabase*) {
    return true;
}

constexpr DxfField kFields[] = {
    {66, writeAttributesFollow, ignore}, dxfName<&State::block>(2, TableKind::Block),
    dxfField<&State::position>(10),      scaleRow<&State::scaleX>(41),
    scaleRow<&State::scaleY>(42),        scaleRow<&State::scaleZ>(43),
    {50, writeRotation, readRotation},   countRow<&State::columns>(70),
    countRow<&State::rows>(71),          spacingRow<&State::columnSpacing>(44),
    spacingRow<&State::rowSpacing>(45),  dxfField<&State::normal>(210),
};

constexpr const wchar_t* kSubclass = L"AcDbBlockReference";
constexpr const wchar_t* kArraySubclass = L"AcDbMInsertBlock";

const wchar_t* subclassOf(const State& state) {
    return isArray(state) ? kArraySubclass : kSubclass;
}
bool isOwn(const ExtraGroup& extra) {
    return extra.subclass == kSubclass || extra.subclass == kArraySubclass;
}

}  // namespace

AcDbBlockReference::AcDbBlockReference() : AcDbEntity(newImp<State>()) {}

AcDbBlockReference::AcDbBlockReference(const AcGePoint3d& position, AcDbObjectId blockTableRecord)
    : AcDbBlockReference() {
    setPosition(position);
    setBlockTableRecord(blockTableRecord);
}

AcDbObjectId AcDbBlockReference::blockTableRecord() const {
    return stateOf(this).block;
}

Acad::ErrorStatus AcDbBlockReference::setBlockTableRecord(AcDbObjectId id) {
    if (!id.isNull() && !peek<AcDbBlockTableRecord>(id))
        return Acad::eWrongObjectType;
    if (database() && !id.isNull() && id.database() != database())
        return Acad::eWrongDatabase;
    if (const auto status = mayReferTo(ownerId(), id); status != Acad::eOk)
        return status;
    State* const state = writeState<State>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->block = id;
    return Acad::eOk;
}

AcGePoint3d AcDbBlockReference::position() const {
    return AcGeMatrix3d::planeToWorld(stateOf(this).normal) * stateOf(this).position;
}

Acad::ErrorStatus AcDbBlockReference::setPosition(const AcGePoint3d& point) {
    if (!isFinite(point))
        return Acad::eInvalidInput;
    State* const state = writeState<State>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->position = AcGeMatrix3d::worldToPlane(state->normal) * point;
    return Acad::eOk;
}

double AcDbBlockReference::rotation() const {
    return stateOf(this).rotation;
}

Acad::ErrorStatus AcDbBlockReference::setRotation(double angle) {
    if (!std::isfinite(angle))
        return Acad::eInvalidInput;
    State* const state = writeState<State>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->rotation = angle;
    return Acad::eOk;
}

AcGeVector3d AcDbBlockReference::scaleFactors() const {
    const State& state = stateOf(this);
    return {state.scaleX, state.scaleY, state.scaleZ};
}

Acad::ErrorStatus AcDbBlockReference::setScaleFactors(const AcGeVector3d& factors) {
    // Zero is no error: what an entity draws as a part of itself may shrink to nothing.
    if (!std::isfinite(factors.x) || !std::isfinite(factors.y) || !std::isfinite(factors.z))
        return Acad::eInvalidInput;
    State* const state = writeState<State>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->scaleX = factors.x;
    state->scaleY = factors.y;
    state->scaleZ = factors.z;
    return Acad::eOk;
}

AcGeVector3d AcDbBlockReference::normal() const {
    return stateOf(this).normal;
}

Acad::ErrorStatus AcDbBlockReference::setNormal(const AcGeVector3d& normal) {
    AcGeVector3d unit = normal;
    if (!settleNormal(unit))
        return Acad::eInvalidInput;
    State* const state = writeState<State>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    const AcGePoint3d place = position();
    state->normal = unit;
    state->position = AcGeMatrix3d::worldToPlane(unit) * place;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::appendAttribute(AcDbObjectId& id, AcDbAttribute* attribute) {
    id = AcDbObjectId();
    if (!attribute)
        return Acad::eNullObjectPointer;
    if (!database())
        return Acad::eNotInDatabase;
    State* const state = writeState<State>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    AcDbDatabase::Impl& impl = database()->impl();
    if (const auto status = impl.add(attribute, objectId(), AcDbHandle(), id); status != Acad::eOk)
        return status;
    auto& attributeState = static_cast<EntityState&>(*ObjectImp::of(attribute).state);
    if (attributeState.layer.isNull())
        attributeState.layer = state->layer;
    adoptProperties(attributeState, *database());
    state->attributes.push_back(id);
    if (state->sequenceEnd.isValid())
        return Acad::eOk;

    auto end = std::make_unique<AcDbSequenceEnd>();
    static_cast<EntityState&>(*ObjectImp::of(end.get()).state).layer = state->layer;
    if (impl.add(end.get(), objectId(), AcDbHandle(), state->sequenceEnd) == Acad::eOk)
        end.release()->close();
    return Acad::eOk;
}

AcArray<AcDbObjectId> AcDbBlockReference::attributeIds() const {
    AcArray<AcDbObjectId> ids;
    for (const AcDbObjectId id : stateOf(this).attributes) {
        if (!id.isErased())
            ids.append(id);
    }
    return ids;
}

Acad::ErrorStatus AcDbBlockReference::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const auto status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk)
        return status;
    const State& state = stateOf(this);
    writeSubclassMarker(filer, subclassOf(state));
    writeFields(filer, state, kFields);
    writeExtras(filer, subclassOf(state), state);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::dxfInFields(AcDbDxfFiler* filer) {
    if (const auto status = AcDbEntity::dxfInFields(filer); status != Acad::eOk)
        return status;
    State* const state = writeState<State>(this);
    auto* const groups = dynamic_cast<GroupFiler*>(filer);
    state->rotation = angleToFile(filer, state->rotation);
    std::erase_if(state->extras, isOwn);
    auto status = readSubclass(filer, kSubclass, *state, kFields);
    if (status == Acad::eBadDxfSequence)
        status = readSubclass(filer, kArraySubclass, *state, kFields);
    state->rotation = angleFromFile(filer, state->rotation);
    // Written behind the marker that the entity will have, which need not be the one it was read with.
    for (ExtraGroup& extra : state->extras) {
        if (isOwn(extra))
            extra.subclass = subclassOf(*state);
    }
    if (status == Acad::eOk && groups && isForLisp(*groups) && hasZeroScale(*state)) {
        groups->setProblem(L"groups 41 to 43: zero is no scale");
        return Acad::eInvalidInput;
    }
    return status;
}

Acad::ErrorStatus AcDbBlockReference::setLayer(AcDbObjectId layerId, bool doSubents, bool allowHiddenLayer) {
    return AcDbEntity::setLayer(layerId, doSubents, allowHiddenLayer);
}

Acad::ErrorStatus AcDbBlockReference::subErase(bool erasing) {
    // A reference whose definition went meanwhile cannot come back.
    if (!erasing && !stateOf(this).block.isNull() && stateOf(this).block.isErased())
        return Acad::eNullBlockName;
    eraseSubEntities(*this, erasing);
    return Acad::eOk;
}

#include <algorithm>

#include "host/database/class_registry.h"
#include "host/database/database_impl.h"
#include "host/database/symbol_records.h"
#include "host/database/table_states.h"

using namespace drafthost;

DRAFTHOST_DEFINE_CLASS(AcDbLayerTableRecord, AcDbSymbolTableRecord, L"LAYER",
                       &drafthost::constructObject<AcDbLayerTableRecord>)

namespace {

constexpr std::int32_t kFrozen = 1;
constexpr std::int32_t kLocked = 4;

// The sign of the colour in files says whether the layer is on.
void writeColor(const ObjectState& state, const DxfField& field, GroupFiler& filer) {
    const auto& layer = static_cast<const LayerState&>(state);
    filer.writeInt16(field.code, static_cast<std::int16_t>(layer.off ? -layer.color : layer.color));
}

bool readColor(ObjectState& state, const DxfField&, const DxfGroup& group, AcDbDatabase*) {
    std::int32_t color = 0;
    if (!detail::readValue(group, color) || color < -255 || color > 256)
        return false;
    auto& layer = static_cast<LayerState&>(state);
    layer.off = color < 0;
    layer.color = color == 0 || color == 256 ? 7 : std::abs(color);
    return true;
}

bool readLinetype(ObjectState& state, const DxfField&, const DxfGroup& group, AcDbDatabase* database) {
    return detail::readName(group, TableKind::Linetype, database, static_cast<LayerState&>(state).linetype);
}

// A layer needs a linetype in files.
void writeLinetype(const ObjectState& state, const DxfField& field, GroupFiler& filer) {
    const std::wstring& name = recordName(static_cast<const LayerState&>(state).linetype);
    filer.writeItem(field.code, name.empty() ? L"Continuous" : name.c_str());
}

constexpr DxfField kFields[] = {
    dxfField<&LayerState::name>(2),
    dxfField<&LayerState::flags>(70),
    {62, writeColor, readColor},
    dxfField<&LayerState::trueColor, -1>(420),
    {6, writeLinetype, readLinetype, TableKind::Linetype},
    dxfField<&LayerState::plottable, true>(290),
    dxfField<&LayerState::lineWeight>(370),
    dxfField<&LayerState::plotStyle>(390),
};

const LayerState& layerOf(const AcDbLayerTableRecord* record) {
    return readState<LayerState>(record);
}

Acad::ErrorStatus setFlag(AcDbLayerTableRecord* record, std::int32_t flag, bool on) {
    auto* const state = writeState<LayerState>(record);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->flags = on ? state->flags | flag : state->flags & ~flag;
    return Acad::eOk;
}

}  // namespace

AcDbLayerTableRecord::AcDbLayerTableRecord() : AcDbSymbolTableRecord(newImp<LayerState>()) {}

std::uint16_t AcDbLayerTableRecord::colorIndex() const {
    return static_cast<std::uint16_t>(layerOf(this).color);
}
std::int32_t AcDbLayerTableRecord::trueColor() const {
    return layerOf(this).trueColor;
}

Acad::ErrorStatus AcDbLayerTableRecord::setColorIndex(std::uint16_t index) {
    if (index < 1 || index > 255)
        return Acad::eInvalidInput;
    auto* const state = writeState<LayerState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->color = index;
    state->trueColor = -1;
    return Acad::eOk;
}

AcDbObjectId AcDbLayerTableRecord::linetypeObjectId() const {
    const AcDbObjectId own = layerOf(this).linetype;
    const AcDbDatabase* const home = databaseOrWorking(*this);
    return own.isNull() && home ? home->continuousLinetype() : own;
}

Acad::ErrorStatus AcDbLayerTableRecord::setLinetypeObjectId(AcDbObjectId id) {
    if (!peek<AcDbLinetypeTableRecord>(id))
        return id.isNull() ? Acad::eNullObjectId : Acad::eWrongObjectType;
    auto* const state = writeState<LayerState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->linetype = id;
    return Acad::eOk;
}

int AcDbLayerTableRecord::lineWeight() const {
    return layerOf(this).lineWeight;
}

Acad::ErrorStatus AcDbLayerTableRecord::setLineWeight(int weight) {
    // A layer has no layer or block of its own to take the weight from.
    if (weight < 0 && weight != AcDb::kLnWtByLwDefault)
        return Acad::eInvalidInput;
    auto* const state = writeState<LayerState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->lineWeight = weight;
    return Acad::eOk;
}

bool AcDbLayerTableRecord::isOff() const {
    return layerOf(this).off;
}

Acad::ErrorStatus AcDbLayerTableRecord::setIsOff(bool off) {
    auto* const state = writeState<LayerState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->off = off;
    return Acad::eOk;
}

bool AcDbLayerTableRecord::isFrozen() const {
    return (layerOf(this).flags & kFrozen) != 0;
}

Acad::ErrorStatus AcDbLayerTableRecord::setIsFrozen(bool frozen) {
    // The current layer cannot be frozen.
    if (frozen && database() && database()->clayer() == objectId())
        return Acad::eInvalidInput;
    return setFlag(this, kFrozen, frozen);
}

bool AcDbLayerTableRecord::isLocked() const {
    return (layerOf(this).flags & kLocked) != 0;
}
Acad::ErrorStatus AcDbLayerTableRecord::setIsLocked(bool locked) {
    return setFlag(this, kLocked, locked);
}
bool AcDbLayerTableRecord::isPlottable() const {
    return layerOf(this).plottable;
}

Acad::ErrorStatus AcDbLayerTableRecord::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const auto status = AcDbSymbolTableRecord::dxfOutFields(filer); status != Acad::eOk)
        return status;
    return writeSubclass(filer, L"AcDbLayerTableRecord", layerOf(this), kFields);
}

Acad::ErrorStatus AcDbLayerTableRecord::dxfInFields(AcDbDxfFiler* filer) {
    if (const auto status = AcDbSymbolTableRecord::dxfInFields(filer); status != Acad::eOk)
        return status;
    return readSubclass(filer, L"AcDbLayerTableRecord", *writeState<LayerState>(this), kFields);
}

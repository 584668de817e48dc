// AcDbEntity: layer, colour, linetype, weight, visibility.

#include <algorithm>

#include "host/database/database_impl.h"
#include "host/database/entity_parts.h"
#include "host/database/proxies.h"
#include "host/database/resbuf_text.h"
#include "host/database/table_states.h"

using namespace drafthost;

namespace {

constexpr std::int32_t kLineWeights[] = {-3, -2, -1, 0,  5,  9,  13,  15,  18,  20,  25,  30,  35, 40,
                                         50, 53, 60, 70, 80, 90, 100, 106, 120, 140, 158, 200, 211};

// Changes the entity and, when asked, its sub-entities.
Acad::ErrorStatus changeState(AcDbEntity& entity, bool doSubents,
                              const std::function<void(EntityState&)>& change) {
    auto* const state = writeState<EntityState>(&entity);
    if (!state)
        return Acad::eNotOpenForWrite;
    change(*state);
    if (doSubents)
        changeSubEntities(entity, change);
    return Acad::eOk;
}

// operation: what the class of a proxy must allow.
Acad::ErrorStatus setProperty(AcDbEntity& entity, AcRxProxyFlags operation, bool doSubents,
                              const std::function<void(EntityState&)>& change) {
    return proxyRefuses(entity, operation) ? Acad::eProxyRefused : changeState(entity, doSubents, change);
}

// A record of the entity's own drawing; entities outside one may name any.
template <class Record>
Acad::ErrorStatus checkRecord(const AcDbEntity& entity, AcDbObjectId id) {
    if (id.isNull())
        return Acad::eNullObjectId;
    if (id.isErased())
        return Acad::eWasErased;
    if (!peek<Record>(id))
        return Acad::eWrongObjectType;
    return entity.database() && entity.database() != id.database() ? Acad::eWrongDatabase : Acad::eOk;
}

}  // namespace

AcDbObjectId AcDbEntity::layerId() const {
    return readState<EntityState>(this).layer;
}
ACHAR* AcDbEntity::layer() const {
    return copyText(recordName(layerId()));
}

Acad::ErrorStatus AcDbEntity::setLayer(const ACHAR* name, bool doSubents, bool allowHiddenLayer) {
    if (!name)
        return Acad::eInvalidInput;
    const AcDbObjectId id = findRecord(databaseOrWorking(*this), TableIndex::Layer, name);
    return id.isNull() ? Acad::eKeyNotFound : setLayer(id, doSubents, allowHiddenLayer);
}

Acad::ErrorStatus AcDbEntity::setLayer(AcDbObjectId layerId, bool doSubents, bool allowHiddenLayer) {
    if (const auto status = checkRecord<AcDbLayerTableRecord>(*this, layerId); status != Acad::eOk)
        return status;
    if (!allowHiddenLayer && recordName(layerId).starts_with(L"*"))
        return Acad::eInvalidInput;
    return setProperty(*this, kProxyLayerChangeAllowed, doSubents,
                       [layerId](EntityState& state) { state.layer = layerId; });
}

std::uint16_t AcDbEntity::colorIndex() const {
    return static_cast<std::uint16_t>(readState<EntityState>(this).color);
}

Acad::ErrorStatus AcDbEntity::setColorIndex(std::uint16_t index, bool doSubents) {
    if (index > 256)
        return Acad::eInvalidInput;
    return setProperty(*this, kProxyColorChangeAllowed, doSubents, [index](EntityState& state) {
        state.color = index;
        state.trueColor = -1;
    });
}

std::int32_t AcDbEntity::trueColor() const {
    return readState<EntityState>(this).trueColor;
}

Acad::ErrorStatus AcDbEntity::setTrueColor(std::int32_t rgb) {
    if (rgb < -1 || rgb > 0xFFFFFF)
        return Acad::eInvalidInput;
    return setProperty(*this, kProxyColorChangeAllowed, false,
                       [rgb](EntityState& state) { state.trueColor = rgb; });
}

AcDbObjectId AcDbEntity::linetypeId() const {
    const AcDbObjectId own = readState<EntityState>(this).linetype;
    if (!own.isNull())
        return own;
    const AcDbDatabase* const home = databaseOrWorking(*this);
    return home ? home->byLayerLinetype() : AcDbObjectId();
}

Acad::ErrorStatus AcDbEntity::setLinetype(const ACHAR* name, bool doSubents) {
    if (!name)
        return Acad::eInvalidInput;
    const AcDbObjectId id = findRecord(databaseOrWorking(*this), TableIndex::Linetype, name);
    return id.isNull() ? Acad::eKeyNotFound : setLinetype(id, doSubents);
}

Acad::ErrorStatus AcDbEntity::setLinetype(AcDbObjectId linetypeId, bool doSubents) {
    if (const auto status = checkRecord<AcDbLinetypeTableRecord>(*this, linetypeId); status != Acad::eOk)
        return status;
    return setProperty(*this, kProxyLinetypeChangeAllowed, doSubents,
                       [linetypeId](EntityState& state) { state.linetype = linetypeId; });
}

double AcDbEntity::linetypeScale() const {
    return readState<EntityState>(this).linetypeScale;
}

Acad::ErrorStatus AcDbEntity::setLinetypeScale(double scale, bool doSubents) {
    if (!(scale > 0) || !std::isfinite(scale))
        return Acad::eInvalidInput;
    return setProperty(*this, kProxyLinetypeScaleChangeAllowed, doSubents,
                       [scale](EntityState& state) { state.linetypeScale = scale; });
}

int AcDbEntity::lineWeight() const {
    return readState<EntityState>(this).lineWeight;
}

Acad::ErrorStatus AcDbEntity::setLineWeight(int weight, bool doSubents) {
    if (std::ranges::find(kLineWeights, weight) == std::end(kLineWeights))
        return Acad::eInvalidInput;
    return setProperty(*this, kProxyLineWeightChangeAllowed, doSubents,
                       [weight](EntityState& state) { state.lineWeight = weight; });
}

bool AcDbEntity::isVisible() const {
    return readState<EntityState>(this).invisible == 0;
}

Acad::ErrorStatus AcDbEntity::setVisibility(bool visible, bool doSubents) {
    return setProperty(*this, kProxyVisibilityChangeAllowed, doSubents,
                       [visible](EntityState& state) { state.invisible = visible ? 0 : 1; });
}

Acad::ErrorStatus AcDbEntity::setPropertiesFrom(const AcDbEntity* other, bool doSubents) {
    if (!other)
        return Acad::eNullObjectPointer;
    const EntityState& from = readState<EntityState>(other);
    if (const auto status = mayTakeProperties(*this, from); status != Acad::eOk)
        return status;
    return changeState(*this, doSubents, [&from](EntityState& state) {
        state.layer = from.layer;
        state.linetype = from.linetype;
        state.linetypeScale = from.linetypeScale;
        state.color = from.color;
        state.trueColor = from.trueColor;
        state.lineWeight = from.lineWeight;
        state.invisible = from.invisible;
    });
}

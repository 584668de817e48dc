// entnext, entlast, handent: stepping through the entities of a drawing.

#include <algorithm>
#include <optional>

#include "host/api/block_reference.h"
#include "host/database/entity_data.h"
#include "host/database/entity_parts.h"
#include "host/database/handles.h"
#include "host/database/sequence_entities.h"
#include "host/database/table_states.h"

using namespace drafthost;

namespace {

using Ids = std::vector<AcDbObjectId>;

int giveName(AcDbObjectId id, ads_name result) {
    ads_name_clear(result);
    if (id.isNull())
        return entityError(kErrnoNone, L"no more entities");
    result[0] = id.stub()->name;
    return RTNORM;
}

const Ids& entitiesOf(AcDbObjectId block) {
    static const Ids none;
    const auto* const record = peek<AcDbBlockTableRecord>(block);
    return record ? readState<BlockState>(record).entities : none;
}

AcDbObjectId firstLive(const Ids& ids, std::size_t from) {
    for (std::size_t i = from; i < ids.size(); ++i) {
        if (!ids[i].isErased())
            return ids[i];
    }
    return {};
}

// The remembered place is right unless an undo or abort has rebuilt the list.
std::optional<std::size_t> placeOf(AcDbObjectId id, const Ids& ids) {
    std::uint32_t& place = id.stub()->place;
    if (place < ids.size() && ids[place] == id)
        return place;
    const auto found = std::ranges::find(ids, id);
    if (found == ids.end())
        return std::nullopt;
    place = static_cast<std::uint32_t>(found - ids.begin());
    return place;
}

// Behind an entity of a block; behind the last of model space comes paper space.
AcDbObjectId nextMain(AcDbObjectId id) {
    const AcDbDatabase& database = *id.database();
    const AcDbObjectId block = ObjectImp::of(id.stub()->object).state->owner;
    const Ids& ids = entitiesOf(block);
    const auto place = placeOf(id, ids);
    if (!place)
        return {};
    const AcDbObjectId next = firstLive(ids, *place + 1);
    if (!next.isNull() || block != database.modelSpaceId())
        return next;
    return firstLive(entitiesOf(database.paperSpaceId()), 0);
}

// Behind one part of an entity come its other parts, then what follows the entity.
AcDbObjectId nextPart(AcDbObjectId part, const AcDbEntity& owner) {
    const Ids parts = subEntityIds(owner);
    const auto place = std::ranges::find(parts, part);
    if (place == parts.end())
        return {};
    const AcDbObjectId next = firstLive(parts, static_cast<std::size_t>(place - parts.begin()) + 1);
    return next.isNull() ? nextMain(owner.objectId()) : next;
}

// Attributes come right behind their block reference; the end of their sequence alone does not count.
AcDbObjectId firstPart(const AcDbEntity& entity) {
    const AcDbObjectId first = firstLive(subEntityIds(entity), 0);
    return first.isNull() || peek<AcDbSequenceEnd>(first) ? AcDbObjectId() : first;
}

AcDbObjectId nextOf(AcDbObjectId id) {
    const auto* const entity = peek<AcDbEntity>(id);
    if (!entity)
        return {};
    if (AcDbBlockBegin::cast(entity))
        return firstLive(entitiesOf(entity->ownerId()), 0);
    if (const auto* const owner = peek<AcDbEntity>(entity->ownerId()))
        return nextPart(id, *owner);
    const AcDbObjectId part = firstPart(*entity);
    return part.isNull() ? nextMain(id) : part;
}

}  // namespace

int acdbEntNext(const ads_name after, ads_name result) {
    if (after && !ads_name_nil(after)) {
        AcDbObjectId id;
        ads_name from;
        ads_name_set(after, from);  // result may be the same variable
        if (const auto status = acdbGetObjectId(id, from); status != Acad::eOk) {
            ads_name_clear(result);
            return entityError(status);
        }
        return giveName(nextOf(id), result);
    }
    const AcDbDatabase* const database = workingDatabase();
    if (!database)
        return giveName({}, result);
    const AcDbObjectId first = firstLive(entitiesOf(database->modelSpaceId()), 0);
    return giveName(first.isNull() ? firstLive(entitiesOf(database->paperSpaceId()), 0) : first, result);
}

int acdbEntLast(ads_name result) {
    const AcDbDatabase* const database = workingDatabase();
    const Ids& ids = entitiesOf(database ? database->impl().currentSpace : AcDbObjectId());
    for (auto id = ids.rbegin(); id != ids.rend(); ++id) {
        if (!id->isErased())
            return giveName(*id, result);
    }
    return giveName({}, result);
}

int acdbHandEnt(const ACHAR* handle, ads_name result) {
    ads_name_clear(result);
    const AcDbDatabase* const database = workingDatabase();
    AcDbObjectId id;
    const AcDbHandle value = parseHandle(handle);
    if (!database || database->getAcDbObjectId(id, value) != Acad::eOk) {
        return entityError(kErrnoInvalidEntity, L"no object has this handle");
    }
    return giveName(id, result);
}

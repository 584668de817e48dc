#include "host/database/block_contents.h"

#include <unordered_set>

#include "host/api/block_reference.h"
#include "host/database/block_reference_state.h"
#include "host/database/entity_parts.h"
#include "host/database/sequence_entities.h"

namespace drafthost {
namespace {

// Blocks that are referred to directly, each once.
std::vector<AcDbObjectId> shownBlocks(AcDbObjectId block) {
    std::vector<AcDbObjectId> shown;
    std::unordered_set<AcDbObjectId> seen;
    const auto* const record = peek<AcDbBlockTableRecord>(block);
    if (!record)
        return shown;
    for (const AcDbObjectId id : readState<BlockState>(record).entities) {
        const auto* const reference = id.isErased() ? nullptr : peek<AcDbBlockReference>(id);
        if (!reference)
            continue;
        const AcDbObjectId target = readState<BlockReferenceState>(reference).block;
        if (!target.isNull() && seen.insert(target).second)
            shown.push_back(target);
    }
    return shown;
}

template <class Marker>
AcDbObjectId addMarker(AcDbBlockTableRecord& block) {
    auto marker = std::make_unique<Marker>();
    adoptProperties(static_cast<EntityState&>(*ObjectImp::of(marker.get()).state), *block.database());
    static_cast<EntityState&>(*ObjectImp::of(marker.get()).state).layer = block.database()->layerZero();
    AcDbObjectId id;
    if (block.database()->impl().add(marker.get(), block.objectId(), AcDbHandle(), id) == Acad::eOk) {
        marker.release()->close();
    }
    return id;
}

}  // namespace

bool showsBlock(AcDbObjectId block, AcDbObjectId other) {
    std::unordered_set<AcDbObjectId> seen{block};
    std::vector<AcDbObjectId> waiting{block};
    while (!waiting.empty()) {
        const AcDbObjectId next = waiting.back();
        waiting.pop_back();
        if (next == other)
            return true;
        for (const AcDbObjectId shown : shownBlocks(next)) {
            if (seen.insert(shown).second)
                waiting.push_back(shown);
        }
    }
    return false;
}

Acad::ErrorStatus mayReferTo(AcDbObjectId owner, AcDbObjectId block) {
    const auto* const target = peek<AcDbBlockTableRecord>(block);
    const auto* const place = peek<AcDbBlockTableRecord>(owner);
    if (!target || !place)
        return Acad::eOk;
    if (target->isLayout() || owner == block)
        return Acad::eSelfReference;
    // Nothing refers to a layout, so nothing in it can close a circle.
    return !place->isLayout() && showsBlock(block, owner) ? Acad::eSelfReference : Acad::eOk;
}

Acad::ErrorStatus appendToBlock(AcDbBlockTableRecord& block, AcDbEntity* entity, AcDbHandle handle,
                                AcDbObjectId& id) {
    AcDbDatabase& database = *block.database();
    if (const auto* const reference = AcDbBlockReference::cast(entity)) {
        const AcDbObjectId shown = readState<BlockReferenceState>(reference).block;
        if (!shown.isNull() && shown.database() != &database)
            return Acad::eWrongDatabase;
        // While a file is read the blocks it refers to may still be empty; circles are looked for afterwards.
        const auto status = database.impl().loading ? Acad::eOk : mayReferTo(block.objectId(), shown);
        if (status != Acad::eOk)
            return status;
    }
    const auto status = database.impl().add(entity, block.objectId(), handle, id);
    if (status != Acad::eOk)
        return status;
    adoptProperties(static_cast<EntityState&>(*ObjectImp::of(entity).state), database);
    // The list is not saved for the logs: see change_log.h.
    ObjectImp::of(&block).stub->modified = true;
    auto& entities = static_cast<BlockState&>(*ObjectImp::of(&block).state).entities;
    id.stub()->place = static_cast<std::uint32_t>(entities.size());
    entities.push_back(id);
    return Acad::eOk;
}

bool isReferenced(const AcDbDatabase& database, AcDbObjectId block) {
    for (const AcDbStub* const stub : database.impl().stubs) {
        if (stub->erased || !stub->object)
            continue;
        const auto* const reference = AcDbBlockReference::cast(stub->object);
        if (reference && readState<BlockReferenceState>(reference).block == block)
            return true;
    }
    return false;
}

void completeBlock(AcDbBlockTableRecord& block) {
    auto& state = static_cast<BlockState&>(*ObjectImp::of(&block).state);
    if (state.begin.isValid() && state.end.isValid())
        return;
    noteChange(*ObjectImp::of(&block).stub);
    if (!state.begin.isValid())
        state.begin = addMarker<AcDbBlockBegin>(block);
    if (!state.end.isValid())
        state.end = addMarker<AcDbBlockEnd>(block);
}

}  // namespace drafthost

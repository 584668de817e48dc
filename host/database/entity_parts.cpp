#include "host/database/entity_parts.h"

#include "host/api/block_reference.h"
#include "host/database/block_reference_state.h"
#include "host/database/database_impl.h"
#include "host/database/names.h"
#include "host/database/symbol_records.h"
#include "host/database/table_states.h"
#include "host/database/unknown_objects.h"

namespace drafthost {

AcDbObjectId layerForName(AcDbDatabase& database, const std::wstring& name) {
    const AcDbObjectId known = findRecord(&database, TableIndex::Layer, name);
    if (!known.isNull())
        return known;
    // Files name layers of external references with a bar, which nobody else may.
    if (!database.impl().loading && !isValidSymbolName(name))
        return {};
    if (name.empty())
        return database.layerZero();
    return addRecord(database, TableIndex::Layer, std::make_unique<AcDbLayerTableRecord>(), name);
}

bool isPaperSpace(const AcDbBlockTableRecord& block) {
    const std::wstring name = foldCase(readState<BlockState>(&block).name);
    return name.starts_with(L"*PAPER_SPACE");
}

std::wstring layoutName(const AcDbBlockTableRecord& block) {
    const BlockState& state = readState<BlockState>(&block);
    if (equalNames(state.name, ACDB_MODEL_SPACE))
        return L"Model";
    const auto* const layout = peek<AcDbUnknownObject>(state.layout);
    if (!layout)
        return isPaperSpace(block) ? L"Layout1" : L"";
    // The layout's own name is group 1 of its last subclass; the plot settings before it have one too.
    std::wstring name;
    bool inLayout = false;
    for (const DxfGroup& group : readState<UnknownObjectState>(layout).groups) {
        const auto* const text = std::get_if<std::wstring>(&group.value);
        if (group.code == 100)
            inLayout = text && *text == L"AcDbLayout";
        else if (inLayout && group.code == 1 && text && name.empty())
            name = *text;
    }
    return name;
}

std::vector<AcDbObjectId> subEntityIds(const AcDbEntity& entity) {
    if (const auto* const insert = AcDbBlockReference::cast(&entity)) {
        const auto& state = readState<BlockReferenceState>(insert);
        std::vector<AcDbObjectId> ids = state.attributes;
        if (!state.sequenceEnd.isNull())
            ids.push_back(state.sequenceEnd);
        return ids;
    }
    if (const auto* const unknown = AcDbUnknownEntity::cast(&entity)) {
        return readState<UnknownEntityState>(unknown).subEntities;
    }
    return {};
}

void changeSubEntities(const AcDbEntity& entity, const std::function<void(EntityState&)>& change) {
    for (const AcDbObjectId id : subEntityIds(entity)) {
        const auto* const part = peek<AcDbEntity>(id);
        if (!part)
            continue;
        noteChange(*id.stub());
        change(static_cast<EntityState&>(*ObjectImp::of(part).state));
    }
}

void eraseSubEntities(const AcDbEntity& entity, bool erasing) {
    for (const AcDbObjectId id : subEntityIds(entity)) {
        if (!id.isValid() || id.stub()->erased == erasing || id.stub()->undone)
            continue;
        noteChange(*id.stub());
        id.stub()->erased = erasing;
    }
}

void adoptProperties(EntityState& state, AcDbDatabase& database) {
    const DatabaseSettings& settings = database.impl().settings;
    const auto own = [&database](AcDbObjectId id, TableIndex table, AcDbObjectId otherwise) {
        if (id.isNull() || id.database() == &database)
            return id;
        const AcDbObjectId same = findRecord(&database, table, recordName(id));
        return same.isNull() ? otherwise : same;
    };
    if (state.layer.isNull())
        state.layer = settings.layer.isNull() ? database.layerZero() : settings.layer;
    state.layer = own(state.layer, TableIndex::Layer, settings.layer);
    state.linetype = own(state.linetype, TableIndex::Linetype, AcDbObjectId());
}

}  // namespace drafthost
